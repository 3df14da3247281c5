#include "menu/msys_script/msys_cmd_editor.h"

#include "menu/msys_script/msys_gui_half.h"

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

void EditorCommand::execute(const GApp::CommandParameters& parameters)
{
  executeInGuiHalf(*this, parameters);
}

}  // namespace Vel::MSysScript
