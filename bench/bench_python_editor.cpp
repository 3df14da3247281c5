// The editor's engines on a large Python file: colouring against a loop that only reads each
// character once, a full parse, and a one-line insertion against the full parse it replaces.
// ZUT_BENCH_PY names the file to use; without it a file is generated.

#include <QFile>
#include <QStringList>

#include <chrono>

#include "bench_main.h"
#include "menu/msys_script/msys_python_dump.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"

using namespace Vel::MSysScript;

namespace {

// 100,000 lines of ordinary Python: classes, functions, loops, strings, comments, commands.
QString generated(int lines)
{
  static const char* const unit[] = {
      "class Sample%1(object):",
      "    \"\"\"A class with a docstring # that holds a hash\"\"\"",
      "    def __init__(self, value):",
      "        self.value = value  # keep it",
      "        self.items = [1, 2.5, 'three', \"four\"]",
      "",
      "    def measure(self, points):",
      "        for index, point in enumerate(points):",
      "            if point > self.value:",
      "                result = zut.script.sys.execute_python_code(",
      "                    code='print(%r)' % (point,),",
      "                    collect_stdout=True)",
      "            else:",
      "                print('below', index, True, None)",
      "        return len(points)",
      "",
  };
  QStringList text;
  for (int i = 0; text.size() < lines; ++i)
    for (const char* line : unit)
      text << QString::fromLatin1(line).arg(i);
  return text.mid(0, lines).join(QLatin1Char('\n'));
}

const QString& source()
{
  static const QString text = [] {
    const QString path = qEnvironmentVariable("ZUT_BENCH_PY");
    QFile file(path);
    if (!path.isEmpty() && file.open(QIODevice::ReadOnly))
      return QString::fromUtf8(file.readAll());
    return generated(100000);
  }();
  return text;
}

void BM_ReadEachCharacterOnce(benchmark::State& state)
{
  const QStringList lines = source().split(QLatin1Char('\n'));
  for (auto _ : state) {
    size_t sum = 0;
    for (const QString& line : lines)
      for (const QChar c : line)
        sum += c.unicode();
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(state.iterations() * source().size());
}

void BM_HighlightWholeFile(benchmark::State& state)
{
  const QStringList lines = source().split(QLatin1Char('\n'));
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
  state.SetBytesProcessed(state.iterations() * source().size());
}

void BM_FullParse(benchmark::State& state)
{
  PythonParser parser;
  parser.setText(source());
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
  Vel::GTools::prepareGuiEnvironment();
  QApplication application(argc, argv);
  runBenchmarks(argc, argv);
  return 0;
}
