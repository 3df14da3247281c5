#pragma once

#include <QVariantMap>

#include "core/script_type.h"

// What scripts hold of user-defined dialogs: the dialog, its elements, its control row and
// buttons, its timer, and the result of a closed dialog. Handles name what they reach (the
// dialog's id, an element's name); a handle of a dialog that is gone fails with the dialog
// commands' message.
namespace Vel::MSysScript {

class UserDefinedDialog;

// The handle of a dialog by its id, for scripts.
ScriptObjectPtr makeDialogHandle(int id);
// The handle that a change of the dialog reports to the change handler: an element, a button
// of the control row, the timer, or the word "initialize".
QVariant makeSender(UserDefinedDialog* dialog, class DialogWidget* element, const QString& event);
// The values of a closed dialog by element name, and whether it was accepted.
ScriptObjectPtr makeDialogResult(const QVariant& result, const QVariantMap& values);
// The id a dialog handle names; 0 for anything else.
int dialogIdOf(const QVariant& value);

}  // namespace Vel::MSysScript
