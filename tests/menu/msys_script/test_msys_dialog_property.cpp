#include <QApplication>
#include <QCheckBox>
#include <QDateEdit>
#include <QDir>
#include <QDoubleSpinBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <functional>
#include <gtest/gtest.h>

#include "core/color.h"
#include "core/prog_error.h"
#include "gapp/interaction.h"
#include "gtools/file_dialog.h"
#include "gtools/vel_color_button.h"
#include "gtools/vel_combo_box.h"
#include "gtools/vel_spin.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_property_widgets.h"
#include "menu/msys_script/msys_dialog_styles.h"

using namespace Vel::MSysScript;

namespace {

// One property type: how to make it, a value to show, and how a user changes its editor.
struct PropertyCase
{
  const char* what;
  std::function<Property*()> make;
  QVariant value;
  QVariant other;
  std::function<void(QWidget*, const QVariant&)> userSets;
};

class PropertyTypes : public ::testing::TestWithParam<PropertyCase>
{};

TEST_P(PropertyTypes, ShowValuesAndCommitWhatTheUserChanges)
{
  const PropertyCase& c = GetParam();
  std::unique_ptr<Property> property(c.make());
  QWidget parent;
  QWidget* editor = property->createEditor(&parent);
  ASSERT_NE(editor, nullptr);
  property->setActiveEditor(editor);

  property->setValue(c.value);
  EXPECT_EQ(property->commitEditorValue(editor), c.value) << "the editor shows the value";

  QSignalSpy modified(property.get(), &Property::signalModified);
  c.userSets(editor, c.other);
  EXPECT_GE(modified.count(), 1);
  EXPECT_EQ(property->getValue(), c.other);

  // A disabled property shows its disabled value, and its value again when enabled.
  property->setDisabledValue(c.value);
  property->setEnabled(false);
  EXPECT_FALSE(editor->isEnabled());
  EXPECT_EQ(property->commitEditorValue(editor), c.value);
  property->setEnabled(true);
  EXPECT_EQ(property->commitEditorValue(editor), c.other);

  std::unique_ptr<Property> copy(property->clone());
  EXPECT_EQ(typeid(*copy), typeid(*property));
  EXPECT_EQ(copy->getKey(), property->getKey());
  EXPECT_EQ(copy->getValue(), c.other);
  EXPECT_FALSE(copy->hasActiveEditor());

  // An editor of another property's class is a programming error.
  QLabel stranger;
  EXPECT_THROW(property->updateEditorValue(&stranger, c.value), Vel::ProgError);
}

template <class W>
W* as(QWidget* editor)
{
  auto* widget = qobject_cast<W*>(editor);
  EXPECT_NE(widget, nullptr);
  return widget;
}

void pickIndex(QWidget* editor, int index)
{
  auto* box = as<Vel_ComboBox>(editor);
  box->setCurrentIndex(index);
  Q_EMIT box->activated(index);
}

INSTANTIATE_TEST_SUITE_P(
    Types, PropertyTypes,
    ::testing::Values(
        PropertyCase{"Integer",
                     [] {
                       auto* p = new IntegerProperty(QStringLiteral("count"), QStringLiteral("Count"));
                       p->setMinimumValue(-5);
                       p->setMaximumValue(50);
                       return p;
                     },
                     7, 42, [](QWidget* e, const QVariant& v) { as<Vel_Spin>(e)->setValue(v.toInt()); }},
        PropertyCase{"Double",
                     [] {
                       auto* p = new DoubleProperty(QStringLiteral("factor"), QStringLiteral("Factor"));
                       p->setPrecision(3);
                       return p;
                     },
                     1.25, 2.5, [](QWidget* e, const QVariant& v) { as<Vel_Spin>(e)->setValue(v.toDouble()); }},
        PropertyCase{"String", [] { return new StringProperty(QStringLiteral("name"), QStringLiteral("Name")); },
                     QStringLiteral("a"), QStringLiteral("Grüße"),
                     [](QWidget* e, const QVariant& v) { as<QLineEdit>(e)->setText(v.toString()); }},
        PropertyCase{"Bool", [] { return new BoolProperty(QStringLiteral("enabled"), QStringLiteral("Enabled")); },
                     false, true, [](QWidget* e, const QVariant&) { as<QCheckBox>(e)->click(); }},
        PropertyCase{"Color", [] { return new ColorProperty(QStringLiteral("color"), QStringLiteral("Colour")); },
                     QVariant::fromValue(Vel::Color(1, 2, 3)), QVariant::fromValue(Vel::Color(200, 100, 0)),
                     [](QWidget* e, const QVariant& v) { as<Vel_ColorButton>(e)->setColor(v.value<Vel::Color>()); }},
        PropertyCase{"Date", [] { return new DateProperty(QStringLiteral("date"), QStringLiteral("Date")); },
                     QDate(2026, 1, 31), QDate(2026, 11, 23),
                     [](QWidget* e, const QVariant& v) { as<QDateEdit>(e)->setDate(v.toDate()); }},
        PropertyCase{
            "Selector",
            [] {
              return new SelectorProperty(
                  QStringLiteral("mode"), QStringLiteral("Mode"),
                  {{QStringLiteral("Open"), QStringLiteral("open")}, {QStringLiteral("Save"), QStringLiteral("save")}});
            },
            QStringLiteral("open"), QStringLiteral("save"), [](QWidget* e, const QVariant&) { pickIndex(e, 1); }},
        PropertyCase{"Unit", [] { return new UnitProperty(QStringLiteral("unit"), QStringLiteral("Unit")); },
                     QStringLiteral("inch"), QString(), [](QWidget* e, const QVariant&) { pickIndex(e, 0); }},
        PropertyCase{"File", [] { return new FileProperty(QStringLiteral("file"), QStringLiteral("File")); },
                     QStringLiteral("/tmp/a.py"), QString(),
                     [](QWidget* e, const QVariant&) {
                       QTest::mouseClick(e->findChild<QToolButton*>(QStringLiteral("_clear")), Qt::LeftButton);
                     }}),
    [](const ::testing::TestParamInfo<PropertyCase>& info) { return std::string(info.param.what); });

TEST(Property, ClosingTheEditorLeavesTheValueStoredOnly)
{
  StringProperty property(QStringLiteral("name"), QStringLiteral("Name"));
  auto* editor = property.createEditor(nullptr);
  property.setActiveEditor(editor);
  EXPECT_TRUE(property.hasActiveEditor());
  delete editor;
  EXPECT_FALSE(property.hasActiveEditor());
  property.setValue(QStringLiteral("later"));
  EXPECT_EQ(property.getValue(), QVariant(QStringLiteral("later")));
  // A change signal without an editor is a programming error.
  EXPECT_THROW(property.slotModified(), Vel::ProgError);
}

TEST(Property, ASelectorKeepsItsSelectionForAValueNoItemCarries)
{
  SelectorProperty property(QStringLiteral("mode"), QStringLiteral("Mode"),
                            {{QStringLiteral("A"), 1}, {QStringLiteral("B"), 2}, {QStringLiteral("C"), 3}});
  QWidget parent;
  QWidget* editor = property.createEditor(&parent);
  property.setActiveEditor(editor);
  property.setValue(2);
  property.setValue(99);
  EXPECT_EQ(as<Vel_ComboBox>(editor)->currentText(), QStringLiteral("B"));
}

TEST(Property, UnitEditorOffersNoUnitThenEveryUnit)
{
  UnitProperty property(QStringLiteral("unit"), QStringLiteral("Unit"));
  QWidget parent;
  auto* box = as<Vel_ComboBox>(property.createEditor(&parent));
  EXPECT_EQ(box->itemText(0), QStringLiteral("No unit"));
  EXPECT_EQ(box->itemData(0).toString(), QString());
  EXPECT_EQ(box->count(), 2 + static_cast<int>(Vel::Unit::getAvailableUnitsForApplication().size()));
  EXPECT_EQ(box->itemData(2).toString(), QStringLiteral("mm"));
}

TEST(Property, IconPanelLoadsAChosenImageAndReportsOneThatDoesNotLoad)
{
  QTemporaryDir dir;
  const QString good = dir.filePath(QStringLiteral("icon.png"));
  QImage image(8, 4, QImage::Format_ARGB32);
  image.fill(Qt::red);
  ASSERT_TRUE(image.save(good));
  const QString bad = dir.filePath(QStringLiteral("broken.png"));
  QFile(bad).open(QIODevice::WriteOnly);

  IconProperty property(QStringLiteral("icon"), QStringLiteral("Icon"));
  QWidget parent;
  QWidget* editor = property.createEditor(&parent);
  property.setActiveEditor(editor);
  auto* remove = editor->findChild<QToolButton*>(QStringLiteral("_delete"));
  EXPECT_FALSE(remove->isEnabled());

  QString chosen = good;
  QString title;
  Vel::GTools::FileDialog::setHandler([&](auto, const QString& t, const QStringList&) {
    title = t;
    return QStringList{chosen};
  });
  QStringList errors;
  Vel::GApp::setErrorDialogHandler([&](const QString& code, const QString& text) { errors << code + ' ' + text; });
  QTest::mouseClick(editor->findChild<QToolButton*>(QStringLiteral("_select")), Qt::LeftButton);
  EXPECT_EQ(title, QStringLiteral("Select Icon"));
  EXPECT_EQ(property.getValue().value<QImage>().size(), QSize(8, 4));
  EXPECT_TRUE(remove->isEnabled());

  chosen = bad;
  QTest::mouseClick(editor->findChild<QToolButton*>(QStringLiteral("_select")), Qt::LeftButton);
  ASSERT_EQ(errors.size(), 1);
  EXPECT_EQ(errors[0], QStringLiteral("MSysScriptErr-0017 Cannot load the image file \"%1\".").arg(bad));
  EXPECT_EQ(property.getValue().value<QImage>().size(), QSize(8, 4)) << "a failed load changes nothing";

  QTest::mouseClick(remove, Qt::LeftButton);
  EXPECT_TRUE(property.getValue().value<QImage>().isNull());
  EXPECT_FALSE(remove->isEnabled());
  Vel::GTools::FileDialog::setHandler(nullptr);
  Vel::GApp::setErrorDialogHandler(nullptr);
}

// ---------------------------------------------------------------------------------------------

std::vector<Property*> sampleProperties(QObject* owner)
{
  std::vector<Property*> list = {
      new SeparatorProperty(QStringLiteral("General")),
      new StringProperty(QStringLiteral("name"), QStringLiteral("Name")),
      new StringProperty(QStringLiteral("tooltip"), QStringLiteral("Tooltip")),
      new SeparatorProperty(QStringLiteral("Empty")),
      new SeparatorProperty(QStringLiteral("Value")),
      new DoubleProperty(QStringLiteral("value"), QStringLiteral("Value")),
      new UnitProperty(QStringLiteral("unit"), QStringLiteral("Unit")),
      new BoolProperty(QStringLiteral("read_only"), QStringLiteral("Read only")),
      new ColorProperty(QStringLiteral("color"), QStringLiteral("Colour")),
      new TextProperty(QStringLiteral("text"), QStringLiteral("Text")),
      new IconProperty(QStringLiteral("icon"), QStringLiteral("Icon")),
      new FileProperty(QStringLiteral("file"), QStringLiteral("File")),
  };
  for (Property* property : list)
    property->setParent(owner);
  list[1]->setValue(QStringLiteral("diameter"));
  list[2]->setValue(QStringLiteral("Diameter of the bore"));
  list[5]->setValue(12.5);
  list[6]->setValue(QStringLiteral("mm"));
  list[7]->setValue(true);
  list[8]->setValue(QVariant::fromValue(Vel::Color(0, 120, 215)));
  list[9]->setValue(QStringLiteral("<b>Bore</b> check"));
  list[11]->setValue(QStringLiteral("/data/plans/bore.xml"));
  return list;
}

TEST(PropertyEditorModel, BlocksFollowTheirSeparators)
{
  QObject owner;
  PropertyEditorModel model;
  model.setProperties(sampleProperties(&owner));
  ASSERT_EQ(model.rowCount(), 3);
  const QModelIndex general = model.index(0, 0);
  EXPECT_EQ(model.data(general).toString(), QStringLiteral("General"));
  EXPECT_TRUE(model.data(general, Qt::FontRole).value<QFont>().bold());
  EXPECT_EQ(model.rowCount(general), 2);
  EXPECT_EQ(model.rowCount(model.index(1, 0)), 0) << "two separators in a row give an empty block";
  const QModelIndex value_block = model.index(2, 0);
  EXPECT_EQ(model.rowCount(value_block), 7);
  const QModelIndex unit = model.index(1, 1, value_block);
  EXPECT_EQ(model.getProperty(unit)->getKey(), QStringLiteral("unit"));
  EXPECT_EQ(model.parent(unit), value_block);
  EXPECT_EQ(model.data(model.index(0, 1, general)).toString(), QStringLiteral("diameter"));
  EXPECT_EQ(model.data(model.index(4, 1, value_block)).toString(), QStringLiteral("Bore check"));
  EXPECT_TRUE(model.flags(unit) & Qt::ItemIsEditable);
  EXPECT_FALSE(model.flags(model.index(1, 0, value_block)) & Qt::ItemIsEditable);

  model.setProperties({});
  EXPECT_EQ(model.rowCount(), 0);
}

TEST(PropertyEditorModel, AListMustBeginWithASeparator)
{
  QObject owner;
  PropertyEditorModel model;
  model.setProperties(sampleProperties(&owner));
  auto* integer = new IntegerProperty(QStringLiteral("n"), QStringLiteral("N"));
  integer->setParent(&owner);
  try {
    model.setProperties({integer});
    FAIL() << "accepted";
  } catch (const Vel::ProgError& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("The first entry must be a separator"));
  }
  EXPECT_EQ(model.rowCount(), 3) << "a refused list leaves the model as it was";
}

// The editor as a user sees it: a two-column tree with block headings and open editors. With
// ZUT_TEST_SCREENSHOTS set, the picture is kept there.
TEST(PropertyEditorDelegate, EditsValuesInTheTree)
{
  QObject owner;
  const auto properties = sampleProperties(&owner);
  PropertyEditorModel model;
  model.setProperties(properties);
  PropertyEditorDelegate delegate;
  QTreeView view;
  view.setModel(&model);
  view.setItemDelegate(&delegate);
  view.setRootIsDecorated(false);
  view.expandAll();
  view.header()->resizeSection(0, 120);
  view.resize(420, 380);
  const QModelIndex value_block = model.index(2, 0);
  for (int row : {1, 3, 4})
    view.openPersistentEditor(model.index(row, 1, value_block));
  view.openPersistentEditor(model.index(0, 1, model.index(0, 0)));
  view.show();
  QCoreApplication::processEvents();

  EXPECT_TRUE(properties[6]->hasActiveEditor());
  EXPECT_FALSE(properties[5]->hasActiveEditor());
  auto* line = qobject_cast<QLineEdit*>(properties[1]->getActiveEditor());
  ASSERT_NE(line, nullptr);
  line->setText(QStringLiteral("radius"));
  EXPECT_EQ(model.data(model.index(0, 1, model.index(0, 0))).toString(), QStringLiteral("radius"));

  const QImage picture = view.grab().toImage();
  EXPECT_FALSE(picture.isNull());
  if (const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS"); !folder.isEmpty())
    picture.save(QDir(folder).filePath(QStringLiteral("property_editor.png")));
}

TEST(DialogStyles, StandardThenTouchScreen)
{
  const auto& styles = DialogStyleDatabase::getStyles();
  ASSERT_EQ(styles.size(), 2u);
  EXPECT_EQ(styles[0].getName(), QStringLiteral("Standard"));
  EXPECT_EQ(styles[1].getName(), QStringLiteral("Touch screen"));
  EXPECT_EQ(DialogStyleDatabase::findStyle(QStringLiteral("Touch screen")), &styles[1]);
  EXPECT_EQ(DialogStyleDatabase::findStyle(QStringLiteral("Fancy")), nullptr);

  // The style sheet's background reaches a plain style widget.
  QWidget window;
  window.setStyleSheet(QStringLiteral("Vel--MSysScript--DialogStyleWidget { background-color: #ff0000; }"));
  auto* body = new DialogStyleWidget(&window);
  body->resize(20, 20);
  window.resize(20, 20);
  window.show();
  EXPECT_EQ(body->grab().toImage().pixelColor(10, 10), QColor(Qt::red));
}

// ---------------------------------------------------------------------------------------------

// What the user does in the rich-text editor window, once it is open.
struct TextEditCase
{
  const char* what;
  std::function<void(QTextEdit*)> edit;
  bool accept;
  std::function<void(const QVariant&)> check;
};

class TextPanel : public ::testing::TestWithParam<TextEditCase>
{};

TEST_P(TextPanel, TheEditButtonEditsTheTextInItsOwnWindow)
{
  const TextEditCase& c = GetParam();
  TextProperty property(QStringLiteral("text"), QStringLiteral("Text"));
  QWidget parent;
  QWidget* editor = property.createEditor(&parent);
  ASSERT_EQ(editor->objectName(), QStringLiteral("VelMSysScript_TextProperty_widget"));
  property.setActiveEditor(editor);
  property.setValue(QStringLiteral("Bore check"));
  EXPECT_EQ(editor->findChild<QLabel*>(QStringLiteral("_preview"))->text(), QStringLiteral("Bore check"));

  QSignalSpy modified(&property, &Property::signalModified);
  bool opened = false;
  QTimer::singleShot(0, [&] {
    auto* dialog = qobject_cast<RichTextEditorDialog*>(QApplication::activeModalWidget());
    if (!dialog)
      return;
    opened = true;
    auto* text = dialog->findChild<QTextEdit*>();
    EXPECT_EQ(text->toPlainText(), QStringLiteral("Bore check"));
    c.edit(text);
    c.accept ? dialog->accept() : dialog->reject();
  });
  QTest::mouseClick(editor->findChild<QToolButton*>(QStringLiteral("_edit")), Qt::LeftButton);
  ASSERT_TRUE(opened);
  c.check(property.getValue());
  EXPECT_EQ(modified.count(), property.getValue() == QVariant(QStringLiteral("Bore check")) ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(
    Edits, TextPanel,
    ::testing::Values(TextEditCase{"PlainTextStaysPlain",
                                   [](QTextEdit* e) { e->setPlainText(QStringLiteral("Bore depth")); }, true,
                                   [](const QVariant& v) { EXPECT_EQ(v, QVariant(QStringLiteral("Bore depth"))); }},
                      TextEditCase{"FormattingMakesRichText",
                                   [](QTextEdit* e) {
                                     e->selectAll();
                                     e->setFontWeight(QFont::Bold);
                                   },
                                   true,
                                   [](const QVariant& v) {
                                     EXPECT_TRUE(Qt::mightBeRichText(v.toString()));
                                     EXPECT_EQ(PropertyEditorModel::valueText(v), QStringLiteral("Bore check"));
                                   }},
                      TextEditCase{"CancelKeepsTheText", [](QTextEdit* e) { e->setPlainText(QStringLiteral("lost")); },
                                   false,
                                   [](const QVariant& v) { EXPECT_EQ(v, QVariant(QStringLiteral("Bore check"))); }},
                      TextEditCase{"AnUnchangedTextIsNoChange", [](QTextEdit*) {}, true,
                                   [](const QVariant& v) { EXPECT_EQ(v, QVariant(QStringLiteral("Bore check"))); }}),
    [](const ::testing::TestParamInfo<TextEditCase>& info) { return std::string(info.param.what); });

TEST(Property, FilePanelOffersTheChosenFileAndClears)
{
  FileProperty property(QStringLiteral("file"), QStringLiteral("File"));
  property.setFileType(FileProperty::File::Xml);
  QWidget parent;
  QWidget* editor = property.createEditor(&parent);
  ASSERT_EQ(editor->objectName(), QStringLiteral("VelMSysScript_FileProperty_widget"));
  property.setActiveEditor(editor);

  QString title;
  QStringList types;
  Vel::GTools::FileDialog::setHandler([&](auto, const QString& t, const QStringList& offered) {
    title = t;
    types = offered;
    return QStringList{QStringLiteral("/data/plan.xml")};
  });
  QTest::mouseClick(editor->findChild<QToolButton*>(QStringLiteral("_browse")), Qt::LeftButton);
  Vel::GTools::FileDialog::setHandler(nullptr);
  EXPECT_EQ(title, QStringLiteral("Select File"));
  EXPECT_TRUE(types.contains(QStringLiteral("MSysScript::XmlFiles")));
  EXPECT_EQ(property.getValue(), QVariant(QStringLiteral("/data/plan.xml")));
  EXPECT_EQ(editor->findChild<QLineEdit*>(QStringLiteral("_file"))->text(), QStringLiteral("/data/plan.xml"));
}

// Column 1 as the user reads it.
struct ValueTextCase
{
  const char* what;
  std::function<Property*()> make;
  QString text;
};

class ValueColumn : public ::testing::TestWithParam<ValueTextCase>
{};

TEST_P(ValueColumn, ShowsTheValueReadably)
{
  const ValueTextCase& c = GetParam();
  QObject owner;
  Property* property = c.make();
  property->setParent(&owner);
  auto* heading = new SeparatorProperty(QStringLiteral("Block"));
  heading->setParent(&owner);
  PropertyEditorModel model;
  model.setProperties({heading, property});
  EXPECT_EQ(model.data(model.index(0, 1, model.index(0, 0))).toString(), c.text);
}

template <class P>
std::function<Property*()> withValue(QVariant value)
{
  return [value] {
    auto* property = new P(QStringLiteral("key"), QStringLiteral("Name"));
    property->setValue(value);
    return property;
  };
}

INSTANTIATE_TEST_SUITE_P(
    Types, ValueColumn,
    ::testing::Values(
        ValueTextCase{"Bool", withValue<BoolProperty>(true), QStringLiteral("Yes")},
        ValueTextCase{"DoubleWithoutBinaryNoise", withValue<DoubleProperty>(0.1 + 0.2), QStringLiteral("0.3")},
        ValueTextCase{"Integer", withValue<IntegerProperty>(-7), QStringLiteral("-7")},
        ValueTextCase{"Date", withValue<DateProperty>(QDate(2026, 11, 23)), QStringLiteral("2026-11-23")},
        ValueTextCase{"Color", withValue<ColorProperty>(QVariant::fromValue(Vel::Color(0, 120, 215))),
                      QStringLiteral("#0078d7")},
        ValueTextCase{"TranslucentColor", withValue<ColorProperty>(QVariant::fromValue(Vel::Color(0, 120, 215, 128))),
                      QStringLiteral("#0078d780")},
        ValueTextCase{"RichText", withValue<TextProperty>(QStringLiteral("<b>Bore</b> check")),
                      QStringLiteral("Bore check")},
        ValueTextCase{"Image", withValue<IconProperty>(QImage(8, 4, QImage::Format_ARGB32)), QStringLiteral("8 x 4")},
        ValueTextCase{"NoImage", withValue<IconProperty>(QImage()), QString()},
        ValueTextCase{"SelectorShowsTheLabel",
                      [] {
                        auto* p = new SelectorProperty(
                            QStringLiteral("mode"), QStringLiteral("Mode"),
                            {{QStringLiteral("Open"), QStringLiteral("o")}, {QStringLiteral("Save"), QStringLiteral("s")}});
                        p->setValue(QStringLiteral("s"));
                        return p;
                      },
                      QStringLiteral("Save")},
        ValueTextCase{"DisabledShowsTheDisabledValue",
                      [] {
                        auto* p = new StringProperty(QStringLiteral("name"), QStringLiteral("Name"));
                        p->setValue(QStringLiteral("diameter"));
                        p->setDisabledValue(QStringLiteral("(automatic)"));
                        p->setEnabled(false);
                        return p;
                      },
                      QStringLiteral("(automatic)")}),
    [](const ::testing::TestParamInfo<ValueTextCase>& info) { return std::string(info.param.what); });

TEST(PropertyEditorDelegate, EditorsOnlyForTheValuesOfProperties)
{
  QObject owner;
  PropertyEditorModel model;
  model.setProperties(sampleProperties(&owner));
  PropertyEditorDelegate delegate;
  QWidget parent;
  const QModelIndex general = model.index(0, 0);
  const struct
  {
    QModelIndex index;
    bool editor;
  } cases[] = {{general, false},
               {model.index(0, 1), false},
               {model.index(0, 0, general), false},
               {model.index(0, 1, general), true}};
  for (const auto& c : cases) {
    std::unique_ptr<QWidget> editor(delegate.createEditor(&parent, QStyleOptionViewItem(), c.index));
    EXPECT_EQ(editor != nullptr, c.editor)
        << c.index.row() << "," << c.index.column() << " under " << c.index.parent().row();
  }
}

// A user types into an editor that is open in the tree. Every keystroke is committed, and the
// view hands it back to the editor; that must not disturb what is being typed.
struct TypingCase
{
  const char* what;
  std::function<Property*()> make;
  QVariant start;
  std::function<QWidget*(QWidget*)> target;
  int cursor;  // -1: select everything first
  const char* keys;
  QVariant result;
};

class TypingInTheTree : public ::testing::TestWithParam<TypingCase>
{};

TEST_P(TypingInTheTree, KeepsTheCursorAndWhatIsTyped)
{
  const TypingCase& c = GetParam();
  QObject owner;
  auto* heading = new SeparatorProperty(QStringLiteral("Block"));
  Property* property = c.make();
  heading->setParent(&owner);
  property->setParent(&owner);
  property->setValue(c.start);
  PropertyEditorModel model;
  model.setProperties({heading, property});
  PropertyEditorDelegate delegate;
  QTreeView view;
  view.setModel(&model);
  view.setItemDelegate(&delegate);
  view.expandAll();
  const QModelIndex value = model.index(0, 1, model.index(0, 0));
  view.openPersistentEditor(value);
  view.show();
  QCoreApplication::processEvents();

  QWidget* target = c.target(property->getActiveEditor());
  ASSERT_NE(target, nullptr);
  auto* line = qobject_cast<QLineEdit*>(target);
  if (line && c.cursor >= 0)
    line->setCursorPosition(c.cursor);
  else if (line)
    line->selectAll();
  else
    qobject_cast<QAbstractSpinBox*>(target)->selectAll();
  QTest::keyClicks(target, QString::fromLatin1(c.keys));
  EXPECT_EQ(property->getValue(), c.result);
  EXPECT_EQ(model.data(value).toString(), c.result.toString());
}

INSTANTIATE_TEST_SUITE_P(
    Editors, TypingInTheTree,
    ::testing::Values(TypingCase{"IntoTheMiddleOfAText",
                                 [] { return new StringProperty(QStringLiteral("name"), QStringLiteral("Name")); },
                                 QStringLiteral("diameter"), [](QWidget* e) { return e; }, 1, "XY",
                                 QStringLiteral("dXYiameter")},
                      TypingCase{"ADecimalNumber",
                                 [] {
                                   auto* p = new DoubleProperty(QStringLiteral("value"), QStringLiteral("Value"));
                                   p->setPrecision(2);
                                   return p;
                                 },
                                 12.5, [](QWidget* e) -> QWidget* { return qobject_cast<Vel_Spin*>(e)->spinBox(); }, -1,
                                 "34.75", 34.75},
                      TypingCase{"AnInteger",
                                 [] {
                                   auto* p = new IntegerProperty(QStringLiteral("count"), QStringLiteral("Count"));
                                   p->setMaximumValue(1000);
                                   return p;
                                 },
                                 3, [](QWidget* e) -> QWidget* { return qobject_cast<Vel_Spin*>(e)->spinBox(); }, -1,
                                 "120", 120}),
    [](const ::testing::TestParamInfo<TypingCase>& info) { return std::string(info.param.what); });

TEST(DialogStyles, TouchScreenControlsAreLargerAndNamesFindStyles)
{
  const auto& styles = DialogStyleDatabase::getStyles();
  EXPECT_EQ(DialogStyleDatabase::findStyle(QStringLiteral("touch screen")), &styles[1]) << "by the name users read";
  int heights[2] = {};
  for (int i = 0; i < 2; ++i) {
    QWidget window;
    window.setStyleSheet(styles[static_cast<size_t>(i)].getStyleSheet());
    auto* button = new QPushButton(QStringLiteral("OK"), &window);
    window.ensurePolished();
    button->ensurePolished();
    heights[i] = button->sizeHint().height();
  }
  EXPECT_GT(heights[1], heights[0]);
  EXPECT_GE(heights[1], styles[1].getControlHeight());
}

}  // namespace
