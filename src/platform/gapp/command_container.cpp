#include "gapp/command_container.h"

#include <algorithm>

#include "core/prog_error.h"
#include "gapp/command.h"

namespace Vel::GApp {

CommandContainer& CommandContainer::getInstance()
{
  // Never destroyed: commands come from plug-ins that may be gone by static destruction.
  static CommandContainer* instance = new CommandContainer;
  return *instance;
}

void CommandContainer::registerCommand(Command* command)
{
  VEL_ASSERT(command);
  const auto found = _commands.find(command->getName());
  if (found != _commands.end()) {
    if (found->second == command)
      return;
    throw ProgError(QStringLiteral("registerCommand"), QStringLiteral("command_container"),
                    QStringLiteral("Command already registered: %1").arg(command->getName()));
  }
  _commands.emplace(command->getName(), command);
  _sequence.emplace(command, _next_sequence++);
  ++_generation;
}

void CommandContainer::unregisterCommand(Command* command)
{
  const auto found = _commands.find(command->getName());
  if (found != _commands.end() && found->second == command)
    _commands.erase(found);
  _sequence.erase(command);
  ++_generation;
}

Command* CommandContainer::getCommand(const QString& name) const
{
  const auto found = _commands.find(name);
  return found == _commands.end() ? nullptr : found->second;
}

bool CommandContainer::hasCommandsBelow(const QString& prefix) const
{
  const QString below = prefix + QLatin1Char('.');
  const auto found = _commands.lower_bound(below);
  return found != _commands.end() && found->first.startsWith(below);
}

std::vector<Command*> CommandContainer::getCommandsInRegistrationOrder() const
{
  std::vector<Command*> result;
  result.reserve(_commands.size());
  for (const auto& entry : _commands)
    result.push_back(entry.second);
  std::sort(result.begin(), result.end(),
            [this](const Command* a, const Command* b) { return _sequence.at(a) < _sequence.at(b); });
  return result;
}

void CommandContainer::removeCommand(const QString& name)
{
  delete getCommand(name);
}

void CommandContainer::deleteAll()
{
  while (!_commands.empty())
    delete _commands.begin()->second;
}

void CommandContainer::updateAllActions()
{
  ++_update_count;
  for (const auto& listener : _actions_listeners)
    listener();
}

}  // namespace Vel::GApp
