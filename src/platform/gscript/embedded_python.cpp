#include "gscript/embedded_python.h"

#include <cstring>
#include <marshal.h>
#include <stdexcept>
#include <string>

namespace py = pybind11;

namespace Vel::GScript {

void runEmbeddedPython(const char* name, py::object scope)
{
  const EmbeddedPython* entry = EMBEDDED_PYTHON;
  while (entry->name && std::strcmp(entry->name, name) != 0)
    ++entry;
  if (!entry->name)
    throw std::logic_error(std::string("no embedded Python source ") + name);

  PyObject* code = nullptr;
  // Marshalled code is read only by the major and minor version that wrote it.
  if ((unsigned(Py_Version) >> 16) == EMBEDDED_PYTHON_VERSION) {
    code = PyMarshal_ReadObjectFromString(entry->code, Py_ssize_t(entry->code_size));
    if (!code)
      PyErr_Clear();
  }
  if (!code)
    code = Py_CompileString(entry->source, "<string>", Py_file_input);
  if (!code)
    throw py::error_already_set();
  const py::object compiled = py::reinterpret_steal<py::object>(code);
  if (!scope.contains("__builtins__"))
    scope["__builtins__"] = PyEval_GetBuiltins();
  PyObject* result = PyEval_EvalCode(compiled.ptr(), scope.ptr(), scope.ptr());
  if (!result)
    throw py::error_already_set();
  Py_DECREF(result);
}

}  // namespace Vel::GScript
