#pragma once

#include <QString>
#include <QStringList>

#include <functional>

#include "core/vel_export.h"

namespace Vel::GApp {

// Before the application object exists: without a display, Qt's offscreen platform, so that
// everything that needs no person works on a server; and a private runtime folder where the
// session has none (Qt warns on every start otherwise).
VEL_EXPORT void prepareGuiEnvironment();

// The windowing part of the application (Qt's GUI application object, the widget libraries and
// the plug-ins' windows) is brought up only when something needs it: a run that draws nothing
// never loads it. A program that starts without it installs a loader; a program that creates its
// GUI application itself (as the tests do) needs none.
namespace Gui {
// Brings the GUI up; throws ProgError when it cannot.
using Loader = std::function<void()>;
VEL_EXPORT void setLoader(Loader loader);
// Whether the GUI is up: the loader has run, or, without a loader, a GUI application exists.
VEL_EXPORT bool isUp();
// Brings the GUI up unless it is; throws ProgError when there is no way to.
VEL_EXPORT void ensureUp();

// What only the widget library can do, installed by it when it is loaded.
struct Services
{
  std::function<void(const QString& code, const QString& headline, const QString& text)> show_error;
  std::function<bool(const QString& title, const QString& question)> ask_yes_no;
  // Takes the application's override cursors away; the function returned puts them back.
  std::function<std::function<void()>()> take_cursors;
  std::function<QStringList(int question, const QString& title, const QString& filter)> ask_files;
};
VEL_EXPORT void setServices(const Services& services);
VEL_EXPORT const Services& services();
}  // namespace Gui

// Whether a person can answer a dialog: a GUI application on a real display platform, or, before
// the GUI is up, a display that it would open on.
VEL_EXPORT bool isInteractive();

// Shows an error with its code, the code's registered message and the detail text; without a
// code, the text alone (a slip a person can correct at once). Without a person to see it, it goes
// to standard error.
VEL_EXPORT void ErrorDialog(const QString& code, const QString& text);

// Asks a yes/no question; without a person to answer, the answer is `fallback`.
VEL_EXPORT bool askYesNo(const QString& title, const QString& question, bool fallback);

// Asks a person for a file to open, several to open, or one to save; empty when the person
// cancels or nobody is there to ask.
enum class FileQuestion
{
  Open,
  OpenMany,
  Save
};
VEL_EXPORT QStringList askFileNames(FileQuestion question, const QString& title, const QString& filter);

// Replaces what ErrorDialog and askYesNo do (tests observe them through this).
using ErrorDialogHandler = std::function<void(const QString& code, const QString& text)>;
using QuestionHandler = std::function<bool(const QString& title, const QString& question)>;
VEL_EXPORT void setErrorDialogHandler(ErrorDialogHandler handler);
VEL_EXPORT void setQuestionHandler(QuestionHandler handler);

}  // namespace Vel::GApp
