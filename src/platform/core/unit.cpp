#include "core/unit.h"

#include <QMap>

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
      {"mm", uLength, "mm", 1.0, 0},
      {"um", uLength, "\u00b5m", 1e-3, -3},
      {"cm", uLength, "cm", 10.0, 1},
      {"m", uLength, "m", 1000.0, 3},
      {"inch", uLength, "in", 25.4, 1},
      {"mil", uLength, "mil", 0.0254, -2},
      {"deg", uAngle, "\u00b0", 1.0, 0},
      {"rad", uAngle, "rad", 180.0 / PI, 2},
      {"mrad", uAngle, "mrad", 0.18 / PI, -1},
      {"s", uTime, "s", 1.0, 0},
      {"ms", uTime, "ms", 1e-3, -3},
      {"min", uTime, "min", 60.0, 2},
      {"h", uTime, "h", 3600.0, 4},
  }};
  return table;
}

}  // namespace

Unit::Unit(const char* id, UnitKind kind, const char* symbol, double factor, int digit_difference)
    : _id(QString::fromLatin1(id)),
      _kind(kind),
      _symbol(QString::fromUtf8(symbol)),
      _factor(factor),
      _digit_difference(digit_difference)
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
  static const QMap<QString, const char*> names = {
      {"mm", "Millimetre"},  {"um", "Micrometre"}, {"cm", "Centimetre"}, {"m", "Metre"},          {"inch", "Inch"},
      {"mil", "Mil"},        {"deg", "Degree"},    {"rad", "Radian"},    {"mrad", "Milliradian"}, {"s", "Second"},
      {"ms", "Millisecond"}, {"min", "Minute"},    {"h", "Hour"}};
  return QStringLiteral("%1 (%2)").arg(translate("Units", names.value(_id, ""), ""), _symbol);
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
