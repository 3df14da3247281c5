#include "gtools/vel_spin.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>

#include <algorithm>

Vel_BaseSpin::Vel_BaseSpin(QWidget* parent) : QWidget(parent), _spin(new QDoubleSpinBox(this))
{
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_spin);
  setFocusProxy(_spin);
  updateSpin();
  connect(_spin, &QDoubleSpinBox::valueChanged, this, [this](double shown) { Q_EMIT valueChanged(shown * _factor); });
}

void Vel_BaseSpin::setMinValue(double value)
{
  _min = value;
  updateSpin();
}

void Vel_BaseSpin::setMaxValue(double value)
{
  _max = value;
  updateSpin();
}

void Vel_BaseSpin::setValue(double value)
{
  _spin->setValue(value / _factor);
}

void Vel_BaseSpin::setDigits(unsigned digits)
{
  _digits = digits;
  updateSpin();
}

void Vel_BaseSpin::setLineStep(double step)
{
  _step = step;
  updateSpin();
}

double Vel_BaseSpin::value() const
{
  return _spin->value() * _factor;
}

void Vel_BaseSpin::setDisplayFactor(double factor, int extra_digits, const QString& suffix)
{
  const double stored = value();
  _factor = factor;
  _extra_digits = extra_digits;
  _spin->setSuffix(suffix);
  updateSpin();
  const QSignalBlocker blocker(_spin);
  setValue(stored);
}

// The inner spin box works in the shown unit; a changed range keeps the value as far as the
// new limits allow, without reporting a change that the user did not make.
void Vel_BaseSpin::updateSpin()
{
  const double stored = value();
  const QSignalBlocker blocker(_spin);
  _spin->setDecimals(std::max(0, static_cast<int>(_digits) + _extra_digits));
  _spin->setRange(_min / _factor, _max / _factor);
  _spin->setSingleStep(_step / _factor);
  _spin->setValue(stored / _factor);
}

Vel_Spin::Vel_Spin(QWidget* parent) : Vel_BaseSpin(parent) {}

void Vel_Spin::setUnit(const Vel::Unit& unit)
{
  _unit = &unit;
  setDisplayFactor(unit.getFactor(), unit.getDigitDifference(), QLatin1Char(' ') + unit.getSymbol());
}

void Vel_Spin::resetUnit()
{
  _unit = nullptr;
  setDisplayFactor(1.0, 0, QString());
}
