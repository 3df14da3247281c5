#include "menu/msys_script/msys_exit_notifier.h"

#include <memory>

#include "core/translate.h"
#include "gapp/command_container.h"
#include "gapp/main_window.h"
#include "gscript/gui_handler.h"
#include "gtools/error_dialog.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_script_database.h"

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
  const bool answer = GTools::askYesNo(
      translate("MSysScript_ExitNotifier_dlg", "Exit", "id=38261#title,kiosk"),
      translate("MSysScript_ExitNotifier_dlg", "Do you want to exit the application?", "id=38262#kiosk"), true);
  // The Escape that may have led here must not abort the next script.
  GScript::GUIHandler::getInstance()->resetEscape();
  return answer;
}

bool ExitNotifier::canExit()
{
  // A busy editor dialog (a script running in it) keeps the application alive; there is no
  // editor dialog to be busy yet.
  return true;
}

void ExitNotifier::prepareExit()
{
  auto* editor = dynamic_cast<EditorCommand*>(
      GApp::CommandContainer::getInstance().getCommand(QStringLiteral("sys.show_script_editor")));
  if (!editor || !editor->hasDialog())
    return;
}

}  // namespace Vel::MSysScript
