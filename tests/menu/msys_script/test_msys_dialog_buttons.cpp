#include <QBuffer>
#include <QDomDocument>
#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "core/parse_binary.h"
#include "dialog_test_tools.h"
#include "gapp/main_window.h"
#include "menu/msys_script/msys_dialog_button_widgets.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"

using namespace Vel::MSysScript;
using TestElement::xmlOf;

namespace {

std::unique_ptr<ButtonWidget> button(const char* type, const QString& tags = QString())
{
  return TestElement::parsed<ButtonWidget>(QString::fromLatin1(type), tags, QStringLiteral("b"));
}

QImage picture(int width, int height)
{
  QImage image(width, height, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setBrush(QColor(0x20, 0x80, 0xd0));
  painter.drawEllipse(image.rect().adjusted(1, 1, -1, -1));
  return image;
}

QString iconTag(const QImage& image)
{
  return QStringLiteral("<icon><![CDATA[%1]]></icon>")
      .arg(Vel::Parse::Binary::encode(WidgetTools::imageBytes(image)));
}

TEST(BinaryText, RoundTripsAnyBytesAndRefusesDamage)
{
  QByteArray every;
  for (int byte = 0; byte < 256; ++byte)
    every += static_cast<char>(byte);
  for (const QByteArray& bytes : {QByteArray(), QByteArray("a"), QByteArray("ab"), every.repeated(3)}) {
    const QString text = Vel::Parse::Binary::encode(bytes);
    EXPECT_EQ(Vel::Parse::Binary::decode(text), bytes);
    // Re-indented text reads the same.
    EXPECT_EQ(Vel::Parse::Binary::decode(QStringLiteral("\n  ") + QString(text).replace(QLatin1Char('\n'), "\n    ")),
              bytes);
  }
  for (const char* damaged : {"YW*j", "YWJ", "YW=j", "ÿÿÿÿ"})
    EXPECT_FALSE(Vel::Parse::Binary::decode(QString::fromUtf8(damaged))) << damaged;
}

// ---------------------------------------------------------------------------------------------

struct ButtonTagCase
{
  const char* type;
  const char* tags;
  const char* printed;
  const char* iconType;
  const char* systemType;
  bool checkable;
};

class ButtonTags : public ::testing::TestWithParam<ButtonTagCase>
{};

TEST_P(ButtonTags, ReadWriteReadAgainAndDefaults)
{
  const ButtonTagCase& c = GetParam();
  auto widget = button(c.type, QString::fromUtf8(c.tags));
  EXPECT_EQ(widget->__repr__(), QString::fromUtf8(c.printed));
  EXPECT_EQ(widget->__getattr__(ButtonWidget::TAG_ICON_TYPE).toString(), QString::fromLatin1(c.iconType));
  EXPECT_EQ(widget->__getattr__(ButtonWidget::TAG_ICON_SYSTEM_TYPE).toString(), QString::fromLatin1(c.systemType));
  EXPECT_EQ(widget->button()->isCheckable(), c.checkable);

  const QString written = xmlOf(widget.get());
  QDomDocument document;
  ASSERT_TRUE(document.setContent(written));
  auto again = button(c.type);
  again->parseXml(document.documentElement());
  EXPECT_EQ(xmlOf(again.get()), written);
}

INSTANTIATE_TEST_SUITE_P(
    Types, ButtonTags,
    ::testing::Values(
        ButtonTagCase{"button::pushbutton", "<text>Go</text>", "zut.dialog.ButtonWidget (name='b', text='Go', toggleable=false)",
                      "none", "ok", false},
        ButtonTagCase{"button::pushbutton",
                      "<text>it's %1</text><type>toggle</type><icon_type>system</icon_type>"
                      "<icon_system_type>arrow_left</icon_system_type><icon_system_size>extra_large</icon_system_size>"
                      "<icon_size>full</icon_size><icon_file_name>/tmp/x.png</icon_file_name>",
                      "zut.dialog.ButtonWidget (name='b', text='it\\'s %1', toggleable=true)", "system", "arrow_left",
                      true},
        ButtonTagCase{"button::abort", "", "zut.dialog.ButtonWidget (name='b', text='', toggleable=false)", "system",
                      "cancel", false}));

TEST(ButtonWidgets, AMissingTagIsTheTypesDefaultNotTheEarlierValue)
{
  auto widget = button("button::abort",
                       QStringLiteral("<text>Stop</text><type>toggle</type><icon_type>none</icon_type>"
                                      "<icon_system_type>ok</icon_system_type>"));
  auto fresh = button("button::abort", QStringLiteral("<text>Stop</text>"));
  QDomDocument document;
  ASSERT_TRUE(document.setContent(QStringLiteral("<widget><name>b</name><text>Stop</text></widget>")));
  widget->parseXml(document.documentElement());
  EXPECT_EQ(xmlOf(widget.get()), xmlOf(fresh.get()));
}

TEST(ButtonWidgets, AnIconSurvivesTheDefinitionAndIsNeverClipped)
{
  const QImage image = picture(64, 40);
  for (const char* size : {"icon", "full"}) {
    auto widget = button("button::pushbutton", QStringLiteral("<text>Measure</text><icon_type>file</icon_type>"
                                                              "<icon_size>%1</icon_size>%2")
                                                   .arg(QString::fromLatin1(size), iconTag(image)));
    EXPECT_EQ(widget->getIcon().convertToFormat(QImage::Format_ARGB32), image) << size;
    QDomDocument document;
    ASSERT_TRUE(document.setContent(xmlOf(widget.get())));
    auto again = button("button::pushbutton");
    again->parseXml(document.documentElement());
    EXPECT_EQ(again->getIcon().convertToFormat(QImage::Format_ARGB32), image) << size;

    const QSize shown = widget->button()->iconSize();
    const QSize minimum = widget->button()->minimumSize();
    EXPECT_GE(minimum.width(), shown.width()) << size;
    EXPECT_GE(minimum.height(), shown.height()) << size;
    EXPECT_EQ(shown, std::string(size) == "full" ? image.size() : QSize(32, 20)) << size;
  }
  // Each system size is shown at its own edge, the largest included.
  int previous = 0;
  for (const char* size : {"default", "large", "extra_large"}) {
    auto widget = button("button::abort", QStringLiteral("<icon_system_size>%1</icon_system_size>").arg(size));
    EXPECT_FALSE(widget->button()->icon().isNull());
    EXPECT_GT(widget->button()->iconSize().height(), previous);
    previous = widget->button()->iconSize().height();
    EXPECT_GE(widget->button()->minimumSize().height(), previous);
  }
}

TEST(ButtonWidgets, CopyTakesPictureWordsTextAndStates)
{
  auto source = button("button::pushbutton",
                       QStringLiteral("<text>Go</text><type>toggle</type><icon_type>file</icon_type>%1")
                           .arg(iconTag(picture(8, 8))));
  source->__setattr__(DialogWidget::TAG_VALUE, true);
  auto copy = button("button::abort");
  copy->copyFrom(*source);
  EXPECT_EQ(copy->__repr__(), QStringLiteral("zut.dialog.ButtonWidget (name='b', text='Go', toggleable=true)"));
  EXPECT_TRUE(copy->button()->isChecked());
  EXPECT_EQ(copy->getIcon(), source->getIcon());
  EXPECT_EQ(copy->__getattr__(ButtonWidget::TAG_ICON_TYPE), QVariant(QStringLiteral("file")));
  EXPECT_FALSE(copy->button()->icon().isNull());
}

// ---------------------------------------------------------------------------------------------

TEST(ButtonWidgets, ScriptAttributesChangeTheButtonAndReadBack)
{
  auto widget = button("button::pushbutton", QStringLiteral("<text>Go</text>"));
  widget->__setattr__(ButtonWidget::TAG_TYPE, QStringLiteral("toggle"));
  widget->__setattr__(DialogWidget::TAG_VALUE, true);
  EXPECT_TRUE(widget->button()->isChecked());
  EXPECT_EQ(widget->__getattr__(DialogWidget::TAG_VALUE), QVariant(true));
  widget->__setattr__(ButtonWidget::TAG_TEXT, QStringLiteral("Again"));
  EXPECT_EQ(widget->button()->text(), QStringLiteral("Again"));

  // A picture arrives as the stored bytes or as any image file's bytes.
  const QImage image = picture(12, 12);
  QByteArray png;
  QBuffer buffer(&png);
  image.save(&buffer, "PNG");
  for (const QByteArray& bytes : {WidgetTools::imageBytes(image), png}) {
    widget->__setattr__(ButtonWidget::TAG_ICON, bytes);
    EXPECT_EQ(widget->getIcon().convertToFormat(QImage::Format_ARGB32), image);
  }
  EXPECT_EQ(WidgetTools::imageFromBytes(widget->__getattr__(ButtonWidget::TAG_ICON).toByteArray()).size(), QSize(12, 12));
  widget->__setattr__(ButtonWidget::TAG_ICON_TYPE, QStringLiteral("file"));
  EXPECT_FALSE(widget->button()->icon().isNull());
  widget->__setattr__(ButtonWidget::TAG_ICON, QByteArray());
  EXPECT_TRUE(widget->button()->icon().isNull());

  const auto doc = widget->__doc__();
  for (const char* row : {"text str - Text of the button", "type str - Button type ('push', 'toggle')",
                          "icon bytes - Icon of the button", "icon_size str - Icon size mode (icon, full)",
                          "icon_type str - Icon type (none, system, file)",
                          "icon_system_type str - System icon type (ok, cancel, arrow_up, arrow_down, arrow_left, "
                          "arrow_right)",
                          "icon_system_size str - System icon size (default, large, extra_large)"})
    EXPECT_TRUE(doc.contains(QString::fromLatin1(row))) << row << "\n" << qPrintable(doc);
  EXPECT_LT(doc.indexOf(QStringLiteral("\ntext ")), doc.indexOf(QStringLiteral("\nicon_system_size ")));
}

TEST(ButtonWidgets, ConfigurationCheckWantsTextOrIcon)
{
  struct Case
  {
    const char* type;
    const char* tags;
    bool passes;
  };
  for (const Case& c : {Case{"button::pushbutton", "<text>   </text>", false},
                        Case{"button::pushbutton", "<text>   </text><icon_type>file</icon_type>", false},
                        Case{"button::pushbutton", "<text>   </text><icon_type>system</icon_type>", true},
                        Case{"button::abort", "", true}, Case{"button::pushbutton", "<text>x</text>", true}}) {
    auto widget = button(c.type, QString::fromLatin1(c.tags));
    QString error;
    EXPECT_EQ(widget->checkConfiguration(&error), c.passes) << c.tags;
    if (!c.passes) {
      EXPECT_EQ(error, QStringLiteral("Button \"b\" contains neither a text nor an icon."));
    }
  }
}

TEST(ButtonWidgets, AClickIsAModificationAndTheAbortButtonFollowsTheHost)
{
  auto push = button("button::pushbutton", QStringLiteral("<text>Go</text>"));
  QSignalSpy modified(push.get(), &DialogWidget::signalModified);
  push->show();
  QTest::mouseClick(push->button(), Qt::LeftButton);
  EXPECT_EQ(modified.count(), 1);

  auto abort = button("button::abort");
  abort->show();
  EXPECT_FALSE(abort->button()->isEnabled());
  const int requests = Vel::GApp::MainWindow::getAbortRequestCount();
  Vel::GApp::MainWindow::setScriptRunning(true);
  EXPECT_TRUE(abort->button()->isEnabled());
  QSignalSpy aborted(abort.get(), &DialogWidget::signalModified);
  QTest::mouseClick(abort->button(), Qt::LeftButton);
  EXPECT_EQ(Vel::GApp::MainWindow::getAbortRequestCount(), requests + 1);
  EXPECT_EQ(aborted.count(), 1);
  Vel::GApp::MainWindow::setScriptRunning(false);
  EXPECT_FALSE(abort->button()->isEnabled());
}

TEST(ButtonConfiguration, NewElementsAndThePanelsFields)
{
  for (const auto& [type, text] : {std::pair{"button::abort", "Abort"}, std::pair{"button::pushbutton", "Button"}}) {
    const DialogWidgetCreator* creator =
        TestElement::registryWithTestElement()->getWidgetCreator(QString::fromLatin1(type));
    std::unique_ptr<DialogWidget> widget(creator->createWidget());
    std::unique_ptr<ElementConfiguration> panel(creator->createConfiguration(nullptr));
    panel->initializeNew(widget.get());
    EXPECT_EQ(widget->__getattr__(ButtonWidget::TAG_TEXT), QVariant(QString::fromLatin1(text)));

    // What the panel shows of an element it applies back unchanged; a picture included.
    widget->__setattr__(ButtonWidget::TAG_ICON, WidgetTools::imageBytes(picture(10, 10)));
    panel->setup(widget.get());
    QStringList labels;
    for (const Property* property : panel->getProperties())
      labels << property->getName();
    EXPECT_EQ(labels.mid(labels.indexOf(QStringLiteral("Button"))),
              (QStringList{"Button", "Text", "Type", "Icon type", "System icon", "System icon size", "Icon",
                           "Icon size"}));
    const QString before = xmlOf(widget.get());
    panel->apply(widget.get());
    EXPECT_TRUE(panel->getApplyErrors().isEmpty()) << qPrintable(panel->getApplyErrors().join("\n"));
    EXPECT_EQ(xmlOf(widget.get()), before);
  }
}

}  // namespace
