#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include "cfg/cfg.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dlg_update_script.h"
#include "menu/msys_script/msys_script_update.h"
#include "msys_fixture.h"
#include "test_util.h"

using namespace Vel;
using namespace Vel::MSysScript;

namespace {

UpdateRules rules()
{
  UpdateRules rules;
  rules.addCommand(QStringLiteral("new.cmd"), {QStringLiteral("old.cmd"), QStringLiteral("older.cmd")},
                   {{QStringLiteral("size"), QStringLiteral("width")}});
  rules.addCommand(QStringLiteral("other"), {}, {{QStringLiteral("n"), QStringLiteral("count")}});
  rules.addCommand(QStringLiteral("mid"), {QStringLiteral("first")}, {});
  rules.addCommand(QStringLiteral("last"), {QStringLiteral("mid")}, {});
  return rules;
}

struct UpdateCase
{
  const char* before;
  const char* after;
  QList<ScriptChange> changes;
  int problems;
};

class UpdatesText : public ::testing::TestWithParam<UpdateCase>
{};

TEST_P(UpdatesText, RewritesOnlyOlderNames)
{
  const UpdateCase& entry = GetParam();
  const ScriptUpdate update = updateScriptText(QString::fromUtf8(entry.before), rules());
  EXPECT_EQ(update.text, QString::fromUtf8(entry.after));
  EXPECT_EQ(update.changes, entry.changes);
  EXPECT_EQ(update.problems.size(), entry.problems) << qPrintable(update.problems.join(QLatin1Char('\n')));
}

INSTANTIATE_TEST_SUITE_P(
    Table, UpdatesText,
    ::testing::Values(
        UpdateCase{"zut.script.old.cmd(size=1)\n",
                   "zut.script.new.cmd(width=1)\n",
                   {{1, "old.cmd", "new.cmd"}, {1, "new.cmd(size=)", "new.cmd(width=)"}},
                   0},
        UpdateCase{
            "# zut.script.old.cmd()\ns = 'zut.script.old.cmd()'\nzut.script.old.cmd_2()\nzut.script.old.cmd.x()\n",
            "# zut.script.old.cmd()\ns = 'zut.script.old.cmd()'\nzut.script.old.cmd_2()\nzut.script.old.cmd.x()\n",
            {},
            0},
        UpdateCase{"r = zut.interactive.older.cmd(\n    a=x + 1,  # size=2\n    size=f(2, ')'))  # c\n",
                   "r = zut.interactive.new.cmd(\n    a=x + 1,  # size=2\n    width=f(2, ')'))  # c\n",
                   {{1, "older.cmd", "new.cmd"}, {3, "new.cmd(size=)", "new.cmd(width=)"}},
                   0},
        UpdateCase{"zut.script.first()\nprint(zut.script.other(n=3), zut.script.mid())\n",
                   "zut.script.last()\nprint(zut.script.other(count=3), zut.script.last())\n",
                   {{1, "first", "last"}, {2, "other(n=)", "other(count=)"}, {2, "mid", "last"}},
                   0},
        UpdateCase{"print(f'{a}')\nzut.script.old.cmd(size=f\"{b}\", x=F'}')\n",
                   "print(f'{a}')\nzut.script.new.cmd(width=f\"{b}\", x=F'}')\n",
                   {{2, "old.cmd", "new.cmd"}, {2, "new.cmd(size=)", "new.cmd(width=)"}},
                   0},
        UpdateCase{"zut.script.new.cmd(size=1, width=2)\n", "zut.script.new.cmd(size=1, width=2)\n", {}, 1},
        UpdateCase{"zut.script.old.cmd(**options)\r\nx = 1\r\n",
                   "zut.script.new.cmd(**options)\r\nx = 1\r\n",
                   {{1, "old.cmd", "new.cmd"}},
                   1}));

TEST(ScriptUpdateFiles, AnEarlierBackupIsNeverReplaced)
{
  QTemporaryDir dir;
  ErrorLog log;
  const QString path = dir.filePath(QStringLiteral("a.py"));
  ASSERT_TRUE(writeFile(path, "one"));
  ASSERT_TRUE(writeFile(path + QStringLiteral(".bak"), "older"));
  QString backup;
  ASSERT_TRUE(writeUpdatedScript(path, QStringLiteral("two"), ScriptFileFormat(), true, &backup, log));
  EXPECT_EQ(backup, path + QStringLiteral(".bak2"));
  EXPECT_EQ(readFile(path + QStringLiteral(".bak")), QByteArray("older"));
  EXPECT_EQ(readFile(backup), QByteArray("one"));
  EXPECT_EQ(readFile(path), QByteArray("two"));
}

// A command that took over an older one's name and one of its argument names.
class RenamedCommand : public GApp::Command
{
public:
  RenamedCommand() : GApp::Command(QStringLiteral("test.renamed"))
  {
    getMetaInfo().setReplaces({QStringLiteral("test.before")});
    getMetaInfo().setRenamedArguments({{QStringLiteral("size"), QStringLiteral("width")}});
  }
  void execute(const GApp::CommandParameters&) override {}
};

TEST(UpdateScriptDialog, ShowsBothTextsWritesWithBackupAndKeepsItsGeometry)
{
  CfgNode* root = startedModule().root();
  if (!GApp::CommandContainer::getInstance().getCommand(QStringLiteral("test.renamed")))
    new RenamedCommand;
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("s.py"));
  const QByteArray original = "import zut\nx = 1\nzut.script.test.before(size=2)\n";
  ASSERT_TRUE(writeFile(path, original));
  root->setValue(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_BACKUP), true);
  root->setValue(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_WIDTH), 700);
  root->setValue(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_HEIGHT), 300);
  root->setValue(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_SPLITTER), 0.3);
  {
    UpdateScriptDialog dialog(path);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    if (const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS"); !folder.isEmpty())
      dialog.grab().save(folder + QStringLiteral("/update_script.png"));
    EXPECT_EQ(dialog.size(), QSize(700, 300));
    const QList<int> sizes = dialog.splitter()->sizes();
    EXPECT_NEAR(double(sizes[0]) / (sizes[0] + sizes[1]), 0.3, 0.02);
    EXPECT_EQ(dialog.originalView()->toPlainText().toUtf8(), original);
    EXPECT_EQ(dialog.updatedView()->toPlainText(),
              QStringLiteral("import zut\nx = 1\nzut.script.test.renamed(width=2)\n"));
    ASSERT_EQ(dialog.updatedView()->extraSelections().size(), 1);
    EXPECT_EQ(dialog.updatedView()->extraSelections().first().cursor.blockNumber(), 2);
    dialog.splitter()->setSizes({500, 200});
    dialog.resize(720, 320);
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.backupPath(), path + QStringLiteral(".bak"));
  }
  EXPECT_EQ(readFile(path), QByteArray("import zut\nx = 1\nzut.script.test.renamed(width=2)\n"));
  EXPECT_EQ(readFile(path + QStringLiteral(".bak")), original);
  EXPECT_EQ(root->getInt(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_WIDTH)), 720);
  EXPECT_EQ(root->getInt(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_HEIGHT)), 320);
  EXPECT_GT(root->getDouble(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_SPLITTER)), 0.6);

  // An unreadable script opens no dialog: its error is shown, and the file stays as it is.
  ASSERT_TRUE(writeFile(path, "x = '\xff'\n"));
  QString shown;
  GApp::setErrorDialogHandler([&](const QString& code, const QString& message) { shown = code + ": " + message; });
  ErrorLog log;
  EXPECT_FALSE(showScriptUpdate(path, nullptr, log));
  GApp::setErrorDialogHandler(nullptr);
  const QString reason = QStringLiteral(
                             "%1: line 1 is not valid UTF-8, and the file declares no other encoding (a first line "
                             "such as '# -*- coding: latin-1 -*-' names the encoding it is written in).")
                             .arg(path);
  EXPECT_EQ(shown, QStringLiteral("MSysScriptErr-0002: ") + reason);
  EXPECT_EQ(log.getText(), reason);
  EXPECT_EQ(readFile(path), QByteArray("x = '\xff'\n"));
}

}  // namespace
