#pragma once

#include <QLibrary>
#include <QString>

#include <memory>

#include "cfg/cfg.h"
#include "gapp/module_loader.h"

class QCoreApplication;

// The running application: its configuration and the scripting module, brought up in the
// host's order and taken down in reverse. It starts as a console application; the windows (the
// program's GUI plug-in, a GUI application object in place of the console one, and the module's
// GUI half) come up only when something needs them, so that a run that draws nothing never
// loads the widget libraries.
class ZutHost
{
public:
  // `argc` must outlive the host: Qt keeps a reference to it. `picture`: windows are drawn the
  // same on every machine, for pictures of them.
  ZutHost(int& argc, char** argv, bool picture);
  ~ZutHost();

  // Loads the configuration and the module. False (with the reason on standard error) when the
  // module cannot be loaded or fails to start.
  bool start();
  // Runs the exit sequence, withdraws the module and saves the configuration.
  void stop();

  // Brings the windows up, as described above; throws ProgError when they cannot come up.
  void bringUpGui();
  bool isGuiUp() const { return _gui_up; }

  Vel::Cfg& cfg() { return *_cfg; }
  Vel::GApp::ModuleLoader* module() { return _module.get(); }
  // A function the module exports, from whichever half has it; the windows are brought up for
  // a function of the GUI half. Null when neither has it or the windows cannot come up.
  QFunctionPointer resolve(const char* name);
  // A function of the program's own GUI plug-in; null until the windows are up.
  QFunctionPointer guiFunction(const char* name);

private:
  int& _argc;
  char** _argv;
  bool _picture;
  std::unique_ptr<QCoreApplication> _application;
  std::unique_ptr<Vel::Cfg> _cfg;
  std::unique_ptr<Vel::GApp::ModuleLoader> _module;
  QLibrary _gui_plugin;
  QLibrary _module_gui;
  bool _gui_up = false;
  bool _defaults_initialized = false;
  bool _stopped = false;
};
