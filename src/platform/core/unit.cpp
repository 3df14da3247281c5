#include "core/unit.h"

#include <array>
#include <cmath>

#include "core/translate.h"

namespace Vel {
namespace {

const double PI = 3.14159265358979323846;

// The first unit of each kind is its default and internal unit.
const std::array<Unit, 13>& units()
{
  static const std::array<Unit, 13> table = {{
      {"mm", uLength, "mm", 1.0, 0, "Millimetre"},
      {"um", uLength, "\u00b5m", 1e-3, -3, "Micrometre"},
      {"cm", uLength, "cm", 10.0, 1, "Centimetre"},
      {"m", uLength, "m", 1000.0, 3, "Metre"},
      {"inch", uLength, "in", 25.4, 1, "Inch"},
      {"mil", uLength, "mil", 0.0254, -2, "Mil"},
      {"deg", uAngle, "\u00b0", 1.0, 0, "Degree"},
      {"rad", uAngle, "rad", 180.0 / PI, 2, "Radian"},
      {"mrad", uAngle, "mrad", 0.18 / PI, -1, "Milliradian"},
      {"s", uTime, "s", 1.0, 0, "Second"},
      {"ms", uTime, "ms", 1e-3, -3, "Millisecond"},
      {"min", uTime, "min", 60.0, 2, "Minute"},
      {"h", uTime, "h", 3600.0, 4, "Hour"},
  }};
  return table;
}

}  // namespace

Unit::Unit(const char* id, UnitKind kind, const char* symbol, double factor, int digit_difference, const char* name)
    : _id(QString::fromLatin1(id)),
      _kind(kind),
      _symbol(QString::fromUtf8(symbol)),
      _factor(factor),
      _digit_difference(digit_difference),
      _name(name)
{}

const Unit* Unit::getUnit(const QString& id)
{
  for (const Unit& unit : units())
    if (unit._id == id)
      return &unit;
  return nullptr;
}

QString Unit::getID(const Unit& unit)
{
  return unit._id;
}

const Unit& Unit::getDefault(UnitKind kind)
{
  for (const Unit& unit : units())
    if (unit._kind == kind)
      return unit;
  return units().front();
}

QStringList Unit::getIDs(UnitKind kind)
{
  QStringList ids;
  for (const Unit& unit : units())
    if (unit._kind == kind)
      ids << unit._id;
  return ids;
}

std::vector<const Unit*> Unit::getAvailableUnitsForApplication()
{
  std::vector<const Unit*> available;
  for (const Unit& unit : units())
    available.push_back(&unit);
  return available;
}

QString Unit::getName() const
{
  return QStringLiteral("%1 (%2)").arg(translate("Units", _name, ""), _symbol);
}

QString Unit::kindName(UnitKind kind)
{
  switch (kind) {
    case uLength: return QStringLiteral("length");
    case uAngle: return QStringLiteral("angle");
    case uTime: return QStringLiteral("time");
  }
  return QString();
}

}  // namespace Vel
