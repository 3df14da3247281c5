// Application objects in scripts: one Python class per type name ("zut.dialog.DialogHandle"),
// whose instances answer attributes, printing, help and equality through the object.

#include <pybind11/embed.h>

#include <QString>
#include <QStringList>

#include "gapp/command.h"
#include "gscript/embedded_python.h"
#include "gscript/python_interpreter.h"
#include "gscript/python_values.h"

namespace py = pybind11;

namespace Vel::GScript {

namespace {

struct Core
{
  ScriptObjectPtr object;
};

// The object's refusals as the script's exceptions.
template <typename Body>
auto guarded(Body body) -> decltype(body())
{
  try {
    return body();
  } catch (const GApp::CommandError& error) {
    raiseCommandError(error);
  } catch (const ScriptTypeException& error) {
    raiseScriptTypeError(error);
  }
}

py::object get(const Core& core, const std::string& name)
{
  return guarded([&] {
    bool found = false;
    const QVariant value = core.object->getAttribute(QString::fromStdString(name), &found);
    if (!found)
      throw py::attribute_error("'" + core.object->getTypeName().toStdString() + "' object has no attribute '" +
                                name + "'");
    return fromVariant(value);
  });
}

void set(const Core& core, const std::string& name, const py::object& value)
{
  // A function is kept as it is (a change handler), and so is any object for an attribute that
  // reads the object itself; other values travel as command values do.
  const bool kept = guarded([&] { return core.object->takesScriptObject(QString::fromStdString(name)); }) ||
                    (PyCallable_Check(value.ptr()) && !PyType_Check(value.ptr()));
  const QVariant converted = kept
                                 ? QVariant::fromValue(PythonCallable(value.ptr()))
                                 : toVariant(value);
  guarded([&] { core.object->setAttribute(QString::fromStdString(name), converted); });
}

QStringList& declaredTypes()
{
  static QStringList names;
  return names;
}

}  // namespace

void declareScriptObjectType(const QString& type_name)
{
  if (declaredTypes().contains(type_name))
    return;
  declaredTypes() << type_name;
  // Already imported: the package learns of it now, else when it is made.
  if (PythonInterpreter::isInitialized() && PySys_GetObject("modules") &&
      PyDict_GetItemString(PySys_GetObject("modules"), "zut"))
    py::module_::import("zut").attr("_declared").attr("append")(type_name.toStdString());
}

py::object wrapScriptObject(const ScriptObjectPtr& object)
{
  if (!object)
    return py::none();
  const py::module_ zut = py::module_::import("zut");
  return zut.attr("_wrap")(Core{object}, object->getTypeName().toStdString());
}

ScriptObjectPtr scriptObjectOf(py::handle object)
{
  const py::object handle_class = py::module_::import("zut").attr("_Handle");
  if (PyObject_IsInstance(object.ptr(), handle_class.ptr()) != 1)
    return nullptr;
  return py::cast<const Core&>(object.attr("_core")).object;
}

void registerScriptObjects(py::module_& module)
{
  scriptObjectTypeId();
  PythonCallable::typeId();
  py::class_<Core>(module, "_ObjectCore");
  module.def("_object_get", &get);
  module.def("_object_set", &set);
  module.def("_object_repr", [](const Core& core) { return core.object->getRepr().toStdString(); });
  module.def("_object_doc", [](const Core& core) { return core.object->getDoc().toStdString(); });
  module.def("_object_identity", [](const Core& core) { return core.object->getIdentity().toStdString(); });
  module.def("_object_names", [](const Core& core) {
    py::list names;
    for (const QString& name : core.object->getAttributeNames())
      names.append(name.toStdString());
    return names;
  });
  module.attr("_package") = module;
  runEmbeddedPython("handle", module.attr("__dict__"));
  for (const QString& name : declaredTypes())
    module.attr("_declared").attr("append")(name.toStdString());
}

}  // namespace Vel::GScript
