#pragma once

#include "gapp/app_status_manager.h"

namespace Vel::MSysScript {

// The module's say in the application's exit: confirmation in kiosk mode, and the script
// editor's unsaved changes, kept in a recovery file.
class ExitNotifier : public GApp::ExitNotifier
{
public:
  static ExitNotifier& getInstance();

  bool confirmExit(bool silent) override;
  bool canExit() override;
  void prepareExit() override;

private:
  ExitNotifier() = default;
};

}  // namespace Vel::MSysScript
