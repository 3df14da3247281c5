#include "gscript/python_values.h"

#include <pybind11/embed.h>

#include <QDate>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include "core/color.h"
#include "gapp/trait.h"

namespace py = pybind11;

namespace Vel::GScript {

QVariant toVariant(py::handle object)
{
  if (object.is_none())
    return QVariant();
  if (PyBool_Check(object.ptr()))
    return QVariant(object.cast<bool>());
  if (PyLong_Check(object.ptr())) {
    int overflow = 0;
    const long long value = PyLong_AsLongLongAndOverflow(object.ptr(), &overflow);
    if (overflow != 0)
      throw py::type_error("integer too large to pass to a command");
    return QVariant(qlonglong(value));
  }
  if (PyFloat_Check(object.ptr()))
    return QVariant(PyFloat_AsDouble(object.ptr()));
  if (PyUnicode_Check(object.ptr()))
    return QVariant(QString::fromStdString(object.cast<std::string>()));
  if (PyList_Check(object.ptr()) || PyTuple_Check(object.ptr())) {
    QVariantList list;
    for (py::handle element : object)
      list << toVariant(element);
    return list;
  }
  if (PyDict_Check(object.ptr())) {
    QVariantMap map;
    for (auto item : object.cast<py::dict>()) {
      if (!PyUnicode_Check(item.first.ptr()))
        throw py::type_error("dictionary keys passed to a command must be strings");
      map.insert(QString::fromStdString(item.first.cast<std::string>()), toVariant(item.second));
    }
    return map;
  }
  if (py::isinstance<Vel::Color>(object))
    return QVariant::fromValue(object.cast<Vel::Color>());
  const py::object date_type = py::module_::import("datetime").attr("date");
  if (PyObject_IsInstance(object.ptr(), date_type.ptr()) == 1)
    return QDate(object.attr("year").cast<int>(), object.attr("month").cast<int>(), object.attr("day").cast<int>());
  throw py::type_error("cannot pass an object of type '" + std::string(Py_TYPE(object.ptr())->tp_name) +
                       "' to a command");
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
