#pragma once

#include <QString>

#include <functional>

#include "core/vel_export.h"

namespace Vel::GTools {

// Before the application object exists: without a display, Qt's offscreen platform, so that
// everything that needs no person works on a server; and a private runtime folder where the
// session has none (Qt warns on every start otherwise).
VEL_EXPORT void prepareGuiEnvironment();

// Whether a person can answer a dialog: a GUI application on a real display platform.
VEL_EXPORT bool isInteractive();

// Shows an error with its code, the code's registered message and the detail text; without a
// code, the text alone (a slip a person can correct at once). Without a person to see it, it goes
// to standard error.
VEL_EXPORT void ErrorDialog(const QString& code, const QString& text);

// Asks a yes/no question; without a person to answer, the answer is `fallback`.
VEL_EXPORT bool askYesNo(const QString& title, const QString& question, bool fallback);

// Replaces what ErrorDialog and askYesNo do (tests observe them through this).
using ErrorDialogHandler = std::function<void(const QString& code, const QString& text)>;
using QuestionHandler = std::function<bool(const QString& title, const QString& question)>;
VEL_EXPORT void setErrorDialogHandler(ErrorDialogHandler handler);
VEL_EXPORT void setQuestionHandler(QuestionHandler handler);

}  // namespace Vel::GTools
