#pragma once

#include <QString>

#include <functional>
#include <vector>

#include "core/vel_export.h"
#include "gapp/command.h"

class QMenu;
class QObject;

namespace Vel {

// How the application was started.
class VEL_EXPORT VelInit
{
public:
  // Kiosk mode: a locked-down station where leaving the application must be confirmed.
  static bool isKioskMode();
  static void setKioskMode(bool kiosk);
};

namespace GApp {

// A plug-in that fills one of the application's special menus with its own entries.
class VEL_EXPORT SpecialMenuProvider
{
public:
  virtual ~SpecialMenuProvider();
  virtual QString getMenuId() const = 0;
  virtual void fillMenu(QMenu* menu) const = 0;
};

class VEL_EXPORT MainWindow
{
public:
  // Runs a command as a menu entry does: the user may complete its arguments, and a failure is
  // reported to the user (error dialog, or standard error without a display) instead of thrown.
  // Returns whether the command ran and succeeded.
  static bool executeMenu(Command* command, const CommandParameters& parameters = CommandParameters());

  static void registerSpecialMenuProvider(SpecialMenuProvider* provider);
  static void unregisterSpecialMenuProvider(SpecialMenuProvider* provider);
  static const std::vector<SpecialMenuProvider*>& getSpecialMenuProviders();
  // Fills `menu` with the entries of every provider of `menu_id`.
  static void fillSpecialMenu(const QString& menu_id, QMenu* menu);

  // Buttons that stop the running script. The host keeps them disabled while no script runs;
  // a click asks for the abort. A button leaves the list when it is destroyed.
  static void addAbortButton(QObject* button);
  static int getAbortButtonCount();
  // Told by whoever runs scripts: enables or disables every abort button.
  static void setScriptRunning(bool running);
  static bool isScriptRunning();
  // Records the request and passes it to the abort handler, which stops the running script.
  static void requestAbort();
  // How many aborts were asked for since start-up.
  static int getAbortRequestCount();
  static void setAbortHandler(std::function<void()> handler);
};

}  // namespace GApp
}  // namespace Vel
