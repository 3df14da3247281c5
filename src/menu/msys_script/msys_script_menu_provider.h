#pragma once

#include <QIcon>

#include "gapp/main_window.h"

namespace Vel::MSysScript {

class ScriptCommand;

// Fills the application's script menu with the module's commands. One instance at most.
class ScriptSpecialMenuProvider : public GApp::SpecialMenuProvider
{
public:
  static constexpr const char* MENU_ID = "scripts";

  // Creates and registers the instance; a second call is a program error.
  static void initialize();
  // Withdraws and deletes the instance; a call without one is a program error.
  static void deinitialize();
  static ScriptSpecialMenuProvider* getInstance();

  // The script's own icon, or its level's where it has none or the picture does not read.
  static QIcon iconOf(const ScriptCommand& command);

  QString getMenuId() const override;
  void fillMenu(QMenu* menu) const override;

private:
  ScriptSpecialMenuProvider() = default;
};

}  // namespace Vel::MSysScript
