#pragma once

#include <QVariant>
#include <pybind11/pybind11.h>

namespace Vel::GScript {

// Python objects as command arguments and command results as Python objects. None, bool, int,
// float, str, list, tuple and dict (with str keys) travel; anything else is refused with a
// TypeError that names the Python type.
QVariant toVariant(pybind11::handle object);
pybind11::object fromVariant(const QVariant& value);

}  // namespace Vel::GScript
