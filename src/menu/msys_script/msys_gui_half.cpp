#include "menu/msys_script/msys_gui_half.h"

#include "core/prog_error.h"
#include "gapp/command.h"
#include "gapp/interaction.h"

namespace Vel::MSysScript {
namespace {
GuiHalf& installed()
{
  static GuiHalf half;
  return half;
}
}  // namespace

void installGuiHalf(const GuiHalf& half)
{
  installed() = half;
}

const GuiHalf& guiHalf()
{
  GApp::Gui::ensureUp();
  if (!installed().execute)
    throw ProgError(QStringLiteral("guiHalf"), QStringLiteral("msys_gui_half"),
                    QStringLiteral("the GUI is up, but the scripting module's windows were not loaded"));
  return installed();
}

const GuiHalf* loadedGuiHalf()
{
  return GApp::Gui::isUp() && installed().execute ? &installed() : nullptr;
}

void executeInGuiHalf(GApp::Command& command, const GApp::CommandParameters& parameters)
{
  const QVariant result = guiHalf().execute(command.getName(), parameters);
  if (result.isValid())
    command.setResult(result);
}

}  // namespace Vel::MSysScript
