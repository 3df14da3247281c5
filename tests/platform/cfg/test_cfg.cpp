#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <limits>

#include "cfg/cfg.h"
#include "core/prog_error.h"
#include "test_util.h"

using namespace Vel;

namespace {

// One item of every kind below "T".
void declareAll(CfgNode* root)
{
  root->declareNode(QStringLiteral("T"), QString(), 2);
  root->declareBool(QStringLiteral("T/Bool"), QString(), true, 2);
  root->declareUInt(QStringLiteral("T/UInt"), QString(), 1, 32, 4, 1, 2);
  root->declareInt(QStringLiteral("T/Even"), QString(), -10, 10, 0, 2, 2);
  root->declareDouble(QStringLiteral("T/Double"), QString(), 0, 1, 0.75, 0.1, 2, 2);
  root->declareIntArray(QStringLiteral("T/IntArray"), QString(), 0, 1000, {500, 0}, 1, 2);
  root->declareDoubleArray(QStringLiteral("T/DoubleArray"), QString(), 0, 1, 0, 1, 2, 3, true, 2);
  root->declareUnitValue(QStringLiteral("T/Time"), QString(), uTime, 1, std::numeric_limits<double>::max(), 10, 1, 1,
                         2);
  root->declareChoice(QStringLiteral("T/Choice"), QString(),
                      {QStringLiteral("Execute"), QStringLiteral("Create/Show"), QStringLiteral("Open/Close")}, 0, 2);
  root->declareStringVector(QStringLiteral("T/Names"), QString(), {QStringLiteral("a")}, 2);
}

class CfgTest : public ::testing::Test
{
protected:
  QString file() const { return dir.filePath(QStringLiteral("zut/config.json")); }
  QTemporaryDir dir;
};

}  // namespace

struct SetCase
{
  const char* key;
  QVariant value;
  bool accepted;
  QVariant stored;  // what is kept when accepted
};

class CfgSetValue : public ::testing::TestWithParam<SetCase>
{};

TEST_P(CfgSetValue, EnforcesTypeRangeStepAndDecimals)
{
  Cfg cfg(QStringLiteral("/nonexistent/config.json"));
  declareAll(cfg.root());
  const SetCase& c = GetParam();
  const CfgItem* item = cfg.item(QString::fromLatin1(c.key));
  const QVariant before = item ? item->value : QVariant();
  QString error;
  EXPECT_EQ(cfg.setValue(QString::fromLatin1(c.key), c.value, &error), c.accepted) << qPrintable(error);
  if (c.accepted) {
    EXPECT_EQ(cfg.root()->getValue(QString::fromLatin1(c.key)), c.stored);
  } else {
    EXPECT_FALSE(error.isEmpty());
    if (item) {
      EXPECT_EQ(item->value, before);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Items, CfgSetValue,
    ::testing::Values(SetCase{"T/Bool", false, true, false}, SetCase{"T/Bool", 1, false, {}},
                      SetCase{"T/UInt", 32, true, qlonglong(32)}, SetCase{"T/UInt", 33, false, {}},
                      SetCase{"T/UInt", 0, false, {}}, SetCase{"T/UInt", 2.5, false, {}},
                      SetCase{"T/UInt", QStringLiteral("4"), false, {}}, SetCase{"T/Even", -10, true, qlonglong(-10)},
                      SetCase{"T/Even", 3, false, {}}, SetCase{"T/Double", 0.126, true, 0.13},
                      SetCase{"T/Double", 1.2, false, {}}, SetCase{"T/Double", 1, true, 1.0},
                      SetCase{"T/IntArray", QVariantList{1, 2}, true, QVariantList{qlonglong(1), qlonglong(2)}},
                      SetCase{"T/IntArray", QVariantList{1, 2, 3}, false, {}},
                      SetCase{"T/IntArray", QVariantList{1, -2}, false, {}},
                      SetCase{"T/DoubleArray", QVariantList{0.5, 0.25, 1}, true, QVariantList{0.5, 0.25, 1.0}},
                      SetCase{"T/DoubleArray", QVariantList{0.5}, false, {}}, SetCase{"T/Time", 0.5, false, {}},
                      SetCase{"T/Time", 2.25, true, 2.3}, SetCase{"T/Choice", QStringLiteral("Open/Close"), true, 2},
                      SetCase{"T/Choice", 1, true, 1}, SetCase{"T/Choice", 3, false, {}},
                      SetCase{"T/Choice", QStringLiteral("Close"), false, {}},
                      SetCase{"T/Names", QStringList{QStringLiteral("x"), QStringLiteral("y")}, true,
                              QStringList{QStringLiteral("x"), QStringLiteral("y")}},
                      SetCase{"T/Names", QVariantList{1}, false, {}}, SetCase{"T/Unknown", 1, false, {}}));

TEST(CfgDeclaration, MisuseIsAProgramError)
{
  Cfg cfg(QStringLiteral("/nonexistent/config.json"));
  EXPECT_THROW(cfg.root()->declareBool(QStringLiteral("NoNode/Item"), QString(), true, 2), ProgError);
  declareAll(cfg.root());
  EXPECT_THROW(cfg.root()->declareInt(QStringLiteral("T/Bool"), QString(), 0, 1, 0, 1, 2), ProgError);
  EXPECT_THROW(cfg.root()->getValue(QStringLiteral("T/Missing")), ProgError);
  EXPECT_THROW(cfg.root()->getValue(QStringLiteral("T")), ProgError);
  EXPECT_THROW(cfg.root()->declareChoice(QStringLiteral("T/C2"), QString(), {QStringLiteral("a")}, 1, 2), ProgError);
}

TEST(CfgDeclaration, SubNodesAddressItemsRelatively)
{
  Cfg cfg(QStringLiteral("/nonexistent/config.json"));
  CfgNode* node = cfg.root()->declareNode(QStringLiteral("A"), QString(), 2);
  node->declareBool(QStringLiteral("Flag"), QString(), true, 2);
  EXPECT_TRUE(cfg.root()->getBool(QStringLiteral("A/Flag")));
  EXPECT_TRUE(node->contains(QStringLiteral("Flag")));
  ASSERT_TRUE(node->setValue(QStringLiteral("Flag"), false));
  EXPECT_FALSE(cfg.root()->getBool(QStringLiteral("A/Flag")));
}

TEST_F(CfgTest, ValuesSurviveARestartWhicheverComesFirstFileOrDeclaration)
{
  {
    Cfg cfg(file());
    declareAll(cfg.root());
    ASSERT_TRUE(cfg.setValue(QStringLiteral("T/UInt"), 8));
    ASSERT_TRUE(cfg.setValue(QStringLiteral("T/Choice"), QStringLiteral("Create/Show")));
    ASSERT_TRUE(cfg.setValue(QStringLiteral("T/Names"), QStringList{QStringLiteral("Grüße"), QString()}));
    ASSERT_TRUE(cfg.setValue(QStringLiteral("T/DoubleArray"), QVariantList{0.1, 0.2, 0.3}));
    QString error;
    ASSERT_TRUE(cfg.save(&error)) << qPrintable(error);
  }
  for (bool load_first : {true, false}) {
    Cfg cfg(file());
    if (load_first) {
      ASSERT_TRUE(cfg.load());
    }
    declareAll(cfg.root());
    if (!load_first) {
      ASSERT_TRUE(cfg.load());
    }
    EXPECT_EQ(cfg.root()->getUInt(QStringLiteral("T/UInt")), 8u);
    EXPECT_EQ(cfg.root()->getChoiceIndex(QStringLiteral("T/Choice")), 1);
    EXPECT_EQ(cfg.root()->getStringVector(QStringLiteral("T/Names")),
              (QStringList{QStringLiteral("Grüße"), QString()}));
    EXPECT_EQ(cfg.root()->getDoubleArray(QStringLiteral("T/DoubleArray")), (QList<double>{0.1, 0.2, 0.3}));
    EXPECT_TRUE(cfg.takeProblems().isEmpty());
  }
}

TEST_F(CfgTest, ValuesOfItemsNobodyDeclaredAreKept)
{
  QDir().mkpath(dir.filePath(QStringLiteral("zut")));
  ASSERT_TRUE(writeFile(file(), R"({"Other/Module": [1, "x"], "T/UInt": 5})"));
  Cfg cfg(file());
  ASSERT_TRUE(cfg.load());
  declareAll(cfg.root());
  ASSERT_TRUE(cfg.save());
  const QJsonObject saved = QJsonDocument::fromJson(readFile(file())).object();
  EXPECT_EQ(saved.value(QStringLiteral("Other/Module")).toVariant(), (QVariantList{1, QStringLiteral("x")}));
  EXPECT_EQ(saved.value(QStringLiteral("T/UInt")).toInt(), 5);
}

TEST_F(CfgTest, AnOlderCopyInMemoryDoesNotUndoANewerChangeOnDisk)
{
  // An editor holds the configuration from its start; meanwhile another process sets values.
  Cfg older(file());
  declareAll(older.root());
  ASSERT_TRUE(older.load());
  {
    Cfg newer(file());
    declareAll(newer.root());
    ASSERT_TRUE(newer.load());
    ASSERT_TRUE(newer.setValue(QStringLiteral("T/UInt"), 8));
    ASSERT_TRUE(newer.setValue(QStringLiteral("T/Double"), 0.5));
    ASSERT_TRUE(newer.save());
  }
  ASSERT_TRUE(older.setValue(QStringLiteral("T/Double"), 0.25));  // the later change of one item wins
  ASSERT_TRUE(older.setValue(QStringLiteral("T/Bool"), false));
  QString error;
  ASSERT_TRUE(older.save(&error)) << qPrintable(error);

  Cfg fresh(file());
  declareAll(fresh.root());
  ASSERT_TRUE(fresh.load());
  EXPECT_EQ(fresh.root()->getUInt(QStringLiteral("T/UInt")), 8u);
  EXPECT_EQ(fresh.root()->getDouble(QStringLiteral("T/Double")), 0.25);
  EXPECT_FALSE(fresh.root()->getBool(QStringLiteral("T/Bool")));
  EXPECT_EQ(older.root()->getUInt(QStringLiteral("T/UInt")), 8u) << "the saving copy is brought up to date";
  EXPECT_FALSE(older.isModified());
  EXPECT_FALSE(QFile::exists(file() + QStringLiteral(".lock")));
}

TEST_F(CfgTest, DamagedFileIsKeptAsideReportedAndDefaultsStay)
{
  QDir().mkpath(dir.filePath(QStringLiteral("zut")));
  const QByteArray damaged = R"({"T/UInt": 8, )";
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(writeFile(file(), damaged));
    Cfg cfg(file());
    declareAll(cfg.root());
    ASSERT_TRUE(cfg.setValue(QStringLiteral("T/UInt"), 6));
    EXPECT_FALSE(cfg.load());
    EXPECT_EQ(cfg.root()->getUInt(QStringLiteral("T/UInt")), 6u) << "a failed read changes nothing";
    const QStringList problems = cfg.takeProblems();
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.first().contains(QStringLiteral("damaged"))) << qPrintable(problems.first());
    EXPECT_TRUE(cfg.takeProblems().isEmpty()) << "reported once";
    EXPECT_FALSE(QFile::exists(file()));
    ASSERT_TRUE(cfg.save());
  }
  // Both damaged files are kept, the second under a name of its own.
  const QStringList kept =
      QDir(dir.filePath(QStringLiteral("zut"))).entryList({QStringLiteral("config.json.damaged*")});
  ASSERT_EQ(kept.size(), 2);
  for (const QString& name : kept)
    EXPECT_EQ(readFile(dir.filePath(QStringLiteral("zut/") + name)), damaged);
}

TEST_F(CfgTest, RejectedStoredValueIsReportedAndItsFileBackedUpBeforeWriting)
{
  QDir().mkpath(dir.filePath(QStringLiteral("zut")));
  const QByteArray original = R"({"T/UInt": 99, "T/Bool": false})";
  ASSERT_TRUE(writeFile(file(), original));
  Cfg cfg(file());
  ASSERT_TRUE(cfg.load());
  declareAll(cfg.root());
  EXPECT_EQ(cfg.root()->getUInt(QStringLiteral("T/UInt")), 4u);
  EXPECT_FALSE(cfg.root()->getBool(QStringLiteral("T/Bool")));
  const QStringList problems = cfg.takeProblems();
  ASSERT_EQ(problems.size(), 1);
  EXPECT_TRUE(problems.first().startsWith(QStringLiteral("T/UInt"))) << qPrintable(problems.first());
  ASSERT_TRUE(cfg.save());
  EXPECT_EQ(readFile(file() + QStringLiteral(".bak")), original);
}

struct TextCase
{
  const char* key;
  const char* text;
  bool accepted;
  const char* shown;
};

class CfgText : public ::testing::TestWithParam<TextCase>
{};

TEST_P(CfgText, ReadsWhatAUserTypes)
{
  Cfg cfg(QStringLiteral("/nonexistent/config.json"));
  declareAll(cfg.root());
  const TextCase& c = GetParam();
  EXPECT_EQ(cfg.setValueFromText(QString::fromLatin1(c.key), QString::fromUtf8(c.text)), c.accepted);
  if (c.accepted) {
    const CfgItem* item = cfg.item(QString::fromLatin1(c.key));
    EXPECT_EQ(Cfg::valueText(*item, item->value), QString::fromUtf8(c.shown));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Items, CfgText,
    ::testing::Values(TextCase{"T/Bool", "false", true, "false"}, TextCase{"T/Bool", "yes", false, ""},
                      TextCase{"T/UInt", " 8 ", true, "8"}, TextCase{"T/UInt", "eight", false, ""},
                      TextCase{"T/Double", "0.5", true, "0.5"}, TextCase{"T/IntArray", "[640, 480]", true, "[640,480]"},
                      TextCase{"T/IntArray", "640, 480", true, "[640,480]"}, TextCase{"T/Time", "2", true, "2 s"},
                      TextCase{"T/Choice", "Open/Close", true, "Open/Close"},
                      TextCase{"T/Choice", "1", true, "Create/Show"},
                      TextCase{"T/Names", "a, b c", true, "[\"a\",\"b c\"]"},
                      TextCase{"T/Names", "[\"1\", \"2\"]", true, "[\"1\",\"2\"]"}));
