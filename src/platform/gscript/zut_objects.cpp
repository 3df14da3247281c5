// Application objects in scripts: one Python class per type name ("zut.dialog.DialogHandle"),
// whose instances answer attributes, printing, help and equality through the object.

#include <pybind11/embed.h>

#include <QString>
#include <QStringList>

#include "gapp/command.h"
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

const char* const HANDLE_CLASS = R"(
class _Handle:
    """An object of the application; its attributes are listed in its help."""

    __slots__ = ("_core",)

    def __getattr__(self, name):
        if name.startswith("__"):
            raise AttributeError(name)
        return _object_get(self._core, name)

    def __setattr__(self, name, value):
        _object_set(self._core, name, value)

    def __repr__(self):
        return _object_repr(self._core)

    def __eq__(self, other):
        if not isinstance(other, _Handle):
            return NotImplemented
        return _object_identity(self._core) == _object_identity(other._core)

    def __hash__(self):
        return hash(_object_identity(self._core))

    def __dir__(self):
        return _object_names(self._core)

    @property
    def __doc__(self):
        return _object_doc(self._core)


_handle_classes = {}


def _handle_class(type_name):
    import sys, types
    cls = _handle_classes.get(type_name)
    if cls is None:
        module_name, _, name = type_name.rpartition(".")
        module = sys.modules.get(module_name)
        if module is None:
            module = types.ModuleType(module_name)
            sys.modules[module_name] = module
            parent_name, _, child = module_name.rpartition(".")
            # While the package itself is being made it is not in sys.modules yet.
            parent = _package if parent_name == _package.__name__ else sys.modules.get(parent_name)
            if parent is not None:
                setattr(parent, child, module)
        # A class made by type() gets a __doc__ of None of its own, which would hide the handle's.
        cls = type(name, (_Handle,), {"__slots__": (), "__module__": module_name, "__qualname__": name,
                                      "__doc__": _Handle.__dict__["__doc__"]})
        setattr(module, name, cls)
        _handle_classes[type_name] = cls
    return cls


_declared = []


def __getattr__(name):
    # The classes of declared types (zut.dialog.DialogHandle) are made when first asked for:
    # a script that uses none pays nothing for them.
    import sys
    module_name = _package.__name__ + "." + name
    for type_name in [t for t in _declared if t.rpartition(".")[0] == module_name]:
        _handle_class(type_name)
    if module_name in sys.modules:
        return sys.modules[module_name]
    raise AttributeError(f"module {_package.__name__!r} has no attribute {name!r}")


def _wrap(core, type_name):
    handle = object.__new__(_handle_class(type_name))
    object.__setattr__(handle, "_core", core)
    return handle
)";

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
  py::exec(HANDLE_CLASS, module.attr("__dict__"));
  for (const QString& name : declaredTypes())
    module.attr("_declared").attr("append")(name.toStdString());
}

}  // namespace Vel::GScript
