// How fast a running script stops: the time from an abort request to the end of a script that
// spins in a tight loop (its KeyboardInterrupt), and what the safe points cost a run.

#include <chrono>
#include <csignal>
#include <thread>
#include <unistd.h>

#include "bench_main.h"
#include "gscript/execute.h"
#include "gscript/safe_points.h"

namespace {

using Clock = std::chrono::steady_clock;

const QString LOOP = QStringLiteral(
    "try:\n"
    "    while True:\n"
    "        pass\n"
    "except KeyboardInterrupt:\n"
    "    pass\n");

bool runText(const QString& text)
{
  Vel::GScript::Execute run(text);
  QString code;
  Vel::ErrorLog log;
  return run.execute(0, Vel::GScript::Execute::FLAG_MAIN, code, log);
}

// The request comes from another thread 30 ms into the loop; the time measured is from the
// request to the script's end.
template <class Request>
void measureAbort(benchmark::State& state, Request request)
{
  for (auto _ : state) {
    Clock::time_point requested;
    std::thread requester([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      requested = Clock::now();
      request();
    });
    if (!runText(LOOP))
      state.SkipWithError("the loop did not end with KeyboardInterrupt");
    const Clock::time_point ended = Clock::now();
    requester.join();
    state.SetIterationTime(std::chrono::duration<double>(ended - requested).count());
  }
}

void BM_AbortRequestToInterrupt(benchmark::State& state)
{
  measureAbort(state, [] { Vel::GScript::SafePoints::requestAbort(); });
}

void BM_CtrlCToInterrupt(benchmark::State& state)
{
  measureAbort(state, [] { ::kill(::getpid(), SIGINT); });
}

// A whole run of "pass", safe points included (the timer thread starts and stops with it).
void BM_RunPass(benchmark::State& state)
{
  for (auto _ : state)
    benchmark::DoNotOptimize(runText(QStringLiteral("pass")));
}

}  // namespace

BENCHMARK(BM_AbortRequestToInterrupt)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(40);
BENCHMARK(BM_CtrlCToInterrupt)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(40);
BENCHMARK(BM_RunPass)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv)
{
  return runBenchmarksWithModule(argc, argv);
}
