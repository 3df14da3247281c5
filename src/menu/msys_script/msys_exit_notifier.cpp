#include "menu/msys_script/msys_exit_notifier.h"

#include "core/translate.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gapp/main_window.h"
#include "gedit/source_editor.h"
#include "gscript/gui_handler.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_dlg_script_editor.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

ExitNotifier& ExitNotifier::getInstance()
{
  static ExitNotifier instance;
  return instance;
}

bool ExitNotifier::confirmExit(bool silent)
{
  if (silent || !VelInit::isKioskMode())
    return true;
  const bool answer = GApp::askYesNo(
      translate("MSysScript_ExitNotifier_dlg", "Exit", "id=38261#title,kiosk"),
      translate("MSysScript_ExitNotifier_dlg", "Do you want to exit the application?", "id=38262#kiosk"), true);
  // The Escape that may have led here must not abort the next script.
  GScript::GUIHandler::getInstance()->resetEscape();
  return answer;
}

namespace {
EditorCommand* editorCommand()
{
  return dynamic_cast<EditorCommand*>(
      GApp::CommandContainer::getInstance().getCommand(QStringLiteral("sys.show_script_editor")));
}
}  // namespace

bool ExitNotifier::canExit()
{
  // A script running in the editor keeps the application alive.
  const EditorCommand* editor = editorCommand();
  return !(editor && editor->hasDialog() && editor->getDialog()->isBusy());
}

void ExitNotifier::prepareExit()
{
  EditorCommand* editor = editorCommand();
  if (!editor || !editor->hasDialog())
    return;
  ScriptEditorDialog* dialog = editor->getDialog();
  // Nobody was asked whether to save: the edited file stays as it is, and the changes wait in a
  // recovery file that opening the file again offers.
  ErrorLog log;
  if (!dialog->writeRecovery(log))
    GApp::ErrorDialog(QString::fromLatin1(ERR_SAVE_SCRIPT), log.getText());
  // A failed write was reported; the changes must not be asked about again on closing.
  dialog->getEditor()->document()->setModified(false);
  dialog->close();
  editor->destroyDialog();
}

}  // namespace Vel::MSysScript
