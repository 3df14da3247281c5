#include "gscript/macro_script.h"

#include <pybind11/embed.h>

#include "gscript/parser.h"
#include "gscript/python_interpreter.h"

namespace py = pybind11;

namespace Vel::GScript {

ScriptElement::~ScriptElement() = default;

bool MacroScript::parse(const QString& text, ErrorLog& log, ScriptElements& elements)
{
  PythonInterpreter::initialize();
  try {
    const py::object classify = py::module_::import("zut").attr("_script_elements");
    const py::list found = classify(
        text.toStdString(), py::make_tuple(Parser::SCRIPT_PREFIX, Parser::INTERACTIVE_PREFIX, Parser::GUI_PREFIX));
    ScriptElements result;
    for (py::handle entry : found) {
      const py::tuple item = entry.cast<py::tuple>();
      const std::string name = item[0].cast<std::string>();
      std::unique_ptr<ScriptElement> element;
      if (name.empty()) {
        element = std::make_unique<ScriptElement>();
      } else {
        auto command = std::make_unique<ScriptCommand>();
        command->name = QString::fromStdString(name);
        element = std::move(command);
      }
      element->first_line = item[1].cast<int>();
      element->last_line = item[2].cast<int>();
      result.push_back(std::move(element));
    }
    elements = std::move(result);
    return true;
  } catch (const py::error_already_set& error) {
    log.addLine(QString::fromUtf8(error.what()));
    return false;
  }
}

}  // namespace Vel::GScript
