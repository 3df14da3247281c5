#include "gscript/python_values.h"

#include <pybind11/embed.h>

#include <QDate>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <algorithm>
#include <string>
#include <vector>

#include "core/color.h"
#include "core/script_type.h"
#include "gscript/python_interpreter.h"
#include "gapp/trait.h"

namespace py = pybind11;

namespace Vel::GScript {

namespace {

// Deeper values are refused before the conversion's own recursion can exhaust the stack; Python
// itself stops recursing at about this depth.
constexpr size_t MAX_DEPTH = 1000;

// `path` holds the containers being converted, outermost first: one that holds itself is found
// there, and its length is the depth.
QVariant convert(py::handle object, std::vector<PyObject*>& path)
{
  if (object.is_none())
    return QVariant();
  if (PyBool_Check(object.ptr()))
    return QVariant(object.cast<bool>());
  if (PyLong_Check(object.ptr())) {
    int overflow = 0;
    const long long value = PyLong_AsLongLongAndOverflow(object.ptr(), &overflow);
    if (overflow != 0)
      throw py::type_error("integer too large to pass to a command (more than 64 bits)");
    return QVariant(qlonglong(value));
  }
  if (PyFloat_Check(object.ptr()))
    return QVariant(PyFloat_AsDouble(object.ptr()));
  if (PyUnicode_Check(object.ptr()))
    return QVariant(QString::fromStdString(object.cast<std::string>()));
  const bool sequence = PyList_Check(object.ptr()) || PyTuple_Check(object.ptr());
  if (sequence || PyDict_Check(object.ptr())) {
    if (std::find(path.begin(), path.end(), object.ptr()) != path.end())
      throw py::value_error("cannot pass a " + std::string(Py_TYPE(object.ptr())->tp_name) +
                            " that contains itself to a command");
    if (path.size() >= MAX_DEPTH)
      throw py::value_error("cannot pass a value nested deeper than " + std::to_string(MAX_DEPTH) +
                            " levels to a command");
    path.push_back(object.ptr());
    QVariant result;
    if (sequence) {
      QVariantList list;
      for (py::handle element : object)
        list << convert(element, path);
      result = list;
    } else {
      QVariantMap map;
      for (auto item : object.cast<py::dict>()) {
        if (!PyUnicode_Check(item.first.ptr()))
          throw py::type_error("dictionary keys passed to a command must be strings");
        map.insert(QString::fromStdString(item.first.cast<std::string>()), convert(item.second, path));
      }
      result = map;
    }
    path.pop_back();
    return result;
  }
  if (py::isinstance<Vel::Color>(object))
    return QVariant::fromValue(object.cast<Vel::Color>());
  if (const ScriptObjectPtr held = scriptObjectOf(object))
    return QVariant::fromValue(held);
  const py::object date_type = py::module_::import("datetime").attr("date");
  if (PyObject_IsInstance(object.ptr(), date_type.ptr()) == 1)
    return QDate(object.attr("year").cast<int>(), object.attr("month").cast<int>(), object.attr("day").cast<int>());
  throw py::type_error("cannot pass an object of type '" + std::string(Py_TYPE(object.ptr())->tp_name) +
                       "' to a command");
}

}  // namespace

QVariant toVariant(py::handle object)
{
  std::vector<PyObject*> path;
  return convert(object, path);
}

py::object fromVariant(const QVariant& value)
{
  if (!value.isValid() || value.isNull())
    return py::none();
  if (value.typeId() == Trait::fileTypeId())
    return py::str(value.value<Parse::File>().getName().toStdString());
  if (value.typeId() == qMetaTypeId<Vel::Color>()) {
    py::module_::import("zut");  // registers zut.Color
    return py::cast(value.value<Vel::Color>());
  }
  if (value.typeId() == scriptObjectTypeId())
    return wrapScriptObject(value.value<ScriptObjectPtr>());
  if (value.typeId() == PythonCallable::typeId())
    return py::reinterpret_borrow<py::object>(static_cast<PyObject*>(value.value<PythonCallable>().get()));
  if (value.typeId() == QMetaType::QDate) {
    // An impossible date (April 31) has no Python form.
    const QDate date = value.toDate();
    if (!date.isValid())
      return py::none();
    return py::module_::import("datetime").attr("date")(date.year(), date.month(), date.day());
  }
  switch (value.typeId()) {
    case QMetaType::Bool: return py::bool_(value.toBool());
    case QMetaType::Int:
    case QMetaType::LongLong: return py::int_(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong: return py::int_(value.toULongLong());
    case QMetaType::Double:
    case QMetaType::Float: return py::float_(value.toDouble());
    case QMetaType::QString: return py::str(value.toString().toStdString());
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
      py::list list;
      for (const QVariant& element : value.toList())
        list.append(fromVariant(element));
      return std::move(list);
    }
    case QMetaType::QVariantMap: {
      py::dict dict;
      const QVariantMap map = value.toMap();
      for (auto it = map.begin(); it != map.end(); ++it)
        dict[py::str(it.key().toStdString())] = fromVariant(it.value());
      return std::move(dict);
    }
    default: return py::str(value.toString().toStdString());
  }
}

}  // namespace Vel::GScript
