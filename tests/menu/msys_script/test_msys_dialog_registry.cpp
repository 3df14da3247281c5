#include <QApplication>
#include <QGridLayout>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include "core/prog_error.h"
#include "dialog_test_element.h"
#include "gapp/interaction.h"
#include "gtools/vel_tool_tip_label.h"
#include "menu/msys_script/msys_dialog_controls.h"
#include "menu/msys_script/msys_dialog_styles.h"

using namespace Vel::MSysScript;
using Category = DialogWidgetCreator::Category;

namespace {

QStringList ids(const std::vector<DialogWidgetCreator*>& creators)
{
  QStringList list;
  for (const DialogWidgetCreator* creator : creators)
    list << creator->getId();
  return list;
}

TEST(DialogRegistry, ControlRowsAreListedInRegistrationOrderWithTheirSeparators)
{
  const DialogRegistry* registry = TestElement::registryWithTestElement();
  QStringList names;
  for (const DialogControlCreator* creator : registry->getSortedControlCreators())
    names << (creator->isSeparator() ? creator->getDisplayName() : creator->getId());
  EXPECT_EQ(names, QStringList({"--- No buttons ---", "Empty", "--- Standard buttons ---", "OkCancel", "YesNo", "Close",
                                "--- Extended buttons ---", "Wizard"}));
  // A separator cannot be chosen: neither by lookup nor as the default.
  EXPECT_EQ(registry->getControlCreator(QString()), nullptr);
  EXPECT_EQ(registry->getDefaultControlId(), QStringLiteral("Empty"));
  EXPECT_EQ(registry->getControlCreator(QStringLiteral("YesNo"))->getDisplayName(), QStringLiteral("Yes-No dialog"));
}

// The standard catalogue in its registration order: each category lists its types in this order,
// under the display names and key words the editor shows.
TEST(DialogRegistry, TheStandardTypesAreRegisteredInTheirOrderWithTheirNames)
{
  struct Row
  {
    const char* id;
    Category::Type_t category;
    const char* name;
    const char* key;
  };
  const Row rows[] = {
      {"label", Category::Output, "Description field", "label"},
      {"display::text", Category::Output, "Continuous text", "text"},
      {"image", Category::Output, "Image", "image"},
      {"display::log", Category::Output, "Log", ""},
      {"display::progressbar", Category::Output, "Progress bar", "progressbar"},
      {"input::integer", Category::Input, "Integer", "input"},
      {"input::number", Category::Input, "Decimal", "input"},
      {"input::string", Category::Input, "Text entry field", "input"},
      {"input::slider", Category::Input, "Slider", "input"},
      {"input::checkbox", Category::Input, "Checkbox", "checkbox"},
      {"input::file", Category::Input, "File", "input"},
      {"input::date", Category::Input, "Date", "date"},
      {"input::color", Category::Input, "Color", "input"},
      {"button::pushbutton", Category::Buttons, "Button", "button"},
      {"button::abort", Category::Other, "Abort", "button"},
      {"input::radiobutton", Category::Buttons, "Radiobutton", "radiobuttons"},
      {"input::list", Category::Selection, "Selection list", "list"},
      {"separator", Category::Layout, "Separator line", "separator"},
      {"spacer::horizontal", Category::Layout, "Horizontal spacer", "spacer"},
      {"spacer::vertical", Category::Layout, "Vertical spacer", "spacer"},
  };
  const DialogRegistry* registry = TestElement::registryWithTestElement();
  for (const Category::Type_t category :
       {Category::Output, Category::Input, Category::Buttons, Category::Selection, Category::Layout, Category::Other}) {
    QStringList expected;
    for (const Row& row : rows)
      if (row.category == category)
        expected << QString::fromLatin1(row.id);
    QStringList sorted = ids(registry->getSortedWidgetCreators(category));
    sorted.removeAll(QStringLiteral("test::element"));
    EXPECT_EQ(sorted, expected) << category;
  }
  for (const Row& row : rows) {
    const DialogWidgetCreator* creator = registry->getWidgetCreator(QString::fromLatin1(row.id));
    ASSERT_NE(creator, nullptr) << row.id;
    EXPECT_EQ(creator->getDisplayName(), QString::fromLatin1(row.name)) << row.id;
    EXPECT_EQ(creator->getKeyWord(), QString::fromLatin1(row.key)) << row.id;
  }
  EXPECT_EQ(std::distance(registry->getWidgetCreatorBegin(), registry->getWidgetCreatorEnd()),
            static_cast<long>(std::size(rows)) + 1);
}

TEST(DialogRegistry, WidgetCreatorsSortByRegistrationWithinTheirCategory)
{
  DialogRegistry registry;
  // Registered against the id order, so that sorting by id would show.
  registry.addWidgetCreator(new TestElement::TestWidgetCreator(QStringLiteral("z::first"), Category::Buttons));
  registry.addWidgetCreator(new TestElement::TestWidgetCreator(QStringLiteral("m::second"), Category::Input));
  registry.addWidgetCreator(new TestElement::TestWidgetCreator(QStringLiteral("a::third"), Category::Buttons));
  EXPECT_EQ(ids(registry.getSortedWidgetCreators(Category::Buttons)), QStringList({"z::first", "a::third"}));
  EXPECT_EQ(ids(registry.getSortedWidgetCreators(Category::Input)), QStringList({"m::second"}));
  EXPECT_TRUE(registry.getSortedWidgetCreators(Category::Other).empty());

  QStringList by_id;
  for (auto pos = registry.getWidgetCreatorBegin(); pos != registry.getWidgetCreatorEnd(); ++pos)
    by_id << pos->first;
  EXPECT_EQ(by_id, QStringList({"a::third", "m::second", "z::first"}));
  EXPECT_EQ(registry.getWidgetCreator(QStringLiteral("m::second"))->getCategory(), Category::Input);
  // The editor drags a picture of a fresh element.
  EXPECT_FALSE(registry.getWidgetCreator(QStringLiteral("m::second"))->createDragPixmap().isNull());
  EXPECT_EQ(registry.getWidgetCreator(QStringLiteral("none")), nullptr);
}

TEST(DialogRegistry, ASecondCreatorWithTheSameIdIsAProgrammingError)
{
  DialogRegistry* registry = TestElement::registryWithTestElement();
  try {
    registry->addWidgetCreator(new TestElement::TestWidgetCreator);
    FAIL() << "registered twice";
  } catch (const Vel::ProgError& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Creator with id 'test::element' already registered"));
  }
  // The standard input types in their order, then the test type; the refused one is not kept.
  EXPECT_EQ(ids(registry->getSortedWidgetCreators(Category::Input)),
            QStringList({"input::integer", "input::number", "input::string", "input::slider", "input::checkbox",
                         "input::file", "input::date", "input::color", "test::element"}));
  EXPECT_EQ(ids(registry->getSortedWidgetCreators(Category::Output)),
            QStringList({"label", "display::text", "image", "display::log", "display::progressbar"}));
  EXPECT_EQ(ids(registry->getSortedWidgetCreators(Category::Layout)),
            QStringList({"separator", "spacer::horizontal", "spacer::vertical"}));
}

TEST(DialogRegistry, DefaultControlIdNeedsAControlRowOrAnExplicitDefault)
{
  DialogRegistry registry;
  try {
    registry.getDefaultControlId();
    ADD_FAILURE() << "a default without any control row";
  } catch (const Vel::ProgError& error) {
    EXPECT_TRUE(
        error.getMessage().contains(QStringLiteral("!_default_control_id.isEmpty () || !_control_creators.empty ()")))
        << error.getMessage().toStdString();
  }
  registry.setDefaultControlId(QStringLiteral("Close"));
  EXPECT_EQ(registry.getDefaultControlId(), QStringLiteral("Close"));
}

TEST(DialogRegistry, CategoriesHaveTheEditorsGroupTitles)
{
  QStringList titles;
  for (auto category :
       {Category::Output, Category::Input, Category::Buttons, Category::Selection, Category::Layout, Category::Other})
    titles << Category::getTitle(category);
  EXPECT_EQ(titles, QStringList({"Output", "Input", "Buttons", "Selection", "Layout", "Other"}));
}

struct ControlCase
{
  const char* id;
  QStringList words;
  QStringList object_names;
  const char* accepting;  // the object name of the button that accepts, or null
  const char* rejecting;
};

class ControlRows : public ::testing::TestWithParam<ControlCase>
{};

TEST_P(ControlRows, HaveTheirButtonsAndSignals)
{
  const ControlCase& c = GetParam();
  const DialogControlCreator* creator =
      TestElement::registryWithTestElement()->getControlCreator(QString::fromLatin1(c.id));
  ASSERT_NE(creator, nullptr);
  std::unique_ptr<DialogControl> control(creator->createControl());
  EXPECT_EQ(control->getCreatorId(), QString::fromLatin1(c.id));
  EXPECT_EQ(control->getButtonIds(), c.words);
  for (const QString& name : c.object_names)
    EXPECT_NE(control->findChild<QPushButton*>(name), nullptr) << name.toStdString();
  ASSERT_NE(control->getStatusLabel(), nullptr);
  EXPECT_EQ(control->getStatusLabel()->objectName(), QStringLiteral("_status"));
  // With ZUT_TEST_SCREENSHOTS set, a picture of the row with a status text is kept there.
  if (const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS"); !folder.isEmpty()) {
    control->getStatusLabel()->setFullText(QStringLiteral("Step 2 of 3: measure the bore diameter"));
    control->resize(460, control->sizeHint().height());
    control->show();
    control->grab().save(QStringLiteral("%1/control_%2.png").arg(folder, QString::fromLatin1(c.id)));
    DialogStyleWidget touch;
    touch.setStyleSheet(DialogStyleDatabase::findStyle(QStringLiteral("Touch screen"))->getStyleSheet());
    control->setParent(&touch);
    touch.resize(640, control->sizeHint().height() + 16);
    control->setGeometry(8, 8, 624, control->sizeHint().height());
    touch.show();
    touch.grab().save(QStringLiteral("%1/control_%2_touch.png").arg(folder, QString::fromLatin1(c.id)));
    control->setParent(nullptr);
  }

  QSignalSpy accepted(control.get(), &DialogControl::signalAccept);
  QSignalSpy rejected(control.get(), &DialogControl::signalReject);
  if (c.accepting)
    QTest::mouseClick(control->findChild<QPushButton*>(QString::fromLatin1(c.accepting)), Qt::LeftButton);
  if (c.rejecting)
    QTest::mouseClick(control->findChild<QPushButton*>(QString::fromLatin1(c.rejecting)), Qt::LeftButton);
  EXPECT_EQ(accepted.count(), c.accepting ? 1 : 0);
  EXPECT_EQ(rejected.count(), c.rejecting ? 1 : 0);

  for (const QString& word : c.words) {
    control->setButtonText(word, QStringLiteral("Renamed"));
    control->setButtonEnabled(word, false);
  }
  for (QPushButton* button : control->findChildren<QPushButton*>())
    EXPECT_FALSE(button->isEnabled());
  control->updateEnabledState(true);
  for (QPushButton* button : control->findChildren<QPushButton*>())
    EXPECT_TRUE(button->isEnabled());

  try {
    control->setButtonEnabled(QStringLiteral("apply"), true);
    FAIL() << "an unknown button word was taken";
  } catch (const Vel::ScriptTypeException& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Invalid control ID \"apply\""));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Standard, ControlRows,
    ::testing::Values(ControlCase{"Empty", {}, {}, nullptr, nullptr},
                      ControlCase{"OkCancel", {"ok", "cancel"}, {"_ok", "_cancel"}, "_ok", "_cancel"},
                      ControlCase{"YesNo", {"yes", "no"}, {"_yes", "_no"}, "_yes", "_no"},
                      // Closing accepts.
                      ControlCase{"Close", {"close"}, {"_close"}, "_close", nullptr},
                      ControlCase{
                          "Wizard", {"next", "prev", "close"}, {"_prev", "_next", "_close"}, "_close", nullptr}),
    [](const ::testing::TestParamInfo<ControlCase>& info) { return std::string(info.param.id); });

TEST(DialogControls, WizardStepsAreControlEvents)
{
  std::unique_ptr<DialogControl> control(
      TestElement::registryWithTestElement()->getControlCreator(QStringLiteral("Wizard"))->createControl());
  QSignalSpy events(control.get(), &DialogControl::signalControlEvent);
  QTest::mouseClick(control->findChild<QPushButton*>(QStringLiteral("_prev")), Qt::LeftButton);
  QTest::mouseClick(control->findChild<QPushButton*>(QStringLiteral("_next")), Qt::LeftButton);
  ASSERT_EQ(events.count(), 2);
  EXPECT_EQ(events[0][0].toString(), QStringLiteral("prev"));
  EXPECT_EQ(events[1][0].toString(), QStringLiteral("next"));
  // The row reads Back, Next, Close; Next is what Return triggers.
  auto* layout = control->layout();
  EXPECT_EQ(layout->itemAt(1)->widget()->objectName(), QStringLiteral("_prev"));
  EXPECT_EQ(layout->itemAt(2)->widget()->objectName(), QStringLiteral("_next"));
  EXPECT_EQ(control->getDefaultButton()->objectName(), QStringLiteral("_next"));
}

// Elements are built hidden and laid out once shown: every type's controls fill it then, and again
// when the dialog grows.
TEST(DialogWidget, EveryTypeLaysOutItsControlsWhenShownAndResized)
{
  const DialogRegistry* registry = TestElement::registryWithTestElement();
  for (auto entry = registry->getWidgetCreatorBegin(); entry != registry->getWidgetCreatorEnd(); ++entry) {
    QWidget window;
    auto* grid = new QGridLayout(&window);
    DialogWidget* element = entry->second->createWidget();
    grid->addWidget(element, 0, 0);
    window.show();
    QApplication::processEvents();
    for (const QSize grow : {QSize(), QSize(120, 60)}) {
      window.resize(window.size() + grow);
      QApplication::processEvents();
      if (!element->layout())
        continue;
      EXPECT_EQ(element->layout()->geometry(), element->rect()) << entry->first.toStdString();
      // An image element without an image takes no room.
      for (QWidget* child : element->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (child->isVisible() && !element->rect().isEmpty()) {
          EXPECT_TRUE(element->rect().contains(child->geometry()))
              << entry->first.toStdString() << " " << child->metaObject()->className();
        }
      }
    }
  }
}

TEST(DialogControls, ASeparatorEntryCannotMakeAControlRow)
{
  const SeparatorControlCreator separator(QStringLiteral("--- heading ---"));
  EXPECT_THROW(separator.createControl(), Vel::ProgError);
}

TEST(DialogWidget, CommonAttributesAndTheRefusalOfOthers)
{
  TestElement::registryWithTestElement();
  TestElement::TestWidget widget;
  widget.__setattr__(QStringLiteral("name"), QStringLiteral("distance"));
  widget.__setattr__(QStringLiteral("tooltip"), QStringLiteral("in mm"));
  widget.__setattr__(QStringLiteral("enabled"), false);
  widget.__setattr__(QStringLiteral("value"), QStringLiteral("12"));
  EXPECT_EQ(widget.getName(), QStringLiteral("distance"));
  EXPECT_EQ(widget.toolTip(), QStringLiteral("in mm"));
  EXPECT_EQ(widget.__getattr__(QStringLiteral("enabled")), QVariant(false));
  const QVariantMap attributes = widget.__getattr__(QStringLiteral("attributes")).toMap();
  EXPECT_EQ(attributes.value(QStringLiteral("value")), QVariant(QStringLiteral("12")));
  EXPECT_EQ(attributes.value(QStringLiteral("shape")), QVariant(QStringLiteral("round")));
  EXPECT_FALSE(attributes.contains(QStringLiteral("attributes")));

  try {
    widget.__setattr__(QStringLiteral("attributes"), QVariantMap());
    FAIL() << "a read-only attribute was written";
  } catch (const Vel::ScriptTypeException& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("The object has no writeable attribute \"attributes\"."));
  }
}

TEST(DialogWidget, HelpTextNamesTheTypeAndListsTheAttributes)
{
  TestElement::registryWithTestElement();
  TestElement::TestWidget widget;
  widget.setName(QStringLiteral("distance"));
  const QStringList lines = widget.__doc__().split(QLatin1Char('\n'));
  ASSERT_GE(lines.size(), 3);
  EXPECT_EQ(lines[0], QStringLiteral("Handle for a widget called 'distance' of type 'Test element' (test::element)"));
  EXPECT_EQ(lines[1], QStringLiteral("Attributes:"));
  EXPECT_TRUE(lines.contains(QStringLiteral("shape str - Outline of the element")));

  // An element whose type nobody registered is a programming error.
  struct Unregistered : DialogWidget
  {
    Unregistered() : DialogWidget(QStringLiteral("nobody")) {}
    QVariant getValue() const override { return {}; }
    void parseXml(const QDomNode& node) override { DialogWidget::parseXml(node); }
    void createXml(QDomDocument* d, QDomElement* e) const override { DialogWidget::createXml(d, e); }
    QString __repr__() const override { return {}; }
  } unregistered;
  EXPECT_THROW(unregistered.__doc__(), Vel::ProgError);
}

TEST(DialogWidget, ANameIsRequiredByTheConfigurationCheck)
{
  TestElement::TestWidget widget;
  QString error;
  EXPECT_FALSE(widget.checkConfiguration(&error));
  EXPECT_EQ(error, QStringLiteral("The name for the GUI element is missing."));
  widget.setName(QStringLiteral("n"));
  EXPECT_TRUE(widget.checkConfiguration(&error));
  EXPECT_TRUE(EmptyWidget().checkConfiguration(&error));
}

TEST(ElementConfiguration, SetupAndApplyMoveAttributesThroughTheProperties)
{
  TestElement::registryWithTestElement();
  TestElement::TestWidget widget;
  widget.setName(QStringLiteral("before"));
  std::unique_ptr<ElementConfiguration> panel(TestElement::registryWithTestElement()
                                                  ->getWidgetCreator(QString::fromLatin1(TestElement::TYPE_ID))
                                                  ->createConfiguration(nullptr));
  panel->setup(&widget);
  QStringList keys;
  for (Property* property : panel->getProperties())
    keys << property->getKey();
  EXPECT_EQ(keys, QStringList({"", "name", "tooltip", "", "value", "shape"}));
  // The panel shows them in two blocks.
  const auto* view = panel->findChild<QTreeView*>(QStringLiteral("_properties"));
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->model()->rowCount(), 2);
  EXPECT_EQ(view->model()->index(0, 0).data().toString(), QStringLiteral("General"));

  QStringList reported;
  Vel::GApp::setErrorDialogHandler([&](const QString&, const QString& text) { reported << text; });
  for (Property* property : panel->getProperties()) {
    if (property->getKey() == QLatin1String("name"))
      property->setValue(QStringLiteral("after"));
    if (property->getKey() == QLatin1String("shape"))
      property->setValue(QStringLiteral("oval"));
  }
  panel->apply(&widget);
  Vel::GApp::setErrorDialogHandler(nullptr);
  // The refused property is reported; the others are applied all the same.
  EXPECT_EQ(widget.getName(), QStringLiteral("after"));
  ASSERT_EQ(panel->getApplyErrors().size(), 1);
  EXPECT_TRUE(panel->getApplyErrors()[0].startsWith(QStringLiteral("ERROR while setting property 'shape'")));
  EXPECT_EQ(reported.size(), 1);
}

}  // namespace
