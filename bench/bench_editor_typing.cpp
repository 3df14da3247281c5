// What typing costs in a large script. The whole editor as the script editor builds it (parser,
// highlighter, fold margin): one character, one new line and one deleted line in the middle of
// the text, from the document change to the re-coloured line, without painting; and the block
// parser alone: the re-parse after one inserted or deleted line against a full parse.
// ZUT_BENCH_PY names the script to use (N lines around its middle); without it a script is
// generated.

#include <QStringList>
#include <QTextBlock>
#include <QTextCursor>

#include <chrono>
#include <functional>

#include "bench_corpus.h"
#include "bench_main.h"
#include "gedit/source_editor.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"

using namespace Vel;
using namespace Vel::MSysScript;
using Clock = std::chrono::steady_clock;

namespace {

// `count` lines from the middle of the script, each ended by a line feed as in a file; the
// middle line, the one edited, is the same whatever the count.
QStringList scriptLines(int count)
{
  static const QStringList all = benchScript().split(QLatin1Char('\n'));
  QStringList lines = all.mid(qMax(qsizetype(0), all.size() / 2 - count / 2), count);
  return lines << QString();
}

// Times one edit of the middle line; `undo` puts the text back, untimed.
void timeEditorEdit(benchmark::State& state, const std::function<void(QTextCursor&, const QString&)>& edit,
                    const std::function<void(QTextCursor&, const QString&)>& undo)
{
  const QStringList lines = scriptLines(int(state.range(0)));
  GEdit::SourceEditor editor(new PythonParser, new PythonHighlighter);
  editor.resize(800, 600);
  editor.setPlainText(lines.join(QLatin1Char('\n')));
  editor.show();
  const int middle = int(lines.size()) / 2;
  const QString text = lines[middle];
  editor.setTextCursor(QTextCursor(editor.document()->findBlockByNumber(middle)));
  editor.centerCursor();
  QApplication::processEvents();
  long count = 0;
  for (auto _ : state) {
    QTextCursor cursor(editor.document()->findBlockByNumber(middle));
    const auto start = Clock::now();
    edit(cursor, text);
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    undo(cursor, text);
    if (++count % 256 == 0) {
      editor.document()->clearUndoRedoStacks();
      QApplication::processEvents();
    }
  }
  if (editor.toPlainText() != lines.join(QLatin1Char('\n')))
    state.SkipWithError("the edits did not restore the text");
}

void BM_EditorTypeCharacter(benchmark::State& state)
{
  timeEditorEdit(
      state,
      [](QTextCursor& cursor, const QString& text) {
        cursor.setPosition(cursor.position() + int(text.size()) / 2);
        cursor.insertText(QStringLiteral("x"));
      },
      [](QTextCursor& cursor, const QString&) { cursor.deletePreviousChar(); });
}

void BM_EditorInsertLine(benchmark::State& state)
{
  timeEditorEdit(
      state,
      [](QTextCursor& cursor, const QString& text) {
        cursor.insertText(GEdit::leadingSpace(text) + QStringLiteral("value = 1\n"));
      },
      [](QTextCursor& cursor, const QString& text) {
        cursor.movePosition(QTextCursor::PreviousBlock, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        Q_UNUSED(text);
      });
}

void BM_EditorDeleteLine(benchmark::State& state)
{
  timeEditorEdit(
      state,
      [](QTextCursor& cursor, const QString&) {
        cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
      },
      [](QTextCursor& cursor, const QString& text) { cursor.insertText(text + QLatin1Char('\n')); });
}

// Short top-level functions with a nested statement each; a statement goes into the middle one.
// As methods of one class, nothing stands at the top level.
QStringList functionLines(int functions, const QString& indentation = QString())
{
  QStringList lines;
  if (!indentation.isEmpty())
    lines << QStringLiteral("class Everything:");
  for (int i = 0; i < functions; ++i)
    lines << indentation + QStringLiteral("def function%1(a, b):").arg(i)
          << indentation + QStringLiteral("    c = a + b") << indentation + QStringLiteral("    if c > 0:")
          << indentation + QStringLiteral("        return c") << indentation + QStringLiteral("    return -c")
          << QString();
  return lines;
}

// A parser reading a line list that the benchmark edits.
struct ListParser
{
  explicit ListParser(int functions, const QString& indentation = QString())
      : lines(functionLines(functions, indentation))
  {
    parser.setLineSource([this](int line) { return lines.value(line); }, [this] { return int(lines.size()); });
    parser.parse();
  }
  void insert(int at)
  {
    lines.insert(at, QStringLiteral("    d = c * 2"));
    parser.textInserted(at, 1);
  }
  void remove(int at)
  {
    lines.removeAt(at);
    parser.textDeleted(at, 1);
  }
  QStringList lines;
  PythonParser parser;
};

int middleStatement(int functions)
{
  return functions / 2 * 6 + 2;
}

void BM_ParseAll(benchmark::State& state)
{
  ListParser list(int(state.range(0)));
  for (auto _ : state)
    list.parser.parse();
}

// Times the re-parse after a line put in at `at`; the line goes again, untimed.
void timeInsertion(benchmark::State& state, ListParser& list, int at)
{
  for (auto _ : state) {
    list.lines.insert(at, QStringLiteral("    d = c * 2"));
    const auto start = Clock::now();
    list.parser.textInserted(at, 1);
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    list.remove(at);
  }
}

void BM_ParseAfterInsertedLine(benchmark::State& state)
{
  ListParser list(int(state.range(0)));
  timeInsertion(state, list, middleStatement(int(state.range(0))));
}

// The worst case: the re-parse runs from the class to the end of the text.
void BM_ParseAfterInsertedLineInOneClass(benchmark::State& state)
{
  ListParser list(int(state.range(0)), QStringLiteral("    "));
  timeInsertion(state, list, middleStatement(int(state.range(0))) + 1);
}

void BM_ParseAfterDeletedLine(benchmark::State& state)
{
  ListParser list(int(state.range(0)));
  const int at = middleStatement(int(state.range(0)));
  for (auto _ : state) {
    list.insert(at);
    list.lines.removeAt(at);
    const auto start = Clock::now();
    list.parser.textDeleted(at, 1);
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
  }
}

}  // namespace

BENCHMARK(BM_EditorTypeCharacter)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(BM_EditorInsertLine)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(BM_EditorDeleteLine)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(BM_ParseAll)->Arg(1000)->Arg(16000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ParseAfterInsertedLine)->Arg(1000)->Arg(16000)->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(BM_ParseAfterInsertedLineInOneClass)->Arg(1000)->Arg(16000)->Unit(benchmark::kMicrosecond)->UseManualTime();
BENCHMARK(BM_ParseAfterDeletedLine)->Arg(1000)->Arg(16000)->Unit(benchmark::kMicrosecond)->UseManualTime();

int main(int argc, char** argv)
{
  Vel::GApp::prepareGuiEnvironment();
  QApplication application(argc, argv);
  runBenchmarks(argc, argv);
  return 0;
}
