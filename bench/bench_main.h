#pragma once

// What every benchmark program does around its benchmarks: a GUI application (offscreen without
// a display), and optionally the scripting module started on a throwaway configuration.

#include <QApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include "cfg/cfg.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gscript/python_interpreter.h"
#include "menu/msys_script/msys_library.h"

// The module as the host starts it, with its configuration in `folder`; taken down at the end.
class BenchModule
{
public:
  explicit BenchModule(const QTemporaryDir& folder) : _cfg(folder.filePath(QStringLiteral("config.json")))
  {
    Vel::MSysScript::InitLibrary(_cfg.root());
  }
  ~BenchModule()
  {
    Vel::GApp::CommandContainer::getInstance().deleteAll();
    Vel::GScript::PythonInterpreter::finalize();
  }

private:
  Vel::Cfg _cfg;
};

inline void runBenchmarks(int& argc, char** argv)
{
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}

// The usual main of a benchmark program that needs the module.
inline int runBenchmarksWithModule(int argc, char** argv)
{
  Vel::GApp::prepareGuiEnvironment();
  QApplication application(argc, argv);
  QTemporaryDir dir;
  const BenchModule module(dir);
  runBenchmarks(argc, argv);
  return 0;
}
