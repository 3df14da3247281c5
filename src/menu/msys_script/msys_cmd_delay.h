#pragma once

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

// "sys.delay_script": waits the given number of seconds while the application stays responsive;
// reports the share of the time that has passed, and stops when the running script is aborted.
class DelayCommand : public MSysCommand
{
public:
  DelayCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

}  // namespace Vel::MSysScript
