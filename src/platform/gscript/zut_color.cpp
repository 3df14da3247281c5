// zut.Color: the application's colour as scripts hold it.

#include <pybind11/operators.h>

#include "core/color.h"
#include "gscript/python_values.h"

namespace py = pybind11;

namespace Vel::GScript {
namespace {

uint8_t channel(int value, const char* name)
{
  if (value < 0 || value > 255)
    throw py::value_error(std::string(name) + " must be between 0 and 255, not " + std::to_string(value));
  return static_cast<uint8_t>(value);
}

}  // namespace

void registerColorType(py::module_& module)
{
  Color::registerMetaType();
  py::class_<Color>(module, "Color", "A colour of four 8-bit channels: red, green, blue and alpha (255: opaque).")
      .def(py::init([](int red, int green, int blue, int alpha) {
             return Color(channel(red, "red"), channel(green, "green"), channel(blue, "blue"), channel(alpha, "alpha"));
           }),
           py::arg("red") = 0, py::arg("green") = 0, py::arg("blue") = 0, py::arg("alpha") = 255)
      .def_property_readonly("red", &Color::red)
      .def_property_readonly("green", &Color::green)
      .def_property_readonly("blue", &Color::blue)
      .def_property_readonly("alpha", &Color::alpha)
      .def(py::self == py::self)
      .def(py::self != py::self)
      .def("__hash__", [](const Color& c) { return (c.red() << 24) | (c.green() << 16) | (c.blue() << 8) | c.alpha(); })
      .def("__repr__", [](const Color& c) { return "zut.Color ('" + c.toString().toStdString() + "')"; })
      .def("__str__", [](const Color& c) { return c.toString().toStdString(); });
}

}  // namespace Vel::GScript
