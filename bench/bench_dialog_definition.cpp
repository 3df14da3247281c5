// Reading a dialog definition whose every cell holds an element: the cost per cell as the grid
// grows from 20 to 5,000 cells.

#include "bench_main.h"
#include "dialog_test_element.h"
#include "menu/msys_script/msys_dialog_definition.h"

using namespace Vel::MSysScript;

namespace {

QString definitionOf(int cells)
{
  const int columns = 10 < cells ? 10 : cells;
  const int rows = cells / columns;
  QString text = QStringLiteral(
                     "<dialog>\n  <title>Bench</title>\n  <control id=\"OkCancel\"/>\n  <position>center</position>\n"
                     "  <content rows=\"%1\" columns=\"%2\">\n")
                     .arg(rows)
                     .arg(columns);
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column)
      text += QStringLiteral(
                  "    <widget type=\"test::element\" row=\"%1\" column=\"%2\">\n"
                  "      <name>cell_%1_%2</name>\n      <tooltip>Cell %1, %2</tooltip>\n"
                  "      <value>%3</value>\n      <count>%1</count>\n      <shape>square</shape>\n"
                  "    </widget>\n")
                  .arg(row)
                  .arg(column)
                  .arg(row * columns + column);
  return text + QStringLiteral("  </content>\n</dialog>\n");
}

void BM_ReadDefinition(benchmark::State& state)
{
  TestElement::registryWithTestElement();
  const int cells = static_cast<int>(state.range(0));
  const QString text = definitionOf(cells);
  for (auto _ : state) {
    auto definition = DialogDefinition::read(text);
    benchmark::DoNotOptimize(definition.get());
    // The elements' layout requests are the event loop's to handle, as they are when a dialog is
    // read and shown; left queued, every destroyed element would search them all.
    state.PauseTiming();
    QCoreApplication::sendPostedEvents();
    definition.reset();
    state.ResumeTiming();
  }
  state.counters["cells"] = cells;
  state.counters["per_cell"] =
      benchmark::Counter(cells, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

BENCHMARK(BM_ReadDefinition)->Arg(20)->Arg(200)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
  Vel::GTools::prepareGuiEnvironment();
  QApplication application(argc, argv);
  runBenchmarks(argc, argv);
  return 0;
}
