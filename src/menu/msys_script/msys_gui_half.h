#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>

#include <functional>

namespace Vel::GApp {
class Command;
class CommandParameters;
}
namespace Vel::GScript {
class ScriptDatabase;
}

namespace Vel::MSysScript {

// Whatever the module does with windows is in its GUI half, a library of its own that the
// program loads only when a window is first needed, so that a run that draws nothing never
// loads the widget libraries. The rest of the module reaches that half only through these
// functions, which it installs when it is loaded.
struct GuiHalf
{
  // The body of a command that works with windows (the dialog commands, the editor), by the
  // command's name; its result, or an invalid value for none.
  std::function<QVariant(const QString& command, const GApp::CommandParameters& parameters)> execute;
  // The script database changed: the editor's colouring learns the new command names.
  std::function<void(const GScript::ScriptDatabase* database)> database_changed;
  // Answers for the dialogs that follow (zut.answer_dialogs).
  std::function<void(const QVariantList& answers)> answer_dialogs;
};

void installGuiHalf(const GuiHalf& half);
// The GUI half, brought up first when it is not (throws ProgError where there can be no windows).
const GuiHalf& guiHalf();
// The GUI half if it is up; null otherwise, and nothing is loaded for it.
const GuiHalf* loadedGuiHalf();
// Runs the command's body in the GUI half (bringing it up) and keeps the result it gives.
void executeInGuiHalf(GApp::Command& command, const GApp::CommandParameters& parameters);

}  // namespace Vel::MSysScript
