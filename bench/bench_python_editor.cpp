// The editor's engines on a large Python file: colouring against a loop that only reads each
// character once, a full parse, and a one-line insertion against the full parse it replaces.
// ZUT_BENCH_PY names the file to use; without it a file is generated.

#include <QStringList>

#include <chrono>

#include "bench_corpus.h"
#include "bench_main.h"
#include "menu/msys_script/msys_python_dump.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"

using namespace Vel::MSysScript;

namespace {

// 100,000 lines of ordinary Python: classes, functions, loops, strings, comments, commands.
void BM_ReadEachCharacterOnce(benchmark::State& state)
{
  const QStringList lines = benchScript().split(QLatin1Char('\n'));
  for (auto _ : state) {
    size_t sum = 0;
    for (const QString& line : lines)
      for (const QChar c : line)
        sum += c.unicode();
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(state.iterations() * benchScript().size());
}

void BM_HighlightWholeFile(benchmark::State& state)
{
  const QStringList lines = benchScript().split(QLatin1Char('\n'));
  PythonHighlighter highlighter;
  for (auto _ : state) {
    int line_state = 0;
    unsigned number = 0;
    for (const QString& line : lines) {
      highlighter.clearFormats();
      line_state = highlighter.highlightLine(number++, line, line_state);
    }
    benchmark::DoNotOptimize(line_state);
  }
  state.SetBytesProcessed(state.iterations() * benchScript().size());
}

void BM_FullParse(benchmark::State& state)
{
  PythonParser parser;
  parser.setText(benchScript());
  for (auto _ : state)
    parser.parse();
  state.counters["blocks"] = double(parser.getBlocks().size());
}

// 1,000 top-level functions of a few lines each; a statement is typed into the middle one.
QString thousandBlocks()
{
  QStringList lines;
  for (int i = 0; i < 1000; ++i)
    lines << QStringLiteral("def function%1(a, b):").arg(i) << QStringLiteral("    c = a + b")
          << QStringLiteral("    if c > 0:") << QStringLiteral("        return c") << QStringLiteral("    return -c")
          << QString();
  return lines.join(QLatin1Char('\n'));
}

void BM_FullParseThousandBlocks(benchmark::State& state)
{
  PythonParser parser;
  parser.setText(thousandBlocks());
  for (auto _ : state)
    parser.parse();
}

void BM_InsertLineInTheMiddle(benchmark::State& state)
{
  QStringList lines = thousandBlocks().split(QLatin1Char('\n'));
  const int at = 500 * 6 + 2;  // inside function500
  PythonParser parser;
  parser.setLineSource([&](int line) { return lines.value(line); }, [&] { return int(lines.size()); });
  parser.parse();
  // Timed by hand: only the re-parse, not taking the line out again.
  for (auto _ : state) {
    lines.insert(at, QStringLiteral("    d = c * 2"));
    const auto start = std::chrono::steady_clock::now();
    parser.textInserted(at, 1);
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    lines.removeAt(at);
    parser.textDeleted(at, 1);
  }
}

}  // namespace

BENCHMARK(BM_ReadEachCharacterOnce)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HighlightWholeFile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FullParse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FullParseThousandBlocks)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_InsertLineInTheMiddle)->Unit(benchmark::kMicrosecond)->UseManualTime();

int main(int argc, char** argv)
{
  Vel::GApp::prepareGuiEnvironment();
  QApplication application(argc, argv);
  runBenchmarks(argc, argv);
  return 0;
}
