#include "menu/msys_script/msys_cmd_dialog.h"

#include "menu/msys_script/msys_dialog_handles.h"
#include "menu/msys_script/msys_dlg_user_defined.h"
#include "menu/msys_script/msys_error_codes.h"
#include "gtools/error_dialog.h"

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

// A dialog that waits for a person fails at once where nobody and nothing can answer it.
void requireAnswer(UserDefinedDialog* dialog)
{
  // Answers given for a run are used even where a person could answer.
  const UserDefinedDialog::Responder& responder = UserDefinedDialog::getResponder();
  if (responder && responder(dialog))
    return;
  if (GTools::isInteractive())
    return;
  failCommand(ERR_EXECUTE_SCRIPT,
              errorText("The dialog \"%1\" waits for a person, but there is no display and no answer for it.")
                  .arg(dialog->windowTitle()));
}

QVariant resultOf(const UserDefinedDialog& dialog)
{
  QVariantMap values;
  // Elements that only show or arrange (labels, separators, spacers) have no value to return.
  for (const DialogDefinition::Cell* cell : dialog.getElementCells())
    if (const QVariant value = cell->widget->getValue(); value.isValid())
      values.insert(cell->widget->getName(), value);
  return QVariant::fromValue(makeDialogResult(dialog.getResult(), values));
}

UserDefinedDialog* dialogOf(const GApp::CommandParameters& parameters, const char* key)
{
  const QVariant value = parameters.contains(QStringLiteral("dialog"))
                             ? parameters.get(QStringLiteral("dialog")).getValue()
                             : QVariant();
  const int id = value.typeId() == dialogHandleTypeId() ? value.value<DialogHandle>().id : dialogIdOf(value);
  if (id == 0 && !value.isValid())
    getArgument<QString>(parameters, QStringLiteral("dialog"));  // the missing argument's message
  UserDefinedDialog* dialog = UserDefinedDialog::find(id);
  if (!dialog)
    failCommand(ERR_EXECUTE_SCRIPT, errorText("A dialog with this ID does not exist.", key));
  return dialog;
}

// Runs a dialog until it is closed; the closed dialog leaves the map.
QVariant runToEnd(UserDefinedDialog* dialog)
{
  try {
    requireAnswer(dialog);
  } catch (...) {
    dialog->deleteLater();
    throw;
  }
  dialog->run();
  const std::exception_ptr fault = dialog->takeFault();
  const QVariant result = fault ? QVariant() : resultOf(*dialog);
  dialog->deleteLater();
  if (fault)
    std::rethrow_exception(fault);
  return result;
}

}  // namespace

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
  auto* dialog = new UserDefinedDialog(getArgument<QString>(parameters, QStringLiteral("content")));
  setResult(QVariant::fromValue(makeDialogHandle(dialog->getId())));
}

ExecuteDialogCommand::ExecuteDialogCommand()
    : MSysCommand(QStringLiteral("sys.execute_user_defined_dialog"),
                  {"MSysScript_cmd", "Executing user-defined dialog", "id=27660"}, {contentArgument()})
{}

void ExecuteDialogCommand::execute(const GApp::CommandParameters& parameters)
{
  setResult(runToEnd(new UserDefinedDialog(getArgument<QString>(parameters, QStringLiteral("content")))));
}

ShowDialogCommand::ShowDialogCommand()
    : MSysCommand(QStringLiteral("sys.show_user_defined_dialog"),
                  {"MSysScript_cmd", "Show User-Defined Dialog", "id=27661"}, {dialogArgument()})
{
  dialogHandleTypeId();
}

// A dialog that a command already waits for cannot be waited for twice.
UserDefinedDialog* notWaitedFor(UserDefinedDialog* dialog)
{
  if (dialog->isWaitedFor())
    failCommand(ERR_EXECUTE_SCRIPT,
                errorText("The dialog \"%1\" is already shown.").arg(dialog->windowTitle()));
  return dialog;
}

void ShowDialogCommand::execute(const GApp::CommandParameters& parameters)
{
  setResult(runToEnd(notWaitedFor(dialogOf(parameters, "id=27662"))));
}

OpenDialogCommand::OpenDialogCommand()
    : MSysCommand(QStringLiteral("sys.open_user_defined_dialog"),
                  {"MSysScript_cmd", "Open User-Defined Dialog", "id=28564"}, {dialogArgument()})
{
  dialogHandleTypeId();
}

void OpenDialogCommand::execute(const GApp::CommandParameters& parameters)
{
  UserDefinedDialog* dialog = notWaitedFor(dialogOf(parameters, "id=28565"));
  // A closed modeless dialog leaves the map; nothing else holds it.
  QObject::connect(dialog, &UserDefinedDialog::signalClosed, dialog, &QObject::deleteLater, Qt::UniqueConnection);
  dialog->openModeless();
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
  UserDefinedDialog* dialog = dialogOf(parameters, "id=28569");
  if (!dialog->canCloseNow())
    failCommand(ERR_EXECUTE_SCRIPT, errorText("Presently, you cannot close the dialog. Either sub-dialogs are still "
                                              "open or other menu functions are active.",
                                              "id=28568"));
  std::optional<QVariant> result;
  if (parameters.contains(QStringLiteral("result")))
    result = parameters.get(QStringLiteral("result")).getValue();
  const bool waited_for = dialog->isWaitedFor();
  dialog->closeWithResult(result);
  // A waiting command lets its dialog go itself; nothing else holds one that was only made.
  if (!waited_for)
    dialog->deleteLater();
}

}  // namespace Vel::MSysScript
