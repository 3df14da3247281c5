#pragma once

#include <QDoubleSpinBox>

#include "core/unit.h"
#include "core/vel_export.h"

// A spin box for doubles. Limits, step and digits are those of the value; the spin box clamps
// what is typed to the limits. It is the spin box itself, not a widget around one: every widget
// costs its construction and a polish request to the event loop.
class VEL_EXPORT Vel_BaseSpin : public QDoubleSpinBox
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

  // The spin box as such (in the shown unit), holding every setting made so far.
  QDoubleSpinBox* spinBox() const;

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
  // The stored value; the spin box's own signal of the same name reports the shown one.
  void valueChanged(double value);

protected:
  // Shown value = stored value / factor; 1 without a unit.
  void setDisplayFactor(double factor, int extra_digits, const QString& suffix);
  bool event(QEvent* event) override;

private:
  void updateSpin();
  void pushToSpin(double shown) const;
  // Hands the settings kept so far to the spin box; from then on it takes each as it is made.
  void settle() const;
  // The value the spin box would show with the current settings, computed as it computes it;
  // false where that cannot be told without it.
  bool settledShownValue(double stored, double* shown) const;

  // This one, seen as the spin box: its value, limits and signal, not those of the stored value.
  QDoubleSpinBox* const _spin;
  double _min = 0.0;
  double _max = 99.99;
  double _step = 1.0;
  unsigned _digits = 2;
  double _factor = 1.0;
  int _extra_digits = 0;
  int _batches = 0;
  // The value set while a batch lasts; NaN for none.
  double _pending_value;
  // Until the spin box is first polished or read, the settings are kept here and not handed on:
  // it would round the limits of every change through their decimal text, and the widest limits
  // (the largest doubles, the default of a number field) cost a big-number formatting each time.
  mutable bool _unsettled = true;
  // The value the spin box will show once settled, in its unit.
  double _unsettled_shown = 0.0;
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
