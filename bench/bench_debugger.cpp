// What the debugger costs a script that it does not pause: 1,000,000 passes of a loop run
// plainly, under the debugger with no breakpoint, and with a breakpoint in a function the loop
// never calls. The loop's body computes in place (range 0) or calls a small function (range 1),
// which is where watching calls costs.

#include "bench_main.h"
#include "gscript/debugger.h"
#include "gscript/execute.h"

namespace {

const char* const FILE_NAME = "<bench>";
const int NEVER_CALLED_LINE = 2;

QByteArray script(bool calls)
{
  return QByteArray("def never_called():\n"
                    "    return 0\n"
                    "\n"
                    "def square(x):\n"
                    "    return x * x\n"
                    "\n"
                    "total = 0\n"
                    "for i in range(1000000):\n") +
         (calls ? "    total += square(i)\n" : "    total += i * i\n");
}

// Never paused here; should it be, the run goes on.
class Resume : public Vel::GScript::Debugger::Frontend
{
public:
  void paused(Vel::GScript::Debugger& debugger, const Vel::GScript::Debugger::Stop&) override
  {
    ++pauses;
    debugger.resume();
  }
  int pauses = 0;
};

enum class Setup
{
  Plain,
  Attached,
  BreakpointElsewhere
};

void runLoop(benchmark::State& state, Setup setup)
{
  const QByteArray source = script(state.range(0) != 0);
  Resume frontend;
  std::unique_ptr<Vel::GScript::Debugger> debugger;
  if (setup != Setup::Plain) {
    debugger = std::make_unique<Vel::GScript::Debugger>(frontend);
    debugger->sourceCompiled(QString::fromLatin1(FILE_NAME), source);
    if (setup == Setup::BreakpointElsewhere) {
      QString error;
      if (!debugger->setBreakpoint(QString::fromLatin1(FILE_NAME), NEVER_CALLED_LINE, QString(), false, &error)) {
        state.SkipWithError(qPrintable(error));
        return;
      }
    }
    debugger->attach(false);
  }
  for (auto _ : state) {
    Vel::GScript::Execute run = Vel::GScript::Execute::fromSource(source);
    run.setCodeName(QString::fromLatin1(FILE_NAME));
    QString code;
    Vel::ErrorLog log;
    if (!run.execute(0, Vel::GScript::Execute::FLAG_MAIN, code, log))
      state.SkipWithError(qPrintable(log.getText()));
  }
  if (frontend.pauses)
    state.SkipWithError("the debugger paused a run it had no reason to pause");
  if (debugger)
    debugger->detach();
}

void BM_LoopPlain(benchmark::State& state)
{
  runLoop(state, Setup::Plain);
}

void BM_LoopUnderDebugger(benchmark::State& state)
{
  runLoop(state, Setup::Attached);
}

void BM_LoopWithBreakpointElsewhere(benchmark::State& state)
{
  runLoop(state, Setup::BreakpointElsewhere);
}

}  // namespace

BENCHMARK(BM_LoopPlain)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoopUnderDebugger)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoopWithBreakpointElsewhere)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
  return runBenchmarksWithModule(argc, argv);
}
