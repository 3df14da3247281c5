#pragma once

#include <QList>
#include <QString>

#include <exception>
#include <string>

#include "core/vel_export.h"

namespace Vel {

// Raised when a script assigns an attribute that the object refuses (read-only, wrong type);
// scripts see it as zut.ScriptTypeError.
class VEL_EXPORT ScriptTypeException : public std::exception
{
public:
  explicit ScriptTypeException(const QString& message);
  const QString& getMessage() const { return _message; }
  const char* what() const noexcept override { return _what.c_str(); }

private:
  QString _message;
  std::string _what;
};

// What a script-visible object tells about one of its attributes.
struct VEL_EXPORT AttributeInfo
{
  QString name;
  QString type_name;
  QString description;
  bool read_only = false;

  bool operator==(const AttributeInfo& other) const
  {
    return name == other.name && type_name == other.type_name && description == other.description &&
           read_only == other.read_only;
  }
};

using AttributeInfos = QList<AttributeInfo>;

}  // namespace Vel
