#include <QApplication>
#include <QColorDialog>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>
#include <optional>
#include <set>

#include "core/unit.h"
#include "gtools/file_dialog.h"
#include "gtools/vel_color_button.h"
#include "gtools/vel_combo_box.h"
#include "gtools/vel_file_select.h"
#include "gtools/vel_slider.h"
#include "gtools/vel_spin.h"
#include "gtools/vel_tool_tip_label.h"

namespace {

TEST(VelSpin, ClampsToItsLimitsAndKeepsTheValueInTheInternalUnit)
{
  Vel_Spin spin;
  spin.setMinValue(-10.0);
  spin.setMaxValue(100.0);
  spin.setDigits(3);
  spin.setValue(250.0);
  EXPECT_DOUBLE_EQ(spin.value(), 100.0);
  spin.setValue(25.4);
  EXPECT_EQ(spin.getUnit(), nullptr);

  QSignalSpy changed(&spin, &Vel_BaseSpin::valueChanged);
  spin.setUnit(*Vel::Unit::getUnit(QStringLiteral("inch")));
  // The user sees inches; the value, its limits and what the signal says stay millimetres.
  EXPECT_DOUBLE_EQ(spin.spinBox()->value(), 1.0);
  EXPECT_TRUE(spin.spinBox()->suffix().endsWith(QStringLiteral("in")));
  EXPECT_NEAR(spin.value(), 25.4, 1e-9);
  EXPECT_DOUBLE_EQ(spin.maxValue(), 100.0);
  EXPECT_EQ(changed.count(), 0) << "a new unit is not a new value";
  spin.spinBox()->setValue(2.0);
  ASSERT_EQ(changed.count(), 1);
  EXPECT_NEAR(changed[0][0].toDouble(), 50.8, 1e-9);

  spin.resetUnit();
  EXPECT_EQ(spin.getUnit(), nullptr);
  EXPECT_NEAR(spin.spinBox()->value(), 50.8, 1e-9);
}

struct SpinCase
{
  double minimum, maximum, value;
  unsigned digits;
  const char* unit;  // null for none
};

// Settings made before the spin box is first polished or read reach it later, at once: what the
// spin tells and reports then is what a spin box that took each setting at once tells.
TEST(VelSpin, TellsTheSameBeforeAndAfterItsSpinBoxTakesTheSettings)
{
  const double huge = std::numeric_limits<double>::max();
  for (const SpinCase& c :
       {SpinCase{-huge, huge, 0.0, 2, nullptr}, SpinCase{-huge, huge, 1e300, 2, nullptr},
        SpinCase{-1000, 1000, 12.3456, 3, nullptr}, SpinCase{-1000, 1000, 5000, 3, nullptr},
        SpinCase{0.004, 10, 0, 2, nullptr}, SpinCase{10, 0, 5.5, 1, nullptr}, SpinCase{0, 100, 0.125, 2, nullptr},
        SpinCase{-huge, huge, 25.4, 2, "inch"}, SpinCase{0, 10, 7.77, 0, "inch"}, SpinCase{-huge, 0, 3, 4, nullptr}}) {
    const auto apply = [&c](Vel_Spin& spin, bool batched) {
      std::optional<Vel_BaseSpin::Batch> batch;
      if (batched)
        batch.emplace(&spin);
      spin.setDigits(c.digits);
      spin.setMinValue(c.minimum);
      spin.setMaxValue(c.maximum);
      if (c.unit)
        spin.setUnit(*Vel::Unit::getUnit(QString::fromLatin1(c.unit)));
      spin.setValue(c.value);
    };
    for (const bool batched : {false, true}) {
      Vel_Spin settled;
      settled.spinBox();
      QSignalSpy settled_changed(&settled, &Vel_BaseSpin::valueChanged);
      apply(settled, batched);
      Vel_Spin fresh;
      QSignalSpy fresh_changed(&fresh, &Vel_BaseSpin::valueChanged);
      apply(fresh, batched);
      EXPECT_EQ(fresh.value(), settled.value()) << c.value << " batched " << batched;
      EXPECT_EQ(fresh_changed.count(), settled_changed.count()) << c.value << " batched " << batched;
      for (int i = 0; i < std::min(fresh_changed.count(), settled_changed.count()); ++i)
        EXPECT_EQ(fresh_changed[i][0].toDouble(), settled_changed[i][0].toDouble());
      fresh.adjustSize();
      EXPECT_EQ(fresh.spinBox()->value(), settled.spinBox()->value()) << c.value;
      EXPECT_EQ(fresh.spinBox()->minimum(), settled.spinBox()->minimum()) << c.minimum;
      EXPECT_EQ(fresh.spinBox()->maximum(), settled.spinBox()->maximum()) << c.maximum;
      EXPECT_EQ(fresh.spinBox()->decimals(), settled.spinBox()->decimals());
      EXPECT_EQ(fresh.spinBox()->text(), settled.spinBox()->text()) << c.value;
    }
  }
}

struct SliderCase
{
  double minimum, maximum, set, expected;
  unsigned digits;
  bool ticks;
};

// The value is kept as a double; the integer positions only show it, even for the full range.
TEST(VelSlider, KeepsItsDoubleValueOverAnyRange)
{
  const double huge = std::numeric_limits<double>::max();
  for (const SliderCase& c : {SliderCase{0, 10, 3.14159, 3.14, 2, true}, SliderCase{0, 10, 99, 10, 2, true},
                              SliderCase{-huge, huge, 1e300, 1e300, 2, false}, SliderCase{0, huge, -5, 0, 2, false},
                              SliderCase{10, 0, 5.5, 5.5, 1, true}}) {
    Vel_Slider slider;
    slider.setDigits(c.digits);
    slider.setMinValue(c.minimum);
    slider.setMaxValue(c.maximum);
    slider.setTickInterval(1.0);
    slider.setValue(c.set);
    EXPECT_DOUBLE_EQ(slider.value(), c.expected) << c.set;
    EXPECT_LE(slider.maximum(), 1000000);
    EXPECT_EQ(slider.tickPosition() != QSlider::NoTicks, c.ticks) << c.maximum;
  }
  // The user moves it by its positions; the signal carries the value.
  Vel_Slider slider;
  slider.setMaxValue(10);
  slider.setLineStep(0.5);
  QSignalSpy changed(&slider, &Vel_Slider::valueChanged);
  slider.triggerAction(QAbstractSlider::SliderSingleStepAdd);
  ASSERT_EQ(changed.count(), 1);
  EXPECT_DOUBLE_EQ(changed[0][0].toDouble(), 0.5);
  EXPECT_EQ(slider.valueText(), QStringLiteral("0.50"));
}

TEST(VelColorButton, TransparencyOnlyWhenCheckable)
{
  Vel_ColorButton button;
  QSignalSpy changed(&button, &Vel_ColorButton::changed);
  button.setColor(Vel::Color(10, 20, 30, 0));
  EXPECT_EQ(button.getColor(), Vel::Color(10, 20, 30, 255));
  EXPECT_FALSE(button.checked());
  button.setChecked(true);
  EXPECT_FALSE(button.checked()) << "not checkable: no transparency";

  button.setCheckable(true);
  button.setChecked(true);
  EXPECT_TRUE(button.checked());
  EXPECT_TRUE(button.getColor().isTransparent());
  button.setChecked(false);
  EXPECT_EQ(button.getColor(), Vel::Color(10, 20, 30, 255)) << "unchecking brings the colour back";
  EXPECT_EQ(changed.count(), 3);
  button.setColor(Vel::Color(10, 20, 30, 255));
  EXPECT_EQ(changed.count(), 3) << "the same colour is no change";
}

TEST(VelComboBox, SelectsByTheValueItCarries)
{
  Vel_ComboBox box;
  box.addItem(QStringLiteral("None"), QString());
  box.addSeparator();
  box.addItem(QStringLiteral("Millimetre"), QStringLiteral("mm"));
  EXPECT_TRUE(box.selectData(QStringLiteral("mm")));
  EXPECT_EQ(box.currentIndex(), 2);
  EXPECT_FALSE(box.selectData(QStringLiteral("km")));
  EXPECT_EQ(box.currentIndex(), 2);
}

TEST(VelToolTipLabel, ElidesLongTextsAndShowsThemWhole)
{
  Vel_ToolTipLabel label;
  label.resize(60, 20);
  label.show();
  const QString text = QStringLiteral("A status text that is far too long for sixty pixels");
  label.setFullText(text);
  EXPECT_NE(label.text(), text);
  EXPECT_EQ(label.toolTip(), text);
  label.resize(2000, 20);
  EXPECT_EQ(label.text(), text);
  EXPECT_EQ(label.toolTip(), QString());
}

TEST(FileDialog, NamedTypesGiveFiltersAndAHandlerAnswers)
{
  using Vel::GTools::FileDialog;
  EXPECT_EQ(FileDialog::getFilter(QStringLiteral("MSysScript::PNGFiles")), QStringLiteral("PNG images (*.png)"));
  EXPECT_EQ(FileDialog::getFilter(QStringLiteral("unknown")), QString());
  FileDialog::registerFileType(QStringLiteral("Test::Plans"), QStringLiteral("Plans"), {"*.plan", "*.pln"});
  EXPECT_EQ(FileDialog::getFilter(QStringLiteral("Test::Plans")), QStringLiteral("Plans (*.plan *.pln)"));

  FileDialog::setHandler([](FileDialog::Mode mode, const QString& title, const QStringList& types) {
    return QStringList{QStringLiteral("%1|%2|%3").arg(mode).arg(title, types.join(','))};
  });
  EXPECT_EQ(FileDialog::getFileNames(nullptr, FileDialog::Save, QStringLiteral("T"), {"A", "B"}),
            QStringList{QStringLiteral("2|T|A,B")});
  FileDialog::setHandler(nullptr);
  // No person to ask on the offscreen platform.
  EXPECT_TRUE(FileDialog::getFileNames(nullptr, FileDialog::Open, QStringLiteral("T"), {}).isEmpty());
}

// The browse button asks the file dialog in the selector's mode, with its title and types, at
// the current file; a choice replaces the file name, a cancel keeps it.
struct FileSelectCase
{
  Vel_FileSelect::Mode mode;
  Vel::GTools::FileDialog::Mode asked;
  bool limited;
  QStringList filters;
};

class FileSelectBrowse : public ::testing::TestWithParam<FileSelectCase>
{};

TEST_P(FileSelectBrowse, AsksInItsModeAndTakesTheChoice)
{
  using Vel::GTools::FileDialog;
  const FileSelectCase& c = GetParam();
  Vel_FileSelect select;
  select.setMode(c.mode);
  select.setTitle(QStringLiteral("Open plan"));
  select.setFileTypes({{QStringLiteral("*.plan  *.pln"), QStringLiteral("Plans")}, {QStringLiteral("*.stl"), QString()}});
  select.setLimited(c.limited);
  select.setDefaultFileType(QStringLiteral("*.stl"));
  select.setFileName(QStringLiteral("/data/old.plan"));
  QSignalSpy changed(&select, &Vel_FileSelect::fileNameChanged);

  std::optional<FileDialog::Request> asked;
  QStringList answer{QStringLiteral("/data/new.plan")};
  FileDialog::setRequestHandler([&](const FileDialog::Request& request) {
    asked = request;
    return answer;
  });
  QTest::mouseClick(select.browseButton(), Qt::LeftButton);
  ASSERT_TRUE(asked);
  EXPECT_EQ(asked->mode, c.asked);
  EXPECT_EQ(asked->title, QStringLiteral("Open plan"));
  EXPECT_EQ(asked->types, c.filters);
  EXPECT_EQ(asked->start, QStringLiteral("/data/old.plan"));
  EXPECT_EQ(asked->selected, QStringLiteral("*.stl (*.stl)"));
  EXPECT_EQ(select.getFileName(), QStringLiteral("/data/new.plan"));
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed[0][0].toString(), QStringLiteral("/data/new.plan"));

  answer.clear();
  QTest::mouseClick(select.browseButton(), Qt::LeftButton);
  EXPECT_EQ(select.getFileName(), QStringLiteral("/data/new.plan"));
  EXPECT_EQ(changed.count(), 1);
  QTest::keyClicks(select.lineEdit(), "x");
  EXPECT_EQ(changed.count(), 2) << "typing is a change too";
  FileDialog::setRequestHandler(nullptr);
}

const QStringList LISTED = {QStringLiteral("Plans (*.plan *.pln)"), QStringLiteral("*.stl (*.stl)")};

INSTANTIATE_TEST_SUITE_P(
    Modes, FileSelectBrowse,
    ::testing::Values(
        FileSelectCase{Vel_FileSelect::AnyFile, Vel::GTools::FileDialog::AnyFile, false,
                       LISTED + QStringList{QStringLiteral("All files (*)")}},
        FileSelectCase{Vel_FileSelect::NewFile, Vel::GTools::FileDialog::Save, true, LISTED},
        FileSelectCase{Vel_FileSelect::ExistingFile, Vel::GTools::FileDialog::Open, true, LISTED},
        FileSelectCase{Vel_FileSelect::ExistingDirectory, Vel::GTools::FileDialog::Directory, false,
                       LISTED + QStringList{QStringLiteral("All files (*)")}}));

// Clicking the button asks for a colour; only a checkable button may take a transparent one.
class ColorButtonClick : public ::testing::TestWithParam<bool>
{};

TEST_P(ColorButtonClick, OpensTheColourDialog)
{
  const bool checkable = GetParam();
  Vel_ColorButton button;
  button.setCheckable(checkable);
  button.setColor(Vel::Color(10, 20, 30));
  QSignalSpy changed(&button, &Vel_ColorButton::changed);
  bool asked = false;
  QTimer::singleShot(0, [&] {
    auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
    if (!dialog)
      return;
    asked = true;
    EXPECT_EQ(dialog->currentColor(), QColor(10, 20, 30));
    EXPECT_EQ(dialog->testOption(QColorDialog::ShowAlphaChannel), checkable);
    dialog->setCurrentColor(QColor(200, 100, 0, 128));
    dialog->accept();
  });
  button.button()->click();
  ASSERT_TRUE(asked);
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(button.getColor(), Vel::Color(200, 100, 0, checkable ? 128 : 255));
}

INSTANTIATE_TEST_SUITE_P(Checkable, ColorButtonClick, ::testing::Bool());

TEST(Unit, EveryAvailableUnitHasItsOwnReadableName)
{
  const auto units = Vel::Unit::getAvailableUnitsForApplication();
  ASSERT_FALSE(units.empty());
  std::set<QString> names;
  for (const Vel::Unit* unit : units) {
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(Vel::Unit::getUnit(Vel::Unit::getID(*unit)), unit);
    EXPECT_TRUE(unit->getName().endsWith(QStringLiteral("(%1)").arg(unit->getSymbol())));
    EXPECT_TRUE(names.insert(unit->getName()).second) << "twice: " << unit->getName().toStdString();
  }
  EXPECT_EQ(Vel::Unit::getUnit(QStringLiteral("mm"))->getName(), QStringLiteral("Millimetre (mm)"));
  EXPECT_EQ(Vel::Unit::getUnit(QStringLiteral("um"))->getName(), QStringLiteral("Micrometre (\u00b5m)"));
}

}  // namespace
