#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gtools/vel_file_select.h"
#include "menu/msys_script/msys_dlg_command_parameters.h"
#include "menu/msys_script/msys_error_codes.h"

using namespace Vel;
using namespace Vel::MSysScript;
using Meta = GApp::CommandMetaInfo;

namespace {

// A command with an argument of every kind the form has a field for.
class EveryTypeCommand : public GApp::Command
{
public:
  EveryTypeCommand() : GApp::Command(QStringLiteral("test.every_type"))
  {
    getMetaInfo().setArgumentTypes({{QStringLiteral("flag"), Meta::TYPE_BOOLEAN, QStringLiteral("a switch")},
                                    {QStringLiteral("count"), Meta::TYPE_INTEGER, QStringLiteral("how many"), true},
                                    {QStringLiteral("scale"), Meta::TYPE_DOUBLE, QStringLiteral("a factor")},
                                    {QStringLiteral("label"), Meta::TYPE_STRING, QStringLiteral("a text")},
                                    {QStringLiteral("file"), Meta::TYPE_FILE, QStringLiteral("a file")},
                                    {QStringLiteral("items"), Meta::TYPE_LIST, QStringLiteral("some values")},
                                    {QStringLiteral("level"), Meta::TYPE_CONFIG_LEVEL, QStringLiteral("where")}});
  }
  void execute(const GApp::CommandParameters&) override {}
};

class CommandParameters : public ::testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    if (!GApp::CommandContainer::getInstance().getCommand(QStringLiteral("test.every_type")))
      new EveryTypeCommand;
  }
  void SetUp() override
  {
    GApp::setErrorDialogHandler([this](const QString& code, const QString& text) { shown << code + ' ' + text; });
  }
  void TearDown() override { GApp::setErrorDialogHandler(nullptr); }

  // Opens the form on `line` of the editor, lets `act` work on it, then presses OK. Without
  // `act` the form is not expected to open.
  bool edit(QPlainTextEdit& editor, int line, const std::function<void(CommandParametersDialog&)>& act = nullptr)
  {
    if (act)
      QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<CommandParametersDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        // With ZUT_TEST_SCREENSHOTS set, the form as it opens is kept as a picture.
        if (const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS"); !folder.isEmpty())
          dialog->grab().save(folder + QStringLiteral("/command_parameters.png"));
        act(*dialog);
        QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok), Qt::LeftButton);
        if (dialog->isVisible())
          dialog->reject();
      });
    ErrorLog log;
    const bool changed = editCommandParameters(&editor, line, nullptr, log);
    last_log = log.getText();
    return changed;
  }

  QStringList shown;
  QString last_log;
};

const QString SCRIPT = QStringLiteral(
    "import zut\n"
    "r = zut.script.test.every_type(count=3,  # how many\n"
    "                               scale=0.1234567, label='a')  # keep\n"
    "print(r)\n");

TEST_F(CommandParameters, TypedInputRewritesOnlyTheCallAsOneUndoStep)
{
  QPlainTextEdit editor(SCRIPT);
  const bool changed = edit(editor, 2, [](CommandParametersDialog& dialog) {
    auto* count = qobject_cast<QSpinBox*>(dialog.field(QStringLiteral("count")));
    ASSERT_TRUE(count);
    count->selectAll();
    QTest::keyClicks(count, QStringLiteral("42"));
    QTest::keyClick(dialog.givenBox(QStringLiteral("flag")), Qt::Key_Space);
    QTest::keyClick(dialog.field(QStringLiteral("flag")), Qt::Key_Space);
    QTest::mouseClick(dialog.givenBox(QStringLiteral("label")), Qt::LeftButton);
    QTest::mouseClick(dialog.givenBox(QStringLiteral("items")), Qt::LeftButton);
    QTest::keyClicks(dialog.field(QStringLiteral("items")), QStringLiteral("[1, (2,)]"));
    QTest::mouseClick(dialog.givenBox(QStringLiteral("file")), Qt::LeftButton);
    QTest::keyClicks(qobject_cast<Vel_FileSelect*>(dialog.field(QStringLiteral("file")))->lineEdit(),
                     QStringLiteral("it's.csv"));
  });
  EXPECT_TRUE(changed) << qPrintable(last_log);
  // Untouched values keep their text; the spin box's rounding does not reach the call.
  EXPECT_EQ(editor.toPlainText(), QStringLiteral("import zut\n"
                                                 "r = zut.script.test.every_type(flag=True, count=42, scale=0.1234567, "
                                                 "file=\"it's.csv\", items=[1, (2,)])  # keep\n"
                                                 "print(r)\n"));
  editor.undo();
  EXPECT_EQ(editor.toPlainText(), SCRIPT);
}

TEST_F(CommandParameters, WrongLiteralIsShownAndOkRefused)
{
  QPlainTextEdit editor(SCRIPT);
  QString problem;
  edit(editor, 1, [&](CommandParametersDialog& dialog) {
    QTest::mouseClick(dialog.givenBox(QStringLiteral("items")), Qt::LeftButton);
    QTest::keyClicks(dialog.field(QStringLiteral("items")), QStringLiteral("{'a': 1}"));
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible());
    problem = dialog.findChild<QLabel*>(QStringLiteral("problem"))->text();
  });
  EXPECT_EQ(problem, QStringLiteral("items: expected a list"));
  EXPECT_EQ(editor.toPlainText(), SCRIPT);
}

TEST_F(CommandParameters, BadCallShowsPositionAndLeavesTextAlone)
{
  const struct
  {
    QString script;
    int line;
    QString message;
  } cases[] = {
      {QStringLiteral("x = 1\nzut.script.test.every_type(count=3,\n    label='a' 'b' 1)\n"), 1,
       QStringLiteral("line 3, column 19: expected ',' or ')'")},
      {QStringLiteral("zut.script.test.every_type(count=012)\n"), 0,
       QStringLiteral("line 1, column 34: leading zeros")},
      {QStringLiteral("zut.script.test.no_such(a=1)\n"), 0, QStringLiteral("There is no command 'test.no_such'.")},
      {QStringLiteral("x = 1\n"), 0, QStringLiteral("Line 1 is not part of a command call.")},
  };
  for (const auto& entry : cases) {
    QPlainTextEdit editor(entry.script);
    shown.clear();
    EXPECT_FALSE(edit(editor, entry.line));
    ASSERT_EQ(shown.size(), 1);
    EXPECT_TRUE(shown.first().startsWith(QLatin1String(ERR_PARSE_PARAMETERS) + QStringLiteral(" ") + entry.message))
        << qPrintable(shown.first());
    EXPECT_TRUE(last_log.startsWith(entry.message)) << qPrintable(last_log);
    EXPECT_EQ(editor.toPlainText(), entry.script);
    EXPECT_FALSE(editor.document()->isUndoAvailable());
  }
}

}  // namespace
