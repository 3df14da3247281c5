// Start-up cost of the program against the bare interpreter: `zut exec "pass"` loads Qt Core, the
// host libraries, the scripting module and the embedded Python before it runs anything (the
// widget libraries only come with a first window).

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {

void runProcess(benchmark::State& state, std::vector<std::string> arguments)
{
  std::vector<char*> argv;
  for (std::string& argument : arguments)
    argv.push_back(argument.data());
  argv.push_back(nullptr);
  // No display: the program must not wait for a window system.
  unsetenv("DISPLAY");
  for (auto _ : state) {
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
      state.SkipWithError("cannot start the program");
      return;
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
      state.SkipWithError("the program failed");
      return;
    }
  }
}

void BM_ZutExecPass(benchmark::State& state)
{
  runProcess(state, {ZUT_BENCH_BIN, "exec", "pass"});
}
void BM_PythonCPass(benchmark::State& state)
{
  runProcess(state, {ZUT_BENCH_PYTHON, "-c", "pass"});
}

}  // namespace

BENCHMARK(BM_ZutExecPass)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
BENCHMARK(BM_PythonCPass)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

BENCHMARK_MAIN();
