#include "menu/msys_script/msys_cmd_dialog.h"

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

namespace {
Meta::Argument contentArgument()
{
  return {QStringLiteral("content"), Meta::TYPE_STRING, QStringLiteral("the dialog definition text"), true};
}
Meta::Argument dialogArgument()
{
  return {QStringLiteral("dialog"), Meta::TYPE_OBJECT, QStringLiteral("a dialog handle"), true};
}
}  // namespace

CreateDialogCommand::CreateDialogCommand()
    : MSysCommand(QStringLiteral("sys.create_user_defined_dialog"),
                  {"MSysScript_cmd", "Create User-Defined Dialog", "id=27659"}, {contentArgument()})
{}

void CreateDialogCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

ExecuteDialogCommand::ExecuteDialogCommand()
    : MSysCommand(QStringLiteral("sys.execute_user_defined_dialog"),
                  {"MSysScript_cmd", "Executing user-defined dialog", "id=27660"}, {contentArgument()})
{}

void ExecuteDialogCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

ShowDialogCommand::ShowDialogCommand()
    : MSysCommand(QStringLiteral("sys.show_user_defined_dialog"),
                  {"MSysScript_cmd", "Show User-Defined Dialog", "id=27661"}, {dialogArgument()})
{}

void ShowDialogCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

OpenDialogCommand::OpenDialogCommand()
    : MSysCommand(QStringLiteral("sys.open_user_defined_dialog"),
                  {"MSysScript_cmd", "Open User-Defined Dialog", "id=28564"}, {dialogArgument()})
{}

void OpenDialogCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

CloseDialogCommand::CloseDialogCommand()
    : MSysCommand(QStringLiteral("sys.close_user_defined_dialog"),
                  {"MSysScript_cmd", "Close User-Defined Dialog", "id=28566"},
                  {dialogArgument(),
                   {QStringLiteral("result"), Meta::TYPE_ANY,
                    QStringLiteral("optional, the value that the closed dialog returns")}})
{}

void CloseDialogCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

}  // namespace Vel::MSysScript
