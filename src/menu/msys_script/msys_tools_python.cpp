#include "menu/msys_script/msys_tools_python.h"

#include <QStringList>

#include <Python.h>
#include <climits>

#include "core/prog_error.h"
#include "menu/msys_script/msys_value_limits.h"

namespace Vel::MSysScript {

namespace {

// Python's own references, released when the holder goes.
struct Reference
{
  explicit Reference(PyObject* object) : object(object) {}
  ~Reference() { Py_XDECREF(object); }
  Reference(const Reference&) = delete;
  Reference& operator=(const Reference&) = delete;
  PyObject* object;
};

// A reference of our own to a borrowed object, for as long as the script's code may run.
PyObject* strong(PyObject* borrowed)
{
  Py_XINCREF(borrowed);
  return borrowed;
}

// An int that fits; false (the overflow cleared) for one that does not.
bool intValue(PyObject* object, int& value)
{
  const long long number = PyLong_AsLongLong(object);
  if (number == -1 && PyErr_Occurred()) {
    PyErr_Clear();
    return false;
  }
  if (number < INT_MIN || number > INT_MAX)
    return false;
  value = static_cast<int>(number);
  return true;
}

ValueLimits* fromInteger(PyObject* object)
{
  int digits = 0;
  if (!intValue(object, digits))
    return nullptr;
  return new NumericValueLimits(false, 0.0, 0.0, digits);
}

// (lower, upper) or (lower, upper, digits); ints are not taken for the bounds, on purpose.
ValueLimits* fromTuple(PyObject* object)
{
  const Py_ssize_t size = PyTuple_Size(object);
  if (size != 2 && size != 3)
    return nullptr;
  PyObject* lower = PyTuple_GetItem(object, 0);
  PyObject* upper = PyTuple_GetItem(object, 1);
  if (!PyFloat_Check(lower) || !PyFloat_Check(upper))
    return nullptr;
  int digits = 2;
  if (size == 3) {
    PyObject* third = PyTuple_GetItem(object, 2);
    if (!PyLong_Check(third) || !intValue(third, digits))
      return nullptr;
  }
  return new NumericValueLimits(true, PyFloat_AsDouble(lower), PyFloat_AsDouble(upper), digits);
}

// Taken only when every entry of the dictionary is one of the keys with the right type.
ValueLimits* fromNumericDictionary(PyObject* object)
{
  bool limited = false;
  double lower = 0.0;
  double upper = 0.0;
  int digits = 2;
  Py_ssize_t taken = 0;
  if (PyObject* value = PyDict_GetItemString(object, "limited"); value && PyBool_Check(value)) {
    limited = value == Py_True;
    ++taken;
  }
  if (PyObject* value = PyDict_GetItemString(object, "lower"); value && PyFloat_Check(value)) {
    lower = PyFloat_AsDouble(value);
    ++taken;
  }
  if (PyObject* value = PyDict_GetItemString(object, "upper"); value && PyFloat_Check(value)) {
    upper = PyFloat_AsDouble(value);
    ++taken;
  }
  if (PyObject* value = PyDict_GetItemString(object, "digits"); value && PyLong_Check(value) && intValue(value, digits))
    ++taken;
  if (taken != PyDict_Size(object))
    return nullptr;
  return new NumericValueLimits(limited, lower, upper, digits);
}

bool textList(PyObject* value, QStringList& texts)
{
  if (!PyList_Check(value))
    return false;
  for (Py_ssize_t i = 0; i < PyList_Size(value); ++i) {
    const Reference item(strong(PyList_GetItem(value, i)));
    texts << pythonObjectText(item.object);
  }
  return true;
}

// Both "descriptions" and "extensions" at once say nothing clear: neither is taken then.
ValueLimits* fromListDictionary(PyObject* object)
{
  bool limited = false;
  Py_ssize_t taken = 0;
  if (PyObject* value = PyDict_GetItemString(object, "limited"); value && PyBool_Check(value)) {
    limited = value == Py_True;
    ++taken;
  }
  QStringList descriptions;
  QStringList extensions;
  // Held, not borrowed: an item's str() is the script's code and may change the dictionary.
  const Reference descriptions_value(strong(PyDict_GetItemString(object, "descriptions")));
  const Reference extensions_value(strong(PyDict_GetItemString(object, "extensions")));
  const bool has_descriptions = descriptions_value.object && textList(descriptions_value.object, descriptions);
  const bool has_extensions = extensions_value.object && textList(extensions_value.object, extensions);
  taken += (has_descriptions ? 1 : 0) + (has_extensions ? 1 : 0);
  if (taken != PyDict_Size(object) || has_descriptions == has_extensions)
    return nullptr;
  if (has_descriptions)
    return new ListValueLimits(limited, descriptions);
  return new FileTypeValueLimits(limited, extensions);
}

}  // namespace

QString pythonObjectText(PyObject* object)
{
  const Reference holder(PyObject_Str(object));
  PyObject* str = holder.object;
  if (!str) {
    PyErr_Clear();
    return QString();
  }
  VEL_ASSERT(PyUnicode_Check(str));
  Py_UCS4* characters = PyUnicode_AsUCS4Copy(str);
  if (!characters) {
    PyErr_Clear();
    return QString();
  }
  const QString text = QString::fromUcs4(reinterpret_cast<const char32_t*>(characters),
                                         static_cast<qsizetype>(PyUnicode_GetLength(str)));
  PyMem_Free(characters);
  return text;
}

ValueLimits* createValueLimits(PyObject* object)
{
  if (PyLong_Check(object))
    return fromInteger(object);
  if (PyTuple_Check(object))
    return fromTuple(object);
  if (object == Py_None)
    return new EmptyValueLimits;
  if (PyDict_Check(object)) {
    if (ValueLimits* limits = fromNumericDictionary(object))
      return limits;
    return fromListDictionary(object);
  }
  return nullptr;
}

}  // namespace Vel::MSysScript
