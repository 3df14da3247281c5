#include <pybind11/eval.h>
#include <pybind11/pybind11.h>

#include <QApplication>
#include <QCheckBox>
#include <QDomDocument>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>
#include <functional>
#include <optional>

#include "dialog_test_tools.h"
#include "gscript/python_interpreter.h"
#include "gtools/file_dialog.h"
#include "menu/msys_script/msys_dialog_file_widget.h"
#include "menu/msys_script/msys_value_limits.h"

using namespace Vel::MSysScript;
using Vel::GTools::FileDialog;
using TestElement::xmlOf;

namespace {

std::unique_ptr<FileWidget> parsed(const QString& tags, const QString& name = QStringLiteral("f"))
{
  return TestElement::parsed<FileWidget>(FileWidget::TYPE_ID, tags, name);
}

// Everything the element holds on one line, so that a table can say what it expects.
QString describe(const FileWidget* widget)
{
  const Vel_FileSelect* select = widget->selector();
  QStringList types;
  for (const Vel_FileSelect::FileType& type : select->getFileTypes())
    types << type.pattern + '=' + type.description;
  return QStringLiteral("%1|%2|%3|%4|%5|%6|%7")
      .arg(widget->__getattr__(QStringLiteral("type")).toString(), select->getTitle(),
           widget->__getattr__(QStringLiteral("default")).toString(), widget->getValue().toString(),
           select->isLimited() ? "limited" : "free", types.join(','), select->getDefaultFileType());
}

const char* BARE = "any|Select File|||free||";

// ---------------------------------------------------------------------------------------------
// What is read is written, reads back the same and is written the same again; a definition
// without tags gives the defaults, whatever the element held.

struct TagCase
{
  const char* what;
  const char* tags;
  const char* expected;
};

class FileTags : public ::testing::TestWithParam<TagCase>
{};

TEST_P(FileTags, ReadWriteReadAgainAndDefaults)
{
  const TagCase& c = GetParam();
  auto widget = parsed(QString::fromUtf8(c.tags));
  EXPECT_EQ(describe(widget.get()), QString::fromUtf8(c.expected));
  EXPECT_EQ(widget->__repr__(), QStringLiteral("zut.dialog.FileWidget (name='f')"));

  const QString written = xmlOf(widget.get());
  QDomDocument document;
  ASSERT_TRUE(document.setContent(written));
  FileWidget again;
  again.parseXml(document.documentElement());
  EXPECT_EQ(describe(&again), QString::fromUtf8(c.expected));
  EXPECT_EQ(xmlOf(&again), written);

  QDomDocument bare;
  bare.setContent(QStringLiteral("<widget><name>f</name></widget>"));
  again.parseXml(bare.documentElement());
  EXPECT_EQ(describe(&again), QString::fromLatin1(BARE));
}

INSTANTIATE_TEST_SUITE_P(
    Tags, FileTags,
    ::testing::Values(
        TagCase{"everything",
                "<type>file</type><title>Open plan</title><default>/data/a.plan</default><limited>true</limited>"
                "<file_types><file_type><name>*.plan *.pln</name><description>Plans</description></file_type>"
                "<file_type><name>*.stl</name><description>STL files</description></file_type></file_types>"
                "<file_types_default>*.stl</file_types_default>",
                "file|Open plan|/data/a.plan|/data/a.plan|limited|*.plan *.pln=Plans,*.stl=STL files|*.stl"},
        TagCase{"new", "<type>new</type><title>Save report as</title>", "new|Save report as|||free||"},
        TagCase{"directory_without_description",
                "<type>directory</type><default>/data</default>"
                "<file_types><file_type><name>*.txt</name></file_type></file_types>",
                "directory|Select File|/data|/data|free|*.txt=|"}),
    [](const ::testing::TestParamInfo<TagCase>& info) { return std::string(info.param.what); });

TEST(FileWidget, AFaultyDefinitionLeavesTheElementAsItWas)
{
  auto widget = parsed(QStringLiteral("<type>file</type><title>Open plan</title>"));
  const QString before = xmlOf(widget.get());
  for (const char* tags :
       {"<type>folder</type>", "<file_types><file_type><description>Plans</description></file_type></file_types>"}) {
    QDomDocument document;
    document.setContent(QStringLiteral("<widget><name>other</name><tooltip>t</tooltip>%1</widget>").arg(tags));
    EXPECT_THROW(widget->parseXml(document.documentElement()), Xml::ParseException) << tags;
    EXPECT_EQ(xmlOf(widget.get()), before) << tags;
  }
}

// ---------------------------------------------------------------------------------------------
// The checks run in order: the name, file types promised but missing, the dialog's title, and
// the pattern of every file type, naming its first faulty part.

struct CheckCase
{
  QString name;
  QString tags;
  QString error;  // empty: the element is fine
};

class FileChecks : public ::testing::TestWithParam<CheckCase>
{};

TEST_P(FileChecks, ReportTheFirstFault)
{
  auto widget = parsed(GetParam().tags, GetParam().name);
  QString error;
  EXPECT_EQ(widget->checkConfiguration(&error), GetParam().error.isEmpty());
  EXPECT_EQ(error, GetParam().error);
}

QString patternFault(const QString& part)
{
  return QStringLiteral("The file extension %1 is invalid. Make sure that an asterisk was entered directly before the "
                        "file extension. Enter one file extension only or separate several file extensions by a space.")
      .arg(part);
}

QString types(const QStringList& names)
{
  QString text;
  for (const QString& name : names)
    text += QStringLiteral("<file_type><name>%1</name></file_type>").arg(name);
  return QStringLiteral("<file_types>%1</file_types>").arg(text);
}

const QString LIMITED_EMPTY = QStringLiteral("The object \"f\" is limited but you have not yet specified the file types.");
const QString TITLE_EMPTY = QStringLiteral("For the object \"f\", the title of the file selection dialog is empty.");
const QString BLANK_TITLE = QStringLiteral("<title><![CDATA[  \t ]]></title>");
const QString LIMITED = QStringLiteral("<limited>true</limited>");

INSTANTIATE_TEST_SUITE_P(
    Order, FileChecks,
    ::testing::Values(CheckCase{"f", "", ""},
                      CheckCase{"", LIMITED + BLANK_TITLE, "The name for the GUI element is missing."},
                      CheckCase{"f", LIMITED, LIMITED_EMPTY}, CheckCase{"f", LIMITED + BLANK_TITLE, LIMITED_EMPTY},
                      CheckCase{"f", BLANK_TITLE, TITLE_EMPTY}, CheckCase{"f", BLANK_TITLE + types({"txt"}), TITLE_EMPTY},
                      CheckCase{"f", types({"*.txt *.csv"}), ""}, CheckCase{"f", types({"*."}), ""},
                      CheckCase{"f", types({"*.txt,*.csv"}), patternFault("*.txt,*.csv")},
                      CheckCase{"f", types({"txt"}), patternFault("txt")},
                      CheckCase{"f", types({"a*.txt"}), patternFault("a*.txt")},
                      CheckCase{"f", types({"*.stl", "*.txt  csv *.x;y"}), patternFault("csv")},
                      // '$' matches before a closing line break; the part still does not end there.
                      CheckCase{"f", types({"*.txt&#10;"}), patternFault("*.txt\n")}));

// ---------------------------------------------------------------------------------------------
// Scripts: what they write reaches the selector; a refusal says why and changes nothing.

struct ScriptCase
{
  const char* what;
  std::function<void(DialogWidget*)> act;
  QString outcome;  // the element described afterwards, or the refusal's message
};

class FileScripts : public ::testing::TestWithParam<ScriptCase>
{};

TEST_P(FileScripts, WriteOrAreRefusedWithoutAChange)
{
  Vel::GScript::PythonInterpreter::initialize();
  auto widget = parsed(QStringLiteral("<type>file</type>") + types({"*.plan"}));
  const QString before = xmlOf(widget.get());
  try {
    GetParam().act(widget.get());
  } catch (const Vel::ScriptTypeException& error) {
    EXPECT_EQ(error.getMessage(), GetParam().outcome);
    EXPECT_EQ(xmlOf(widget.get()), before);
    return;
  }
  EXPECT_EQ(describe(widget.get()), GetParam().outcome);
}

std::function<void(DialogWidget*)> assign(const char* attribute, const QVariant& value)
{
  return [=](DialogWidget* widget) { widget->__setattr__(QString::fromLatin1(attribute), value); };
}

std::function<void(DialogWidget*)> limit(std::shared_ptr<ValueLimits> limits)
{
  return [=](DialogWidget* widget) { widget->setValueLimits(*limits); };
}

// As a script's `element.limits = ...` hands its object over.
std::function<void(DialogWidget*)> pythonLimits(const char* expression)
{
  return [=](DialogWidget* widget) {
    const pybind11::object object = pybind11::eval(expression);
    widget->__setattr__(QStringLiteral("limits"), QVariant::fromValue(Vel::GScript::PythonCallable(object.ptr())));
  };
}

QVariantList pair(const char* first, const char* second)
{
  return {QString::fromLatin1(first), QString::fromLatin1(second)};
}

const QString WRONG_TYPE = QStringLiteral("The value has not the expected type.");
const QString TUPLE = QStringLiteral("A tuple is expected.");

INSTANTIATE_TEST_SUITE_P(
    Attributes, FileScripts,
    ::testing::Values(
        ScriptCase{"type", assign("type", QStringLiteral("new")), "new|Select File|||free|*.plan=|"},
        ScriptCase{"default_is_shown", assign("default", QStringLiteral("/d")), "file|Select File|/d|/d|free|*.plan=|"},
        ScriptCase{"limited", assign("limited", true), "file|Select File|||limited|*.plan=|"},
        // Tuples arrive as lists.
        ScriptCase{"types", assign("file_types", QVariantList{pair("*.a", "A"), pair("*.b *.c", "B")}),
                   "file|Select File|||free|*.a=A,*.b *.c=B|"},
        ScriptCase{"limits", pythonLimits("{'extensions': ['stl', '.step', '*.igs'], 'limited': True}"),
                   "file|Select File|||limited|*.stl=STL files,*.step=STEP files,*.igs=IGS files|"},
        ScriptCase{"mode_word", assign("type", QStringLiteral("File")), "The file mode \"File\" is invalid."},
        ScriptCase{"types_text", assign("file_types", QStringLiteral("*.stl")), WRONG_TYPE},
        // The good first entry is not kept either.
        ScriptCase{"types_entry_text", assign("file_types", QVariantList{pair("*.a", "A"), QStringLiteral("*.b")}),
                   TUPLE},
        ScriptCase{"types_entry_numbers", assign("file_types", QVariantList{QVariantList{1, 2}}), TUPLE},
        ScriptCase{"limits_numeric", pythonLimits("(0.0, 1.0)"), WRONG_TYPE},
        ScriptCase{"limits_none", limit(std::make_shared<EmptyValueLimits>()), WRONG_TYPE},
        ScriptCase{"limits_spaced_extension",
                   limit(std::make_shared<FileTypeValueLimits>(false, QStringList{"a", "b c"})), patternFault("c")}),
    [](const ::testing::TestParamInfo<ScriptCase>& info) { return std::string(info.param.what); });

TEST(FileWidget, LimitsReadBackEveryPatternWithoutItsAsteriskAndDot)
{
  auto widget = parsed(LIMITED + types({"*.txt  *.csv", "*."}));
  EXPECT_EQ(widget->__getattr__(QStringLiteral("limits")),
            QVariant(QVariantMap{{"limited", true}, {"extensions", QVariantList{"txt", "csv", ""}}}));
  EXPECT_TRUE(widget->__doc__().contains(QStringLiteral("type str - File selector type (any, new, file, directory)")));
}

// ---------------------------------------------------------------------------------------------

// A person browses: the host file dialog is asked as the element says, and the choice becomes
// the value and a change of the element.
TEST(FileWidget, BrowsingChangesTheValueAsAPersonsEdit)
{
  auto widget = parsed(QStringLiteral("<type>new</type><title>Save report as</title><default>/data/r.txt</default>"
                                      "<limited>true</limited><file_types>"
                                      "<file_type><name>*.txt</name><description>Reports</description></file_type>"
                                      "</file_types><file_types_default>*.txt</file_types_default>"));
  widget->show();
  QSignalSpy modified(widget.get(), &DialogWidget::signalModified);
  std::optional<FileDialog::Request> asked;
  FileDialog::setRequestHandler([&](const FileDialog::Request& request) {
    asked = request;
    return QStringList{QStringLiteral("/data/r2.txt")};
  });
  QTest::mouseClick(widget->selector()->browseButton(), Qt::LeftButton);
  FileDialog::setRequestHandler(nullptr);
  ASSERT_TRUE(asked);
  EXPECT_EQ(QStringList({QString::number(asked->mode), asked->title, asked->types.join(';'), asked->start, asked->selected}),
            QStringList({QString::number(FileDialog::Save), "Save report as", "Reports (*.txt)", "/data/r.txt",
                         "Reports (*.txt)"}));
  EXPECT_EQ(describe(widget.get()), QStringLiteral("new|Save report as|/data/r.txt|/data/r2.txt|limited|*.txt=Reports|*.txt"));
  ASSERT_EQ(modified.count(), 1);
  EXPECT_EQ(modified[0][0].value<DialogWidget*>(), widget.get());
}

// ---------------------------------------------------------------------------------------------

// The panel shows the element; its file-type table takes the rows with a pattern and the
// flag on OK and keeps what was there on Cancel; apply writes everything back.
TEST(FileConfiguration, PanelAndFileTypeTableEditTheElement)
{
  std::unique_ptr<ElementConfiguration> panel(
      TestElement::registryWithTestElement()->getWidgetCreator(FileWidget::TYPE_ID)->createConfiguration(nullptr));
  QStringList labels;
  for (const Property* property : panel->getProperties())
    labels << property->getName();
  EXPECT_EQ(labels.mid(3), QStringList({"File", "Type", "Dialog title", "Default file", "Edit file types"}));
  auto widget = parsed(QStringLiteral("<type>directory</type><title>Data</title><file_types><file_type>"
                                      "<name>*.plan</name><description>Plans</description></file_type></file_types>"));
  panel->setup(widget.get());
  Property* property = panel->getProperties().back();
  EXPECT_EQ(static_cast<FileProperty*>(panel->getProperties()[6])->getFileType(), FileProperty::File::Directory);
  QWidget parent;
  QWidget* editor = property->createEditor(&parent);
  ASSERT_EQ(editor->objectName(), QStringLiteral("VelMSysScript_FileLimit_widget"));
  property->setActiveEditor(editor);
  property->updateEditor(editor);
  auto* preview = editor->findChild<QLabel*>(QStringLiteral("_preview"));
  EXPECT_EQ(preview->text(), QStringLiteral("*.plan (Plans)"));
  QSignalSpy modified(property, &Property::signalModified);

  const auto edit = [&](std::function<void(FileTypeTableDialog*)> act) {
    QTimer::singleShot(0, [&] {
      if (auto* dialog = qobject_cast<FileTypeTableDialog*>(QApplication::activeModalWidget()))
        act(dialog);
    });
    QTest::mouseClick(editor->findChild<QToolButton*>(QStringLiteral("_edit")), Qt::LeftButton);
  };
  edit([](FileTypeTableDialog* dialog) {
    QTableWidget* table = dialog->table();
    dialog->findChild<QPushButton*>(QStringLiteral("_add"))->click();
    // The new row's pattern is ready to be typed.
    auto* typing = table->findChild<QLineEdit*>();
    ASSERT_TRUE(typing);
    QTest::keyClicks(typing, " *.txt *.csv ");
    table->item(1, 1)->setText(QStringLiteral("Tables"));
    dialog->findChild<QPushButton*>(QStringLiteral("_add"))->click();  // left empty: dropped
    table->setCurrentCell(0, 0);
    dialog->findChild<QPushButton*>(QStringLiteral("_remove"))->click();
    dialog->findChild<QCheckBox*>(QStringLiteral("_limited"))->setChecked(true);
    if (!qEnvironmentVariableIsEmpty("ZUT_TEST_SCREENSHOTS"))
      dialog->grab().save(qEnvironmentVariable("ZUT_TEST_SCREENSHOTS") + QStringLiteral("/file_types_table.png"));
    dialog->accept();
  });
  edit([](FileTypeTableDialog* dialog) {
    dialog->findChild<QPushButton*>(QStringLiteral("_add"))->click();
    dialog->table()->item(1, 0)->setText(QStringLiteral("*.lost"));
    dialog->reject();
  });
  EXPECT_EQ(modified.count(), 1);
  EXPECT_EQ(preview->text(), QStringLiteral("*.txt *.csv (Tables)"));
  EXPECT_EQ(PropertyEditorModel::valueText(property->getValue()), preview->text());

  auto other = parsed(QString());
  panel->apply(other.get());
  EXPECT_TRUE(panel->getApplyErrors().isEmpty()) << panel->getApplyErrors().join('\n').toStdString();
  EXPECT_EQ(describe(other.get()), QStringLiteral("directory|Data|||limited|*.txt *.csv=Tables|"));
}

}  // namespace
