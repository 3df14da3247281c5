#pragma once

#include <QWidget>

#include "core/unit.h"
#include "core/vel_export.h"

class QDoubleSpinBox;

// A spin box for doubles. Limits, step and digits are those of the value; the spin box clamps
// what is typed to the limits.
class VEL_EXPORT Vel_BaseSpin : public QWidget
{
  Q_OBJECT

public:
  explicit Vel_BaseSpin(QWidget* parent = nullptr);

  void setMinValue(double value);
  void setMaxValue(double value);
  void setValue(double value);
  void setDigits(unsigned digits);
  void setLineStep(double step);
  double value() const;
  double minValue() const { return _min; }
  double maxValue() const { return _max; }
  unsigned digits() const { return _digits; }

  QDoubleSpinBox* spinBox() const { return _spin; }

  // Holds the settings made while it lives and hands them to the spin box at once when it
  // ends: each change of limits or digits is a costly step of the spin box.
  class VEL_EXPORT Batch
  {
  public:
    explicit Batch(Vel_BaseSpin* spin);
    ~Batch();
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

  private:
    Vel_BaseSpin* _spin;
  };

Q_SIGNALS:
  void valueChanged(double value);

protected:
  // Shown value = stored value / factor; 1 without a unit.
  void setDisplayFactor(double factor, int extra_digits, const QString& suffix);

private:
  void updateSpin();

  QDoubleSpinBox* _spin;
  double _min = 0.0;
  double _max = 99.99;
  double _step = 1.0;
  unsigned _digits = 2;
  double _factor = 1.0;
  int _extra_digits = 0;
  int _batches = 0;
  // The value set while a batch lasts; NaN for none.
  double _pending_value;
};

// A spin box for a measured value: the value stays in the internal unit (millimetre, degree,
// second), the user sees and types it in the chosen unit.
class VEL_EXPORT Vel_Spin : public Vel_BaseSpin
{
  Q_OBJECT

public:
  explicit Vel_Spin(QWidget* parent = nullptr);

  void setUnit(const Vel::Unit& unit);
  void resetUnit();
  // Null when no unit is set.
  const Vel::Unit* getUnit() const { return _unit; }

private:
  const Vel::Unit* _unit = nullptr;
};
