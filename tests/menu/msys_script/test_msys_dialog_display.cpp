#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTextEdit>
#include <QTimer>

#include <gtest/gtest.h>

#include "core/prog_error.h"
#include "dialog_test_tools.h"
#include "gapp/interaction.h"
#include "gtools/file_dialog.h"
#include "menu/msys_script/msys_dialog_definition.h"
#include "menu/msys_script/msys_dialog_display_widgets.h"
#include "menu/msys_script/msys_dialog_styles.h"
#include "menu/msys_script/msys_dialog_text_field_widget.h"

using namespace Vel::MSysScript;
using TestElement::create;

namespace {

QString dialogHolding(const QString& type, const QString& tags)
{
  return QStringLiteral(
             "<dialog>\n<title>T</title>\n<control id=\"Close\"/>\n<content rows=\"1\" columns=\"1\">\n"
             "<widget type=\"%1\" row=\"0\" column=\"0\">\n<name>e</name>%2</widget>\n</content>\n</dialog>\n")
      .arg(type, tags);
}

// Observes what the host's dialogs are asked, and restores them afterwards.
struct HostDialogs
{
  QStringList errors;
  HostDialogs()
  {
    Vel::GApp::setErrorDialogHandler([this](const QString& code, const QString& text) { errors << code + ' ' + text; });
  }
  ~HostDialogs()
  {
    Vel::GApp::setErrorDialogHandler(nullptr);
    Vel::GTools::FileDialog::setHandler(nullptr);
  }
};

// ---------------------------------------------------------------------------------------------
// Free text is one CDATA section in the definition; what a section cannot hold is split and
// joined again, so any text reads back as it was set.

struct FreeTextCase
{
  const char* type;
  QString text;
};

class FreeText : public ::testing::TestWithParam<FreeTextCase>
{};

TEST_P(FreeText, SurvivesWritingAndReadingTheDefinition)
{
  const FreeTextCase& c = GetParam();
  TestElement::registryWithTestElement();
  auto definition = DialogDefinition::read(dialogHolding(QString::fromLatin1(c.type), QString()));
  definition->findWidget(QStringLiteral("e"))->__setattr__(QStringLiteral("text"), c.text);
  const QString written = definition->write();
  auto again = DialogDefinition::read(written);
  EXPECT_EQ(again->findWidget(QStringLiteral("e"))->__getattr__(QStringLiteral("text")).toString(), c.text)
      << qPrintable(written);
  EXPECT_EQ(again->write(), written);
}

const QString MARKUP = QStringLiteral("a ]]> b <![CDATA[ c ]]]]> <b>d</b> &amp; </text>\n");

INSTANTIATE_TEST_SUITE_P(Texts, FreeText,
                         ::testing::Values(FreeTextCase{"display::text", MARKUP}, FreeTextCase{"display::log", MARKUP},
                                           FreeTextCase{"label", MARKUP},
                                           FreeTextCase{"display::text", QString()},
                                           FreeTextCase{"display::log", QString()}));

// ---------------------------------------------------------------------------------------------

struct SaveCase
{
  QString title;
  const char* target;  // in a folder that holds the folder "taken"
  QString shown;
  bool written;
};

class LogSave : public ::testing::TestWithParam<SaveCase>
{};

// The save dialog shows the title, or the standard one for a blank title; a file that cannot be
// written is reported and leaves nothing behind.
TEST_P(LogSave, AsksWithItsTitleAndWritesThePlainTextWholeOrNotAtAll)
{
  const SaveCase& c = GetParam();
  QTemporaryDir dir;
  QDir(dir.path()).mkdir(QStringLiteral("taken"));
  const QString file = dir.filePath(QString::fromLatin1(c.target));
  HostDialogs host;
  QString title;
  QStringList filters;
  Vel::GTools::FileDialog::setHandler([&](auto mode, const QString& t, const QStringList& types) {
    EXPECT_EQ(mode, Vel::GTools::FileDialog::Save);
    title = t;
    for (const QString& type : types)
      filters << Vel::GTools::FileDialog::getFilter(type);
    return QStringList{file};
  });
  auto widget = create(LogWidget::TYPE_ID);
  widget->__setattr__(LogWidget::TAG_SHOW_SAVE, true);
  widget->__setattr__(LogWidget::TAG_SAVE_DIALOG_TITLE, c.title);
  widget->__setattr__(LogWidget::TAG_TEXT, QStringLiteral("Bore 1: <b>12.5</b>\nBore 2: 12.4"));
  widget->show();
  QTest::mouseClick(static_cast<LogWidget*>(widget.get())->saveButton(), Qt::LeftButton);
  EXPECT_EQ(title, c.shown);
  EXPECT_EQ(filters, QStringList({"All files (*)", "ASCII Text (*.txt)"}));
  QFile saved(file);
  if (c.written) {
    EXPECT_TRUE(host.errors.isEmpty());
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly | QIODevice::Text));
    EXPECT_EQ(QString::fromUtf8(saved.readAll()), QStringLiteral("Bore 1: <b>12.5</b>\nBore 2: 12.4"));
  } else {
    EXPECT_EQ(host.errors, QStringList{"MSysScriptErr-0019 Cannot open file for writing: " + file});
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"taken"});
    EXPECT_TRUE(QDir(dir.filePath(QStringLiteral("taken"))).isEmpty());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Files, LogSave,
    ::testing::Values(SaveCase{QStringLiteral("Keep log"), "log.txt", QStringLiteral("Keep log"), true},
                      SaveCase{QStringLiteral(" Keep log \t"), "log.txt", QStringLiteral("Keep log"), true},
                      SaveCase{QStringLiteral("   "), "log.txt", QStringLiteral("Save File"), true},
                      SaveCase{QString(), "missing/log.txt", QStringLiteral("Save File"), false},
                      SaveCase{QString(), "taken", QStringLiteral("Save File"), false}));

class LogScrolling : public ::testing::TestWithParam<bool>
{};

// A script replaces the text; the view follows the end only when the log scrolls automatically,
// and otherwise stays where the person was reading.
TEST_P(LogScrolling, FollowsNewLinesOnlyWhenAsked)
{
  const bool follow = GetParam();
  auto widget = create(LogWidget::TYPE_ID);
  widget->__setattr__(LogWidget::TAG_SCROLL_AUTOMATICALLY, follow);
  widget->resize(200, 120);
  widget->show();
  QString text;
  for (int line = 0; line < 100; ++line)
    text += QStringLiteral("probe %1\n").arg(line);
  widget->__setattr__(LogWidget::TAG_TEXT, text);
  QScrollBar* bar = static_cast<LogWidget*>(widget.get())->log()->verticalScrollBar();
  ASSERT_GT(bar->maximum(), 20);
  bar->setValue(10);
  widget->__setattr__(LogWidget::TAG_TEXT, text + QStringLiteral("probe 100\n"));
  EXPECT_EQ(bar->value(), follow ? bar->maximum() : 10);
  EXPECT_EQ(widget->__getattr__(LogWidget::TAG_TEXT).toString(), text + QStringLiteral("probe 100\n"));
}

INSTANTIATE_TEST_SUITE_P(Modes, LogScrolling, ::testing::Bool());

// `zut lint` reports what the element's check finds, at the element's line.
TEST(LogWidget, TheCheckOfTheDefinitionNamesTheLineOfALogWithoutSaveTitle)
{
  TestElement::registryWithTestElement();
  const auto faults = DialogDefinition::check(dialogHolding(LogWidget::TYPE_ID, "<show_save>true</show_save>"));
  ASSERT_EQ(faults.size(), 1u);
  EXPECT_EQ(faults[0].line, 5);
  EXPECT_EQ(faults[0].message, QStringLiteral("The dialog title of the save dialog must not be empty."));
}

// ---------------------------------------------------------------------------------------------

QImage picture(int width, int height, const QColor& color = QColor(0, 128, 128))
{
  QImage image(width, height, QImage::Format_ARGB32);
  image.fill(color);
  return image;
}

// The painted extent of the picture's colour in the element as it is shown.
QSize paintedSize(QWidget* view)
{
  const QImage shot = view->grab().toImage();
  QRect painted;
  for (int y = 0; y < shot.height(); ++y)
    for (int x = 0; x < shot.width(); ++x)
      if (shot.pixelColor(x, y) == QColor(0, 128, 128))
        painted |= QRect(x, y, 1, 1);
  return painted.size();
}

struct ScalingCase
{
  const char* what;
  const char* tags;
  QSize shown;
  double scaling;
  double set = 0;  // when given, the script sets the scaling
};

class ImageScaling : public ::testing::TestWithParam<ScalingCase>
{};

TEST_P(ImageScaling, ShowsThePictureAsTheFlagsSay)
{
  const ScalingCase& c = GetParam();
  auto widget = create(ImageWidget::TYPE_ID);
  QDomDocument document;
  ASSERT_TRUE(document.setContent(QStringLiteral("<widget><name>i</name>%1</widget>").arg(c.tags)));
  widget->parseXml(document.documentElement());
  widget->__setattr__(ImageWidget::TAG_DATA, picture(40, 20));
  if (c.set)
    widget->__setattr__(ImageWidget::ATTR_SCALING, c.set);
  auto* image = static_cast<ImageWidget*>(widget.get());
  widget->resize(widget->sizeHint().expandedTo(QSize(200, 200)));
  widget->show();
  EXPECT_EQ(image->getShownSize(), c.shown);
  EXPECT_EQ(paintedSize(image->view()), c.shown);
  EXPECT_DOUBLE_EQ(widget->__getattr__(ImageWidget::ATTR_SCALING).toDouble(), c.scaling);
}

INSTANTIATE_TEST_SUITE_P(
    Flags, ImageScaling,
    ::testing::Values(ScalingCase{"OriginalSize", "<width>100</width><height>100</height>", QSize(40, 20), 1.0},
                      ScalingCase{
                          "KeepAspect",
                          "<keep_original_size>false</keep_original_size><width>100</width><height>100</height>",
                          QSize(100, 50), 2.5},
                      ScalingCase{"Stretched",
                                  "<keep_original_size>false</keep_original_size><keep_aspect>false</keep_aspect>"
                                  "<width>80</width><height>60</height>",
                                  QSize(80, 60), 2.0},
                      ScalingCase{"SetByScript", "<keep_aspect>false</keep_aspect>", QSize(20, 10), 0.5, 0.5}),
    [](const ::testing::TestParamInfo<ScalingCase>& info) { return std::string(info.param.what); });

TEST(ImageWidget, AFileNameReadsThePictureAndOneThatDoesNotReadChangesNothing)
{
  QTemporaryDir dir;
  const QString good = dir.filePath(QStringLiteral("bore.png"));
  ASSERT_TRUE(picture(12, 6).save(good));
  const QString bad = dir.filePath(QStringLiteral("notes.png"));
  QFile notes(bad);
  ASSERT_TRUE(notes.open(QIODevice::WriteOnly) && notes.write("not a picture") > 0);
  notes.close();
  auto widget = create(ImageWidget::TYPE_ID);
  widget->__setattr__(ImageWidget::TAG_FILE_NAME, good);
  EXPECT_EQ(static_cast<ImageWidget*>(widget.get())->getImage().size(), QSize(12, 6));
  const QVariant data = widget->__getattr__(ImageWidget::TAG_DATA);
  try {
    widget->__setattr__(ImageWidget::TAG_FILE_NAME, bad);
    FAIL() << "a file without a picture was taken";
  } catch (const Vel::ScriptTypeException& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Cannot load \"%1\".").arg(bad));
  }
  EXPECT_EQ(widget->__getattr__(ImageWidget::TAG_FILE_NAME), QVariant(good));
  EXPECT_EQ(widget->__getattr__(ImageWidget::TAG_DATA), data);
}

TEST(ImageWidget, WithoutAPictureItListsNoScalingValueAndHoldsAPlaceOnlyInTheEditor)
{
  auto widget = create(ImageWidget::TYPE_ID);
  const QVariantMap attributes = widget->__getattr__(DialogWidget::TAG_ATTRIBUTES).toMap();
  EXPECT_TRUE(attributes.contains(ImageWidget::ATTR_SCALING));
  EXPECT_TRUE(attributes.value(ImageWidget::ATTR_SCALING).isNull());
  EXPECT_EQ(attributes.value(ImageWidget::TAG_WIDTH), QVariant(100));
  QWidget* view = static_cast<ImageWidget*>(widget.get())->view();
  EXPECT_EQ(view->sizeHint(), QSize(0, 0));
  widget->setDialogMode(DialogWidget::DialogMode::Editor);
  EXPECT_GT(view->sizeHint().width(),
            view->fontMetrics().horizontalAdvance(QStringLiteral("<Placeholder for an image>")));
}

// ---------------------------------------------------------------------------------------------

class ImagePanel : public ::testing::TestWithParam<bool>
{};

// The person's file is read by the panel: a picture reaches the element on apply, a file without
// one is reported as such and the element keeps what it had.
TEST_P(ImagePanel, TakesThePictureOfTheChosenFile)
{
  const bool readable = GetParam();
  QTemporaryDir dir;
  const QString file = dir.filePath(QStringLiteral("part.png"));
  ASSERT_TRUE(!readable || picture(30, 10).save(file));
  HostDialogs host;
  auto widget = create(ImageWidget::TYPE_ID);
  widget->__setattr__(ImageWidget::TAG_DATA, picture(8, 8));
  std::unique_ptr<ElementConfiguration> panel(
      TestElement::registryWithTestElement()->getWidgetCreator(ImageWidget::TYPE_ID)->createConfiguration(nullptr));
  panel->setup(widget.get());
  QLabel* preview = static_cast<ImageConfiguration*>(panel.get())->preview();
  EXPECT_FALSE(preview->pixmap().isNull());
  Property* file_property = panel->getProperties()[6];
  ASSERT_EQ(file_property->getName(), QStringLiteral("File"));
  QWidget parent;
  QWidget* editor = file_property->createEditor(&parent);
  file_property->setActiveEditor(editor);
  QTest::keyClicks(editor->findChild<QLineEdit*>(QStringLiteral("_file")), file);
  EXPECT_EQ(preview->text(), readable ? QString() : QStringLiteral("<No image selected>"));

  panel->apply(widget.get());
  auto* image = static_cast<ImageWidget*>(widget.get());
  EXPECT_EQ(image->getImage().size(), readable ? QSize(30, 10) : QSize(8, 8));
  EXPECT_EQ(image->getFileName(), readable ? file : QString());
  EXPECT_EQ(host.errors,
            readable ? QStringList()
                     : QStringList{QStringLiteral("MSysScriptErr-0017 Cannot load the image file \"%1\".").arg(file)});
}

INSTANTIATE_TEST_SUITE_P(Files, ImagePanel, ::testing::Bool());

// ---------------------------------------------------------------------------------------------

TEST(TextFieldInterface, ThereIsOnlyOne)
{
  TextFieldInterface& instance = TextFieldInterface::getInstance();
  try {
    TextFieldInterface second;
    FAIL() << "a second interface was made";
  } catch (const Vel::ProgError& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Interface already registered"));
  }
  EXPECT_EQ(&TextFieldInterface::getInstance(), &instance);
}

// Acts in the editing window once it is open; `opened` says whether it was.
void inEditingWindow(bool* opened, std::function<void(TextFieldEditDialog*, QTextEdit*)> act)
{
  *opened = false;
  QTimer::singleShot(0, [=] {
    auto* dialog = qobject_cast<TextFieldEditDialog*>(QApplication::activeModalWidget());
    *opened = dialog && dialog->objectName() == QLatin1String("VelMSysScript_EditTextField_dlg");
    if (dialog)
      act(dialog, dialog->findChild<QTextEdit*>());
  });
}

TEST(TextFieldConfiguration, EditsTheTextInItsWindowFromTheButtonOrADoubleClick)
{
  auto widget = create(TextFieldWidget::TYPE_ID);
  widget->__setattr__(TextFieldWidget::TAG_TEXT, QStringLiteral("Clamp the part"));
  std::unique_ptr<ElementConfiguration> panel(
      TestElement::registryWithTestElement()->getWidgetCreator(TextFieldWidget::TYPE_ID)->createConfiguration(nullptr));
  QSignalSpy modified(panel.get(), &ElementConfiguration::signalModified);

  // The button edits the panel's text; the element takes it on apply.
  panel->setup(widget.get());
  bool opened = false;
  inEditingWindow(&opened, [](TextFieldEditDialog* dialog, QTextEdit* edit) {
    EXPECT_EQ(edit->toPlainText(), QStringLiteral("Clamp the part"));
    edit->selectAll();
    edit->setFontWeight(QFont::Bold);
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("_close")), Qt::LeftButton);
  });
  QTest::mouseClick(panel->findChild<QPushButton*>(QStringLiteral("_edit_text")), Qt::LeftButton);
  ASSERT_TRUE(opened);
  EXPECT_EQ(modified.count(), 1);
  EXPECT_EQ(widget->__getattr__(TextFieldWidget::TAG_TEXT), QVariant(QStringLiteral("Clamp the part")));
  panel->apply(widget.get());
  EXPECT_TRUE(Qt::mightBeRichText(widget->__getattr__(TextFieldWidget::TAG_TEXT).toString()));
  EXPECT_EQ(static_cast<TextFieldWidget*>(widget.get())->browser()->toPlainText(), QStringLiteral("Clamp the part"));

  // A double click edits the element where it stands; the window's own close keeps the text too.
  inEditingWindow(&opened, [](TextFieldEditDialog* dialog, QTextEdit* edit) {
    edit->setPlainText(QStringLiteral("Unclamp"));
    dialog->reject();
  });
  panel->doubleClicked(widget.get());
  ASSERT_TRUE(opened);
  EXPECT_EQ(widget->__getattr__(TextFieldWidget::TAG_TEXT), QVariant(QStringLiteral("Unclamp")));
  EXPECT_EQ(modified.count(), 2);
}

// ---------------------------------------------------------------------------------------------

// With ZUT_TEST_SCREENSHOTS set: what the element table does not show, in both styles.
TEST(DisplayPictures, PlaceholderAndEditingWindow)
{
  const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS");
  auto placeholder = create(ImageWidget::TYPE_ID);
  placeholder->setDialogMode(DialogWidget::DialogMode::Editor);
  std::unique_ptr<QWidget> editing(TextFieldInterface::getInstance().createEditDialog(
      nullptr, QStringLiteral("<b>Probing</b> starts at the <i>left</i> bore."), QFont()));
  for (const auto& [name, widget, fixed] :
       {std::tuple<const char*, QWidget*, QSize>{"image_placeholder", placeholder.get(), QSize()},
        {"edit_text_field", editing.get(), QSize(520, 360)}}) {
    for (const char* style : {"Standard", "Touch screen"}) {
      DialogStyleWidget cell;
      cell.setStyleSheet(DialogStyleDatabase::findStyle(QString::fromLatin1(style))->getStyleSheet());
      widget->setParent(&cell);
      cell.ensurePolished();
      for (QWidget* child : widget->findChildren<QWidget*>())
        child->ensurePolished();
      const QSize size = (fixed.isValid() ? fixed : widget->sizeHint()).expandedTo(widget->minimumSizeHint());
      EXPECT_GT(size.height(), 0) << name;
      widget->setGeometry(8, 8, size.width(), size.height());
      cell.resize(size + QSize(16, 16));
      cell.show();
      QApplication::processEvents();
      if (!folder.isEmpty())
        cell.grab().save(QStringLiteral("%1/display_%2%3.png").arg(folder, name, *style == 'T' ? "_touch" : ""));
      widget->setParent(nullptr);
    }
  }
}

}  // namespace
