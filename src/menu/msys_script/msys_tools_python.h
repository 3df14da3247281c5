#pragma once

#include <QString>

// Python's object type, without pulling the interpreter's headers into every user.
struct _object;
using PyObject = _object;

namespace Vel::MSysScript {

class ValueLimits;

// The text of any Python object: its str(). Empty when str() itself raises (the error is
// cleared: a broken __str__ of a script's object is not worth failing the caller for).
QString pythonObjectText(PyObject* object);

// The value limits that a script describes with a plain Python object:
//   n                         numbers, not limited, n decimal digits
//   (lower, upper)            numbers limited to a range (floats, not ints)
//   (lower, upper, digits)    the same with decimal digits
//   None                      no limits
//   {"limited", "lower", "upper", "digits"}        numbers, any subset of the keys
//   {"limited", "descriptions": [...]}             the entries of a list
//   {"limited", "extensions": [...]}               file name extensions
// A new object owned by the caller, or null when the object matches none of these forms. The
// caller holds the interpreter's lock.
ValueLimits* createValueLimits(PyObject* object);

}  // namespace Vel::MSysScript
