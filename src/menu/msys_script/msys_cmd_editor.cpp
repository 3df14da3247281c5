#include "menu/msys_script/msys_cmd_editor.h"

namespace Vel::MSysScript {

EditorCommand::EditorCommand()
    : MSysCommand(QStringLiteral("sys.show_script_editor"), {"MSysScript_cmd", "Edit Script", "id=25937"}, {},
                  {"MSysScript_menu", "Edit Script", "id=9985"})
{}

void EditorCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

}  // namespace Vel::MSysScript
