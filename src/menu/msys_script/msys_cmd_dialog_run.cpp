#include "menu/msys_script/msys_cmd_dialog_run.h"

#include "gapp/interaction.h"
#include "menu/msys_script/msys_cmd_dialog.h"
#include "menu/msys_script/msys_dialog_handles.h"
#include "menu/msys_script/msys_dlg_user_defined.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

namespace {

// A dialog that waits for a person fails at once where nobody and nothing can answer it.
void requireAnswer(UserDefinedDialog* dialog)
{
  // Answers given for a run are used even where a person could answer.
  const UserDefinedDialog::Responder& responder = UserDefinedDialog::getResponder();
  if (responder && responder(dialog))
    return;
  if (GApp::isInteractive())
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

// A dialog that a command already waits for cannot be waited for twice.
UserDefinedDialog* notWaitedFor(UserDefinedDialog* dialog)
{
  if (dialog->isWaitedFor())
    failCommand(ERR_EXECUTE_SCRIPT,
                errorText("The dialog \"%1\" is already shown.").arg(dialog->windowTitle()));
  return dialog;
}

}  // namespace

QVariant runDialogCommand(const QString& name, const GApp::CommandParameters& parameters)
{
  if (name == QLatin1String("sys.create_user_defined_dialog")) {
    auto* dialog = new UserDefinedDialog(getArgument<QString>(parameters, QStringLiteral("content")));
    return QVariant::fromValue(makeDialogHandle(dialog->getId()));
  } else if (name == QLatin1String("sys.execute_user_defined_dialog")) {
    return runToEnd(new UserDefinedDialog(getArgument<QString>(parameters, QStringLiteral("content"))));
  } else if (name == QLatin1String("sys.show_user_defined_dialog")) {
    return runToEnd(notWaitedFor(dialogOf(parameters, "id=27662")));
  } else if (name == QLatin1String("sys.open_user_defined_dialog")) {
    UserDefinedDialog* dialog = notWaitedFor(dialogOf(parameters, "id=28565"));
    // A closed modeless dialog leaves the map; nothing else holds it.
    QObject::connect(dialog, &UserDefinedDialog::signalClosed, dialog, &QObject::deleteLater, Qt::UniqueConnection);
    dialog->openModeless();
  } else if (name == QLatin1String("sys.close_user_defined_dialog")) {
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
  return QVariant();
}

}  // namespace Vel::MSysScript
