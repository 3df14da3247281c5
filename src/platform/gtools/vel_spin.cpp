#include "gtools/vel_spin.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>

#include <algorithm>
#include <cmath>
#include <limits>

Vel_BaseSpin::Vel_BaseSpin(QWidget* parent)
    : QWidget(parent), _spin(new QDoubleSpinBox(this)), _pending_value(std::numeric_limits<double>::quiet_NaN())
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
  if (_batches > 0)
    _pending_value = value;
  else
    _spin->setValue(value / _factor);
}

Vel_BaseSpin::Batch::Batch(Vel_BaseSpin* spin) : _spin(spin)
{
  ++_spin->_batches;
}

Vel_BaseSpin::Batch::~Batch()
{
  if (--_spin->_batches == 0)
    _spin->updateSpin();
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
  return std::isnan(_pending_value) ? _spin->value() * _factor : _pending_value;
}

void Vel_BaseSpin::setDisplayFactor(double factor, int extra_digits, const QString& suffix)
{
  const double stored = value();
  _factor = factor;
  _extra_digits = extra_digits;
  _spin->setSuffix(suffix);
  updateSpin();
  if (_batches > 0) {
    _pending_value = stored;
    return;
  }
  const QSignalBlocker blocker(_spin);
  setValue(stored);
}

// The inner spin box works in the shown unit; a changed range keeps the value as far as the
// new limits allow, without reporting a change that the user did not make.
// Only what changed is handed on: the spin box rounds its limits through their decimal text at
// every change, which for the widest limits (the largest doubles) costs a big-number formatting.
void Vel_BaseSpin::updateSpin()
{
  if (_batches > 0)
    return;
  const double stored = value();
  _pending_value = std::numeric_limits<double>::quiet_NaN();
  const QSignalBlocker blocker(_spin);
  const int decimals = std::max(0, static_cast<int>(_digits) + _extra_digits);
  if (_spin->decimals() != decimals)
    _spin->setDecimals(decimals);
  const double minimum = _min / _factor;
  const double maximum = _max / _factor;
  if (_spin->minimum() != minimum || _spin->maximum() != maximum)
    _spin->setRange(minimum, maximum);
  if (_spin->singleStep() != _step / _factor)
    _spin->setSingleStep(_step / _factor);
  if (_spin->value() != stored / _factor)
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
