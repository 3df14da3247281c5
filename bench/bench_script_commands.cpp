// UpdateRegisteredCommands over databases of growing size: the folders are read, every script
// is matched with its command (made when missing), and every folder's group is rebuilt.

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

#include "bench_main.h"

namespace {

QTemporaryDir* data = nullptr;

// n scripts, 50 to a folder, in a user level of their own.
void makeDatabase(int n)
{
  const QString root = data->filePath(QStringLiteral("n%1").arg(n));
  qputenv("XDG_DATA_HOME", root.toLocal8Bit());
  const QString scripts = root + QStringLiteral("/zut/scripts");
  if (QDir(scripts).exists())
    return;
  for (int i = 0; i < n; ++i) {
    const QString folder = scripts + QStringLiteral("/group%1").arg(i / 50, 4, 10, QLatin1Char('0'));
    QDir().mkpath(folder);
    QFile file(folder + QStringLiteral("/script%1.py").arg(i, 6, 10, QLatin1Char('0')));
    file.open(QIODevice::WriteOnly);
    file.write("print('hello')\n");
  }
}

size_t scriptCommands()
{
  size_t count = 0;
  for (const auto& entry : Vel::GApp::CommandContainer::getInstance())
    count += entry.first.startsWith(QStringLiteral("userscript.")) ? 1 : 0;
  return count;
}

// Every command exists already: read the folders, update each command, rebuild the groups.
void BM_UpdateRegisteredCommands(benchmark::State& state)
{
  makeDatabase(int(state.range(0)));
  Vel::MSysScript::UpdateRegisteredCommands();
  if (scriptCommands() != size_t(state.range(0)))
    state.SkipWithError("commands do not match the scripts");
  for (auto _ : state)
    Vel::MSysScript::UpdateRegisteredCommands();
  state.SetComplexityN(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The first update after start-up: every command is made.
void BM_UpdateRegisteredCommandsFromEmpty(benchmark::State& state)
{
  makeDatabase(int(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    qputenv("XDG_DATA_HOME", data->filePath(QStringLiteral("empty")).toLocal8Bit());
    Vel::MSysScript::UpdateRegisteredCommands();
    makeDatabase(int(state.range(0)));
    state.ResumeTiming();
    Vel::MSysScript::UpdateRegisteredCommands();
  }
  state.SetComplexityN(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(BM_UpdateRegisteredCommands)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);
BENCHMARK(BM_UpdateRegisteredCommandsFromEmpty)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);

int main(int argc, char** argv)
{
  Vel::GApp::prepareGuiEnvironment();
  QApplication application(argc, argv);
  QTemporaryDir dir;
  data = &dir;
  qputenv("ZUT_SYSTEM_SCRIPTS", dir.filePath(QStringLiteral("system")).toLocal8Bit());
  qunsetenv("ZUT_PUBLIC_SCRIPTS");
  const BenchModule module(dir);
  runBenchmarks(argc, argv);
  return 0;
}
