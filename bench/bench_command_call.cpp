// Cost of one command call from Python: zut.script.NAME(**kwargs) resolves the name through
// the command container, converts the arguments, runs the command and converts the result.

#include <QTemporaryDir>

#include "bench_main.h"
#include "core/error_log.h"
#include "gscript/execute.h"

namespace {

constexpr int CALLS_PER_RUN = 10000;

void runPython(benchmark::State& state, const char* code)
{
  for (auto _ : state) {
    Vel::GScript::Execute run(QString::fromLatin1(code));
    QString error_code;
    Vel::ErrorLog log;
    if (!run.execute(0, 0, error_code, log)) {
      state.SkipWithError(log.getText().toStdString().c_str());
      return;
    }
  }
  state.SetItemsProcessed(state.iterations() * CALLS_PER_RUN);
}

void BM_ScriptCommandCall(benchmark::State& state)
{
  runPython(state,
            "import zut\n"
            "call = zut.script.sys.set_test_timeout\n"
            "for i in range(10000):\n"
            "    call(timeout=1.5)\n");
}

void BM_ScriptCommandCallWithLookup(benchmark::State& state)
{
  runPython(state,
            "import zut\n"
            "for i in range(10000):\n"
            "    zut.script.sys.set_test_timeout(timeout=1.5)\n");
}

// The same loop over a plain Python function: what the interpreter costs by itself.
void BM_PlainPythonCall(benchmark::State& state)
{
  runPython(state,
            "def call(timeout):\n"
            "    return None\n"
            "for i in range(10000):\n"
            "    call(timeout=1.5)\n");
}

// A dotted name reaching a C function: the floor for the lookup and call above.
void BM_DottedCFunctionCall(benchmark::State& state)
{
  runPython(state,
            "import os\n"
            "for i in range(10000):\n"
            "    os.path.sep.startswith('/')\n");
}

}  // namespace

BENCHMARK(BM_ScriptCommandCall)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScriptCommandCallWithLookup)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainPythonCall)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DottedCFunctionCall)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
  return runBenchmarksWithModule(argc, argv);
}
