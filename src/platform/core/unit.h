#pragma once

#include <QString>
#include <QStringList>

#include <vector>

#include "core/vel_export.h"

namespace Vel {

// Kinds of measured values. Values are stored in the kind's internal unit (millimetre,
// degree, second) and converted for display.
enum UnitKind
{
  uLength,
  uAngle,
  uTime
};

class VEL_EXPORT Unit
{
public:
  UnitKind getKind() const { return _kind; }
  const QString& getSymbol() const { return _symbol; }
  // Internal value = value in this unit * factor.
  double getFactor() const { return _factor; }
  // Decimal digits to add when showing a value in this unit so that it keeps the precision it
  // has in the internal unit (3 for metres against millimetres, -3 for micrometres).
  int getDigitDifference() const { return _digit_difference; }
  int digitDifferenceToInternal() const { return _digit_difference; }
  // Lengths; angles and times are not.
  bool isLinear() const { return _kind == uLength; }

  double toInternal(double value) const { return value * _factor; }
  double fromInternal(double value) const { return value / _factor; }

  // Null for an unknown id.
  static const Unit* getUnit(const QString& id);
  static QString getID(const Unit& unit);
  static const Unit& getDefault(UnitKind kind);
  static QStringList getIDs(UnitKind kind);
  static QString kindName(UnitKind kind);
  // Every unit a user may choose in this application, kind by kind.
  static std::vector<const Unit*> getAvailableUnitsForApplication();
  // What a user reads, such as "Millimetre (mm)".
  QString getName() const;

  Unit(const char* id, UnitKind kind, const char* symbol, double factor, int digit_difference, const char* name);

private:
  QString _id;
  UnitKind _kind;
  QString _symbol;
  double _factor;
  int _digit_difference;
  const char* _name;  // English; translated when shown
};

}  // namespace Vel
