#include "gtools/vel_spin.h"

#include <QEvent>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

Vel_BaseSpin::Vel_BaseSpin(QWidget* parent)
    : QDoubleSpinBox(parent), _spin(this), _pending_value(std::numeric_limits<double>::quiet_NaN())
{
  // The spin box starts with this one's defaults.
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
  if (_batches > 0) {
    _pending_value = value;
    return;
  }
  double shown = 0.0;
  if (_unsettled && settledShownValue(value, &shown)) {
    // What the spin box would report, as it would report it.
    if (shown != _unsettled_shown) {
      _unsettled_shown = shown;
      Q_EMIT valueChanged(shown * _factor);
    }
    return;
  }
  settle();
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
  if (!std::isnan(_pending_value))
    return _pending_value;
  return (_unsettled ? _unsettled_shown : _spin->value()) * _factor;
}

QDoubleSpinBox* Vel_BaseSpin::spinBox() const
{
  settle();
  return const_cast<Vel_BaseSpin*>(this);
}

void Vel_BaseSpin::setDisplayFactor(double factor, int extra_digits, const QString& suffix)
{
  const double stored = value();
  _factor = factor;
  _extra_digits = extra_digits;
  // The spin box lays its text out anew for every suffix, the same one too.
  if (_spin->suffix() != suffix)
    _spin->setSuffix(suffix);
  updateSpin();
  if (_batches > 0) {
    _pending_value = stored;
    return;
  }
  double shown = 0.0;
  if (_unsettled && settledShownValue(stored, &shown)) {
    _unsettled_shown = shown;
    return;
  }
  settle();
  const QSignalBlocker blocker(_spin);
  _spin->setValue(stored / _factor);
}

// The inner spin box works in the shown unit; a changed range keeps the value as far as the
// new limits allow, without reporting a change that the user did not make.
void Vel_BaseSpin::updateSpin()
{
  if (_batches > 0)
    return;
  const double stored = value();
  _pending_value = std::numeric_limits<double>::quiet_NaN();
  double shown = 0.0;
  if (_unsettled && settledShownValue(stored, &shown)) {
    _unsettled_shown = shown;
    return;
  }
  settle();
  pushToSpin(stored / _factor);
}

// Only what changed is handed on: the spin box rounds its limits through their decimal text at
// every change, which for the widest limits (the largest doubles) costs a big-number formatting.
void Vel_BaseSpin::pushToSpin(double shown) const
{
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
  if (_spin->value() != shown)
    _spin->setValue(shown);
}

void Vel_BaseSpin::settle() const
{
  if (!_unsettled)
    return;
  _unsettled = false;
  pushToSpin(_unsettled_shown);
  // Its text shows the value, as after any value set.
  const QSignalBlocker blocker(_spin);
  _spin->setValue(_spin->value());
}

// As the spin box does it: limits and value are rounded to the decimals through their text, the
// maximum is at least the minimum, and the value is kept between them.
bool Vel_BaseSpin::settledShownValue(double stored, double* shown) const
{
  const int decimals = std::clamp(static_cast<int>(_digits) + _extra_digits, 0, DBL_MAX_10_EXP + DBL_DIG);
  const auto rounded = [decimals](double value) {
    // A whole number's decimal text gives it back unchanged, at any decimals.
    if (!std::isfinite(value) || value == std::trunc(value))
      return value;
    return QString::number(value, 'f', decimals).toDouble();
  };
  const double minimum = rounded(_min / _factor);
  const double maximum = std::max(minimum, rounded(_max / _factor));
  const double value = rounded(stored / _factor);
  if (std::isnan(minimum) || std::isnan(maximum) || std::isnan(value))
    return false;
  *shown = value < minimum ? minimum : value > maximum ? maximum : value;
  return true;
}

bool Vel_BaseSpin::event(QEvent* event)
{
  // Polished before it is first shown or measured: from then on it holds every setting.
  if (event->type() == QEvent::Polish)
    settle();
  return QDoubleSpinBox::event(event);
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
