#include "gapp/main_window.h"

#include <QPointer>

#include <algorithm>

#include "core/prog_error.h"
#include "gapp/app_status_manager.h"
#include "gapp/interaction.h"

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
  std::vector<QPointer<QObject>> buttons;
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

// Buttons are reached through the meta-object system: this library does not link the widgets.
class AbortButtonListener : public QObject
{
  Q_OBJECT
public:
  using QObject::QObject;
public Q_SLOTS:
  void clicked() { MainWindow::requestAbort(); }
};

SpecialMenuProvider::~SpecialMenuProvider() = default;

bool MainWindow::executeMenu(Command* command, const CommandParameters& parameters)
{
  VEL_ASSERT(command);
  try {
    command->run(parameters, true);
    return true;
  } catch (const CommandError& error) {
    GApp::ErrorDialog(error.getCode(), error.getLog().getText());
  } catch (const ProgError& error) {
    GApp::ErrorDialog(QString(), QStringLiteral("Internal error: %1").arg(QString::fromUtf8(error.what())));
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

void MainWindow::addAbortButton(QObject* button)
{
  VEL_ASSERT(button);
  AbortState& state = abortState();
  state.prune();
  state.buttons.emplace_back(button);
  button->setProperty("enabled", state.script_running);
  QObject::connect(button, SIGNAL(clicked()), new AbortButtonListener(button), SLOT(clicked()));
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
    button->setProperty("enabled", running);
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

#include "main_window.moc"
