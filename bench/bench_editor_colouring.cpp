// The script editor's colouring on a large Python file: the whole document coloured through the
// highlighter bound to it, and opening the file until the editor's first screen is painted, with
// and without colours. ZUT_BENCH_PY names the file to use; without it a file is generated.

#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QStringList>
#include <QTextBlock>

#include <chrono>

#include "bench_corpus.h"
#include "bench_main.h"
#include "gedit/source_editor.h"
#include "gedit/text_highlighter.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"

using namespace Vel;
using namespace Vel::MSysScript;

namespace {

double seconds(const std::chrono::steady_clock::time_point& start)
{
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Every line of a document that holds the file, coloured through the adapter the editor uses.
// The document belongs to a hidden plain-text editor, so that it has the layout an editor gives it.
void BM_ColourWholeDocument(benchmark::State& state)
{
  QPlainTextEdit edit;
  edit.resize(1000, 800);
  QTextDocument* document = edit.document();
  document->setUndoRedoEnabled(false);
  PythonHighlighter highlighter;
  for (auto _ : state) {
    document->setPlainText(benchScript());
    const auto start = std::chrono::steady_clock::now();
    {
      GEdit::SyntaxHighlighterAdapter adapter(&highlighter, document);
      adapter.colourAll();
    }
    state.SetIterationTime(seconds(start));
  }
  state.SetBytesProcessed(state.iterations() * benchScript().size());
}

// When the first paint of a widget ended.
class FirstPaint : public QObject
{
public:
  explicit FirstPaint(QWidget* widget) { widget->installEventFilter(this); }
  bool painted = false;
  std::chrono::steady_clock::time_point end;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override
  {
    if (event->type() != QEvent::Paint || painted)
      return false;
    // Painted here, inside the paint the window system asked for, to take the time right after.
    painted = true;
    watched->removeEventFilter(this);
    QCoreApplication::sendEvent(watched, event);
    end = std::chrono::steady_clock::now();
    return true;
  }
};

// The file put into a new editor that is then shown, up to the end of the first paint of its text.
void openFile(benchmark::State& state, bool coloured)
{
  for (auto _ : state) {
    auto* editor = new GEdit::SourceEditor(new PythonParser, new PythonHighlighter);
    editor->resize(1000, 800);
    if (!coloured)
      delete editor->document()->findChild<GEdit::SyntaxHighlighterAdapter*>();
    FirstPaint paint(editor->viewport());
    const auto start = std::chrono::steady_clock::now();
    editor->setPlainText(benchScript());
    editor->show();
    QElapsedTimer waited;
    waited.start();
    while (!paint.painted && waited.elapsed() < 10000)
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    state.SetIterationTime(std::chrono::duration<double>(paint.end - start).count());
    if (!paint.painted)
      state.SkipWithError("the editor was never painted");
    delete editor;
  }
  state.SetBytesProcessed(state.iterations() * benchScript().size());
}

void BM_OpenColoured(benchmark::State& state)
{
  openFile(state, true);
}

void BM_OpenPlain(benchmark::State& state)
{
  openFile(state, false);
}

}  // namespace

BENCHMARK(BM_ColourWholeDocument)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(BM_OpenPlain)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(BM_OpenColoured)->Unit(benchmark::kMillisecond)->UseManualTime();

int main(int argc, char** argv)
{
  return runBenchmarksWithModule(argc, argv);
}
