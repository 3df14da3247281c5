#include "gapp/main_window.h"

#include <QMenu>

#include <algorithm>

#include "core/prog_error.h"
#include "gapp/app_status_manager.h"
#include "gtools/error_dialog.h"

namespace Vel {
namespace {
bool kiosk_mode = qEnvironmentVariableIntValue("ZUT_KIOSK_MODE") != 0;
}

bool VelInit::isKioskMode()
{
  return kiosk_mode;
}
void VelInit::setKioskMode(bool kiosk)
{
  kiosk_mode = kiosk;
}

namespace GApp {
namespace {
std::vector<SpecialMenuProvider*>& providers()
{
  static std::vector<SpecialMenuProvider*> list;
  return list;
}
}  // namespace

SpecialMenuProvider::~SpecialMenuProvider() = default;

bool MainWindow::executeMenu(Command* command, const CommandParameters& parameters)
{
  VEL_ASSERT(command);
  try {
    command->run(parameters, true);
    return true;
  } catch (const CommandError& error) {
    GTools::ErrorDialog(error.getCode(), error.getLog().getText());
  } catch (const ProgError& error) {
    GTools::ErrorDialog(QString(), QStringLiteral("Internal error: %1").arg(QString::fromUtf8(error.what())));
  }
  return false;
}

void MainWindow::registerSpecialMenuProvider(SpecialMenuProvider* provider)
{
  if (std::find(providers().begin(), providers().end(), provider) == providers().end())
    providers().push_back(provider);
}

void MainWindow::unregisterSpecialMenuProvider(SpecialMenuProvider* provider)
{
  providers().erase(std::remove(providers().begin(), providers().end(), provider), providers().end());
}

const std::vector<SpecialMenuProvider*>& MainWindow::getSpecialMenuProviders()
{
  return providers();
}

void MainWindow::fillSpecialMenu(const QString& menu_id, QMenu* menu)
{
  for (const SpecialMenuProvider* provider : providers())
    if (provider->getMenuId() == menu_id)
      provider->fillMenu(menu);
}

}  // namespace GApp
}  // namespace Vel
