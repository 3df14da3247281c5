#pragma once

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

// "sys.set_test_timeout": the time that script tests may take before they count as hanging. A
// script running longer (counted from this call, or from the start of each later run) gets
// KeyboardInterrupt; 0 switches the timeout off.
class SetTestTimeoutCommand : public MSysCommand
{
public:
  SetTestTimeoutCommand();
  void execute(const GApp::CommandParameters& parameters) override;

  // Seconds; 0 until a script sets a timeout.
  static double getTimeout();
};

}  // namespace Vel::MSysScript
