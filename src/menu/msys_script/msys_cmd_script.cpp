#include "menu/msys_script/msys_cmd_script.h"

#include <algorithm>
#include <map>
#include <optional>

#include "core/prog_error.h"
#include "core/translate.h"
#include "gapp/app_status_manager.h"
#include "gapp/command_container.h"
#include "gscript/execute.h"
#include "gscript/gui_handler.h"
#include "gscript/python_interpreter.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_cmd_execute.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_script_database.h"

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

namespace {

const QString PREFIX = QString::fromLatin1(GApp::SCRIPT_COMMAND_PREFIX);

QString checkedName(const QString& name)
{
  if (!name.startsWith(PREFIX))
    throw ProgError(QStringLiteral("ScriptCommand"), QStringLiteral("msys_cmd_script"),
                    QStringLiteral("Invalid command prefix"));
  return name;
}

// Whatever way the run ends, the running-script stack and the active menu command shrink.
class RunningScript
{
public:
  RunningScript(const QString& file_name, GApp::Command* command) : _file_name(file_name)
  {
    PythonScriptDatabase::scriptStarted(file_name);
    GApp::AppStatusManager::pushActiveMenuCommand(command);
  }
  ~RunningScript()
  {
    GApp::AppStatusManager::popActiveMenuCommand();
    PythonScriptDatabase::scriptTerminated(_file_name);
  }

private:
  QString _file_name;
};

// The refusal of a too deep nesting, reported once: each level that unwinds passes it on rather
// than adding its own traceback of the same error.
std::optional<ErrorLog>& recursionReport()
{
  static std::optional<ErrorLog> report;
  return report;
}

}  // namespace

ScriptCommand::ScriptCommand(const QString& name) : GApp::Command(checkedName(name))
{
  getMetaInfo().setArgumentTypes(
      {{QStringLiteral("parameters"), Meta::TYPE_PARAMETER_MAP, QStringLiteral("script parameter map")},
       {QStringLiteral("collect_stdout"), Meta::TYPE_BOOLEAN, QStringLiteral("collect and return stdout output")},
       {QStringLiteral("collect_stderr"), Meta::TYPE_BOOLEAN, QStringLiteral("collect and return stderr output")}});
  getMetaInfo().setFlags(false, false, true);
  GApp::CommandContainer::getInstance().registerCommand(this);
}

void ScriptCommand::updateFromScript(const GScript::Script& script)
{
  _script_file_name = script.getFileName();
  _qualified_name = script.getQualifiedName();
  _show_in_menu = script.getShowInMenu();
  getMetaInfo().setReplaces(script.getMetadata().replaces);
  // The level shows in the title only for scripts with an icon of their own.
  QString pattern = translate("MSysScript_MenuHandler_other", "%1 (script)", "id=10047");
  _config_level = script.getConfigLevel();
  _icon_file = script.hasIcon() ? script.getIconPath() : QString();
  if (!_icon_file.isEmpty()) {
    if (_config_level == GScript::LEVEL_SYSTEM)
      pattern = translate("MSysScript_MenuHandler_other", "%1 (system script)", "id=10048");
    else if (_config_level == GScript::LEVEL_PUBLIC)
      pattern = translate("MSysScript_MenuHandler_other", "%1 (public script)", "id=30298");
  }
  _menu_title = pattern.arg(script.getDisplayName());
}

void ScriptCommand::update(const GScript::ScriptDatabase& database)
{
  GApp::CommandContainer& container = GApp::CommandContainer::getInstance();
  std::map<QString, const GScript::Script*> wanted;
  for (const GScript::Script* script : database.getAllScripts())
    wanted[script->getCommandName()] = script;

  // Walk the script commands, which are contiguous in the name order; deleting one withdraws
  // it from the container, so the next position is taken first.
  for (auto it = container.lowerBound(PREFIX); it != container.end() && it->first.startsWith(PREFIX);) {
    auto* command = dynamic_cast<ScriptCommand*>(it->second);
    ++it;
    if (!command)
      continue;
    const auto found = wanted.find(command->getName());
    if (found != wanted.end()) {
      command->updateFromScript(*found->second);
      wanted.erase(found);
    } else if (std::find(PythonScriptDatabase::begin(), PythonScriptDatabase::end(), command->getScriptFileName()) ==
               PythonScriptDatabase::end()) {
      // A command whose script is running stays until a later update: it is still executing.
      delete command;
    }
  }
  for (const auto& entry : wanted)
    (new ScriptCommand(entry.first))->updateFromScript(*entry.second);

  // Group commands: one per folder, holding the folder's scripts that show in menus.
  std::map<QString, QStringList> groups;
  for (const GScript::ScriptFolder* folder : database.getAllFolders()) {
    QStringList members;
    for (const GScript::Script* script : folder->getScripts())
      if (script->getShowInMenu())
        members << script->getCommandName();
    // Folders whose names differ only in characters a command name cannot hold share a group.
    groups[GScript::ScriptDatabase::makeGroupCommandName(folder->getQualifiedName())] << members;
  }
  const QString group_prefix = GScript::ScriptDatabase::makeGroupCommandName(QString());
  for (auto it = container.lowerBound(group_prefix); it != container.end() && it->first.startsWith(group_prefix);) {
    auto* group = dynamic_cast<GApp::ToolBarGroupCommand*>(it->second);
    ++it;
    if (group && !groups.count(group->getName()))
      delete group;
  }
  for (const auto& entry : groups) {
    auto* group = dynamic_cast<GApp::ToolBarGroupCommand*>(container.getCommand(entry.first));
    if (!group)
      group = new GApp::ToolBarGroupCommand(entry.first);
    group->setCommands(entry.second);
  }
  container.updateAllActions();
}

void ScriptCommand::execute(const GApp::CommandParameters& parameters)
{
  ErrorLog log;

  auto* editor = dynamic_cast<EditorCommand*>(
      GApp::CommandContainer::getInstance().getCommand(QStringLiteral("sys.show_script_editor")));
  if (editor && editor->isRecording()) {
    DatabaseLock database(true);
    const GScript::Script* current = database ? database->getCurrentScript() : nullptr;
    if (current && current->getFileName() == _script_file_name)
      failCommand(
          ERR_EXECUTE_SCRIPT,
          errorText("A script is called which is currently being recorded: '%1'", "id=10050").arg(_qualified_name));
  }

  if (GScript::PythonInterpreter::getInterpreterStack().size() > size_t(MAX_RECURSION_DEPTH)) {
    ErrorLog report(translate("MSysScript_err",
                              "Maximum recursion depth of %1 iterations exceeded. Please use python functions for "
                              "true recursive code",
                              "id=10051")
                        .arg(MAX_RECURSION_DEPTH));
    QStringList chain(PythonScriptDatabase::begin(), PythonScriptDatabase::end());
    chain << _script_file_name;
    report.addLine(QStringLiteral("Script calls: %1").arg(chain.join(QStringLiteral(" -> "))));
    recursionReport() = report;
    failCommand(ERR_RECURSION_DEPTH, report);
  }

  DatabaseLock database;
  QByteArray source;
  ErrorLog load_log;
  if (database) {
    if (GScript::Script* loaded = database->createLoadedScript(_script_file_name, load_log)) {
      source = loaded->getSource();
      delete loaded;
    }
  }
  if (source.isEmpty()) {
    log.addLine(errorText("No script found for command '%1'", "id=10052").arg(getName()));
    log.append(load_log);
    failCommand(ERR_EXECUTE_SCRIPT, log);
  }
  // Compiled from its bytes, as python3 would: a declared encoding applies, and text that is
  // not in its encoding fails with its line instead of running with replaced characters.
  if (!source.endsWith('\n'))
    source += '\n';
  if (!GScript::Execute::checkSourceEncoding(source, _script_file_name, log))
    failCommand(ERR_LOAD_SCRIPT, log);

  GScript::Execute run = GScript::Execute::fromSource(source);
  const bool collect = applyRunArguments(parameters, run);
  QString code = QString::fromLatin1(ERR_EXECUTE_SCRIPT);
  bool success = false;
  {
    RunningScript running(_script_file_name, this);
    GScript::CursorDisabler cursor;
    // Tracebacks name the script as the database knows it, wherever its level lies on disk;
    // its __file__ stays the file on disk.
    run.setFileName(database->getScript(_script_file_name)->getPath());
    run.setCodeName(_script_file_name);
    success = run.execute(0, GScript::Execute::FLAG_MAIN, code, log);
  }
  if (collect)
    setResult(run.getCollectedOutput());
  const bool outermost = PythonScriptDatabase::begin() == PythonScriptDatabase::end();
  if (!success && code == QLatin1String(ERR_RECURSION_DEPTH) && recursionReport())
    log = *recursionReport();
  if (outermost)
    recursionReport().reset();
  if (!success)
    throw GApp::CommandError(code, log);
}

}  // namespace Vel::MSysScript
