#pragma once

#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariant>
#include <QString>

#include <exception>
#include <memory>
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

// An object of the application that a script holds and uses through its attributes (a dialog,
// an element of it). Scripts see it as an instance of the class its type name gives.
class VEL_EXPORT ScriptObject
{
public:
  virtual ~ScriptObject();
  // The class scripts see, with its module: "zut.dialog.DialogHandle".
  virtual QString getTypeName() const = 0;
  // Sets `found` to false for an attribute the object does not have. A refusal is thrown as
  // the command error or script type error it is.
  virtual QVariant getAttribute(const QString& name, bool* found) const = 0;
  virtual void setAttribute(const QString& name, const QVariant& value) = 0;
  // Attributes that take the script's object itself (held as a GScript::PythonCallable) rather
  // than its converted value: value limits, whose Python form decides what they mean.
  virtual bool takesScriptObject(const QString& /*name*/) const { return false; }
  virtual QStringList getAttributeNames() const = 0;
  virtual QString getRepr() const = 0;
  virtual QString getDoc() const = 0;
  // Objects of the same identity are equal: two handles of one thing.
  virtual QString getIdentity() const = 0;
};

using ScriptObjectPtr = std::shared_ptr<ScriptObject>;

// The meta-type of ScriptObjectPtr in a QVariant, registered on first use.
VEL_EXPORT int scriptObjectTypeId();

}  // namespace Vel

Q_DECLARE_METATYPE(Vel::ScriptObjectPtr)
