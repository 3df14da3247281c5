#include "menu/msys_script/msys_cmd_dialog.h"

#include "gscript/python_values.h"
#include "menu/msys_script/msys_gui_half.h"

namespace Vel::MSysScript {

// The commands are declared here; the dialogs they work on, and so their bodies, are in the
// module's GUI half.

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

void declareHandleTypes()
{
  // Elements are seen as their own classes (zut.dialog.NumberWidget); these are the rest.
  for (const char* name : {"Control", "ControlGroup", "Timer", "DialogHandle", "DialogResult"})
    GScript::declareScriptObjectType(QStringLiteral("zut.dialog.") + QLatin1String(name));
}

int dialogHandleTypeId()
{
  static const int id = qRegisterMetaType<DialogHandle>("Vel::MSysScript::DialogHandle");
  return id;
}

CreateDialogCommand::CreateDialogCommand()
    : MSysCommand(QStringLiteral("sys.create_user_defined_dialog"),
                  {"MSysScript_cmd", "Create User-Defined Dialog", "id=27659"}, {contentArgument()})
{}

void CreateDialogCommand::execute(const GApp::CommandParameters& parameters)
{
  executeInGuiHalf(*this, parameters);
}

ExecuteDialogCommand::ExecuteDialogCommand()
    : MSysCommand(QStringLiteral("sys.execute_user_defined_dialog"),
                  {"MSysScript_cmd", "Executing user-defined dialog", "id=27660"}, {contentArgument()})
{}

void ExecuteDialogCommand::execute(const GApp::CommandParameters& parameters)
{
  executeInGuiHalf(*this, parameters);
}

ShowDialogCommand::ShowDialogCommand()
    : MSysCommand(QStringLiteral("sys.show_user_defined_dialog"),
                  {"MSysScript_cmd", "Show User-Defined Dialog", "id=27661"}, {dialogArgument()})
{
  dialogHandleTypeId();
}

void ShowDialogCommand::execute(const GApp::CommandParameters& parameters)
{
  executeInGuiHalf(*this, parameters);
}

OpenDialogCommand::OpenDialogCommand()
    : MSysCommand(QStringLiteral("sys.open_user_defined_dialog"),
                  {"MSysScript_cmd", "Open User-Defined Dialog", "id=28564"}, {dialogArgument()})
{
  dialogHandleTypeId();
}

void OpenDialogCommand::execute(const GApp::CommandParameters& parameters)
{
  executeInGuiHalf(*this, parameters);
}

CloseDialogCommand::CloseDialogCommand()
    : MSysCommand(QStringLiteral("sys.close_user_defined_dialog"),
                  {"MSysScript_cmd", "Close User-Defined Dialog", "id=28566"},
                  {dialogArgument(),
                   {QStringLiteral("result"), Meta::TYPE_ANY,
                    QStringLiteral("optional, the value that the closed dialog returns")}})
{
  dialogHandleTypeId();
}

void CloseDialogCommand::execute(const GApp::CommandParameters& parameters)
{
  executeInGuiHalf(*this, parameters);
}

}  // namespace Vel::MSysScript
