#include "core/script_type.h"

namespace Vel {

ScriptTypeException::ScriptTypeException(const QString& message) : _message(message), _what(message.toStdString()) {}

ScriptObject::~ScriptObject() = default;

int scriptObjectTypeId()
{
  static const int id = qRegisterMetaType<ScriptObjectPtr>("Vel::ScriptObjectPtr");
  return id;
}

}  // namespace Vel
