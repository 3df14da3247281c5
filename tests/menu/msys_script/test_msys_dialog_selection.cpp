#include <pybind11/eval.h>

#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QDir>
#include <QDomDocument>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <tuple>

#include "cfg/cfg.h"
#include "core/prog_error.h"
#include "dialog_test_tools.h"
#include "gapp/interaction.h"
#include "gscript/python_interpreter.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dialog_definition.h"
#include "menu/msys_script/msys_dialog_list_widget.h"
#include "menu/msys_script/msys_dialog_radio_buttons.h"

using namespace Vel::MSysScript;
using namespace TestElement;

namespace {

const QString LIST = QStringLiteral("input::list");
const QString RADIO = QStringLiteral("input::radiobutton");
const char* WRONG_TYPE = "The value has not the expected type.";

const char* THREE_ENTRIES = "<items><item>Gauss</item><item>Minimum zone</item><item>Chebyshev</item></items>";
const char* THREE_BUTTONS = "<items><item state=\"G\" description=\"Gauss\"/><item state=\"M\" description=\"Minimum "
                            "zone\"/><item state=\"C\" description=\"Chebyshev\"/></items>";

QString withEntries(const char* more = "")
{
  return QString::fromLatin1(THREE_ENTRIES) + QString::fromLatin1(more);
}

QString withButtons(const char* more = "")
{
  return QString::fromLatin1(THREE_BUTTONS) + QString::fromLatin1(more);
}

// ---------------------------------------------------------------------------------------------
// A definition with the tags, what it prints, what it prints after writing and reading again,
// and what the same element prints after a definition without any of them.

struct TagCase
{
  const char* what;
  QString type;
  QString tags;
  QString full;
};

class SelectionTags : public ::testing::TestWithParam<TagCase>
{};

TEST_P(SelectionTags, ReadPrintWriteAndDefaults)
{
  const TagCase& c = GetParam();
  std::unique_ptr<DialogWidget> widget = parsed(c.type, c.tags);
  EXPECT_EQ(widget->__repr__(), c.full);

  const QString written = xmlOf(widget.get());
  QDomDocument document;
  ASSERT_TRUE(document.setContent(written));
  std::unique_ptr<DialogWidget> again = create(c.type);
  again->parseXml(document.documentElement());
  EXPECT_EQ(again->__repr__(), c.full);
  EXPECT_EQ(xmlOf(again.get()), written);

  parse(widget.get(), QString());
  EXPECT_EQ(widget->__repr__(), c.type == LIST ? QStringLiteral("zut.dialog.ListWidget (value='', items=[])")
                                               : QStringLiteral("zut.dialog.RadioButtonWidget (name='n', value='', items=[])"));
}

INSTANTIATE_TEST_SUITE_P(
    Types, SelectionTags,
    ::testing::Values(
        TagCase{"List", LIST, withEntries("<default>Chebyshev</default>"),
                "zut.dialog.ListWidget (value='Chebyshev', items=['Gauss', 'Minimum zone', 'Chebyshev'])"},
        TagCase{"ListQuotesItsTexts", LIST,
                QStringLiteral("<items><item>it's</item><item>a \\ b</item></items><default>a \\ b</default>"),
                "zut.dialog.ListWidget (value='a \\\\ b', items=['it\\'s', 'a \\\\ b'])"},
        // A default that is no entry keeps the combo box's own choice, the first entry.
        TagCase{"ListDefaultNotAnEntry", LIST, withEntries("<default>Least squares</default>"),
                "zut.dialog.ListWidget (value='Gauss', items=['Gauss', 'Minimum zone', 'Chebyshev'])"},
        TagCase{"ListNotLimited", LIST, withEntries("<default>Least squares</default><limited>false</limited>"),
                "zut.dialog.ListWidget (value='Least squares', items=['Gauss', 'Minimum zone', 'Chebyshev'])"},
        TagCase{"Radio", RADIO, withButtons("<default>M</default>"),
                "zut.dialog.RadioButtonWidget (name='n', value='M', items=['G', 'M', 'C'])"},
        TagCase{"RadioWithoutDefault", RADIO, withButtons(),
                "zut.dialog.RadioButtonWidget (name='n', value='G', items=['G', 'M', 'C'])"}),
    [](const ::testing::TestParamInfo<TagCase>& info) { return std::string(info.param.what); });

TEST(SelectionWidgets, ADefinitionThatDoesNotReadChangesNothing)
{
  for (const auto& [type, tags] : {std::pair{LIST, QStringLiteral("<items><item>x</item></items><limited>no</limited>")},
                                   std::pair{RADIO, QStringLiteral("<items><item description=\"X\"/></items>")},
                                   std::pair{RADIO, withButtons("<default>X</default>")}}) {
    auto widget = parsed(type, type == LIST ? withEntries("<default>Chebyshev</default>") : withButtons());
    const QString before = xmlOf(widget.get());
    QDomDocument document;
    document.setContent(QStringLiteral("<widget><name>other</name><tooltip>t</tooltip>%1</widget>").arg(tags));
    EXPECT_THROW(widget->parseXml(document.documentElement()), Xml::ParseException) << tags.toStdString();
    EXPECT_EQ(xmlOf(widget.get()), before);
  }
}

// ---------------------------------------------------------------------------------------------

struct AttributeCase
{
  QString type;
  QString tags;
  const char* attribute;
  QVariant written;
  QString printed;
  std::optional<QVariant> read = std::nullopt;  // none: reads back as written
};

class SelectionAttributes : public ::testing::TestWithParam<AttributeCase>
{};

TEST_P(SelectionAttributes, WriteAndReadBack)
{
  const AttributeCase& c = GetParam();
  std::unique_ptr<DialogWidget> widget = parsed(c.type, c.tags);
  widget->__setattr__(QString::fromLatin1(c.attribute), c.written);
  EXPECT_EQ(widget->__getattr__(QString::fromLatin1(c.attribute)), c.read.value_or(c.written)) << c.attribute;
  EXPECT_EQ(widget->__repr__(), c.printed);
}

QVariantList pairs(std::initializer_list<std::pair<const char*, const char*>> items)
{
  QVariantList list;
  for (const auto& [state, description] : items)
    list << QVariant(QVariantList{QString::fromLatin1(state), QString::fromLatin1(description)});
  return list;
}

INSTANTIATE_TEST_SUITE_P(
    Types, SelectionAttributes,
    ::testing::Values(
        AttributeCase{LIST, withEntries(), "default", QStringLiteral("Minimum zone"),
                      "zut.dialog.ListWidget (value='Minimum zone', items=['Gauss', 'Minimum zone', 'Chebyshev'])"},
        // New entries: the selection starts again at the first.
        AttributeCase{LIST, withEntries("<default>Chebyshev</default>"), "items",
                      QVariantList{QStringLiteral("Left"), QStringLiteral("Chebyshev")},
                      "zut.dialog.ListWidget (value='Left', items=['Left', 'Chebyshev'])",
                      QStringList{QStringLiteral("Left"), QStringLiteral("Chebyshev")}},
        AttributeCase{LIST, withEntries(), "items", QVariantList(), "zut.dialog.ListWidget (value='', items=[])",
                      QStringList()},
        AttributeCase{RADIO, withButtons(), "value", QStringLiteral("C"),
                      "zut.dialog.RadioButtonWidget (name='n', value='C', items=['G', 'M', 'C'])"},
        // The checked state stays checked when the new buttons have it ...
        AttributeCase{RADIO, withButtons("<default>M</default>"), "items",
                      pairs({{"X", "Extra"}, {"M", "Minimum zone"}}),
                      "zut.dialog.RadioButtonWidget (name='n', value='M', items=['X', 'M'])"},
        // ... and the first is checked when they do not.
        AttributeCase{RADIO, withButtons("<default>M</default>"), "items", pairs({{"X", "Extra"}, {"Y", "Why"}}),
                      "zut.dialog.RadioButtonWidget (name='n', value='X', items=['X', 'Y'])"}));

struct RefusalCase
{
  QString type;
  const char* attribute;
  QVariant value;
  const char* message;
};

class SelectionRefusals : public ::testing::TestWithParam<RefusalCase>
{};

TEST_P(SelectionRefusals, LeaveTheElementAsItWas)
{
  const RefusalCase& c = GetParam();
  std::unique_ptr<DialogWidget> widget =
      parsed(c.type, c.type == LIST ? withEntries("<default>Minimum zone</default>") : withButtons("<default>M</default>"));
  const QString before = xmlOf(widget.get());
  try {
    widget->__setattr__(QString::fromLatin1(c.attribute), c.value);
    FAIL() << "taken: " << c.attribute;
  } catch (const Vel::ScriptTypeException& error) {
    EXPECT_EQ(error.getMessage(), QString::fromUtf8(c.message));
  }
  EXPECT_EQ(xmlOf(widget.get()), before);
}

INSTANTIATE_TEST_SUITE_P(
    Types, SelectionRefusals,
    ::testing::Values(
        RefusalCase{LIST, "value", QStringLiteral("Least squares"), "\"Least squares\" is not a list member."},
        RefusalCase{LIST, "value", 1, WRONG_TYPE},
        RefusalCase{LIST, "items", QStringLiteral("Gauss"), WRONG_TYPE},
        RefusalCase{LIST, "items", QVariantList{QStringLiteral("Gauss"), 2.5}, WRONG_TYPE},
        RefusalCase{RADIO, "value", QStringLiteral("Gauss"), "There is no radiobutton with the name \"Gauss\"."},
        RefusalCase{RADIO, "items", QVariantList{QStringLiteral("A"), QStringLiteral("B")}, "A tuple is expected."},
        RefusalCase{RADIO, "items", QVariant(QVariantList{QVariantList{QStringLiteral("A")}}), "A tuple is expected."},
        RefusalCase{RADIO, "items", QVariant(QVariantList{QVariantList{QStringLiteral("A"), 1}}), WRONG_TYPE},
        RefusalCase{RADIO, "items", 3, WRONG_TYPE}));

// The check runs over a whole definition and reports the element's line, as lint shows it.
TEST(SelectionWidgets, ARadioGroupWithoutButtonsFailsItsCheckAtItsLine)
{
  const QString text = QStringLiteral(
      "<dialog>\n<title>T</title>\n<control id=\"Close\"/>\n<content rows=\"3\" columns=\"1\">\n"
      "<widget type=\"input::list\" row=\"0\" column=\"0\"><name>l</name></widget>\n"
      "<widget type=\"input::radiobutton\" row=\"1\" column=\"0\">\n<name>method</name>\n</widget>\n"
      "<widget type=\"input::radiobutton\" row=\"2\" column=\"0\"><name>side</name>%1</widget>\n"
      "</content>\n</dialog>\n")
                           .arg(withButtons());
  TestElement::registryWithTestElement();
  const auto faults = DialogDefinition::check(text);
  ASSERT_EQ(faults.size(), 1u);
  EXPECT_EQ(faults[0].line, 6);
  EXPECT_EQ(faults[0].message, QStringLiteral("For object \"method\" no button was added yet."));
}

// A person's picks are changes, a script's are not; the focus goes to the control inside.
TEST(SelectionWidgets, PeoplesChoicesAreModificationsAndTheFocusGoesInside)
{
  QWidget window;
  auto* list = static_cast<ListWidget*>(parsed(LIST, withEntries()).release());
  auto* radio = static_cast<RadioButtonWidget*>(parsed(RADIO, withButtons()).release());
  list->setParent(&window);
  radio->setParent(&window);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  QSignalSpy list_modified(list, &DialogWidget::signalModified);
  QSignalSpy radio_modified(radio, &DialogWidget::signalModified);
  QTest::keyClick(list->comboBox(), Qt::Key_Down);
  QTest::mouseClick(radio->buttons()[2], Qt::LeftButton);
  EXPECT_EQ(list->getValue(), QVariant(QStringLiteral("Minimum zone")));
  EXPECT_EQ(radio->getValue(), QVariant(QStringLiteral("C")));
  radio->__setattr__(QStringLiteral("value"), QStringLiteral("M"));
  list->__setattr__(QStringLiteral("value"), QStringLiteral("Gauss"));
  EXPECT_EQ(list_modified.count(), 1);
  EXPECT_EQ(radio_modified.count(), 1);

  radio->takeFocus();
  EXPECT_TRUE(radio->buttons()[1]->hasFocus());
  EXPECT_EQ(radio->__getattr__(QStringLiteral("focus")), QVariant(true));
  list->takeFocus();
  EXPECT_TRUE(list->comboBox()->hasFocus());
}

TEST(SelectionWidgets, RegisteredUnderTheirCategoriesMadeAndDescribed)
{
  using Category = DialogWidgetCreator::Category;
  DialogRegistry* registry = TestElement::registryWithTestElement();
  QStringList found;
  for (Category::Type_t category : {Category::Buttons, Category::Selection})
    for (const DialogWidgetCreator* creator : registry->getSortedWidgetCreators(category))
      found << creator->getId() + ' ' + creator->getDisplayName() + ' ' + creator->getKeyWord();
  EXPECT_EQ(found, QStringList({"button::pushbutton Button button", "input::radiobutton Radiobutton radiobuttons",
                                "input::list Selection list list"}));

  // A new radio group, as the editor adds it.
  EXPECT_EQ(create(RADIO)->__repr__(),
            QStringLiteral("zut.dialog.RadioButtonWidget (name='', value='ONE', items=['ONE', 'TWO', 'THREE'])"));
  const QString list_doc = create(LIST)->__doc__();
  EXPECT_TRUE(list_doc.contains(QStringLiteral("\nvalue str - ")));
  EXPECT_TRUE(list_doc.endsWith(
      QStringLiteral("\nitems list - List of items\ndefault str - Default entry\nlimits dict - Allowed entries")));
  EXPECT_TRUE(create(RADIO)->__doc__().endsWith(
      QStringLiteral("\nitems list - List of radio button items\ndefault str - Default enabled radio button")));
}

// ---------------------------------------------------------------------------------------------
// Limits as scripts give them: a plain Python object, read by the rules for value limits.

QVariant python(const char* expression)
{
  Vel::GScript::PythonInterpreter::initialize();
  const pybind11::object object = pybind11::eval(expression);
  return QVariant::fromValue(Vel::GScript::PythonCallable(object.ptr()));
}

TEST(ListLimits, AListThatIsNotLimitedTakesAnyTextAndALimitedOneOnlyItsEntries)
{
  auto widget = parsed(LIST, withEntries());
  widget->__setattr__(QStringLiteral("limits"), python("{'limited': False, 'descriptions': ['a', 'b']}"));
  QComboBox* box = static_cast<ListWidget*>(widget.get())->comboBox();
  widget->__setattr__(QStringLiteral("value"), QStringLiteral("free text"));
  EXPECT_EQ(box->lineEdit()->text(), QStringLiteral("free text"));
  EXPECT_EQ(box->count(), 2) << "free text is no new entry";
  EXPECT_EQ(widget->__repr__(), QStringLiteral("zut.dialog.ListWidget (value='free text', items=['a', 'b'])"));
  EXPECT_EQ(widget->__getattr__(QStringLiteral("limits")),
            QVariant(QVariantMap{{QStringLiteral("limited"), false},
                                 {QStringLiteral("descriptions"), QStringList{QStringLiteral("a"), QStringLiteral("b")}}}));
  // A person's typing is a change like a pick.
  QSignalSpy modified(widget.get(), &DialogWidget::signalModified);
  QTest::keyClicks(box->lineEdit(), QStringLiteral("x"));
  EXPECT_EQ(modified.count(), 1);

  widget->__setattr__(QStringLiteral("limits"), python("{'limited': True, 'descriptions': ['c', 'd']}"));
  EXPECT_FALSE(box->isEditable());
  EXPECT_EQ(widget->__repr__(), QStringLiteral("zut.dialog.ListWidget (value='c', items=['c', 'd'])"));
  EXPECT_THROW(widget->__setattr__(QStringLiteral("value"), QStringLiteral("free text")), Vel::ScriptTypeException);
}

TEST(ListLimits, OtherKindsOfLimitsAreRefusedAndChangeNothing)
{
  auto widget = parsed(LIST, withEntries("<default>Chebyshev</default>"));
  const QString before = xmlOf(widget.get());
  for (const char* limits : {"(0.0, 1.0)", "3", "None", "{'limited': True, 'extensions': ['stl']}", "'a'"}) {
    try {
      widget->__setattr__(QStringLiteral("limits"), python(limits));
      ADD_FAILURE() << "taken: " << limits;
    } catch (const Vel::ScriptTypeException& error) {
      EXPECT_EQ(error.getMessage(), QString::fromLatin1(WRONG_TYPE)) << limits;
    }
    EXPECT_EQ(xmlOf(widget.get()), before) << limits;
  }
}

// ---------------------------------------------------------------------------------------------

// The table editor as a person uses it: clicks on its rows and buttons.
class ListEditor : public ::testing::Test
{
protected:
  void open(const QStringList& headers, bool canSelectDefault, const ListEditorDialog::Rows& rows)
  {
    dialog = std::make_unique<ListEditorDialog>(nullptr, headers, 0, canSelectDefault);
    dialog->setValue(rows);
    dialog->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog.get()));
    Vel::GApp::setErrorDialogHandler([this](const QString&, const QString& text) { errors << text; });
  }
  void TearDown() override { Vel::GApp::setErrorDialogHandler(nullptr); }

  QPushButton* button(const char* name) const { return dialog->findChild<QPushButton*>(QString::fromLatin1(name)); }
  void click(const char* name) const { QTest::mouseClick(button(name), Qt::LeftButton); }
  void clickRow(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
  {
    QTableWidget* table = dialog->table();
    const QRect cell = table->visualItemRect(table->item(row, 0));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, modifiers, cell.center());
  }
  // Which of add, remove, up, down can be pressed.
  std::string enabled() const
  {
    std::string flags;
    for (const char* name : {"_add", "_remove", "_up", "_down"})
      flags += button(name)->isEnabled() ? '1' : '0';
    return flags;
  }

  std::unique_ptr<ListEditorDialog> dialog;
  QStringList errors;
};

ListEditorDialog::Rows single(std::initializer_list<const char*> texts)
{
  ListEditorDialog::Rows rows;
  for (const char* text : texts)
    rows << QStringList{QString::fromLatin1(text)};
  return rows;
}

TEST_F(ListEditor, ButtonsFollowTheSelectionAndMoveOneRowAtATime)
{
  open({QStringLiteral("Entries")}, false, single({"a", "b"}));
  EXPECT_EQ(enabled(), "1000");
  clickRow(0);
  click("_add");
  QWidget* cell = dialog->table()->viewport()->focusWidget();
  ASSERT_NE(cell, nullptr) << "the new row is open for typing";
  QTest::keyClicks(cell, QStringLiteral("new"));
  QTest::keyClick(cell, Qt::Key_Return);
  QCoreApplication::processEvents();  // the view takes the typed text once the key is handled
  EXPECT_EQ(dialog->getValue(), QStringList({"a", "new", "b"})) << "added after the selected row";
  EXPECT_EQ(enabled(), "1111");
  click("_up");
  click("_up");
  EXPECT_EQ(dialog->getValue(), QStringList({"new", "a", "b"}));
  EXPECT_EQ(enabled(), "1101") << "the first row cannot move up";
  click("_down");
  click("_down");
  EXPECT_EQ(dialog->getValue(), QStringList({"a", "b", "new"}));
  EXPECT_EQ(enabled(), "1110") << "the last row cannot move down";
  clickRow(0, Qt::ControlModifier);
  EXPECT_EQ(enabled(), "0100") << "two rows: only remove";
  click("_remove");
  EXPECT_EQ(dialog->getValue(), QStringList({"b"}));
  EXPECT_EQ(enabled(), "1100");
  click("_remove");
  EXPECT_EQ(enabled(), "1000");
  click("_add");
  EXPECT_EQ(dialog->getValue(), QStringList({""})) << "without a selection: at the end";
}

// With ZUT_TEST_SCREENSHOTS set, the editor of radio buttons is kept as a picture.
TEST_F(ListEditor, AcceptingNeedsADefaultWhereOneMayBeChosen)
{
  open({QStringLiteral("State"), QStringLiteral("Description")}, true,
       {{QStringLiteral("G"), QStringLiteral("Gauss")},
        {QStringLiteral("M"), QStringLiteral("Minimum zone")},
        {QStringLiteral("C"), QStringLiteral("Chebyshev")}});
  auto* choice = dialog->findChild<QComboBox*>(QStringLiteral("_default"));
  ASSERT_NE(choice, nullptr);
  click("_ok");
  EXPECT_EQ(errors, QStringList{QStringLiteral("Please define a default display.")});
  EXPECT_TRUE(dialog->isVisible());

  choice->setCurrentIndex(1);
  Q_EMIT choice->activated(1);
  EXPECT_EQ(dialog->getDefaultValue(), QStringLiteral("M"));
  EXPECT_EQ(choice->currentText(), QStringLiteral("M (Minimum zone)")) << "a state reads with its description";
  clickRow(1);
  if (const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS"); !folder.isEmpty())
    dialog->grab().save(QDir(folder).filePath(QStringLiteral("list_editor.png")));
  // The choice goes with its row, and goes when its row goes.
  click("_down");
  EXPECT_EQ(dialog->getDefaultValue(), QStringLiteral("M"));
  EXPECT_EQ(choice->currentIndex(), 2);
  click("_remove");
  EXPECT_EQ(dialog->getDefaultValue(), QString());
  EXPECT_EQ(choice->currentIndex(), -1);

  dialog->setDefaultValue(QStringLiteral("C"));
  click("_ok");
  EXPECT_EQ(dialog->result(), QDialog::Accepted);
  EXPECT_EQ(dialog->getRows(), (ListEditorDialog::Rows{{"G", "Gauss"}, {"C", "Chebyshev"}}));
  EXPECT_EQ(errors.size(), 1);
}

TEST_F(ListEditor, RemembersItsSize)
{
  QTemporaryDir dir;
  Vel::Cfg cfg(dir.filePath(QStringLiteral("config.json")));
  declareConfiguration(cfg.root());
  declareTemplateConfiguration(cfg.root());
  setConfigurationRoot(cfg.root());
  open({QStringLiteral("Entries")}, false, single({"a"}));
  dialog->resize(500, 410);
  click("_cancel");
  EXPECT_EQ(dialog->result(), QDialog::Rejected);
  EXPECT_EQ(cfg.root()->getInt(QString::fromLatin1(CFG_LIST_EDITOR_DIALOG_WIDTH)), 500);
  EXPECT_EQ(cfg.root()->getInt(QString::fromLatin1(CFG_LIST_EDITOR_DIALOG_HEIGHT)), 410);
  ListEditorDialog again(nullptr, {QStringLiteral("Entries")});
  EXPECT_EQ(again.size(), QSize(500, 410));
  setConfigurationRoot(nullptr);
}

// ---------------------------------------------------------------------------------------------
// The properties: a panel with the count of entries that opens the table editor.

struct TablePropertyCase
{
  const char* what;
  std::function<TableProperty*()> make;
  const char* panel;
  QVariant value;
  const char* typed;  // into the first column of a new row
  const char* refusal;
  int completed_column;  // where the refused row is then completed with "Least squares"
  QVariant edited;
};

class TableProperties : public ::testing::TestWithParam<TablePropertyCase>
{};

TEST_P(TableProperties, EditInTheTableEditorAndRefuseIncompleteRows)
{
  const TablePropertyCase& c = GetParam();
  std::unique_ptr<TableProperty> property(c.make());
  QWidget parent;
  QWidget* editor = property->createEditor(&parent);
  ASSERT_EQ(editor->objectName(), QString::fromLatin1(c.panel));
  property->setActiveEditor(editor);
  property->setValue(c.value);
  EXPECT_EQ(editor->findChild<QLabel*>(QStringLiteral("_preview"))->text(), QStringLiteral("2 entries"));

  QStringList errors;
  Vel::GApp::setErrorDialogHandler([&](const QString&, const QString& text) { errors << text; });
  QSignalSpy modified(property.get(), &Property::signalModified);
  bool opened = false;
  QTimer::singleShot(0, [&] {
    auto* dialog = qobject_cast<ListEditorDialog*>(QApplication::activeModalWidget());
    if (!dialog)
      return;
    opened = true;
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("_add")), Qt::LeftButton);
    QTest::keyClicks(dialog->table()->viewport()->focusWidget(), QString::fromLatin1(c.typed));
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("_ok")), Qt::LeftButton);
    EXPECT_EQ(errors, QStringList{QString::fromLatin1(c.refusal)});
    EXPECT_TRUE(dialog->isVisible()) << "the editor stays open";
    dialog->table()->item(2, c.completed_column)->setText(QStringLiteral("Least squares"));
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("_ok")), Qt::LeftButton);
    if (dialog->isVisible())
      dialog->reject();
  });
  QTest::mouseClick(editor->findChild<QToolButton*>(QStringLiteral("_edit")), Qt::LeftButton);
  Vel::GApp::setErrorDialogHandler(nullptr);
  ASSERT_TRUE(opened);
  EXPECT_EQ(modified.count(), 1);
  EXPECT_EQ(property->getValue(), c.edited);
  EXPECT_EQ(editor->findChild<QLabel*>(QStringLiteral("_preview"))->text(), QStringLiteral("3 entries"));
  std::unique_ptr<Property> copy(property->clone());
  EXPECT_EQ(typeid(*copy), typeid(*property));
  EXPECT_EQ(copy->getValue(), c.edited);
}

INSTANTIATE_TEST_SUITE_P(
    Types, TableProperties,
    ::testing::Values(
        TablePropertyCase{"List", [] { return new ListProperty(QStringLiteral("items"), QStringLiteral("Edit list")); },
                          "VelMSysScript_ListProperty_widget", QStringList{"Gauss", "Chebyshev"}, "",
                          "Please enter text.", 0, QStringList{"Gauss", "Chebyshev", "Least squares"}},
        TablePropertyCase{"Radio",
                          [] { return new RadioButtonProperty(QStringLiteral("items"), QStringLiteral("Edit list")); },
                          "VelMSysScript_RadioButtonProperty_widget", pairs({{"G", "Gauss"}, {"C", "Chebyshev"}}), "L",
                          "Please enter a description.", 1,
                          pairs({{"G", "Gauss"}, {"C", "Chebyshev"}, {"L", "Least squares"}})}),
    [](const ::testing::TestParamInfo<TablePropertyCase>& info) { return std::string(info.param.what); });

// The element's default must outlast its entries being written back by the panel, in any order.
TEST(SelectionConfiguration, ApplyKeepsTheDefaultAndTheEntries)
{
  for (const auto& [type, tags, heading] : {std::tuple{LIST, withEntries("<default>Chebyshev</default>"), "Selection list"},
                                            std::tuple{RADIO, withButtons("<default>C</default>"), "Radiobutton"}}) {
    auto widget = parsed(type, tags);
    const QVariant value = widget->getValue();
    std::unique_ptr<ElementConfiguration> panel(
        TestElement::registryWithTestElement()->getWidgetCreator(type)->createConfiguration(nullptr));
    const auto& properties = panel->getProperties();
    ASSERT_EQ(properties.size(), 5u);
    EXPECT_EQ(properties[3]->getName() + '/' + properties[4]->getName(), QString::fromLatin1(heading) + "/Edit list");
    panel->setup(widget.get());
    QVariantList rotated = properties[4]->getValue().toList();
    std::rotate(rotated.begin(), rotated.begin() + 1, rotated.end());
    properties[4]->setValue(type == LIST ? QVariant(QVariant(rotated).toStringList()) : QVariant(rotated));
    panel->apply(widget.get());
    EXPECT_TRUE(panel->getApplyErrors().isEmpty());
    EXPECT_EQ(widget->getValue(), value);
    EXPECT_EQ(widget->__getattr__(QStringLiteral("items")).toList(), rotated);
  }
}

}  // namespace
