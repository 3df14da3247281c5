#include "menu/msys_script/msys_cmd_execute.h"

#include <QDir>
#include <QFile>

#include "core/translate.h"
#include "gapp/app_status_manager.h"
#include "gapp/interaction.h"
#include "gscript/execute.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

namespace {

const QString ARG_FILE = QStringLiteral("file");
const QString ARG_CODE = QStringLiteral("code");
const QString ARG_PARAMETERS = QStringLiteral("parameters");
const QString ARG_ARGUMENTS = QStringLiteral("arguments");
const QString ARG_COLLECT_STDOUT = QStringLiteral("collect_stdout");
const QString ARG_COLLECT_STDERR = QStringLiteral("collect_stderr");

Meta::Argument parametersArgument()
{
  return {ARG_PARAMETERS, Meta::TYPE_PARAMETER_MAP, QStringLiteral("parameters")};
}
Meta::Argument stdoutArgument()
{
  return {ARG_COLLECT_STDOUT, Meta::TYPE_BOOLEAN, QStringLiteral("collect and return stdout output"), false, false};
}
Meta::Argument stderrArgument()
{
  return {ARG_COLLECT_STDERR, Meta::TYPE_BOOLEAN, QStringLiteral("collect and return stderr output"), false, false};
}

// The active menu command is popped on every path.
class ActiveMenuCommand
{
public:
  explicit ActiveMenuCommand(GApp::Command* command) { GApp::AppStatusManager::pushActiveMenuCommand(command); }
  ~ActiveMenuCommand() { GApp::AppStatusManager::popActiveMenuCommand(); }
};

// Runs prepared Python as `command` and fails with the run's code and log.
void runText(GApp::Command& command, const GApp::CommandParameters& parameters, GScript::Execute& run,
             const QString& file_name, QString code, ErrorLog& log)
{
  const bool collect = applyRunArguments(parameters, run);
  bool success = false;
  {
    ActiveMenuCommand active(&command);
    if (!file_name.isEmpty())
      run.setFileName(file_name);
    success = run.execute(0, GScript::Execute::FLAG_MAIN, code, log);
  }
  if (collect)
    command.setResult(run.getCollectedOutput());
  if (!success)
    throw GApp::CommandError(code, log);
}

}  // namespace

bool applyRunArguments(const GApp::CommandParameters& parameters, GScript::Execute& run)
{
  if (parameters.contains(ARG_PARAMETERS))
    run.setParameters(getArgument<QVariantMap>(parameters, ARG_PARAMETERS));
  const bool has_stdout = parameters.contains(ARG_COLLECT_STDOUT);
  const bool has_stderr = parameters.contains(ARG_COLLECT_STDERR);
  if (has_stdout)
    run.setCollectStdout(getArgument<bool>(parameters, ARG_COLLECT_STDOUT));
  if (has_stderr)
    run.setCollectStderr(getArgument<bool>(parameters, ARG_COLLECT_STDOUT));
  return has_stdout || has_stderr;
}

// ---------------------------------------------------------------------------------------------

ExecuteScriptCommand::ExecuteScriptCommand()
    : MSysCommand(
          QStringLiteral("sys.execute_script"), {"MSysScript_cmd", "Execute Script", "id=25938"},
          {{ARG_FILE, Meta::TYPE_FILE, QStringLiteral("file name"), true},
           parametersArgument(),
           stdoutArgument(),
           stderrArgument(),
           {ARG_ARGUMENTS, Meta::TYPE_LIST, QStringLiteral("arguments of the script, after its name in sys.argv")}},
          {"MSysScript_menu", "Execute Script", "id=9986"})
{}

bool ExecuteScriptCommand::readScriptFile(const QString& path, QByteArray& source, ErrorLog& log)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
    return false;
  }
  if (!file.isReadable() || file.bytesAvailable() <= 0) {
    log.addLine(errorText("Unable to access file: %1", "id=9989").arg(QDir::toNativeSeparators(path)));
    return false;
  }
  source = file.readAll();
  if (!source.endsWith('\n'))
    source += '\n';
  return GScript::Execute::checkSourceEncoding(source, path, log);
}

void ExecuteScriptCommand::execute(const GApp::CommandParameters& parameters)
{
  const QString path = getArgument<Parse::File>(parameters, ARG_FILE).getName();
  ErrorLog log;
  QByteArray source;
  if (!readScriptFile(path, source, log))
    throw GApp::CommandError(QString::fromLatin1(ERR_LOAD_SCRIPT), log);
  GScript::Execute run = GScript::Execute::fromSource(source);
  if (parameters.contains(ARG_ARGUMENTS))
    run.setArguments(getArgument<QStringList>(parameters, ARG_ARGUMENTS));
  runText(*this, parameters, run, path, QString::fromLatin1(ERR_LOAD_SCRIPT), log);
}

bool ExecuteScriptCommand::prepareInteractive(GApp::CommandParameters& parameters)
{
  return askForFile(parameters, ARG_FILE, getTitle(),
                    translate("MSysScript_Execute_filedir", "Scripts (*.py)", "id=9988"), false);
}

// ---------------------------------------------------------------------------------------------

ExecutePythonCodeCommand::ExecutePythonCodeCommand()
    : MSysCommand(QStringLiteral("sys.execute_python_code"), {"MSysScript_cmd", "execute python code", nullptr},
                  {{ARG_CODE, Meta::TYPE_STRING, QStringLiteral("code"), true},
                   parametersArgument(),
                   stdoutArgument(),
                   stderrArgument()})
{}

void ExecutePythonCodeCommand::execute(const GApp::CommandParameters& parameters)
{
  GScript::Execute run(getArgument<QString>(parameters, ARG_CODE));
  ErrorLog log;
  runText(*this, parameters, run, QString(), QString(), log);
}

}  // namespace Vel::MSysScript
