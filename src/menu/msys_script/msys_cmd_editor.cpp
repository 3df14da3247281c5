#include "menu/msys_script/msys_cmd_editor.h"

#include "gscript/script_database.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_script_database.h"

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

EditorCommand::EditorCommand()
    : MSysCommand(QStringLiteral("sys.show_script_editor"), {"MSysScript_cmd", "Edit Script", "id=25937"},
                  {{QStringLiteral("file"), Meta::TYPE_STRING,
                    QStringLiteral("script file to edit; without it, the current script")}},
                  {"MSysScript_menu", "Edit Script", "id=9985"})
{}

EditorCommand::~EditorCommand()
{
  destroyDialog();
}

void EditorCommand::destroyDialog()
{
  delete _dialog.data();
}

void EditorCommand::execute(const GApp::CommandParameters& parameters)
{
  if (!_dialog)
    _dialog = new ScriptEditorDialog;
  ErrorLog log;
  if (parameters.contains(QStringLiteral("file"))) {
    if (!_dialog->openFile(getArgument<QString>(parameters, QStringLiteral("file")), log))
      throw GApp::CommandError(QString::fromLatin1(ERR_LOAD_SCRIPT), log);
  } else if (!_dialog->isRecording() && !_dialog->isModified() && !_dialog->isBusy()) {
    // An editor that records, runs or holds unsaved changes is shown as it is.
    DatabaseLock database;
    const GScript::Script* current = database ? database->getCurrentScript() : nullptr;
    if (current && !_dialog->openDatabaseScript(current->getFileName(), log))
      throw GApp::CommandError(QString::fromLatin1(ERR_LOAD_SCRIPT), log);
  }
  _dialog->show();
  _dialog->raise();
  _dialog->activateWindow();
}

}  // namespace Vel::MSysScript
