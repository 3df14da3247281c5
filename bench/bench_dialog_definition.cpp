// Reading a dialog definition whose every cell holds an element: the cost per cell as the grid
// grows from 20 to 5,000 cells, for the test element and for real input elements (half decimal
// fields, half checkboxes). And a script's dialog built from its text, per element, as Qt's .ui
// loader builds the same grid of labels and spin boxes.

#include <QFile>

#include "bench_main.h"
#include "dialog_test_element.h"
#include "menu/msys_script/msys_dialog_definition.h"
#include "menu/msys_script/msys_dlg_user_defined.h"

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

// A grid of `elements` in two columns: a label, then a decimal field, per row.
QByteArray labelsAndNumbers(int elements)
{
  const int rows = elements / 2;
  QString text = QStringLiteral(
                     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<dialog>\n <title>Bench dialog</title>\n"
                     " <style>Standard</style>\n <control id=\"OkCancel\"/>\n <position>automatic</position>\n"
                     " <embedding>always_toplevel</embedding>\n <sizemode>automatic</sizemode>\n"
                     " <size width=\"0\" height=\"0\"/>\n <content rows=\"%1\" columns=\"2\">\n")
                     .arg(rows);
  for (int row = 0; row < rows; ++row)
    text += QStringLiteral(
                "  <widget type=\"label\" row=\"%1\" column=\"0\" rowspan=\"1\" columnspan=\"1\">\n"
                "   <name>label_%1</name>\n   <tooltip>Tool tip of parameter %1</tooltip>\n"
                "   <text>Parameter %1 [mm]</text>\n  </widget>\n"
                "  <widget type=\"input::number\" row=\"%1\" column=\"1\" rowspan=\"1\" columnspan=\"1\">\n"
                "   <name>number_%1</name>\n   <tooltip></tooltip>\n   <value>%2</value>\n"
                "   <minimum>-1000</minimum>\n   <maximum>1000</maximum>\n   <precision>3</precision>\n"
                "   <background_style></background_style>\n  </widget>\n")
                .arg(row)
                .arg(row * 0.5);
  return (text + QStringLiteral(" </content>\n</dialog>\n")).toUtf8();
}

// The definition of `elements` from the folder that ZUT_BENCH_DIALOGS names (dialog_<N>.xml), so
// that the figure stands beside the .ui loader's on the same dialog; else the labels and numbers.
QByteArray dialogDefinition(int elements)
{
  const QString folder = qEnvironmentVariable("ZUT_BENCH_DIALOGS");
  if (folder.isEmpty())
    return labelsAndNumbers(elements);
  QFile file(QStringLiteral("%1/dialog_%2.xml").arg(folder).arg(elements));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// From the definition's bytes to the dialog with every element built and in its grid, not shown:
// what the .ui loader's load() does. Closing the dialog is not counted.
void BM_BuildDialog(benchmark::State& state)
{
  TestElement::registryWithTestElement();
  const int elements = static_cast<int>(state.range(0));
  const QByteArray bytes = dialogDefinition(elements);
  if (bytes.isEmpty()) {
    state.SkipWithError("no definition");
    return;
  }
  try {
    const std::unique_ptr<DialogDefinition> definition = DialogDefinition::read(QString::fromUtf8(bytes));
    if (definition->getCells().size() != static_cast<size_t>(elements)) {
      state.SkipWithError("the definition does not hold the number of elements asked for");
      return;
    }
    QCoreApplication::sendPostedEvents();
  } catch (const Xml::ParseException& fault) {
    static std::string message;
    message = fault.getParseMessage().toStdString();
    state.SkipWithError(message.c_str());
    return;
  }
  for (auto _ : state) {
    auto* dialog = new UserDefinedDialog(QString::fromUtf8(bytes));
    benchmark::DoNotOptimize(dialog);
    // Its widgets' requests are handled first, as the event loop would: left queued, each widget
    // destroyed would search them all.
    state.PauseTiming();
    QCoreApplication::sendPostedEvents();
    delete dialog;
    state.ResumeTiming();
  }
  state.counters["per_element"] =
      benchmark::Counter(elements, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

// Wall time, as the .ui loader's figure is.
BENCHMARK(BM_BuildDialog)->Arg(20)->Arg(200)->Arg(1000)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadDefinition)->Arg(20)->Arg(200)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadInputDefinition)->Arg(20)->Arg(200)->Arg(1000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
  Vel::GApp::prepareGuiEnvironment();
  QApplication application(argc, argv);
  runBenchmarks(argc, argv);
  return 0;
}
