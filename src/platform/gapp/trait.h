#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include "core/vel_export.h"

namespace Vel {

namespace Parse {

// A file argument of a command; its name is the path as the user gave it.
class VEL_EXPORT File
{
public:
  File() = default;
  explicit File(const QString& name) : _name(name) {}
  const QString& getName() const { return _name; }
  bool operator==(const File& other) const { return _name == other._name; }

private:
  QString _name;
};

}  // namespace Parse

// The point of a command's life at which a value is converted; commands convert at none.
enum class StageIdentifier
{
  NO_STAGE = 0
};

// A command argument or result: a dynamically typed value with the command framework's
// conversion rules. A parameter map travels as a QVariantMap (ordered by name).
class VEL_EXPORT Trait
{
public:
  Trait() = default;
  explicit Trait(const QVariant& value) : _value(value) {}

  const QVariant& getValue() const { return _value; }
  bool isNull() const { return !_value.isValid(); }
  int getTypeId() const { return _value.isValid() ? _value.typeId() : QMetaType::UnknownType; }

  // Converts to the meta-type `type_id`. Only conversions that cannot lose or invent meaning
  // succeed: integers widen to doubles, whole doubles narrow to integers, a text names a file.
  bool convertTo(StageIdentifier stage, int type_id, QVariant& out) const;

  // Meta-type ids of the host's own value types, registered on first use.
  static int fileTypeId();

private:
  QVariant _value;
};

}  // namespace Vel

Q_DECLARE_METATYPE(Vel::Parse::File)
