#include <QCoreApplication>
#include <QLocale>
#include <QVariant>

#include <cmath>
#include <gtest/gtest.h>

#include "core/color.h"
#include "core/error_message_container.h"
#include "core/parse_date.h"
#include "core/prog_error.h"
#include "core/python_string.h"
#include "core/translate.h"
#include "core/unit.h"

using namespace Vel;

struct QuoteCase
{
  const char* text;
  const char* quoted;
};

class QuotePythonString : public ::testing::TestWithParam<QuoteCase>
{};

TEST_P(QuotePythonString, MatchesPythonRepr)
{
  EXPECT_EQ(quotePythonString(QString::fromUtf8(GetParam().text)), QString::fromUtf8(GetParam().quoted));
}

INSTANTIATE_TEST_SUITE_P(Texts, QuotePythonString,
                         ::testing::Values(QuoteCase{"", "''"}, QuoteCase{"abc", "'abc'"},
                                           QuoteCase{"it's", "\"it's\""},
                                           QuoteCase{"both ' and \"", "'both \\' and \"'"},
                                           QuoteCase{"a\\b", "'a\\\\b'"},
                                           QuoteCase{"line\nnext\ttab", "'line\\nnext\\ttab'"},
                                           QuoteCase{"\x01", "'\\x01'"}, QuoteCase{"Grüße", "'Grüße'"}));

TEST(Color, TextFormRoundTripsAndRejectsGarbage)
{
  const Color color(0x12, 0xab, 0xff, 0x80);
  EXPECT_EQ(color.toString(), QStringLiteral("#12abff80"));
  Color parsed;
  ASSERT_TRUE(Color::fromString(color.toString(), parsed));
  EXPECT_EQ(parsed, color);
  ASSERT_TRUE(Color::fromString(QStringLiteral("#000000"), parsed));
  EXPECT_EQ(parsed.alpha(), 255);

  const Color before = parsed;
  for (const char* bad : {"", "000000", "#12345", "#gg0000", "#1234567"})
    EXPECT_FALSE(Color::fromString(QString::fromLatin1(bad), parsed)) << bad;
  EXPECT_EQ(parsed, before);
}

TEST(Color, TravelsInAVariantUnderItsName)
{
  Color::registerMetaType();
  const QVariant value = QVariant::fromValue(Color(1, 2, 3, 0));
  EXPECT_STREQ(value.metaType().name(), "Vel::Color");
  EXPECT_TRUE(value.value<Color>().isTransparent());
  EXPECT_EQ(QMetaType::fromName("Vel::Color").id(), value.typeId());
}

TEST(Unit, TableKnowsKindsDefaultsAndDigitDifferences)
{
  EXPECT_EQ(Unit::getUnit(QStringLiteral("parsec")), nullptr);
  for (UnitKind kind : {uLength, uAngle, uTime}) {
    const Unit& internal = Unit::getDefault(kind);
    EXPECT_EQ(internal.getKind(), kind);
    EXPECT_EQ(internal.getFactor(), 1.0);
    EXPECT_EQ(internal.getDigitDifference(), 0);
    for (const QString& id : Unit::getIDs(kind)) {
      const Unit* unit = Unit::getUnit(id);
      ASSERT_NE(unit, nullptr);
      EXPECT_EQ(Unit::getID(*unit), id);
      // The digit difference is the decimal order of the factor to the internal unit.
      EXPECT_LE(std::abs(unit->getDigitDifference() - std::log10(unit->getFactor())), 1.0) << qPrintable(id);
    }
  }
  EXPECT_EQ(Unit::getID(Unit::getDefault(uTime)), QStringLiteral("s"));
  EXPECT_EQ(Unit::getUnit(QStringLiteral("m"))->getDigitDifference(), 3);
  EXPECT_DOUBLE_EQ(Unit::getUnit(QStringLiteral("min"))->toInternal(2), 120.0);
  EXPECT_DOUBLE_EQ(Unit::getUnit(QStringLiteral("inch"))->fromInternal(50.8), 2.0);
}

TEST(ErrorMessageContainer, KeepsFirstRegistrationOrderAndLatestMessage)
{
  ErrorMessageContainer::registerError("TestErr-0001", QStringLiteral("first"));
  ErrorMessageContainer::registerError("TestErr-0002", QStringLiteral("second"));
  ErrorMessageContainer::registerError("TestErr-0001", QStringLiteral("again"));
  const QStringList codes = ErrorMessageContainer::getCodes();
  EXPECT_LT(codes.indexOf(QStringLiteral("TestErr-0001")), codes.indexOf(QStringLiteral("TestErr-0002")));
  EXPECT_EQ(codes.count(QStringLiteral("TestErr-0001")), 1);
  EXPECT_EQ(ErrorMessageContainer::getMessage(QStringLiteral("TestErr-0001")), QStringLiteral("again"));
  EXPECT_TRUE(ErrorMessageContainer::getMessage(QStringLiteral("TestErr-9999")).isEmpty());
}

TEST(Translate, UsesTheInstalledCatalogueAndFallsBackToEnglish)
{
  EXPECT_EQ(translate("MSysScript_err", "Error loading script", "id=10156"), QStringLiteral("Error loading script"));

  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  ASSERT_TRUE(installTranslator(QStringLiteral("VelMSysScript")));
  QLocale::setDefault(QLocale::c());
  EXPECT_EQ(translate("MSysScript_err", "Error loading script", "id=10156"),
            QStringLiteral("Fehler beim Laden des Skripts"));
  EXPECT_EQ(translate("MSysScript_err", "Not in the catalogue", "id=2"), QStringLiteral("Not in the catalogue"));
  EXPECT_FALSE(installTranslator(QStringLiteral("NoSuchCatalogue")));
  // The catalogue's language is the interface's, and dates are shown in its short format with
  // the year in full unless the application sets a format of its own.
  EXPECT_EQ(Translator::getLanguage(), QStringLiteral("de_DE"));
  EXPECT_EQ(Parse::Date::Format::getDisplayFormat(), QStringLiteral("dd.MM.yyyy"));
  Parse::Date::Format::setFormat(QStringLiteral("yyyy-MM-dd"));
  EXPECT_EQ(Parse::Date::Format::getDisplayFormat(), QStringLiteral("yyyy-MM-dd"));
  Parse::Date::Format::setFormat(QString());
}

TEST(ProgError, AssertionReportsFunctionFileLineAndExpression)
{
  try {
    const int answer = 41;
    VEL_ASSERT(answer == 42);
    FAIL() << "no error raised";
  } catch (const ProgError& error) {
    EXPECT_EQ(error.getSourceFile(), QStringLiteral("test_core.cpp"));
    EXPECT_FALSE(error.getFunction().isEmpty());
    EXPECT_TRUE(error.getMessage().contains(QStringLiteral("answer == 42"))) << qPrintable(error.getMessage());
    EXPECT_TRUE(error.getMessage().contains(QStringLiteral("line"))) << qPrintable(error.getMessage());
  }
}

TEST(ProgError, ReportedErrorIsTakenOnce)
{
  ProgError taken{QString(), QString(), QString()};
  EXPECT_FALSE(takeReportedProgError(taken));
  reportProgError(ProgError(QStringLiteral("f"), QStringLiteral("file"), QStringLiteral("broken")));
  ASSERT_TRUE(takeReportedProgError(taken));
  EXPECT_EQ(taken.getMessage(), QStringLiteral("broken"));
  EXPECT_FALSE(takeReportedProgError(taken));
}
