#include <QDomDocument>

#include <functional>
#include <gtest/gtest.h>

#include "core/prog_error.h"
#include "menu/msys_script/VelMSysXmlTools.h"

using namespace Vel::MSysScript;

namespace {

QDomDocument parse(const char* text)
{
  QDomDocument document;
  EXPECT_TRUE(document.setContent(QString::fromUtf8(text)));
  return document;
}

// The message of the ParseException that `read` throws, with its line; "" when it throws none.
std::pair<QString, int> faultOf(const std::function<void()>& read)
{
  try {
    read();
  } catch (const Xml::ParseException& error) {
    EXPECT_EQ(error.getCode(), QStringLiteral("MSysScriptErr-0004"));
    EXPECT_EQ(error.getLog().getText(), error.getParseMessage());
    return {error.getParseMessage(), error.getLine()};
  }
  return {QString(), 0};
}

const char* const ELEMENT = R"(<e
   n="-5" bad="12abc" empty="" yes="true" no="false" upper="True" one="1">
  <i>42</i>
  <d>2.5</d>
  <comma>1,5</comma>
  <b>true</b>
  <B>TRUE</B>
  <twice/>
  <twice>x</twice>
  <text>hello</text>
  <row><row><row/></row></row>
</e>)";

struct ReadCase
{
  const char* what;
  std::function<QVariant(const QDomElement&)> read;
  QVariant expected;    // when it reads
  const char* message;  // when it fails
};

class XmlRead : public ::testing::TestWithParam<ReadCase>
{};

TEST_P(XmlRead, ReadsOrFailsWithTheMessageOfItsKind)
{
  const QDomDocument document = parse(ELEMENT);
  const QDomElement element = document.documentElement();
  QVariant value;
  const auto [message, line] = faultOf([&] { value = GetParam().read(element); });
  if (GetParam().message) {
    EXPECT_EQ(message, QString::fromUtf8(GetParam().message));
    // Every fault names the line of the node it was asked about.
    EXPECT_EQ(line, element.lineNumber());
  } else {
    EXPECT_EQ(message, QString());
    EXPECT_EQ(value, GetParam().expected);
  }
}

template <typename T>
std::function<QVariant(const QDomElement&)> attribute(const char* name)
{
  return
      [name](const QDomElement& e) { return QVariant::fromValue(Xml::getAttribute<T>(e, QString::fromLatin1(name))); };
}

template <typename T>
std::function<QVariant(const QDomElement&)> value(const char* tag)
{
  return [tag](const QDomElement& e) { return QVariant::fromValue(Xml::getValue<T>(e, QString::fromLatin1(tag))); };
}

INSTANTIATE_TEST_SUITE_P(
    Helpers, XmlRead,
    ::testing::Values(
        ReadCase{"int", attribute<int>("n"), -5, nullptr},
        ReadCase{"int trailing letters", attribute<int>("bad"), {}, "Attribute 'bad' should be of type 'integer'."},
        ReadCase{"int empty", attribute<int>("empty"), {}, "Attribute 'empty' should be of type 'integer'."},
        // Not reported as missing, unlike the other kinds.
        ReadCase{"int absent", attribute<int>("absent"), {}, "Attribute 'absent' should be of type 'integer'."},
        ReadCase{"text", attribute<QString>("bad"), QStringLiteral("12abc"), nullptr},
        ReadCase{"text empty", attribute<QString>("empty"), QString(), nullptr},
        ReadCase{"text absent", attribute<QString>("absent"), {}, "Cannot find attribute \"absent\"."},
        ReadCase{"bool true", attribute<bool>("yes"), true, nullptr},
        ReadCase{"bool false", attribute<bool>("no"), false, nullptr},
        ReadCase{"bool capital", attribute<bool>("upper"), {}, "Attribute 'upper' should be of type 'boolean'."},
        ReadCase{"bool digit", attribute<bool>("one"), {}, "Attribute 'one' should be of type 'boolean'."},
        ReadCase{"bool absent", attribute<bool>("absent"), {}, "Cannot find attribute \"absent\"."},
        ReadCase{"value int", value<int>("i"), 42, nullptr},
        ReadCase{"value int of text", value<int>("text"), {}, "The tag content 'text' should be of type 'integer'."},
        ReadCase{"value double", value<double>("d"), 2.5, nullptr},
        // The message says 'integer' for a real number too.
        ReadCase{
            "value double comma", value<double>("comma"), {}, "The tag content 'comma' should be of type 'integer'."},
        ReadCase{"value bool", value<bool>("b"), true, nullptr},
        ReadCase{"value bool capital", value<bool>("B"), {}, "The tag content 'B' should be of type 'boolean'."},
        ReadCase{"value text", value<QString>("text"), QStringLiteral("hello"), nullptr},
        ReadCase{"value missing", value<QString>("absent"), {}, "The element with tag \"absent\" is missing."},
        // Even though one of the two is empty.
        ReadCase{"value twice", value<QString>("twice"), {}, "The element with tag \"twice\" exists several times."}),
    [](const ::testing::TestParamInfo<ReadCase>& info) {
      QString name = QString::fromLatin1(info.param.what);
      name.replace(QLatin1Char(' '), QLatin1Char('_'));
      return name.toStdString();
    });

TEST(XmlTools, CheckTagComparesCaseSensitively)
{
  QDomDocument document = parse("<dialog/>");
  EXPECT_NO_THROW(Xml::checkTag(document.documentElement(), QStringLiteral("dialog")));
  const auto [message, line] = faultOf([&] { Xml::checkTag(document.documentElement(), QStringLiteral("Dialog")); });
  EXPECT_EQ(message, QStringLiteral("Invalid XML tag. 'Dialog' is expected but 'dialog' is given."));
  EXPECT_EQ(line, 1);
  // A node that is not an element has no tag at all.
  const auto [text_message, unused] =
      faultOf([&] { Xml::checkTag(document.createTextNode(QStringLiteral("x")), QStringLiteral("dialog")); });
  EXPECT_EQ(text_message, QStringLiteral("Invalid XML tag. 'dialog' is expected but '' is given."));
}

TEST(XmlTools, ChildrenAreFoundAtAnyDepthInDocumentOrder)
{
  const QDomDocument document = parse(ELEMENT);
  const auto rows = Xml::getChildren(document.documentElement(), QStringLiteral("row"));
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[1].parentNode(), rows[0]);
  EXPECT_EQ(rows[2].parentNode(), rows[1]);
  EXPECT_TRUE(Xml::getChildren(document.documentElement(), QStringLiteral("none")).empty());
  // hasChild looks at direct children only.
  EXPECT_TRUE(Xml::hasChild(document.documentElement(), QStringLiteral("row")));
  EXPECT_FALSE(Xml::hasChild(rows[2], QStringLiteral("row")));
  EXPECT_TRUE(Xml::hasAttribute(document.documentElement(), QStringLiteral("empty")));
  EXPECT_FALSE(Xml::hasAttribute(document.documentElement(), QStringLiteral("absent")));
}

TEST(XmlTools, ParseExceptionKeepsItsLine)
{
  EXPECT_EQ(Xml::ParseException(QStringLiteral("m")).getLine(), -1);
  EXPECT_EQ(Xml::ParseException(QStringLiteral("m"), 7).getLine(), 7);
  const QDomDocument document = parse("<a>\n\n<b/></a>");
  const Xml::ParseException from_node(document.documentElement().firstChild(), QStringLiteral("m"));
  EXPECT_EQ(from_node.getLine(), 3);
  Xml::ParseException copy(QStringLiteral("other"));
  copy = from_node;
  EXPECT_EQ(copy.getLine(), 3);
  EXPECT_EQ(copy.getParseMessage(), QStringLiteral("m"));
  EXPECT_EQ(copy.getCode(), QStringLiteral("MSysScriptErr-0004"));
}

TEST(XmlTools, WrittenValuesReadBack)
{
  QDomDocument document;
  QDomElement root = document.createElement(QStringLiteral("root"));
  document.appendChild(root);
  const double awkward = 0.1 + 0.2;
  root.appendChild(Xml::createValue(&document, QStringLiteral("i"), -2147483647 - 1));
  root.appendChild(Xml::createValue(&document, QStringLiteral("d"), awkward));
  root.appendChild(Xml::createValue(&document, QStringLiteral("tiny"), 1e-300));
  root.appendChild(Xml::createValue(&document, QStringLiteral("b"), false));
  root.appendChild(Xml::createValue(&document, QStringLiteral("s"), QStringLiteral("a <b> & \"c\"")));
  root.appendChild(Xml::createCData(&document, QStringLiteral("rich"), QStringLiteral("<b>x &amp; y</b>")));

  const QDomDocument reread = parse(document.toString().toUtf8().constData());
  const QDomElement e = reread.documentElement();
  EXPECT_EQ(Xml::getValue<int>(e, QStringLiteral("i")), -2147483647 - 1);
  EXPECT_EQ(Xml::getValue<double>(e, QStringLiteral("d")), awkward);
  EXPECT_EQ(Xml::getValue<double>(e, QStringLiteral("tiny")), 1e-300);
  EXPECT_FALSE(Xml::getValue<bool>(e, QStringLiteral("b")));
  EXPECT_EQ(Xml::getValue<QString>(e, QStringLiteral("s")), QStringLiteral("a <b> & \"c\""));
  EXPECT_EQ(e.firstChildElement(QStringLiteral("b")).text(), QStringLiteral("false"));
}

enum class Fruit
{
  Apple,
  Pear,
  Plum
};

Xml::Enumeration<Fruit> fruits()
{
  return Xml::Enumeration<Fruit>(Fruit::Pear,
                                 {{Fruit::Apple, QStringLiteral("apple")}, {Fruit::Pear, QStringLiteral("pear")}});
}

TEST(XmlEnumeration, ReadKeepsTheDefaultWhenAbsentAndNamesWordAndTag)
{
  const QDomDocument document = parse("<e>\n<fruit>apple</fruit><bad>Apple</bad></e>");
  auto fruit = fruits();
  fruit.read(document.documentElement(), QStringLiteral("absent"));
  EXPECT_EQ(fruit.get(), Fruit::Pear);
  fruit.read(document.documentElement(), QStringLiteral("fruit"));
  EXPECT_EQ(fruit.get(), Fruit::Apple);
  const auto [message, line] = faultOf([&] { fruit.read(document.documentElement(), QStringLiteral("bad")); });
  EXPECT_EQ(message, QStringLiteral("The type \"Apple\" is invalid for tag \"bad\"."));
  // The fault is the tag's own, not its parent's.
  EXPECT_EQ(line, 2);
  EXPECT_EQ(fruit.get(), Fruit::Apple);
}

TEST(XmlEnumeration, ScriptsSetByWordAndAreRefusedWithATypeError)
{
  auto fruit = fruits();
  fruit.setId(QStringLiteral("apple"));
  EXPECT_EQ(fruit.getId(), QStringLiteral("apple"));
  try {
    fruit.setId(QStringLiteral("plum"));
    FAIL() << "an unknown word was taken";
  } catch (const Vel::ScriptTypeException& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("The value \"plum\" is invalid."));
  }
  EXPECT_EQ(fruit.get(), Fruit::Apple);

  QDomDocument document;
  QDomNode parent = document.createElement(QStringLiteral("e"));
  fruit.create(&document, parent, QStringLiteral("fruit"));
  EXPECT_EQ(parent.firstChildElement(QStringLiteral("fruit")).text(), QStringLiteral("apple"));
}

TEST(XmlEnumeration, AValueOutsideTheTableIsAnAssertion)
{
  auto fruit = fruits();
  fruit.set(Fruit::Plum);
  try {
    fruit.getId();
    FAIL() << "no assertion";
  } catch (const Vel::ProgError& error) {
    EXPECT_TRUE(error.getMessage().contains(QStringLiteral("pos != _values.end ()")))
        << error.getMessage().toStdString();
    EXPECT_TRUE(error.getSourceFile().endsWith(QStringLiteral("VelMSysXmlTools.h")));
  }
}

}  // namespace
