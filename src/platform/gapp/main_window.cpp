#include "gapp/main_window.h"

#include <QAbstractButton>
#include <QMenu>
#include <QPointer>

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

struct AbortState
{
  std::vector<QPointer<QAbstractButton>> buttons;
  bool script_running = false;
  int requests = 0;
  std::function<void()> handler;

  // Buttons destroyed with their dialog leave the list here rather than through a signal, so
  // that a button outliving nothing costs nothing.
  void prune()
  {
    buttons.erase(std::remove_if(buttons.begin(), buttons.end(), [](const auto& b) { return b.isNull(); }),
                  buttons.end());
  }
};

AbortState& abortState()
{
  static AbortState state;
  return state;
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

void MainWindow::addAbortButton(QAbstractButton* button)
{
  VEL_ASSERT(button);
  AbortState& state = abortState();
  state.prune();
  state.buttons.emplace_back(button);
  button->setEnabled(state.script_running);
  QObject::connect(button, &QAbstractButton::clicked, button, [] { requestAbort(); });
}

int MainWindow::getAbortButtonCount()
{
  abortState().prune();
  return static_cast<int>(abortState().buttons.size());
}

void MainWindow::setScriptRunning(bool running)
{
  AbortState& state = abortState();
  state.script_running = running;
  state.prune();
  for (const auto& button : state.buttons)
    button->setEnabled(running);
}

bool MainWindow::isScriptRunning()
{
  return abortState().script_running;
}

void MainWindow::requestAbort()
{
  AbortState& state = abortState();
  ++state.requests;
  if (state.handler)
    state.handler();
}

int MainWindow::getAbortRequestCount()
{
  return abortState().requests;
}

void MainWindow::setAbortHandler(std::function<void()> handler)
{
  abortState().handler = std::move(handler);
}

}  // namespace GApp
}  // namespace Vel
