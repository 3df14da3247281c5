#pragma once

#include <QSlider>

#include "core/vel_export.h"

// A slider over a range of doubles. The value is kept exactly as set; the slider's integer
// positions only show it, at the resolution of its digits or, for huge ranges, coarser.
class VEL_EXPORT Vel_Slider : public QSlider
{
  Q_OBJECT

public:
  explicit Vel_Slider(QWidget* parent = nullptr);

  void setMinValue(double value);
  void setMaxValue(double value);
  void setDigits(unsigned digits);
  void setLineStep(double step);
  void setTickInterval(double interval);
  // Clamped to the limits; rounded to the digits.
  void setValue(double value);

  double minValue() const { return _min; }
  double maxValue() const { return _max; }
  unsigned digits() const { return _digits; }
  double lineStep() const { return _step; }
  double tickInterval() const { return _tick_interval; }
  double value() const { return _value; }
  // The value as the slider shows it, with its digits.
  QString valueText() const;

Q_SIGNALS:
  void valueChanged(double value);

private:
  void updateSlider();
  double positionValue(int position) const;
  int valuePosition(double value) const;

  double _min = 0.0;
  double _max = 100.0;
  double _value = 0.0;
  double _step = 1.0;
  double _tick_interval = 0.0;
  unsigned _digits = 2;
  // Value per slider position.
  double _resolution = 0.01;
  bool _updating = false;
};
