#include "gtools/vel_slider.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Positions of the inner slider: enough for any screen, far from the int limits.
constexpr int MAX_POSITIONS = 1000000;
// More tick marks than this would only paint a grey bar, and slowly.
constexpr double MAX_TICKS = 200.0;
constexpr unsigned MAX_DIGITS = 15;

double roundToDigits(double value, unsigned digits)
{
  const double scale = std::pow(10.0, std::min(digits, MAX_DIGITS));
  const double rounded = std::round(value * scale) / scale;
  return std::isfinite(rounded) ? rounded : value;
}

}  // namespace

Vel_Slider::Vel_Slider(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
  updateSlider();
  connect(this, &QAbstractSlider::valueChanged, this, [this](int position) {
    if (_updating)
      return;
    const double value = positionValue(position);
    if (value == _value)
      return;
    _value = value;
    Q_EMIT valueChanged(_value);
  });
}

void Vel_Slider::setMinValue(double value)
{
  _min = value;
  setValue(_value);
}

void Vel_Slider::setMaxValue(double value)
{
  _max = value;
  setValue(_value);
}

void Vel_Slider::setDigits(unsigned digits)
{
  _digits = digits;
  setValue(_value);
}

void Vel_Slider::setLineStep(double step)
{
  _step = step;
  updateSlider();
}

void Vel_Slider::setTickInterval(double interval)
{
  _tick_interval = interval;
  updateSlider();
}

void Vel_Slider::setValue(double value)
{
  const double low = std::min(_min, _max);
  const double high = std::max(_min, _max);
  double clamped = std::isnan(value) ? low : std::clamp(value, low, high);
  clamped = std::clamp(roundToDigits(clamped, _digits), low, high);
  const bool changed = clamped != _value;
  _value = clamped;
  updateSlider();
  if (changed)
    Q_EMIT valueChanged(_value);
}

QString Vel_Slider::valueText() const
{
  return QString::number(_value, 'f', int(std::min(_digits, MAX_DIGITS)));
}

// The span of the range may exceed what a double holds (-max to max); halves keep it finite.
void Vel_Slider::updateSlider()
{
  const double low = std::min(_min, _max);
  const double high = std::max(_min, _max);
  const double half_span = high / 2 - low / 2;
  const double fine = std::pow(10.0, -double(std::min(_digits, MAX_DIGITS)));
  double positions = half_span / fine * 2;
  if (!std::isfinite(positions) || positions > MAX_POSITIONS)
    positions = MAX_POSITIONS;
  const int count = int(std::ceil(positions));
  _resolution = count > 0 ? half_span / count * 2 : fine;
  if (!(_resolution > 0))
    _resolution = fine;

  _updating = true;
  QSlider::setRange(0, count);
  QSlider::setSingleStep(std::max(1, int(std::min(double(count), std::abs(_step) / _resolution))));
  QSlider::setPageStep(std::max(1, count / 10));
  const double ticks = _tick_interval > 0 ? (high / 2 - low / 2) * 2 / _tick_interval : 0.0;
  if (ticks > 0 && ticks <= MAX_TICKS) {
    QSlider::setTickInterval(std::max(1, int(_tick_interval / _resolution)));
    setTickPosition(QSlider::TicksBelow);
  } else {
    setTickPosition(QSlider::NoTicks);
  }
  QSlider::setValue(valuePosition(_value));
  _updating = false;
}

double Vel_Slider::positionValue(int position) const
{
  if (position >= maximum())
    return std::max(_min, _max);
  return roundToDigits(std::min(_min, _max) + position * _resolution, _digits);
}

int Vel_Slider::valuePosition(double value) const
{
  const double offset = (value / 2 - std::min(_min, _max) / 2) * 2 / _resolution;
  if (!std::isfinite(offset))
    return 0;
  return int(std::clamp(std::round(offset), 0.0, double(maximum())));
}
