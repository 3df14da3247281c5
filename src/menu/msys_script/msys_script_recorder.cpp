#include "menu/msys_script/msys_script_recorder.h"

#include <pybind11/embed.h>

#include <algorithm>

#include "gapp/trait.h"
#include "gscript/python_interpreter.h"
#include "gscript/python_values.h"
#include "menu/msys_script/msys_dialog_answers.h"

namespace py = pybind11;

namespace Vel::MSysScript {
namespace {

const QString ANSWER_COMMAND = QStringLiteral("sys.answer_user_defined_dialogs");

// The Python text of a value, only where the text reads back as the same value: a handle or an
// object that has no literal form cannot be recorded.
bool literal(const QVariant& value, QString& text)
{
  GScript::PythonInterpreter::initialize();
  try {
    const py::object object = GScript::fromVariant(value);
    const py::str written = py::repr(object);
    const py::object again = py::module_::import("ast").attr("literal_eval")(written);
    if (!again.equal(object))
      return false;
    text = QString::fromStdString(written.cast<std::string>());
    return true;
  } catch (const py::error_already_set&) {
    return false;
  }
}

}  // namespace

ScriptRecorder::ScriptRecorder(LineSink lines, FaultSink fault) : _lines(std::move(lines)), _fault(std::move(fault))
{
  GApp::Command::setRecorder(this);
  DialogAnswers::listen([this](const QJsonObject& answer) { _answers.append(answer); });
}

ScriptRecorder::~ScriptRecorder()
{
  DialogAnswers::listen(nullptr);
  if (GApp::Command::getRecorder() == this)
    GApp::Command::setRecorder(nullptr);
}

void ScriptRecorder::commandStarted(const GApp::Command&)
{
  _answers = QJsonArray();
}

void ScriptRecorder::commandRun(const GApp::Command& command, const GApp::CommandParameters& parameters)
{
  if (!command.getMetaInfo().isScriptable()) {
    _fault(QStringLiteral("The command \"%1\" cannot be run from scripts, so it is not recorded.")
               .arg(command.getName()));
    return;
  }
  QStringList lines;
  QString line;
  QString error;
  if (!_answers.isEmpty()) {
    QString answers;
    if (!literal(QVariant(_answers.toVariantList()), answers)) {
      _fault(QStringLiteral("The dialog answers given to \"%1\" cannot be written as a script value, so the "
                            "command is not recorded.")
                 .arg(command.getName()));
      return;
    }
    lines << QStringLiteral("zut.script.%1(answers=%2)").arg(ANSWER_COMMAND, answers);
    _answers = QJsonArray();
  }
  if (!callLine(command, parameters, line, error)) {
    _fault(error);
    return;
  }
  lines << line;
  _lines(lines);
}

bool ScriptRecorder::callLine(const GApp::Command& command, const GApp::CommandParameters& parameters,
                              QString& line, QString& error)
{
  // In the order the command declares its arguments; the defaults go without saying.
  QStringList names;
  const GApp::CommandMetaInfo::ArgumentTypes arguments = command.getMetaInfo().getArgumentTypes();
  for (const GApp::CommandMetaInfo::Argument& argument : arguments)
    if (parameters.contains(argument.name) &&
        !(argument.default_value.isValid() && parameters.get(argument.name).getValue() == argument.default_value))
      names << argument.name;
  for (const auto& [name, value] : parameters.values())
    if (std::none_of(arguments.begin(), arguments.end(), [&](const auto& a) { return a.name == name; }))
      names << name;
  QStringList written;
  for (const QString& name : names) {
    QString text;
    if (!literal(parameters.get(name).getValue(), text)) {
      error = QStringLiteral("The argument \"%1\" of \"%2\" has no form a script can write, so the command is not "
                             "recorded.")
                  .arg(name, command.getName());
      return false;
    }
    written << QStringLiteral("%1=%2").arg(name, text);
  }
  line = QStringLiteral("zut.script.%1(%2)").arg(command.getName(), written.join(QStringLiteral(", ")));
  return true;
}

}  // namespace Vel::MSysScript
