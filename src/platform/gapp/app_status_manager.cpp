#include "gapp/app_status_manager.h"

#include <algorithm>

#include "core/prog_error.h"

namespace Vel::GApp {
namespace {

struct State
{
  std::vector<ExitNotifier*> notifiers;
  std::vector<Command*> active;
};

State& state()
{
  static State instance;
  return instance;
}

}  // namespace

ExitNotifier::~ExitNotifier() = default;

void AppStatusManager::registerExitNotifier(ExitNotifier* notifier)
{
  auto& notifiers = state().notifiers;
  if (std::find(notifiers.begin(), notifiers.end(), notifier) == notifiers.end())
    notifiers.push_back(notifier);
}

void AppStatusManager::unregisterExitNotifier(ExitNotifier* notifier)
{
  auto& notifiers = state().notifiers;
  notifiers.erase(std::remove(notifiers.begin(), notifiers.end(), notifier), notifiers.end());
}

const std::vector<ExitNotifier*>& AppStatusManager::getExitNotifiers()
{
  return state().notifiers;
}

bool AppStatusManager::requestExit(bool silent)
{
  const auto notifiers = state().notifiers;  // a notifier may unregister itself
  for (ExitNotifier* notifier : notifiers)
    if (!notifier->confirmExit(silent) || !notifier->canExit())
      return false;
  for (ExitNotifier* notifier : notifiers)
    notifier->prepareExit();
  return true;
}

void AppStatusManager::pushActiveMenuCommand(Command* command)
{
  state().active.push_back(command);
}

void AppStatusManager::popActiveMenuCommand()
{
  if (state().active.empty())
    throw ProgError(QStringLiteral("popActiveMenuCommand"), QStringLiteral("app_status_manager"),
                    QStringLiteral("No active menu command"));
  state().active.pop_back();
}

Command* AppStatusManager::getActiveMenuCommand()
{
  return state().active.empty() ? nullptr : state().active.back();
}

size_t AppStatusManager::getActiveMenuCommandDepth()
{
  return state().active.size();
}

}  // namespace Vel::GApp
