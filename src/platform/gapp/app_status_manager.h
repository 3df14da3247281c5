#pragma once

#include <cstddef>
#include <vector>

#include "core/vel_export.h"

namespace Vel::GApp {

class Command;

// A party that has a say when the application exits.
class VEL_EXPORT ExitNotifier
{
public:
  virtual ~ExitNotifier();
  // Whether the application may exit; `silent` forbids asking the user.
  virtual bool confirmExit(bool silent) = 0;
  // Whether the application can exit right now (nothing busy).
  virtual bool canExit() = 0;
  // Last work before the exit (saving, storing window geometry).
  virtual void prepareExit() = 0;
};

class VEL_EXPORT AppStatusManager
{
public:
  static void registerExitNotifier(ExitNotifier* notifier);
  static void unregisterExitNotifier(ExitNotifier* notifier);
  static const std::vector<ExitNotifier*>& getExitNotifiers();

  // The exit sequence: every notifier confirms and can exit, then every one prepares.
  // False when one of them refused; nothing was prepared then.
  static bool requestExit(bool silent);

  // The command run from a menu (or a script) that is in progress, innermost last.
  static void pushActiveMenuCommand(Command* command);
  static void popActiveMenuCommand();
  static Command* getActiveMenuCommand();
  static size_t getActiveMenuCommandDepth();
};

}  // namespace Vel::GApp
