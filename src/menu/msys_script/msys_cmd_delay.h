#pragma once

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

// "sys.delay_script": waits the given number of seconds while the application stays responsive.
class DelayCommand : public MSysCommand
{
public:
  DelayCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

}  // namespace Vel::MSysScript
