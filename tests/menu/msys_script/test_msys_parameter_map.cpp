#include <QPoint>
#include <QRandomGenerator>

#include <gtest/gtest.h>

#include "gapp/command.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_parameter_map.h"

using namespace Vel;
using namespace Vel::MSysScript;

namespace {

QVariant tuple(const QVariantList& items)
{
  return QVariant::fromValue(PythonTuple{items});
}

QString describe(const QVariant& value)
{
  try {
    return writeLiteral(value);
  } catch (const GApp::CommandError& error) {
    return error.getText();
  }
}

struct GoodCall
{
  const char* text;
  const char* command;
  bool interactive;
  QVariantMap expected;  // argument name -> value; the order is checked by `order`
  QStringList order;
};

class ReadsCall : public ::testing::TestWithParam<GoodCall>
{};

TEST_P(ReadsCall, GivesNameFormAndValues)
{
  const GoodCall& good = GetParam();
  const QString text = QString::fromUtf8(good.text);
  CommandCall call;
  try {
    call = readCommandCall(text);
  } catch (const GApp::CommandError& error) {
    FAIL() << qPrintable(error.getText());
  }
  EXPECT_EQ(call.command, QString::fromLatin1(good.command));
  EXPECT_EQ(call.interactive, good.interactive);
  QStringList names;
  for (const CallArgument& argument : call.arguments) {
    names << argument.name;
    EXPECT_TRUE(sameValue(argument.value, good.expected.value(argument.name)))
        << qPrintable(argument.name) << ": " << qPrintable(describe(argument.value)) << " vs "
        << qPrintable(describe(good.expected.value(argument.name)));
  }
  EXPECT_EQ(names, good.order);
  EXPECT_TRUE(text.mid(call.begin).startsWith(QLatin1String("zut.")));
  EXPECT_EQ(text[call.end - 1], QLatin1Char(')'));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReadsCall,
    ::testing::Values(
        GoodCall{"zut.script.sys.set_test_timeout(timeout=1.5)",
                 "sys.set_test_timeout",
                 false,
                 {{"timeout", 1.5}},
                 {"timeout"}},
        GoodCall{"zut.script.userscript.tools.helpers()", "userscript.tools.helpers", false, {}, {}},
        GoodCall{"result = zut.interactive.a.b(n=-0x1F, m=1_000, o=0o17, p=0b101, z=0)  # done",
                 "a.b",
                 true,
                 {{"n", qlonglong(-31)},
                  {"m", qlonglong(1000)},
                  {"o", qlonglong(15)},
                  {"p", qlonglong(5)},
                  {"z", qlonglong(0)}},
                 {"n", "m", "o", "p", "z"}},
        GoodCall{"x.y, z = zut.script.c(f=1e3, g=.5, h=-2.5E-3, i=5., j=1e999, k=-9223372036854775808)",
                 "c",
                 false,
                 {{"f", 1000.0},
                  {"g", 0.5},
                  {"h", -0.0025},
                  {"i", 5.0},
                  {"j", qInf()},
                  {"k", qlonglong(std::numeric_limits<qlonglong>::min())}},
                 {"f", "g", "h", "i", "j", "k"}},
        GoodCall{"zut.script.s(a='x\\'y', b=\"q\\\"\", c='''tri\nple''', d=\"\"\"t\"w\"\"\", e=r'\\d\\'', "
                 "f='a' \"b\"\n  'c', g=b'\\x00\\xff', h='\\u00e9\\U0001F600\\x41\\101\\q', i='')",
                 "s",
                 false,
                 {{"a", "x'y"},
                  {"b", "q\""},
                  {"c", "tri\nple"},
                  {"d", "t\"w"},
                  {"e", "\\d\\'"},
                  {"f", "abc"},
                  {"g", QByteArray("\x00\xff", 2)},
                  {"h", QString::fromUtf8("\u00e9\U0001F600AA\\q")},
                  {"i", QString("")}},
                 {"a", "b", "c", "d", "e", "f", "g", "h", "i"}},
        GoodCall{"zut.script.t(a=True, b=False, c=None, d=[1, [2, []],], e=(1,), f=(), g=(1, 'a'), h=(2))",
                 "t",
                 false,
                 {{"a", true},
                  {"b", false},
                  {"c", QVariant()},
                  {"d", QVariantList{qlonglong(1), QVariantList{qlonglong(2), QVariantList{}}}},
                  {"e", tuple({qlonglong(1)})},
                  {"f", tuple({})},
                  {"g", tuple({qlonglong(1), "a"})},
                  {"h", qlonglong(2)}},
                 {"a", "b", "c", "d", "e", "f", "g", "h"}},
        GoodCall{"  r = zut.script.d(  # first\n    m={'k': [1, (2,)], \"n\": {}},  # second\n\n    z=1, \\\n)\n"
                 "# after\n",
                 "d",
                 false,
                 {{"m", QVariantMap{{"k", QVariantList{qlonglong(1), tuple({qlonglong(2)})}}, {"n", QVariantMap()}}},
                  {"z", qlonglong(1)}},
                 {"m", "z"}},
        GoodCall{"zut.script \\\n  .x.y(a=1)", "x.y", false, {{"a", qlonglong(1)}}, {"a"}}));

struct BadCall
{
  const char* text;
  int line;
  int column;
};

class RefusesCall : public ::testing::TestWithParam<BadCall>
{};

TEST_P(RefusesCall, SaysLineAndColumn)
{
  const BadCall& bad = GetParam();
  try {
    readCommandCall(QString::fromUtf8(bad.text));
    FAIL() << "read: " << bad.text;
  } catch (const GApp::CommandError& error) {
    EXPECT_EQ(error.getCode(), QLatin1String(ERR_PARSE_PARAMETERS));
    EXPECT_TRUE(
        error.getLog().getText().startsWith(QStringLiteral("line %1, column %2: ").arg(bad.line).arg(bad.column)))
        << bad.text << " -> " << qPrintable(error.getLog().getText());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefusesCall,
    ::testing::Values(BadCall{"print(1)", 1, 6}, BadCall{"zut.other.a(b=1)", 1, 5}, BadCall{"zut.script.a(b=1", 1, 17},
                      BadCall{"zut.script.a(b 1)", 1, 16}, BadCall{"zut.script.a(1)", 1, 14},
                      BadCall{"zut.script.a(b=1 c=2)", 1, 18}, BadCall{"zut.script.a(\n  b=[1,\n  2 3])", 3, 5},
                      BadCall{"zut.script.a(b='open)", 1, 22}, BadCall{"zut.script.a(b=f'x')", 1, 16},
                      BadCall{"zut.script.a(b=012)", 1, 16}, BadCall{"zut.script.a(b=1__0)", 1, 18},
                      BadCall{"zut.script.a(b=0x)", 1, 18}, BadCall{"zut.script.a(b=1j)", 1, 17},
                      BadCall{"zut.script.a(b=99999999999999999999)", 1, 16}, BadCall{"zut.script.a(b={1: 2})", 1, 17},
                      BadCall{"zut.script.a(b='\\x4')", 1, 17}, BadCall{"zut.script.a(b=1, b=2)", 1, 19},
                      BadCall{"zut.script.a(b='x' b'y')", 1, 20}, BadCall{"zut.script.a(b=x)", 1, 16},
                      BadCall{"zut.script.a(b=1) + 1", 1, 19}, BadCall{"zut.script.a\n(b=1)", 1, 13}));

// Random nested values of every kind survive writing and reading back.
QVariant randomValue(QRandomGenerator& random, int depth)
{
  static const QString characters = QString::fromUtf8("aZ 0'\"\\\n\t\r\x01\x7f\u00e9\u2028\U0001F600#,()=");
  const int kind = int(random.bounded(depth > 3 ? 6 : 9));
  switch (kind) {
    case 0: return QVariant();
    case 1: return QVariant(random.bounded(2) == 1);
    case 2: return QVariant(qlonglong(random.generate64()));
    case 3: {
      const double value = std::ldexp(random.generateDouble() - 0.5, int(random.bounded(-40, 40)));
      return QVariant(value);
    }
    case 4: {
      QString text;
      for (int i = int(random.bounded(6)); i > 0; --i)
        text += characters.mid(int(random.bounded(int(characters.size()))), 1);
      // A half of a surrogate pair alone is left out: it has no place in UTF-16 text.
      if (!text.isEmpty() && text.back().isHighSurrogate())
        text.chop(1);
      return QVariant(text);
    }
    case 5: {
      QByteArray bytes;
      for (int i = int(random.bounded(5)); i > 0; --i)
        bytes += char(random.bounded(256));
      return QVariant(bytes);
    }
    default: {
      QVariantList items;
      for (int i = int(random.bounded(4)); i > 0; --i)
        items << randomValue(random, depth + 1);
      if (kind == 6)
        return items;
      if (kind == 7)
        return tuple(items);
      QVariantMap map;
      for (const QVariant& item : items)
        map.insert(writeLiteral(item).left(8), item);
      return map;
    }
  }
}

TEST(ParameterMapRoundTrip, RandomNestedValues)
{
  QRandomGenerator random(20261124);
  for (int round = 0; round < 2000; ++round) {
    const QVariant value = randomValue(random, 0);
    const QString text = writeLiteral(value);
    QVariant back;
    try {
      back = readLiteral(text);
    } catch (const GApp::CommandError& error) {
      FAIL() << qPrintable(text) << ": " << qPrintable(error.getText());
    }
    ASSERT_TRUE(sameValue(back, value)) << qPrintable(text) << " came back as " << qPrintable(writeLiteral(back));
  }
}

TEST(ParameterMapRewrite, ChangesOnlyTheArgumentList)
{
  struct Case
  {
    const char* before;
    ArgumentList arguments;
    const char* after;
  };
  const Case cases[] = {
      {"r = zut.script.a.b(x=1,  y='q')  # keep\n",
       {{"x", qlonglong(2)}, {"y", "q"}},
       "r = zut.script.a.b(x=2,  y='q')  # keep\n"},
      // The same names: comments and layout between the arguments stay.
      {"zut.script.a(\n    x=1,  # why\n    y=2\n)",
       {{"x", qlonglong(3)}, {"y", qlonglong(2)}},
       "zut.script.a(\n    x=3,  # why\n    y=2\n)"},
      {"zut.script.a(\n    x=0x10,  # c\n    y=[1]\n)",
       {{"y", QVariantList{qlonglong(1)}}, {"z", tuple({})}},
       "zut.script.a(\n    y=[1],\n    z=()\n)"},
      {"zut.script.a(\n    x=1,\n)", {{"x", qlonglong(1)}, {"w", "t"}}, "zut.script.a(\n    x=1,\n    w='t',\n)"},
      {"zut.interactive.a(x=1)", {}, "zut.interactive.a()"},
  };
  for (const Case& entry : cases)
    EXPECT_EQ(rewriteCall(QString::fromUtf8(entry.before), entry.arguments), QString::fromUtf8(entry.after));
  EXPECT_EQ(rewriteCall(QStringLiteral("zut.script.old.name(x=1)"), {{"x", qlonglong(1)}}, QStringLiteral("new.n")),
            QStringLiteral("zut.script.new.n(x=1)"));
}

TEST(ParameterMapWrite, RefusesValuesWithoutLiteral)
{
  for (const QVariant& value : {QVariant(qQNaN()), QVariant(QPoint(1, 2))}) {
    try {
      writeLiteral(value);
      ADD_FAILURE() << value.typeName();
    } catch (const GApp::CommandError& error) {
      EXPECT_EQ(error.getCode(), QLatin1String(ERR_GENERATE_SCRIPT));
    }
  }
}

}  // namespace
