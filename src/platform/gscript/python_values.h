#pragma once

#include <pybind11/pybind11.h>

#include <QVariant>

#include <memory>

#include "core/script_type.h"
#include "gapp/command.h"
#include "core/vel_export.h"

namespace Vel::GScript {

// Python objects as command arguments and command results as Python objects. None, bool, int,
// float, str, list, tuple, dict (with str keys), zut.Color and datetime.date travel; anything
// else is refused with a TypeError that names the Python type, an integer beyond 64 bits with a
// TypeError, and a container that holds itself or is nested over 1,000 deep with a ValueError.
VEL_EXPORT QVariant toVariant(pybind11::handle object);
VEL_EXPORT pybind11::object fromVariant(const QVariant& value);
// Adds zut.Color to the package.
void registerColorType(pybind11::module_& module);
// Application objects as scripts hold them: an instance of the class the object's type name
// gives ("zut.dialog.DialogHandle"), and back (null for any other Python object).
pybind11::object wrapScriptObject(const ScriptObjectPtr& object);
ScriptObjectPtr scriptObjectOf(pybind11::handle object);
void registerScriptObjects(pybind11::module_& module);
// The host's refusals as the script's exceptions: zut.CommandError (KeyboardInterrupt for an
// aborted run) and zut.ScriptTypeError.
[[noreturn]] void raiseCommandError(const GApp::CommandError& error);
[[noreturn]] void raiseScriptTypeError(const ScriptTypeException& error);
// Makes the class of a type name known to scripts before any object of it exists
// (isinstance(x, zut.dialog.DialogHandle)); the class appears when the package is imported.
VEL_EXPORT void declareScriptObjectType(const QString& type_name);

}  // namespace Vel::GScript
