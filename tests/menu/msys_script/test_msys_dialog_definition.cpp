#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include "core/prog_error.h"
#include "dialog_test_element.h"
#include "menu/msys_script/msys_dialog_definition.h"
#include "test_util.h"

using namespace Vel::MSysScript;

namespace {

const QString FIXTURES = QStringLiteral(ZUT_TEST_DIALOG_FIXTURES);

std::unique_ptr<DialogDefinition> read(const QString& text)
{
  TestElement::registryWithTestElement();
  return DialogDefinition::read(text);
}

QString dialogWith(const QString& header, const QString& content)
{
  return QStringLiteral("<dialog>\n  <title>T</title>\n  <control id=\"OkCancel\"/>\n%1\n%2\n</dialog>\n")
      .arg(header, content);
}

QString element(const char* name, int row, int column, const QString& more = QString())
{
  return QStringLiteral("<widget type=\"test::element\" row=\"%1\" column=\"%2\"%3><name>%4</name></widget>")
      .arg(row)
      .arg(column)
      .arg(more, QString::fromLatin1(name));
}

// ---------------------------------------------------------------------------------------------
// Every broken fixture says in its first line which fault it holds: <!-- expect LINE: message -->.
// The line counts that first line; 0 stands for the parser's own line, and "PARSER" for its
// own words.

struct Expectation
{
  int line = -1;
  QString message;
};

Expectation expectationOf(const QString& text)
{
  static const QRegularExpression pattern(QStringLiteral("^<!-- expect (\\d+): (.*) -->"));
  const QRegularExpressionMatch match = pattern.match(text);
  if (!match.hasMatch())
    return {};
  return {match.captured(1).toInt(), match.captured(2)};
}

std::vector<std::string> brokenFixtures()
{
  std::vector<std::string> names;
  for (const QString& name : QDir(FIXTURES).entryList({QStringLiteral("broken_*.xml")}, QDir::Files, QDir::Name))
    names.push_back(name.toStdString());
  return names;
}

class BrokenDefinition : public ::testing::TestWithParam<std::string>
{};

TEST_P(BrokenDefinition, FailsWithItsMessageAndLine)
{
  const QString text = QString::fromUtf8(readFile(FIXTURES + QLatin1Char('/') + QString::fromStdString(GetParam())));
  const Expectation expected = expectationOf(text);
  ASSERT_FALSE(expected.message.isEmpty()) << "the fixture does not say what it expects";
  try {
    read(text);
    FAIL() << "read without a fault";
  } catch (const Xml::ParseException& error) {
    EXPECT_EQ(error.getCode(), QStringLiteral("MSysScriptErr-0004"));
    if (expected.message.endsWith(QStringLiteral("PARSER"))) {
      EXPECT_TRUE(error.getParseMessage().startsWith(expected.message.chopped(6)))
          << error.getParseMessage().toStdString();
      EXPECT_GT(error.getLine(), 1);
    } else {
      EXPECT_EQ(error.getParseMessage(), expected.message);
      EXPECT_EQ(error.getLine(), expected.line);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Fixtures, BrokenDefinition, ::testing::ValuesIn(brokenFixtures()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           return info.param.substr(7, info.param.size() - 7 - 4);
                         });

TEST(BrokenDefinitionFixtures, AreThere)
{
  EXPECT_GE(brokenFixtures().size(), 30u);
}

// ---------------------------------------------------------------------------------------------

TEST(DialogDefinition, OptionalHeaderEntriesHaveTheirDefaults)
{
  const auto definition = read(dialogWith(QString(), QStringLiteral("<content rows=\"1\" columns=\"1\"/>")));
  EXPECT_EQ(definition->header.title, QStringLiteral("T"));
  EXPECT_EQ(definition->header.control_id, QStringLiteral("OkCancel"));
  EXPECT_EQ(definition->header.position.getId(), QStringLiteral("automatic"));
  EXPECT_EQ(definition->header.embedding.getId(), QStringLiteral("always_toplevel"));
  EXPECT_EQ(definition->header.size_mode.getId(), QStringLiteral("automatic"));
  EXPECT_FALSE(definition->header.size.isValid());
  EXPECT_EQ(definition->header.style, QStringLiteral("Standard"));
}

struct HeaderCase
{
  const char* what;
  const char* header;
  const char* position;
  const char* embedding;
  int width;  // 0: no size
  const char* style;
};

class DialogHeaderWords : public ::testing::TestWithParam<HeaderCase>
{};

TEST_P(DialogHeaderWords, ReadAsTheFormatSays)
{
  const HeaderCase& c = GetParam();
  const auto definition =
      read(dialogWith(QString::fromUtf8(c.header), QStringLiteral("<content rows=\"0\" columns=\"0\"/>")));
  EXPECT_EQ(definition->header.position.getId(), QString::fromLatin1(c.position));
  EXPECT_EQ(definition->header.embedding.getId(), QString::fromLatin1(c.embedding));
  EXPECT_EQ(definition->header.size.isValid() ? definition->header.size.width() : 0, c.width);
  EXPECT_EQ(definition->header.style, QString::fromLatin1(c.style));
}

INSTANTIATE_TEST_SUITE_P(
    Header, DialogHeaderWords,
    ::testing::Values(
        HeaderCase{"all_set",
                   "<position>top_right</position><embedding>embedded_in_kiosk</embedding>"
                   "<sizemode>fixed</sizemode><size width=\"300\" height=\"200\"/><style>Touch screen</style>",
                   "top_right", "embedded_in_kiosk", 300, "Touch screen"},
        HeaderCase{"old_embedded", "<position>right</position><embedding>embedded</embedding>", "left",
                   "embedded_in_kiosk", 0, "Standard"},
        // Whatever the position said.
        HeaderCase{"old_fullsize", "<position>right</position><embedding>fullsize_embedded</embedding>", "center",
                   "embedded_in_kiosk", 0, "Standard"},
        HeaderCase{"zero_width", "<size width=\"0\" height=\"200\"/>", "automatic", "always_toplevel", 0, "Standard"},
        HeaderCase{"old_touch_styles", "<style>TouchDark</style>", "automatic", "always_toplevel", 0, "Touch screen"}),
    [](const ::testing::TestParamInfo<HeaderCase>& info) { return std::string(info.param.what); });

// How deep the elements of a definition nest, counted as the XML reader counts them: comments,
// sections and quoted values hold no elements, an empty element is entered too.
TEST(DialogDefinition, RefusesElementsNestedDeeperThanTheLimit)
{
  const auto nested = [](int levels, const char* open, const char* innermost) {
    QString text;
    for (int i = 0; i < levels; ++i)
      text += QString::fromLatin1(open);
    text += QString::fromLatin1(innermost);
    for (int i = 0; i < levels; ++i)
      text += QStringLiteral("</x>");
    return text;
  };
  const QString deep = QStringLiteral("Parse error: elements are nested deeper than 256 levels");
  // The root and "extra" are two levels.
  const struct
  {
    const char* what;
    QString extra;
    QString fault;
  } cases[] = {
      {"at_the_limit", nested(254, "<x>", ""), QString()},
      {"past_the_limit", nested(255, "<x>", ""), deep},
      {"empty_element_past_the_limit", nested(254, "<x>", "<y/>"), deep},
      {"quoted_closings", nested(255, "<x a=\"/>\" b='>'>", ""), deep},
      {"in_a_comment", QStringLiteral("<!--%1-->").arg(nested(300, "<x>", "")), QString()},
      {"in_a_section", QStringLiteral("<![CDATA[%1]]>").arg(nested(300, "<x>", "")), QString()},
      {"in_an_instruction", QStringLiteral("<?note %1?>").arg(nested(300, "<x>", "")), QString()},
  };
  for (const auto& c : cases) {
    const QString text = dialogWith(QStringLiteral("<extra>%1</extra>").arg(c.extra),
                                    QStringLiteral("<content rows=\"0\" columns=\"0\"/>"));
    try {
      read(text);
      EXPECT_TRUE(c.fault.isEmpty()) << c.what;
    } catch (const Xml::ParseException& error) {
      EXPECT_EQ(error.getParseMessage(), c.fault) << c.what;
      EXPECT_EQ(error.getLine(), 4) << c.what;
    }
  }
}

TEST(DialogDefinition, UncoveredCellsHoldPlaceholdersAndSpansCoverTheirCells)
{
  const auto definition = read(dialogWith(
      QString(), QStringLiteral("<content rows=\"3\" columns=\"2\">%1%2</content>")
                     .arg(element("wide", 0, 0, QStringLiteral(" columnspan=\"2\"")), element("low", 2, 1))));
  ASSERT_EQ(definition->getCells().size(), 5u);  // two elements, three placeholders
  EXPECT_EQ(definition->getWidget(0, 1)->getName(), QStringLiteral("wide"));
  EXPECT_EQ(definition->getWidget(2, 1)->getName(), QStringLiteral("low"));
  for (auto [row, column] : {std::pair{1, 0}, {1, 1}, {2, 0}})
    EXPECT_EQ(definition->getWidget(row, column)->getCreatorId(), QStringLiteral("empty"));
  EXPECT_EQ(definition->findWidget(QStringLiteral("low"))->getSourceLine(), 5);
  EXPECT_EQ(definition->getWidget(3, 0), nullptr);
}

TEST(DialogDefinition, ElementsAreMadeForTheModeAskedAndReadTheirOwnChildren)
{
  TestElement::registryWithTestElement();
  const auto definition = DialogDefinition::read(
      dialogWith(QString(), QStringLiteral("<content rows=\"1\" columns=\"1\">"
                                           "<widget type=\"test::element\" row=\"0\" column=\"0\" framed=\"true\">"
                                           "<name>n</name><tooltip>tip</tooltip><value>Grüße</value><count>-3</count>"
                                           "<factor>2.5e-3</factor><read_only>true</read_only>"
                                           "<text rich=\"true\"><![CDATA[<b>bold</b>]]></text><shape>square</shape>"
                                           "</widget></content>")),
      DialogWidget::DialogMode::Editor);
  auto* widget = static_cast<TestElement::TestWidget*>(definition->findWidget(QStringLiteral("n")));
  ASSERT_NE(widget, nullptr);
  EXPECT_EQ(widget->getDialogMode(), DialogWidget::DialogMode::Editor);
  EXPECT_EQ(widget->getTooltip(), QStringLiteral("tip"));
  EXPECT_EQ(widget->getValue(), QVariant(QStringLiteral("Grüße")));
  EXPECT_EQ(widget->count(), -3);
  EXPECT_EQ(widget->factor(), 2.5e-3);
  EXPECT_TRUE(widget->readOnly());
  EXPECT_TRUE(widget->framed());
  EXPECT_EQ(widget->text(), QStringLiteral("<b>bold</b>"));
  EXPECT_TRUE(widget->rich());
  EXPECT_EQ(widget->shape(), TestElement::Shape::Square);
}

// Read, write, read again: the same dialog, and from then on the same text.
TEST(DialogDefinition, WrittenDefinitionsReadBackToTheSameDialog)
{
  const QString text = QString::fromUtf8(readFile(FIXTURES + QStringLiteral("/good_old_words.xml")));
  const auto first = read(text);
  const QString written = first->write();
  const auto second = read(written);
  EXPECT_EQ(second->write(), written);

  // The older words are gone; what they meant is kept.
  EXPECT_FALSE(written.contains(QStringLiteral("fullsize_embedded")));
  EXPECT_EQ(second->header.position.getId(), QStringLiteral("center"));
  EXPECT_EQ(second->header.embedding.getId(), QStringLiteral("embedded_in_kiosk"));
  ASSERT_EQ(second->getCells().size(), first->getCells().size());
  for (size_t i = 0; i < first->getCells().size(); ++i) {
    const auto& a = first->getCells()[i];
    const auto& b = second->getCells()[i];
    EXPECT_EQ(std::tie(a.row, a.column, a.row_span, a.column_span),
              std::tie(b.row, b.column, b.row_span, b.column_span));
    EXPECT_EQ(a.widget->getCreatorId(), b.widget->getCreatorId());
    EXPECT_EQ(a.widget->__getattr__(QStringLiteral("attributes")).toMap(),
              b.widget->__getattr__(QStringLiteral("attributes")).toMap())
        << a.widget->getName().toStdString();
  }
  auto* rich = static_cast<TestElement::TestWidget*>(second->findWidget(QStringLiteral("notes")));
  ASSERT_NE(rich, nullptr);
  EXPECT_EQ(rich->text(), QStringLiteral("<p>Measure <i>twice</i> &amp; cut once</p>"));
}

TEST(DialogDefinition, WithoutTheApplicationsSupplierNothingIsRead)
{
  TestElement::registryWithTestElement();
  auto* supplier = Vel::GTools::DialogWidgetSupplierInterface::getInstance();
  Vel::GTools::DialogWidgetSupplierInterface::setInstance(nullptr);
  try {
    DialogDefinition::read(dialogWith(QString(), QStringLiteral("<content rows=\"0\" columns=\"0\"/>")));
    ADD_FAILURE() << "read without a supplier";
  } catch (const Vel::ProgError& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Script dialog supplier interface not instantiated"));
  }
  Vel::GTools::DialogWidgetSupplierInterface::setInstance(supplier);
}

}  // namespace
