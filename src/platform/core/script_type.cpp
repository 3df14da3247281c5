#include "core/script_type.h"

namespace Vel {

ScriptTypeException::ScriptTypeException(const QString& message) : _message(message), _what(message.toStdString()) {}

}  // namespace Vel
