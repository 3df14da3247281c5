#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "core/vel_export.h"

namespace Vel::GApp {

class Command;

// All application commands, ordered by name. Owns them: removing one deletes it.
class VEL_EXPORT CommandContainer
{
public:
  using Map = std::map<QString, Command*>;

  static CommandContainer& getInstance();

  // Called by Command's constructor; registering the same object again does nothing, another
  // object under a taken name is a program error.
  void registerCommand(Command* command);
  // Called by Command's destructor.
  void unregisterCommand(Command* command);

  Command* getCommand(const QString& name) const;
  // Whether some command's name begins with `prefix` followed by a dot (a namespace of names).
  bool hasCommandsBelow(const QString& prefix) const;
  Map::const_iterator begin() const { return _commands.begin(); }
  Map::const_iterator end() const { return _commands.end(); }
  Map::const_iterator lowerBound(const QString& name) const { return _commands.lower_bound(name); }
  size_t size() const { return _commands.size(); }

  std::vector<Command*> getCommandsInRegistrationOrder() const;

  // Deletes the command (which withdraws it).
  void removeCommand(const QString& name);
  // Deletes every command; the host calls this before it unloads the plug-ins.
  void deleteAll();

  // Menus and tool bars refresh their entries from the commands: each listener is told.
  void updateAllActions();
  void addActionsListener(std::function<void()> listener) { _actions_listeners.push_back(std::move(listener)); }
  uint64_t getUpdateCount() const { return _update_count; }

  // Changes whenever a command is registered or withdrawn: whoever keeps a Command* or a result
  // of a look-up keeps this number with it and looks again once it differs.
  uint64_t getGeneration() const { return _generation; }

private:
  CommandContainer() = default;

  Map _commands;
  std::map<const Command*, uint64_t> _sequence;
  uint64_t _next_sequence = 0;
  uint64_t _update_count = 0;
  std::vector<std::function<void()>> _actions_listeners;
  uint64_t _generation = 0;
};

}  // namespace Vel::GApp
