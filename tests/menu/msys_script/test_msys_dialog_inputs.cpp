#include <QCheckBox>
#include <QDateEdit>
#include <QDomDocument>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>
#include <optional>

#include "cfg/cfg.h"
#include "core/color.h"
#include "core/parse_binary.h"
#include "dialog_test_tools.h"
#include "gapp/progress.h"
#include "gtools/vel_color_button.h"
#include "gtools/vel_slider.h"
#include "gtools/vel_spin.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dialog_input_widgets.h"
#include "menu/msys_script/msys_dialog_styles.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"

using namespace Vel::MSysScript;
using namespace TestElement;

namespace {

const QString TODAY = QDate::currentDate().toString();

// ---------------------------------------------------------------------------------------------
// For each type: a definition with every tag, what it prints, and what the same element prints
// after a definition without tags (a missing tag is its default, not what was there before).

struct TagCase
{
  const char* type;
  const char* tags;
  QString full;
  QString bare;
};

class InputTags : public ::testing::TestWithParam<TagCase>
{};

TEST_P(InputTags, ReadPrintWriteAndDefaults)
{
  const TagCase& c = GetParam();
  std::unique_ptr<DialogWidget> widget = parsed(QString::fromLatin1(c.type), QString::fromUtf8(c.tags));
  EXPECT_EQ(widget->__repr__(), c.full);

  // What is written reads back as the same element and is written the same again.
  const QString written = xmlOf(widget.get());
  QDomDocument document;
  ASSERT_TRUE(document.setContent(written));
  std::unique_ptr<DialogWidget> again = create(QString::fromLatin1(c.type));
  again->parseXml(document.documentElement());
  EXPECT_EQ(again->__repr__(), c.full);
  EXPECT_EQ(xmlOf(again.get()), written);

  parse(widget.get(), QString());
  EXPECT_EQ(widget->__repr__(), c.bare);
}

INSTANTIATE_TEST_SUITE_P(
    Types, InputTags,
    ::testing::Values(
        TagCase{"input::number",
                "<value>2.5</value><minimum>-10</minimum><maximum>1e6</maximum><precision>3</precision>"
                "<unit>cm</unit><background_style>background-color: yellow</background_style>",
                "zut.dialog.NumberWidget (name='n', value=2.5, minimum=-10, maximum=1e+06, precision=3, unit='cm')",
                "zut.dialog.NumberWidget (name='n', value=0, minimum=-1.79769e+308, maximum=1.79769e+308, "
                "precision=2)"},
        TagCase{"input::integer", "<value>-7</value><minimum>-100</minimum><maximum>100</maximum>",
                "zut.dialog.IntegerWidget (name='n', value=-7, minimum=-100, maximum=100)",
                "zut.dialog.IntegerWidget (name='n', value=0, minimum=-2147483648, maximum=2147483647)"},
        TagCase{"input::string", "<value>it's %1 \\ ok</value><read_only>true</read_only>",
                "zut.dialog.StringWidget (name='n', value='it\\'s %1 \\\\ ok', read_only=True)",
                "zut.dialog.StringWidget (name='n', value='', read_only=False)"},
        TagCase{"input::slider",
                "<orientation>vertical</orientation><value>0.25</value><minimum>-1</minimum><maximum>1</maximum>"
                "<precision>2</precision><step>0.05</step><tick_interval>0.5</tick_interval>",
                "zut.dialog.SliderWidget (name='n', value=0.25, minimum=-1, maximum=1, precision=2, step=0.05, "
                "tick_interval=0.5, orientation=vertical)",
                "zut.dialog.SliderWidget (name='n', value=0, minimum=0, maximum=1.79769e+308, precision=2, step=1, "
                "tick_interval=0.1, orientation=horizontal)"},
        // The title holds a place marker: the out-of-order places are filled at once.
        TagCase{"input::checkbox", "<value>true</value><title>Use %2 probe</title>",
                "zut.dialog.CheckboxWidget (name='n', title='Use %2 probe', value=True)",
                "zut.dialog.CheckboxWidget (name='n', title='', value=False)"},
        TagCase{"input::color",
                "<transparency_allowed>true</transparency_allowed>"
                "<color><red>255</red><green>16</green><blue>1</blue><alpha>0</alpha></color>",
                "zut.dialog.ColorWidget (name='n', value=zut.Color ('#ff100100'))",
                "zut.dialog.ColorWidget (name='n', value=zut.Color ('#000000ff'))"},
        TagCase{"input::date",
                "<use_current_date>false</use_current_date><show_today_button>false</show_today_button>"
                "<default_date><year>2024</year><month>2</month><day>29</day></default_date>",
                "zut.dialog.DateWidget (name='n', value='Thu Feb 29 2024')",
                QStringLiteral("zut.dialog.DateWidget (name='n', value='%1')").arg(TODAY)},
        // The display and layout elements print alike whatever they hold, the separator its title.
        TagCase{"label", "<text>Bore &lt;b&gt;A&lt;/b&gt;</text>", "zut.dialog.LabelWidget (name='n')",
                "zut.dialog.LabelWidget (name='n')"},
        TagCase{"display::progressbar",
                "<value>7</value><minimum>-10</minimum><maximum>10</maximum><parts>4</parts><step>2</step>"
                "<text>step</text><mode>system</mode>",
                "zut.dialog.ProgressBarWidget (name='n', value=-10, minimum=-10, maximum=10, text=step, mode=system, "
                "parts=4, step=2)",
                "zut.dialog.ProgressBarWidget (name='n', value=0, minimum=0, maximum=100, text=percentage, "
                "mode=manual, parts=1, step=0)"},
        // No opening parenthesis and no name: the form scripts have always seen.
        TagCase{"display::text", "<text><![CDATA[Bore <b>A</b>, it's %1]]></text><wordwrap>false</wordwrap>",
                "zut.dialog.TextFieldWidget text='Bore <b>A</b>, it\\'s %1', word_wrap=False)",
                "zut.dialog.TextFieldWidget text='', word_wrap=True)"},
        TagCase{"display::log",
                "<text><![CDATA[probe 1\nprobe 2]]></text><word_wrap>true</word_wrap><show_save>true</show_save>"
                "<save_dialog_title>Keep</save_dialog_title><scroll_automatically>false</scroll_automatically>",
                "zut.dialog.LogWidget (name='n', show_save=True, word_wrap=True, scroll_automatically)",
                "zut.dialog.LogWidget (name='n', show_save=False, word_wrap=False, scroll_automatically)"},
        // The file is only named: the picture travels in "data".
        TagCase{"image",
                "<use_system_image>true</use_system_image><system_image>system_message_question</system_image>"
                "<file_name>C:\\parts\\bore's %3.png</file_name><keep_original_size>false</keep_original_size>"
                "<keep_aspect>false</keep_aspect><width>64</width><height>32</height>",
                "zut.dialog.ImageWidget (name='n', width=64, height=32, file_name='C:\\\\parts\\\\bore\\'s %3.png')",
                "zut.dialog.ImageWidget (name='n', width=100, height=100, file_name='')"},
        TagCase{"separator", "<title>Probing</title>", "zut.dialog.SeparatorWidget (title='Probing')",
                "zut.dialog.SeparatorWidget (title='')"},
        TagCase{"spacer::horizontal", "<minimum_size>40</minimum_size>", "zut.dialog.HorizontalSpacerWidget ()",
                "zut.dialog.HorizontalSpacerWidget ()"},
        TagCase{"spacer::vertical", "<minimum_size>20</minimum_size>", "zut.dialog.VerticalSpacerWidget ()",
                "zut.dialog.VerticalSpacerWidget ()"}));

TEST(InputWidgets, ColorStartsTransparentOnlyWhereTransparencyIsAllowed)
{
  const char* transparent = "<color><red>1</red><green>2</green><blue>3</blue><alpha>0</alpha></color>";
  auto allowed = parsed(QStringLiteral("input::color"),
                        QStringLiteral("<transparency_allowed>true</transparency_allowed>%1").arg(transparent));
  EXPECT_TRUE(static_cast<ColorWidget*>(allowed.get())->button()->checked());
  auto refused = parsed(QStringLiteral("input::color"), QString::fromLatin1(transparent));
  EXPECT_FALSE(static_cast<ColorWidget*>(refused.get())->button()->checked());
  EXPECT_TRUE(refused->__repr__().endsWith(QStringLiteral("#010203ff'))")));
}

TEST(InputWidgets, DateTagsDecideTheShownDateAndTheTodayButton)
{
  auto widget = parsed(QStringLiteral("input::date"),
                       QStringLiteral("<show_today_button>false</show_today_button>"
                                      "<default_date><year>2001</year><month>5</month><day>6</day></default_date>"));
  auto* date = static_cast<DateWidget*>(widget.get());
  EXPECT_EQ(date->getDate(), QDate::currentDate());  // use_current_date defaults to true
  EXPECT_TRUE(date->todayButton()->isHidden());
  widget->__setattr__(QStringLiteral("use_current_date"), false);
  EXPECT_EQ(date->getDate(), QDate(2001, 5, 6));
  QTest::mouseClick(date->todayButton(), Qt::LeftButton);
  EXPECT_EQ(date->getDate(), QDate::currentDate());
}

// ---------------------------------------------------------------------------------------------
// What a script writes reaches the inner control and reads back; a refused value changes nothing.

struct AttributeCase
{
  const char* type;
  const char* attribute;
  QVariant written;
  std::optional<QVariant> read = std::nullopt;  // none: reads back as written
};

class InputAttributes : public ::testing::TestWithParam<AttributeCase>
{};

TEST_P(InputAttributes, WriteAndReadBack)
{
  const AttributeCase& c = GetParam();
  std::unique_ptr<DialogWidget> widget = parsed(QString::fromLatin1(c.type), QString());
  QSignalSpy modified(widget.get(), &DialogWidget::signalModified);
  widget->__setattr__(QString::fromLatin1(c.attribute), c.written);
  const QVariant expected = c.read.value_or(c.written);
  EXPECT_EQ(widget->__getattr__(QString::fromLatin1(c.attribute)), expected) << c.attribute;
}

const Vel::Color TEAL(0, 128, 128, 255);

INSTANTIATE_TEST_SUITE_P(
    Types, InputAttributes,
    ::testing::Values(AttributeCase{"input::number", "value", 12.345, 12.35},  // rounded to the precision
                      AttributeCase{"input::number", "maximum", 5, 5.0},
                      AttributeCase{"input::number", "precision", 4},
                      AttributeCase{"input::number", "unit", QStringLiteral("inch")},
                      AttributeCase{"input::number", "unit", QString(), QVariant()},
                      AttributeCase{"input::number", "background_style", QStringLiteral("background-color: red")},
                      AttributeCase{"input::integer", "value", 42}, AttributeCase{"input::integer", "minimum", -3},
                      AttributeCase{"input::string", "value", QStringLiteral("probe 7")},
                      AttributeCase{"input::string", "read_only", true},
                      AttributeCase{"input::slider", "value", 3.5}, AttributeCase{"input::slider", "step", 0.5},
                      AttributeCase{"input::slider", "tick_interval", 2.0},
                      AttributeCase{"input::slider", "orientation", QStringLiteral("vertical")},
                      AttributeCase{"input::checkbox", "value", true},
                      AttributeCase{"input::checkbox", "title", QStringLiteral("Save")},
                      AttributeCase{"input::color", "value", QVariant::fromValue(TEAL)},
                      AttributeCase{"input::color", "color", QVariant::fromValue(TEAL)},
                      AttributeCase{"input::color", "transparency_allowed", true},
                      AttributeCase{"input::date", "value", QDate(2020, 1, 31)},
                      AttributeCase{"input::date", "default_date", QDate(1999, 12, 31)},
                      AttributeCase{"input::date", "year", 2031},
                      AttributeCase{"input::date", "show_today_button", false},
                      AttributeCase{"display::text", "text", QStringLiteral("<i>Clamp</i> first")},
                      AttributeCase{"display::text", "word_wrap", false},
                      AttributeCase{"display::log", "text", QStringLiteral("a\n<b>b</b>\n")},
                      AttributeCase{"display::log", "save_dialog_title", QStringLiteral("Keep")},
                      AttributeCase{"display::log", "show_save", true},
                      AttributeCase{"image", "system_image", QStringLiteral("system_message_critical")},
                      AttributeCase{"image", "keep_aspect", false}, AttributeCase{"image", "height", 7},
                      AttributeCase{"image", "data", QByteArray()}));

TEST(InputWidgets, NumberValueIsClampedByTheSpin)
{
  auto widget = parsed(QStringLiteral("input::number"), QStringLiteral("<minimum>0</minimum><maximum>10</maximum>"));
  widget->__setattr__(QStringLiteral("value"), 99.0);
  EXPECT_EQ(widget->getValue(), 10.0);
}

struct RefusalCase
{
  const char* type;
  const char* attribute;
  QVariant value;
  const char* message;
};

class InputRefusals : public ::testing::TestWithParam<RefusalCase>
{};

TEST_P(InputRefusals, LeaveTheElementAsItWas)
{
  const RefusalCase& c = GetParam();
  std::unique_ptr<DialogWidget> widget = parsed(QString::fromLatin1(c.type), QString());
  const QString before = xmlOf(widget.get());
  try {
    widget->__setattr__(QString::fromLatin1(c.attribute), c.value);
    FAIL() << "taken: " << c.attribute;
  } catch (const Vel::ScriptTypeException& error) {
    EXPECT_EQ(error.getMessage(), QString::fromUtf8(c.message));
  }
  EXPECT_EQ(xmlOf(widget.get()), before);
}

const char* WRONG_TYPE = "The value has not the expected type.";

INSTANTIATE_TEST_SUITE_P(
    Types, InputRefusals,
    ::testing::Values(RefusalCase{"input::number", "unit", QStringLiteral("furlong"), "Invalid unit \"furlong\""},
                      RefusalCase{"input::number", "value", QStringLiteral("3"), WRONG_TYPE},
                      RefusalCase{"input::number", "value", std::numeric_limits<double>::quiet_NaN(), WRONG_TYPE},
                      RefusalCase{"input::integer", "value", 2.5, WRONG_TYPE},
                      RefusalCase{"input::integer", "maximum", qlonglong(1) << 40, WRONG_TYPE},
                      RefusalCase{"input::string", "value", 5, WRONG_TYPE},
                      RefusalCase{"input::slider", "orientation", QStringLiteral("Vertical"),
                                  "The slider position \"Vertical\" is invalid."},
                      RefusalCase{"input::checkbox", "title", QVariant(), WRONG_TYPE},
                      RefusalCase{"input::color", "value", QStringLiteral("#ff0000"), WRONG_TYPE},
                      RefusalCase{"input::color", "color", 0xff0000, WRONG_TYPE},
                      RefusalCase{"input::date", "value", QStringLiteral("2020-01-01"), WRONG_TYPE},
                      RefusalCase{"input::date", "default_date", QDate(2021, 4, 31), WRONG_TYPE},
                      RefusalCase{"input::date", "volume", 3, "The object has no writeable attribute \"volume\"."},
                      RefusalCase{"button::pushbutton", "type", QStringLiteral("Toggle"),
                                  "The button type \"Toggle\" is invalid."},
                      RefusalCase{"button::pushbutton", "value", true, "This is not a toggle button."},
                      RefusalCase{"button::pushbutton", "icon_type", QStringLiteral("File"),
                                  "The value \"File\" is invalid."},
                      RefusalCase{"button::abort", "icon_system_size", QStringLiteral("huge"),
                                  "The value \"huge\" is invalid."},
                      RefusalCase{"button::pushbutton", "text", 5, WRONG_TYPE},
                      RefusalCase{"button::pushbutton", "icon", QByteArray("no picture"), WRONG_TYPE},
                      RefusalCase{"label", "text", 5, WRONG_TYPE},
                      RefusalCase{"display::progressbar", "text", QStringLiteral("Percent"),
                                  "The text \"Percent\" is invalid."},
                      RefusalCase{"display::progressbar", "mode", QStringLiteral("auto"),
                                  "The type \"auto\" is invalid."},
                      RefusalCase{"display::progressbar", "value", 2.5, WRONG_TYPE},
                      RefusalCase{"separator", "title", QVariant(), WRONG_TYPE},
                      RefusalCase{"spacer::vertical", "minimum_size", -1, WRONG_TYPE},
                      RefusalCase{"display::text", "text", 5, WRONG_TYPE},
                      RefusalCase{"display::text", "word_wrap", QStringLiteral("yes"), WRONG_TYPE},
                      RefusalCase{"display::log", "scroll_automatically", 1.0, WRONG_TYPE},
                      RefusalCase{"image", "system_image", QStringLiteral("system_message_info"),
                                  "The system image name \"system_message_info\" is invalid."},
                      RefusalCase{"image", "scaling", 2.0, "The image is not scaleable."},
                      RefusalCase{"image", "file_name", QStringLiteral("/no/such/bore.png"),
                                  "Cannot load \"/no/such/bore.png\"."},
                      RefusalCase{"image", "width", 0, WRONG_TYPE},
                      RefusalCase{"image", "data", QByteArray("no picture"), WRONG_TYPE},
                      RefusalCase{"button::abort", "toggleable", true,
                                  "The object has no writeable attribute \"toggleable\"."}));

TEST(InputWidgets, AnImpossibleDateStaysAsSet)
{
  auto widget = parsed(QStringLiteral("input::date"), QString());
  widget->__setattr__(QStringLiteral("value"), QDate(2025, 4, 30));
  widget->__setattr__(QStringLiteral("day"), 31);
  EXPECT_FALSE(widget->getValue().toDate().isValid());
  EXPECT_EQ(widget->__getattr__(QStringLiteral("day")), 31);
  EXPECT_EQ(widget->__repr__(), QStringLiteral("zut.dialog.DateWidget (name='n', value='')"));
  EXPECT_EQ(static_cast<DateWidget*>(widget.get())->dateEdit()->text(), QStringLiteral("Invalid date"));
  widget->__setattr__(QStringLiteral("month"), 5);
  EXPECT_EQ(widget->getValue().toDate(), QDate(2025, 5, 31));
}

// ---------------------------------------------------------------------------------------------

struct CheckCase
{
  const char* type;
  const char* tags;
  const char* error;  // empty: the element is fine
};

class InputChecks : public ::testing::TestWithParam<CheckCase>
{};

TEST_P(InputChecks, ReportEqualLimitsAndMissingLabels)
{
  const CheckCase& c = GetParam();
  auto widget = parsed(QString::fromLatin1(c.type), QString::fromLatin1(c.tags));
  QString error;
  EXPECT_EQ(widget->checkConfiguration(&error), *c.error == 0);
  EXPECT_EQ(error, QString::fromLatin1(c.error));
}

INSTANTIATE_TEST_SUITE_P(
    Types, InputChecks,
    ::testing::Values(
        CheckCase{"input::number", "<minimum>0</minimum><maximum>1e-60</maximum>",
                  "For object \"n\" all values are zero."},
        CheckCase{"input::number", "<minimum>1e6</minimum><maximum>1000000.0000001</maximum>",
                  "For object \"n\" all values are zero."},
        CheckCase{"input::number", "<minimum>1</minimum><maximum>1.000001</maximum>", ""},
        CheckCase{"input::number", "<minimum>0</minimum><maximum>1e-40</maximum>", ""},
        CheckCase{"input::integer", "<minimum>5</minimum><maximum>5</maximum>", "For object \"n\" all values are zero."},
        CheckCase{"input::integer", "", ""},
        CheckCase{"input::slider", "<minimum>2</minimum><maximum>2</maximum>",
                  "For object \"n\" the value range is zero."},
        CheckCase{"input::slider", "", ""},
        CheckCase{"input::checkbox", "<title> \t</title>", "Element \"n\" does not has a labeling."},
        CheckCase{"input::checkbox", "<title>Save</title>", ""},
        CheckCase{"label", "", "For object \"n\" no text was entered yet."},
        CheckCase{"label", "<text>Bore</text>", ""},
        CheckCase{"display::log", "<show_save>true</show_save>",
                  "The dialog title of the save dialog must not be empty."},
        CheckCase{"display::log", "<show_save>true</show_save><save_dialog_title>Keep</save_dialog_title>", ""},
        CheckCase{"display::log", "", ""}));

// A bar in system mode follows the progress the application reports; in manual mode only the
// script moves it.
TEST(DisplayWidgets, AProgressBarFollowsTheApplicationOnlyInSystemMode)
{
  auto system = parsed(QStringLiteral("display::progressbar"), QStringLiteral("<mode>system</mode>"));
  auto manual = parsed(QStringLiteral("display::progressbar"), QStringLiteral("<value>5</value>"));
  Vel::GApp::Progress::getInstance().report(3, 4, QStringLiteral("measuring"));
  EXPECT_EQ(system->getValue(), QVariant(75));
  EXPECT_EQ(manual->getValue(), QVariant(5));
  manual->__setattr__(QStringLiteral("value"), 500);
  EXPECT_EQ(manual->getValue(), QVariant(100));
  Vel::GApp::Progress::getInstance().clear();
  EXPECT_EQ(system->getValue(), QVariant(0));
}

TEST(LayoutWidgets, SpacersKeepTheirMinimumAlongTheirDirectionAndTheSeparatorShowsItsTitle)
{
  auto horizontal = parsed(QStringLiteral("spacer::horizontal"), QStringLiteral("<minimum_size>40</minimum_size>"));
  EXPECT_EQ(horizontal->minimumSize(), QSize(40, 0));
  EXPECT_EQ(horizontal->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
  auto vertical = parsed(QStringLiteral("spacer::vertical"), QString());
  vertical->__setattr__(QStringLiteral("minimum_size"), 25);
  EXPECT_EQ(vertical->minimumSize(), QSize(0, 25));
  EXPECT_EQ(vertical->__getattr__(QStringLiteral("minimum_size")), QVariant(25));

  auto separator = parsed(QStringLiteral("separator"), QStringLiteral("<title>Probing</title>"));
  separator->show();
  EXPECT_TRUE(separator->findChild<QLabel*>(QStringLiteral("_title"))->isVisible());
  separator->__setattr__(QStringLiteral("title"), QString());
  EXPECT_FALSE(separator->findChild<QLabel*>(QStringLiteral("_title"))->isVisible());
}

TEST(InputWidgets, ANamelessElementFailsTheBaseCheckFirst)
{
  auto widget = parsed(QStringLiteral("input::checkbox"), QString());
  widget->setName(QString());
  QString error;
  EXPECT_FALSE(widget->checkConfiguration(&error));
  EXPECT_EQ(error, QStringLiteral("The name for the GUI element is missing."));
}

// ---------------------------------------------------------------------------------------------

TEST(InputWidgets, AttributeRowsFollowTheBaseInTableOrder)
{
  const std::vector<std::pair<const char*, QStringList>> cases = {
      {"input::number", {"minimum", "maximum", "precision", "unit", "background_style", "limits"}},
      {"input::integer", {"minimum", "maximum", "limits"}},
      {"input::string", {"read_only"}},
      {"input::slider", {"minimum", "maximum", "precision", "step", "tick_interval", "orientation", "limits"}},
      {"input::checkbox", {"title"}},
      {"input::color", {"color", "transparency_allowed"}},
      {"input::date", {"year", "month", "day", "use_current_date", "default_date", "show_today_button"}},
      {"display::text", {"text", "word_wrap"}},
      {"display::log", {"text", "word_wrap", "show_save", "save_dialog_title", "scroll_automatically"}},
      {"image",
       {"use_system_image", "system_image", "data", "file_name", "keep_original_size", "keep_aspect", "width", "height",
        "scaling"}},
  };
  for (const auto& [type, own] : cases) {
    const QStringList lines = create(QString::fromLatin1(type))->__doc__().split(QLatin1Char('\n'));
    QStringList names;
    for (const QString& line : lines.mid(2))
      names << line.section(QLatin1Char(' '), 0, 0);
    EXPECT_EQ(names.mid(names.size() - own.size()), own) << type;
    EXPECT_EQ(names.mid(0, 6), QStringList({"name", "value", "tooltip", "enabled", "focus", "attributes"})) << type;
  }
  EXPECT_TRUE(create(QStringLiteral("input::slider"))->__doc__().contains(
      QStringLiteral("step float - Amount of increase/decrease with each step")));
  EXPECT_TRUE(create(QStringLiteral("input::color"))->__doc__().contains(QStringLiteral("value zut.Color - ")));
  EXPECT_TRUE(create(QStringLiteral("image"))->__doc__().contains(QStringLiteral(
      "system_image str - Name of the system image to display. Valid names are: system_message_information, "
      "system_message_warning, system_message_critical, system_message_question")));
}

// A person's edits reach the element's change signal; scripts and definitions use the same path.
TEST(InputWidgets, UserEditsAreReportedAsModifications)
{
  const std::vector<std::pair<const char*, std::function<void(DialogWidget*)>>> cases = {
      {"input::number", [](DialogWidget* w) {
         QTest::keyClick(static_cast<NumberWidget*>(w)->spin()->spinBox(), Qt::Key_Up);
       }},
      {"input::integer", [](DialogWidget* w) {
         QTest::keyClick(static_cast<IntegerWidget*>(w)->spin()->spinBox(), Qt::Key_Up);
       }},
      {"input::string", [](DialogWidget* w) { QTest::keyClicks(static_cast<StringWidget*>(w)->edit(), "ab"); }},
      {"input::slider", [](DialogWidget* w) {
         w->__setattr__(QStringLiteral("maximum"), 10);
         QTest::keyClick(static_cast<SliderWidget*>(w)->slider(), Qt::Key_Right);
       }},
      {"input::checkbox", [](DialogWidget* w) {
         QTest::mouseClick(static_cast<CheckboxWidget*>(w)->checkBox(), Qt::LeftButton);
       }},
      {"input::color", [](DialogWidget* w) { static_cast<ColorWidget*>(w)->button()->setColor(TEAL); }},
      {"input::date", [](DialogWidget* w) {
         QDateEdit* edit = static_cast<DateWidget*>(w)->dateEdit();
         edit->setFocus();
         edit->setCurrentSection(QDateTimeEdit::DaySection);
         QTest::keyClick(edit, Qt::Key_Down);
       }},
  };
  for (const auto& [type, edit] : cases) {
    auto widget = parsed(QString::fromLatin1(type), QString());
    widget->show();
    QSignalSpy modified(widget.get(), &DialogWidget::signalModified);
    edit(widget.get());
    EXPECT_GE(modified.count(), 1) << type;
  }
}

// ---------------------------------------------------------------------------------------------

TEST(InputConfiguration, ApplyTakesNewLimitsBeforeTheValue)
{
  auto widget = parsed(QStringLiteral("input::number"), QStringLiteral("<minimum>0</minimum><maximum>10</maximum>"));
  std::unique_ptr<ElementConfiguration> panel(
      TestElement::registryWithTestElement()->getWidgetCreator(QStringLiteral("input::number"))->createConfiguration(nullptr));
  panel->setup(widget.get());
  for (Property* property : panel->getProperties()) {
    if (property->getKey() == QLatin1String("minimum"))
      property->setValue(100.0);
    if (property->getKey() == QLatin1String("maximum"))
      property->setValue(200.0);
    if (property->getKey() == QLatin1String("value"))
      property->setValue(150.0);
  }
  panel->apply(widget.get());
  EXPECT_TRUE(panel->getApplyErrors().isEmpty());
  EXPECT_EQ(widget->__repr__(),
            QStringLiteral("zut.dialog.NumberWidget (name='n', value=150, minimum=100, maximum=200, precision=2)"));
}

TEST(InputConfiguration, PanelsListTheirFieldsUnderTheirTitle)
{
  const std::vector<std::pair<const char*, QStringList>> cases = {
      {"input::number", {"Decimal", "Default", "Minimum", "Maximum", "No. of decimals", "Unit"}},
      {"input::integer", {"Integer", "Default", "Minimum", "Maximum"}},
      {"input::string", {"Text entry field", "Default", "Read-only"}},
      {"input::slider",
       {"Slider", "Position", "Default value", "Minimum", "Maximum", "No. of decimals", "Step size", "Ticks"}},
      {"input::checkbox", {"Checkbox", "Labeling", "Default status"}},
      {"input::color", {"Color", "Allow transparency"}},
      {"input::date", {"Date", "Use current date", "Show \"Today\" button", "Default date"}},
      {"display::text", {"Continuous text", "Word wrap"}},
      {"display::log", {"Log", "Word wrap", "Show \"Save\" button", "Title of save dialog", "Scroll automatically"}},
      {"image",
       {"Image", "Use system image", "System image", "File", "Keep original size", "Keep aspect ratio", "Width",
        "Height"}},
  };
  for (const auto& [type, labels] : cases) {
    std::unique_ptr<ElementConfiguration> panel(
        TestElement::registryWithTestElement()->getWidgetCreator(QString::fromLatin1(type))->createConfiguration(nullptr));
    QStringList names;
    for (const Property* property : panel->getProperties())
      names << property->getName();
    EXPECT_EQ(names.mid(3), labels) << type;  // after the common name and tooltip block
    // Every field maps to an attribute the element answers.
    auto widget = create(QString::fromLatin1(type));
    panel->setup(widget.get());
    panel->apply(widget.get());
    EXPECT_TRUE(panel->getApplyErrors().isEmpty()) << type << panel->getApplyErrors().join('\n').toStdString();
  }
}

TEST(InputConfiguration, NewElementsTakeTheUsersStartingValues)
{
  QTemporaryDir dir;
  Vel::Cfg cfg(dir.filePath(QStringLiteral("config.json")));
  declareConfiguration(cfg.root());
  setConfigurationRoot(cfg.root());
  cfg.root()->setValue(QString::fromLatin1(CFG_NUMBER_WIDGET_DEFAULT), 3.0);
  cfg.root()->setValue(QString::fromLatin1(CFG_NUMBER_WIDGET_MINIMUM), 1.0);
  cfg.root()->setValue(QString::fromLatin1(CFG_NUMBER_WIDGET_MAXIMUM), 5.0);
  cfg.root()->setValue(QString::fromLatin1(CFG_NUMBER_WIDGET_PRECISION), 1);
  cfg.root()->setValue(QString::fromLatin1(CFG_INTEGER_WIDGET_MINIMUM), -4.0);
  cfg.root()->setValue(QString::fromLatin1(CFG_SLIDER_WIDGET_TICK_INTERVAL), 5.0);
  const std::vector<std::pair<const char*, QString>> cases = {
      {"input::number", "zut.dialog.NumberWidget (name='', value=3, minimum=1, maximum=5, precision=1)"},
      {"input::integer", "zut.dialog.IntegerWidget (name='', value=0, minimum=-4, maximum=1000)"},
      {"input::slider", "zut.dialog.SliderWidget (name='', value=0, minimum=0, maximum=100, precision=2, step=1, "
                        "tick_interval=5, orientation=horizontal)"},
  };
  for (const auto& [type, printed] : cases) {
    const DialogWidgetCreator* creator = TestElement::registryWithTestElement()->getWidgetCreator(QString::fromLatin1(type));
    std::unique_ptr<DialogWidget> widget(creator->createWidget());
    std::unique_ptr<ElementConfiguration> panel(creator->createConfiguration(nullptr));
    panel->initializeNew(widget.get());
    EXPECT_EQ(widget->__repr__(), printed);
  }
  setConfigurationRoot(nullptr);
}

// ---------------------------------------------------------------------------------------------

// A picture that shows whether it is scaled evenly: a disc in a square frame, wider than high.
QImage samplePicture()
{
  QImage image(48, 32, QImage::Format_ARGB32);
  image.fill(QColor(0, 128, 128));
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(QColor(255, 200, 0));
  painter.drawEllipse(QRect(12, 4, 24, 24));
  return image;
}

// With ZUT_TEST_SCREENSHOTS set, every registered element type is kept as a picture, plain and in
// the touch screen style, laid out as a grid cell holds it.
TEST(ElementPictures, EveryTypeRendersInBothStyles)
{
  const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS");
  DialogRegistry* registry = TestElement::registryWithTestElement();
  const std::map<QString, QString> samples = {
      {QStringLiteral("input::number"), QStringLiteral("<value>12.5</value><unit>mm</unit>")},
      {QStringLiteral("input::integer"), QStringLiteral("<value>42</value><minimum>0</minimum><maximum>100</maximum>")},
      {QStringLiteral("input::string"), QStringLiteral("<value>Bore 7</value>")},
      {QStringLiteral("input::slider"), QStringLiteral("<value>40</value><maximum>100</maximum><tick_interval>10</tick_interval>")},
      {QStringLiteral("input::checkbox"), QStringLiteral("<title>Measure twice</title><value>true</value>")},
      {QStringLiteral("input::file"), QStringLiteral("<type>file</type><default>/data/plans/bore_7.plan</default>")},
      {QStringLiteral("input::color"), QStringLiteral("<color><red>0</red><green>128</green><blue>128</blue><alpha>255</alpha></color>")},
      {QStringLiteral("button::pushbutton"), QStringLiteral("<text>Next bore</text><icon_type>system</icon_type>"
                                                            "<icon_system_type>arrow_right</icon_system_type>")},
      {QStringLiteral("button::abort"), QStringLiteral("<text>Abort</text><icon_system_size>large</icon_system_size>")},
      {QStringLiteral("input::list"), QStringLiteral("<items><item>Gauss</item><item>Minimum zone</item></items>"
                                                     "<default>Minimum zone</default>")},
      {QStringLiteral("input::radiobutton"), QStringLiteral("<items><item state=\"G\" description=\"Gauss\"/>"
                                                            "<item state=\"M\" description=\"Minimum zone\"/>"
                                                            "<item state=\"C\" description=\"Chebyshev\"/></items>"
                                                            "<default>M</default>")},
      {QStringLiteral("label"), QStringLiteral("<text>Diameter of the &lt;b&gt;bore&lt;/b&gt;</text>")},
      {QStringLiteral("separator"), QStringLiteral("<title>Probing</title>")},
      {QStringLiteral("display::progressbar"), QStringLiteral("<value>40</value>")},
      {QStringLiteral("display::text"),
       QStringLiteral("<text><![CDATA[<b>Probing</b> starts at the <i>left</i> bore. Keep the part clamped until "
                      "the last point is taken.]]></text>")},
      {QStringLiteral("display::log"),
       QStringLiteral("<text><![CDATA[Bore 1: 12.503 mm\nBore 2: 12.497 mm\nBore 3: 12.512 mm]]></text>"
                      "<show_save>true</show_save><save_dialog_title>Save log</save_dialog_title>")},
      {QStringLiteral("image"), QStringLiteral("<data><![CDATA[%1]]></data><keep_original_size>false</keep_original_size>"
                                               "<width>64</width><height>64</height>")
                                    .arg(Vel::Parse::Binary::encode(WidgetTools::imageBytes(samplePicture())))},
      {QStringLiteral("spacer::horizontal"), QStringLiteral("<minimum_size>40</minimum_size>")},
      {QStringLiteral("spacer::vertical"), QStringLiteral("<minimum_size>20</minimum_size>")},
  };
  std::vector<QPixmap> sheet;
  for (auto pos = registry->getWidgetCreatorBegin(); pos != registry->getWidgetCreatorEnd(); ++pos) {
    std::unique_ptr<DialogWidget> widget(pos->second->createWidget());
    const auto sample = samples.find(pos->first);
    parse(widget.get(), sample == samples.end() ? QString() : sample->second);
    for (const char* style : {"Standard", "Touch screen"}) {
      DialogStyleWidget cell;
      cell.setStyleSheet(DialogStyleDatabase::findStyle(QString::fromLatin1(style))->getStyleSheet());
      widget->setParent(&cell);
      // The style's sizes count only once the style sheet has reached the element.
      cell.ensurePolished();
      widget->ensurePolished();
      for (QWidget* child : widget->findChildren<QWidget*>())
        child->ensurePolished();
      const QSize hint = widget->sizeHint().expandedTo(widget->minimumSizeHint());
      // A cell of a usual dialog column; an element must fit it without clipping.
      const int width = std::max(hint.width(), 260);
      widget->setGeometry(8, 8, width, hint.height());
      cell.resize(width + 16, hint.height() + 16);
      cell.show();
      QApplication::processEvents();
      EXPECT_LE(widget->minimumSizeHint().width(), width) << pos->first.toStdString();
      if (!folder.isEmpty()) {
        QString name = pos->first;
        name.replace(QStringLiteral("::"), QStringLiteral("_"));
        const QPixmap picture = cell.grab();
        picture.save(QStringLiteral("%1/element_%2%3.png").arg(folder, name, *style == 'T' ? "_touch" : ""));
        sheet.push_back(picture);
      }
      widget->setParent(nullptr);
    }
  }
  // All of them on one sheet, a type a row, plain beside touch screen.
  if (!folder.isEmpty()) {
    int width = 0;
    int height = 0;
    for (size_t i = 0; i + 1 < sheet.size(); i += 2) {
      width = std::max(width, sheet[i].width() + sheet[i + 1].width());
      height += std::max(sheet[i].height(), sheet[i + 1].height());
    }
    QPixmap all(width, height);
    all.fill(Qt::white);
    QPainter painter(&all);
    int y = 0;
    for (size_t i = 0; i + 1 < sheet.size(); i += 2) {
      painter.drawPixmap(0, y, sheet[i]);
      painter.drawPixmap(sheet[i].width(), y, sheet[i + 1]);
      y += std::max(sheet[i].height(), sheet[i + 1].height());
    }
    painter.end();
    all.save(folder + QStringLiteral("/elements.png"));
  }
}

}  // namespace
