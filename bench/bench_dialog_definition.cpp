// Reading a dialog definition whose every cell holds an element: the cost per cell as the grid
// grows from 20 to 5,000 cells, for the test element and for real input elements (half decimal
// fields, half checkboxes).

#include "bench_main.h"
#include "dialog_test_element.h"
#include "menu/msys_script/msys_dialog_definition.h"

using namespace Vel::MSysScript;

namespace {

QString testElement(int row, int column, int index)
{
  return QStringLiteral(
             "    <widget type=\"test::element\" row=\"%1\" column=\"%2\">\n"
             "      <name>cell_%1_%2</name>\n      <tooltip>Cell %1, %2</tooltip>\n"
             "      <value>%3</value>\n      <count>%1</count>\n      <shape>square</shape>\n"
             "    </widget>\n")
      .arg(row)
      .arg(column)
      .arg(index);
}

QString inputElement(int row, int column, int index)
{
  if (index % 2 == 0)
    return QStringLiteral(
               "    <widget type=\"input::number\" row=\"%1\" column=\"%2\">\n"
               "      <name>cell_%1_%2</name>\n      <tooltip>Cell %1, %2</tooltip>\n"
               "      <value>%3.25</value>\n      <minimum>0</minimum>\n      <maximum>100000</maximum>\n"
               "      <precision>3</precision>\n      <unit>mm</unit>\n"
               "    </widget>\n")
        .arg(row)
        .arg(column)
        .arg(index);
  return QStringLiteral(
             "    <widget type=\"input::checkbox\" row=\"%1\" column=\"%2\">\n"
             "      <name>cell_%1_%2</name>\n      <tooltip>Cell %1, %2</tooltip>\n"
             "      <value>true</value>\n      <title>Measure cell %1, %2</title>\n"
             "    </widget>\n")
      .arg(row)
      .arg(column);
}

QString definitionOf(int cells, QString (*element)(int, int, int))
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
      text += element(row, column, row * columns + column);
  return text + QStringLiteral("  </content>\n</dialog>\n");
}

void readDefinition(benchmark::State& state, QString (*element)(int, int, int))
{
  TestElement::registryWithTestElement();
  const int cells = static_cast<int>(state.range(0));
  const QString text = definitionOf(cells, element);
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

void BM_ReadDefinition(benchmark::State& state)
{
  readDefinition(state, testElement);
}

void BM_ReadInputDefinition(benchmark::State& state)
{
  readDefinition(state, inputElement);
}

}  // namespace

BENCHMARK(BM_ReadDefinition)->Arg(20)->Arg(200)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadInputDefinition)->Arg(20)->Arg(200)->Arg(1000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
  Vel::GTools::prepareGuiEnvironment();
  QApplication application(argc, argv);
  runBenchmarks(argc, argv);
  return 0;
}
