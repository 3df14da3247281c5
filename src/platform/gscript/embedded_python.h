#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>

namespace Vel::GScript {

// One of the package's own Python sources, with its code as the build's interpreter compiled
// and marshalled it.
struct EmbeddedPython
{
  const char* name;
  const char* source;
  const char* code;
  std::size_t code_size;
};

// Ends with an entry whose name is null.
extern const EmbeddedPython EMBEDDED_PYTHON[];
// The build interpreter's major and minor version, as sys.hexversion >> 16.
extern const unsigned EMBEDDED_PYTHON_VERSION;

// Runs the source `name` with `scope` as its globals: its compiled code when the running
// interpreter reads that code, else its text.
void runEmbeddedPython(const char* name, pybind11::object scope);

}  // namespace Vel::GScript
