#pragma once

#include <QString>

#include <memory>

#include "cfg/cfg.h"
#include "gapp/module_loader.h"

// The running application: its configuration and the scripting module, brought up in the
// host's order and taken down in reverse.
class ZutHost
{
public:
  ZutHost();
  ~ZutHost();

  // Loads the configuration and the module. False (with the reason on standard error) when the
  // module cannot be loaded or fails to start.
  bool start();
  // Runs the exit sequence, withdraws the module and saves the configuration.
  void stop();

  Vel::Cfg& cfg() { return *_cfg; }
  Vel::GApp::ModuleLoader* module() { return _module.get(); }

private:
  std::unique_ptr<Vel::Cfg> _cfg;
  std::unique_ptr<Vel::GApp::ModuleLoader> _module;
  bool _defaults_initialized = false;
  bool _stopped = false;
};
