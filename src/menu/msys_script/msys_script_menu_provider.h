#pragma once

#include "gapp/main_window.h"

namespace Vel::MSysScript {

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

  QString getMenuId() const override;
  void fillMenu(QMenu* menu) const override;

private:
  ScriptSpecialMenuProvider() = default;
};

}  // namespace Vel::MSysScript
