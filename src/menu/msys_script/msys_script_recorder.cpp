#include "menu/msys_script/msys_script_recorder.h"

#include <algorithm>

#include "gapp/trait.h"
#include "menu/msys_script/msys_dialog_answers.h"
#include "menu/msys_script/msys_parameter_map.h"

namespace Vel::MSysScript {
namespace {

// The Python text of a value; false for a value that has none (a handle, an object).
bool literal(const QVariant& value, QString& text)
{
  try {
    text = writeLiteral(value);
    return true;
  } catch (const GApp::CommandError&) {
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
  // Showing the editor that records is no step of the recorded work.
  if (command.getName() == QLatin1String("sys.show_script_editor"))
    return;
  if (!command.getMetaInfo().isScriptable()) {
    _fault(
        QStringLiteral("The command \"%1\" cannot be run from scripts, so it is not recorded.").arg(command.getName()));
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
    lines << QStringLiteral("zut.answer_dialogs(%1)").arg(answers);
    _answers = QJsonArray();
  }
  if (!callLine(command, parameters, line, error)) {
    _fault(error);
    return;
  }
  lines << line;
  _lines(lines);
}

bool ScriptRecorder::callLine(const GApp::Command& command, const GApp::CommandParameters& parameters, QString& line,
                              QString& error)
{
  // In the order the command declares its arguments; the defaults go without saying.
  QStringList names;
  const GApp::CommandMetaInfo::ArgumentTypes arguments = command.getMetaInfo().getArgumentTypes();
  for (const GApp::CommandMetaInfo::Argument& argument : arguments)
    if (parameters.contains(argument.name) &&
        !(argument.default_value.isValid() &&
          sameValue(parameters.get(argument.name).getValue(), argument.default_value)))
      names << argument.name;
  for (const auto& [name, value] : parameters.values())
    if (std::none_of(arguments.begin(), arguments.end(), [&](const auto& a) { return a.name == name; }))
      names << name;
  QStringList written;
  for (const QString& name : names) {
    QString text;
    if (!literal(parameters.get(name).getValue(), text)) {
      error = QStringLiteral(
                  "The argument \"%1\" of \"%2\" has no form a script can write, so the command is not "
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
