#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMenu>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolBar>

#include <gtest/gtest.h>

#include "core/prog_error.h"
#include "core/python_string.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gapp/main_window.h"
#include "gscript/import_handler.h"
#include "gscript/python_interpreter.h"
#include "gscript/safe_points.h"
#include "gscript/script_database.h"
#include "gtools/custom_toolbar_container.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_cmd_script.h"
#include "menu/msys_script/msys_python_script_database.h"
#include "menu/msys_script/msys_script_menu_provider.h"
#include "msys_fixture.h"
#include "test_util.h"

using namespace Vel;
using namespace Vel::MSysScript;
using GApp::CommandContainer;
using GApp::CommandError;
using GApp::CommandParameters;
using GScript::ScriptDatabase;

namespace {

// Three empty level folders of our own for each test.
class ScriptDatabaseTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    startedModule();
    qputenv("ZUT_SYSTEM_SCRIPTS", root(GScript::LEVEL_SYSTEM).toLocal8Bit());
    qputenv("ZUT_PUBLIC_SCRIPTS", root(GScript::LEVEL_PUBLIC).toLocal8Bit());
    qputenv("XDG_DATA_HOME", dir.filePath(QStringLiteral("data")).toLocal8Bit());
    for (int level = 0; level < GScript::LEVEL_COUNT; ++level)
      QDir().mkpath(root(level));
    refresh();
  }
  void TearDown() override
  {
    QDir(dir.path()).removeRecursively();
    refresh();
    EXPECT_EQ(PythonScriptDatabase::getLockCount(), 0);
    EXPECT_EQ(PythonScriptDatabase::begin(), PythonScriptDatabase::end());
  }

  QString root(int level) const
  {
    static const char* const names[] = {"system", "public", "data/zut/scripts"};
    return dir.filePath(QString::fromLatin1(names[level]));
  }
  QString add(int level, const QString& file_name, const QByteArray& code)
  {
    const QString path = QDir(root(level)).filePath(file_name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    writeFile(path, code);
    return path;
  }
  // What the application does after the scripts changed on disk.
  static void refresh() { UpdateRegisteredCommands(); }

  static ScriptCommand* command(const QString& name)
  {
    return dynamic_cast<ScriptCommand*>(CommandContainer::getInstance().getCommand(name));
  }
  static QVariant run(const QString& name, const CommandParameters& parameters = CommandParameters())
  {
    return CommandContainer::getInstance().getCommand(name)->run(parameters, false);
  }
  static CommandError failure(const QString& name, const CommandParameters& parameters = CommandParameters())
  {
    try {
      run(name, parameters);
    } catch (const CommandError& error) {
      return error;
    }
    ADD_FAILURE() << qPrintable(name) << " did not fail";
    return CommandError(QString());
  }

  QTemporaryDir dir;
};

}  // namespace

TEST(PythonScriptDatabaseLocks, MisuseIsReportedAndChangesNothing)
{
  try {
    PythonScriptDatabase::releaseDatabase();
    FAIL();
  } catch (const ProgError& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Database has never been locked"));
    EXPECT_EQ(error.getSourceFile(), QStringLiteral("msys_python_script_database"));
  }
  EXPECT_EQ(PythonScriptDatabase::getLockCount(), 0);

  GScript::ScriptDatabase* outer = PythonScriptDatabase::getDatabase(false);
  GScript::ScriptDatabase* inner = PythonScriptDatabase::getDatabase(true);
  EXPECT_EQ(outer, inner);
  PythonScriptDatabase::releaseDatabase();
  EXPECT_TRUE(PythonScriptDatabase::isAvailable()) << "destroyed by the first of two releases";
  PythonScriptDatabase::releaseDatabase();
  EXPECT_FALSE(PythonScriptDatabase::isAvailable());
}

TEST(PythonScriptDatabaseLocks, RunningScriptsNestStrictly)
{
  struct Case
  {
    std::vector<const char*> stack;
    const char* terminated;
    const char* error;
    std::vector<const char*> left;
  };
  const std::vector<Case> cases = {
      {{}, "A", "Running script stack is empty", {}},
      {{"A", "B"}, "B", nullptr, {"A"}},
      {{"A", "B"}, "A", "Terminated script is not the last script in the running scripts hierarchy", {"A", "B"}},
      {{"a"}, "A", "Terminated script is not the last script in the running scripts hierarchy", {"a"}},
  };
  for (const Case& c : cases) {
    for (const char* name : c.stack)
      PythonScriptDatabase::scriptStarted(QString::fromLatin1(name));
    try {
      PythonScriptDatabase::scriptTerminated(QString::fromLatin1(c.terminated));
      EXPECT_EQ(c.error, nullptr);
    } catch (const ProgError& error) {
      EXPECT_EQ(error.getMessage(), QString::fromLatin1(c.error));
    }
    std::vector<QString> left(PythonScriptDatabase::begin(), PythonScriptDatabase::end());
    ASSERT_EQ(left.size(), c.left.size());
    for (size_t i = 0; i < left.size(); ++i)
      EXPECT_EQ(left[i], QString::fromLatin1(c.left[i]));
    EXPECT_EQ(PythonScriptDatabase::isRunning(QStringLiteral("A")),
              std::count(c.left.begin(), c.left.end(), std::string_view("A")) > 0);
    while (PythonScriptDatabase::begin() != PythonScriptDatabase::end())
      PythonScriptDatabase::scriptTerminated(*(PythonScriptDatabase::end() - 1));
  }
}

TEST(ScriptNames, CommandNamesFollowTheHostRules)
{
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"hello", "userscript.hello"},
      {"tools/helpers", "userscript.tools.helpers"},
      {"my tools/grüße-2", "userscript.my_tools.grüße_2"},
      {"a.b", "userscript.a_b"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ScriptDatabase::makeScriptCommandName(QString::fromUtf8(c.first)), QString::fromUtf8(c.second));
  EXPECT_EQ(ScriptDatabase::makeGroupCommandName(QStringLiteral("my tools")), QStringLiteral("scriptgroup.my_tools"));
  for (const char* good : {"a.py", "x/y z.py", "grüße.py"})
    EXPECT_TRUE(ScriptDatabase::isValidFileName(QString::fromUtf8(good))) << good;
  for (const char* bad : {"", ".py", "a.txt", "/etc/a.py", "../a.py", "a/../../b.py", "a//b.py", "./a.py"})
    EXPECT_FALSE(ScriptDatabase::isValidFileName(QString::fromUtf8(bad))) << bad;
  EXPECT_THROW(ScriptCommand(QStringLiteral("Userscript.x")), ProgError);
}

TEST_F(ScriptDatabaseTest, HigherLevelsHideLowerOnesAndMetadataIsRead)
{
  add(GScript::LEVEL_SYSTEM, QStringLiteral("shared.py"), "print('system')\n");
  add(GScript::LEVEL_USER, QStringLiteral("shared.py"), "print('user')\n");
  add(GScript::LEVEL_PUBLIC, QStringLiteral("tools/grüße mit Leerzeichen.py"), "x = 'ä'\n");
  const QString meta = add(GScript::LEVEL_PUBLIC, QStringLiteral("tools/grüße mit Leerzeichen.meta.json"),
                           R"({"display_name": "Grüße", "show_in_menu": false})");
  add(GScript::LEVEL_USER, QStringLiteral("notes.txt"), "not a script");

  DatabaseLock database;
  const auto scripts = database->getAllScripts();
  ASSERT_EQ(scripts.size(), 2u);
  EXPECT_EQ(scripts[0]->getFileName(), QStringLiteral("shared.py"));
  EXPECT_EQ(scripts[0]->getConfigLevel(), GScript::LEVEL_USER);
  EXPECT_EQ(scripts[1]->getQualifiedName(), QStringLiteral("tools/grüße mit Leerzeichen"));
  EXPECT_EQ(scripts[1]->getDisplayName(), QStringLiteral("Grüße"));
  EXPECT_FALSE(scripts[1]->getShowInMenu());
  ErrorLog log;
  std::unique_ptr<GScript::Script> loaded(database->createLoadedScript(QStringLiteral("shared.py"), log));
  ASSERT_TRUE(loaded);
  EXPECT_EQ(loaded->getSource(), QByteArray("print('user')\n"));
  EXPECT_EQ(database->createLoadedScript(QStringLiteral("missing.py"), log), nullptr);
  EXPECT_FALSE(log.isEmpty());
  EXPECT_EQ(database->getFolder(QStringLiteral("tools"))->getConfigLevel(), GScript::LEVEL_PUBLIC);
}

// What the folders hold against what the database lists: hidden names and folder links are
// passed over, a file link is the script it names, and the ".py" may be written in any case.
TEST_F(ScriptDatabaseTest, TheListingFollowsFileLinksButNeitherHiddenNamesNorFolderLinks)
{
  add(GScript::LEVEL_USER, QStringLiteral("a/b/deep.name.py"), "pass\n");
  add(GScript::LEVEL_USER, QStringLiteral("LOUD.PY"), "pass\n");
  add(GScript::LEVEL_USER, QStringLiteral(".hidden.py"), "pass\n");
  add(GScript::LEVEL_USER, QStringLiteral(".git/inside.py"), "pass\n");
  const QString target = add(GScript::LEVEL_SYSTEM, QStringLiteral("elsewhere/target.py"), "pass\n");
  add(GScript::LEVEL_SYSTEM, QStringLiteral("elsewhere/target.meta.json"), R"({"display_name": "Target"})");
  const QDir user(root(GScript::LEVEL_USER));
  ASSERT_TRUE(QFile::link(target, user.filePath(QStringLiteral("linked.py"))));
  ASSERT_TRUE(QFile::link(QFileInfo(target).path() + QStringLiteral("/target.meta.json"),
                          user.filePath(QStringLiteral("linked.meta.json"))));
  ASSERT_TRUE(QFile::link(user.filePath(QStringLiteral("a")), user.filePath(QStringLiteral("folder link"))));
  ASSERT_TRUE(QFile::link(user.filePath(QStringLiteral("gone.py")), user.filePath(QStringLiteral("broken.py"))));

  DatabaseLock database;
  QStringList listed;
  for (const GScript::Script* script : database->getAllScripts())
    if (script->getConfigLevel() == GScript::LEVEL_USER)
      listed << script->getFileName() + QLatin1Char('=') + script->getDisplayName();
  EXPECT_EQ(listed.join(QLatin1Char(' ')), QStringLiteral("LOUD.PY=LOUD a/b/deep.name.py=deep.name linked.py=Target"));
  EXPECT_NE(database->getFolder(QStringLiteral("a")), nullptr);
  EXPECT_EQ(database->getFolder(QStringLiteral(".git")), nullptr);
}

TEST_F(ScriptDatabaseTest, ReplacedCommandNamesAreWrittenReadAndReachTheScriptCommand)
{
  GScript::ScriptMetadata metadata;
  metadata.replaces = QStringList{QStringLiteral("userscript.old_name"), QStringLiteral("userscript.older")};
  ErrorLog log;
  {
    DatabaseLock database;
    ASSERT_TRUE(
        database->writeScript(GScript::LEVEL_USER, QStringLiteral("tools/new_name.py"), "pass\n", metadata, log))
        << qPrintable(log.getText());
  }
  refresh();
  DatabaseLock database;
  EXPECT_EQ(database->getScript(QStringLiteral("tools/new_name.py"))->getMetadata().replaces, metadata.replaces);
  const GApp::Command* command =
      GApp::CommandContainer::getInstance().getCommand(QStringLiteral("userscript.tools.new_name"));
  ASSERT_TRUE(command);
  EXPECT_EQ(command->getMetaInfo().getReplaces(), metadata.replaces);
}

TEST_F(ScriptDatabaseTest, DamagedMetadataIsReportedOnceAndLeftAsItIs)
{
  add(GScript::LEVEL_USER, QStringLiteral("a.py"), "pass\n");
  const QString meta = add(GScript::LEVEL_USER, QStringLiteral("a.meta.json"), "{broken");
  std::vector<QString> shown;
  GApp::setErrorDialogHandler([&](const QString& code, const QString&) { shown.push_back(code); });
  {
    DatabaseLock database;
    EXPECT_EQ(database->getAllScripts().size(), 1u);
  }
  GApp::setErrorDialogHandler(nullptr);
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0], QStringLiteral("MSysScriptErr-0001"));
  EXPECT_EQ(readFile(meta), QByteArray("{broken"));
}

TEST_F(ScriptDatabaseTest, CommandsFollowNewRenamedAndDeletedScripts)
{
  const QString first = add(GScript::LEVEL_USER, QStringLiteral("tools/first.py"), "pass\n");
  add(GScript::LEVEL_USER, QStringLiteral("tools/hidden.py"), "pass\n");
  add(GScript::LEVEL_USER, QStringLiteral("tools/hidden.meta.json"), R"({"show_in_menu": false})");
  add(GScript::LEVEL_USER, QStringLiteral("keep.py"), "pass\n");
  refresh();
  ScriptCommand* kept = command(QStringLiteral("userscript.keep"));
  ASSERT_NE(kept, nullptr);
  ASSERT_NE(command(QStringLiteral("userscript.tools.first")), nullptr);
  auto* group = dynamic_cast<GApp::ToolBarGroupCommand*>(
      CommandContainer::getInstance().getCommand(QStringLiteral("scriptgroup.tools")));
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->getCommands(), QStringList{QStringLiteral("userscript.tools.first")});

  ASSERT_TRUE(QFile::rename(first, QDir(root(GScript::LEVEL_USER)).filePath(QStringLiteral("tools/second.py"))));
  QFile::remove(QDir(root(GScript::LEVEL_USER)).filePath(QStringLiteral("tools/hidden.py")));
  refresh();
  EXPECT_EQ(command(QStringLiteral("userscript.tools.first")), nullptr);
  EXPECT_NE(command(QStringLiteral("userscript.tools.second")), nullptr);
  EXPECT_EQ(command(QStringLiteral("userscript.tools.hidden")), nullptr);
  EXPECT_EQ(command(QStringLiteral("userscript.keep")), kept) << "an unchanged script keeps its command";
  EXPECT_EQ(group->getCommands(), QStringList{QStringLiteral("userscript.tools.second")});
}

// Names that differ only in characters a command name cannot hold each keep a command; the one
// that needs no change has the plain name, whatever else is there.
TEST_F(ScriptDatabaseTest, ScriptsWhoseNamesCollideEachKeepACommand)
{
  const std::vector<std::pair<const char*, const char*>> expected = {{"my tools/x.py", "userscript.my_tools.x_2"},
                                                                     {"my-tools/x.py", "userscript.my_tools.x_3"},
                                                                     {"my_tools/x.py", "userscript.my_tools.x"},
                                                                     {"a.b.py", "userscript.a_b_3"},
                                                                     {"a b.py", "userscript.a_b"},
                                                                     {"a_b_2.py", "userscript.a_b_2"}};
  for (const auto& [file, name] : expected)
    add(GScript::LEVEL_USER, QString::fromUtf8(file), "pass\n");
  refresh();
  for (const auto& [file, name] : expected) {
    SCOPED_TRACE(name);
    ScriptCommand* script_command = command(QString::fromUtf8(name));
    ASSERT_NE(script_command, nullptr);
    EXPECT_EQ(script_command->getScriptFileName(), QString::fromUtf8(file));
  }
  auto* group = dynamic_cast<GApp::ToolBarGroupCommand*>(
      CommandContainer::getInstance().getCommand(QStringLiteral("scriptgroup.my_tools")));
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->getCommands().size(), 3) << "folders that share a group name share the group";
}

TEST_F(ScriptDatabaseTest, TitlesNameTheLevelOnlyForScriptsWithAnIcon)
{
  QImage image(8, 8, QImage::Format_ARGB32);
  image.fill(Qt::red);
  for (int level : {GScript::LEVEL_SYSTEM, GScript::LEVEL_PUBLIC, GScript::LEVEL_USER}) {
    const QString base = QStringLiteral("level%1").arg(level);
    add(level, base + QStringLiteral("_plain.py"), "pass\n");
    add(level, base + QStringLiteral("_icon.py"), "pass\n");
    add(level, base + QStringLiteral("_icon.meta.json"), R"({"display_name": "Shown", "icon": "icon.png"})");
    ASSERT_TRUE(image.save(QDir(root(level)).filePath(QStringLiteral("icon.png"))));
  }
  refresh();
  const std::vector<std::pair<const char*, const char*>> expected = {
      {"userscript.level0_plain", "level0_plain (script)"}, {"userscript.level0_icon", "Shown (system script)"},
      {"userscript.level1_plain", "level1_plain (script)"}, {"userscript.level1_icon", "Shown (public script)"},
      {"userscript.level2_plain", "level2_plain (script)"}, {"userscript.level2_icon", "Shown (script)"},
  };
  for (const auto& [name, title] : expected) {
    ScriptCommand* script_command = command(QString::fromLatin1(name));
    ASSERT_NE(script_command, nullptr) << name;
    EXPECT_EQ(script_command->getTitle(), QString::fromLatin1(title));
    const QIcon icon = ScriptSpecialMenuProvider::iconOf(*script_command);
    ASSERT_FALSE(icon.isNull()) << name;
    EXPECT_EQ(icon.pixmap(8, 8).toImage().pixel(0, 0) == image.pixel(0, 0), QByteArray(name).endsWith("_icon")) << name;
  }
}

TEST_F(ScriptDatabaseTest, ScriptCommandsRunWithParametersAndOutputSwitches)
{
  add(GScript::LEVEL_USER, QStringLiteral("hello.py"),
      "import sys\nprint('hi', PARAMETERS.get('who'))\nprint('oops', file=sys.stderr)\n");
  refresh();
  CommandParameters parameters;
  parameters.set(QStringLiteral("parameters"), QVariantMap{{QStringLiteral("who"), QStringLiteral("Ada")}});
  parameters.set(QStringLiteral("collect_stdout"), true);
  EXPECT_EQ(run(QStringLiteral("userscript.hello"), parameters), QVariant(QStringLiteral("hi Ada\n")));
  parameters.set(QStringLiteral("collect_stderr"), true);
  EXPECT_EQ(run(QStringLiteral("userscript.hello"), parameters), QVariant(QStringLiteral("hi Ada\noops\n")));
  parameters.set(QStringLiteral("collect_stdout"), false);
  EXPECT_EQ(run(QStringLiteral("userscript.hello"), parameters), QVariant(QString()));

  QFile::remove(QDir(root(GScript::LEVEL_USER)).filePath(QStringLiteral("hello.py")));
  const CommandError missing = failure(QStringLiteral("userscript.hello"));
  EXPECT_EQ(missing.getCode(), QStringLiteral("MSysScriptErr-0004"));
  EXPECT_EQ(missing.getLog().lines().value(0), QStringLiteral("No script found for command 'userscript.hello'"))
      << qPrintable(missing.getLog().getText());
}

TEST_F(ScriptDatabaseTest, SelfCallingScriptStopsBeyondTenInterpreters)
{
  // Each level records how many interpreters were running, then calls itself again.
  add(GScript::LEVEL_USER, QStringLiteral("recurse.py"),
      "import zut\n"
      "depth = PARAMETERS.get('depth', 1)\n"
      "with open(PARAMETERS['log'], 'a') as f:\n"
      "    f.write(str(depth) + '\\n')\n"
      "zut.script.userscript.recurse(parameters={'depth': depth + 1, 'log': PARAMETERS['log']})\n");
  refresh();
  const QString log_file = dir.filePath(QStringLiteral("depths.txt"));
  CommandParameters parameters;
  parameters.set(QStringLiteral("parameters"), QVariantMap{{QStringLiteral("log"), log_file}});
  const CommandError error = failure(QStringLiteral("userscript.recurse"), parameters);
  EXPECT_EQ(error.getCode(), QStringLiteral("MSysScriptErr-0013"));
  EXPECT_TRUE(error.getLog().getText().contains(QStringLiteral(
      "Maximum recursion depth of 10 iterations exceeded. Please use python functions for true recursive code")))
      << qPrintable(error.getLog().getText());
  // The call made with ten interpreters running ran; the one made with eleven was refused.
  EXPECT_TRUE(readFile(log_file).endsWith("\n10\n11\n")) << readFile(log_file).constData();
  EXPECT_TRUE(GScript::PythonInterpreter::getInterpreterStack().empty());
  // Reported once, with the chain of calls, not once more by every level that unwinds.
  QStringList chain;
  for (int i = 0; i < 12; ++i)  // the eleven that ran and the refused one
    chain << QStringLiteral("recurse.py");
  EXPECT_EQ(error.getLog().getText().count(QStringLiteral("Maximum recursion depth")), 1);
  EXPECT_EQ(error.getLog().lines().value(1), QStringLiteral("Script calls: ") + chain.join(QStringLiteral(" -> ")))
      << qPrintable(error.getLog().getText());
}

TEST_F(ScriptDatabaseTest, FailuresNameTheScriptAsTheDatabaseKnowsItAndSayWhy)
{
  const QString path = add(GScript::LEVEL_USER, QStringLiteral("tools/fail.py"), "x = 1\nraise ValueError('bad')\n");
  refresh();
  const QString log = failure(QStringLiteral("userscript.tools.fail")).getLog().getText();
  EXPECT_TRUE(log.contains(QStringLiteral("File \"tools/fail.py\", line 2, in <module>"))) << qPrintable(log);

  QFile::remove(path);
  const CommandError missing = failure(QStringLiteral("userscript.tools.fail"));
  EXPECT_EQ(missing.getLog().lines().value(0), QStringLiteral("No script found for command 'userscript.tools.fail'"));
  EXPECT_GE(missing.getLog().lines().size(), 2) << qPrintable(missing.getLog().getText());
}

// A script stopped three levels down unwinds every level: each one's finally runs, and the
// locks, the running scripts and the interpreters are back where they started.
TEST_F(ScriptDatabaseTest, AnAbortedNestedScriptUnwindsEveryLevel)
{
  const QString trace = dir.filePath(QStringLiteral("finally.txt"));
  const QString looping = dir.filePath(QStringLiteral("looping"));
  for (const char* name : {"a", "b", "c"}) {
    const QString next = QString::fromLatin1(name) == QLatin1String("a") ? QStringLiteral("zut.script.userscript.b()")
                         : QString::fromLatin1(name) == QLatin1String("b")
                             ? QStringLiteral("zut.script.userscript.c()")
                             : QStringLiteral("open(%1, 'w').close()\n    while True:\n        pass")
                                   .arg(Vel::quotePythonString(looping));
    add(GScript::LEVEL_USER, QStringLiteral("%1.py").arg(QLatin1String(name)),
        QStringLiteral("import zut\n"
                       "try:\n"
                       "    %1\n"
                       "except zut.CommandError:\n"
                       "    pass\n"
                       "finally:\n"
                       "    open(%2, 'a').write('%3')\n")
            .arg(next, Vel::quotePythonString(trace), QLatin1String(name))
            .toUtf8());
  }
  refresh();
  const int locks = PythonScriptDatabase::getLockCount();
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  bool busy_cursor_off = false;
  // The abort comes once the innermost script loops, however long the three take to start.
  QTimer innermost;
  QObject::connect(&innermost, &QTimer::timeout, [&] {
    if (!QFile::exists(looping))
      return;
    innermost.stop();
    busy_cursor_off = QGuiApplication::overrideCursor() == nullptr;
    EXPECT_EQ(PythonScriptDatabase::getLockCount(), locks + 3);
    GApp::MainWindow::requestAbort();
  });
  innermost.start(10);
  const CommandError error = failure(QStringLiteral("userscript.a"));
  EXPECT_EQ(error.getCode(), QLatin1String(GScript::ERR_SCRIPT_ABORTED));
  EXPECT_EQ(readFile(trace), QByteArray("cba"));
  EXPECT_EQ(PythonScriptDatabase::getLockCount(), locks);
  EXPECT_EQ(PythonScriptDatabase::begin(), PythonScriptDatabase::end());
  EXPECT_TRUE(GScript::PythonInterpreter::getInterpreterStack().empty());
  // The busy cursor is off while the scripts run and back afterwards.
  EXPECT_TRUE(busy_cursor_off);
  ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
  QGuiApplication::restoreOverrideCursor();
}

TEST_F(ScriptDatabaseTest, TheScriptBeingRecordedCannotBeCalled)
{
  add(GScript::LEVEL_USER, QStringLiteral("tools/rec.py"), "pass\n");
  refresh();
  auto* editor = dynamic_cast<EditorCommand*>(
      CommandContainer::getInstance().getCommand(QStringLiteral("sys.show_script_editor")));
  ASSERT_NE(editor, nullptr);
  DatabaseLock held;  // the editor holds the database while it is open
  held->setCurrentScript(QStringLiteral("tools/rec.py"));
  editor->setRecording(true);
  const CommandError error = failure(QStringLiteral("userscript.tools.rec"));
  editor->setRecording(false);
  EXPECT_EQ(error.getCode(), QStringLiteral("MSysScriptErr-0004"));
  EXPECT_EQ(error.getLog().getText(),
            QStringLiteral("A script is called which is currently being recorded: 'tools/rec'"));
  EXPECT_NO_THROW(run(QStringLiteral("userscript.tools.rec")));
}

TEST_F(ScriptDatabaseTest, ScriptsImportEachOtherByForwardSlashNames)
{
  add(GScript::LEVEL_PUBLIC, QStringLiteral("tools/helpers.py"), "def twice(x):\n    return 2 * x\n");
  add(GScript::LEVEL_USER, QStringLiteral("legacy\\util.py"), "VALUE = 'found'\n");
  add(GScript::LEVEL_USER, QStringLiteral("main.py"),
      "import tools.helpers\nimport legacy.util\nprint(tools.helpers.twice(21), legacy.util.VALUE)\n");
  refresh();

  const GScript::ImportHandlerSource* handler = GScript::ImportHandlerSource::getSources().front();
  EXPECT_TRUE(handler->getNames().contains(QStringLiteral("legacy/util.py")));
  EXPECT_FALSE(handler->getNames().contains(QStringLiteral("legacy\\util.py")));
  EXPECT_EQ(handler->getSource(QStringLiteral("legacy/util.py")), QStringLiteral("VALUE = 'found'\n"));
  EXPECT_TRUE(handler->getSource(QStringLiteral("legacy\\util.py")).isEmpty());

  CommandParameters parameters;
  parameters.set(QStringLiteral("collect_stdout"), true);
  EXPECT_EQ(run(QStringLiteral("userscript.main"), parameters), QVariant(QStringLiteral("42 found\n")));
  // The standard library is never hidden by a script of the same name.
  add(GScript::LEVEL_USER, QStringLiteral("json.py"), "raise RuntimeError('hidden')\n");
  CommandParameters code;
  code.set(QStringLiteral("code"), QStringLiteral("import json\nimport sys\nsys.modules.pop('tools.helpers', None)"));
  EXPECT_NO_THROW(run(QStringLiteral("sys.execute_python_code"), code));
}

TEST_F(ScriptDatabaseTest, ScriptsMenuOffersTheScriptsThatShowInMenus)
{
  add(GScript::LEVEL_USER, QStringLiteral("top.py"), "pass\n");
  add(GScript::LEVEL_USER, QStringLiteral("quiet.py"), "pass\n");
  add(GScript::LEVEL_USER, QStringLiteral("quiet.meta.json"), R"({"show_in_menu": false})");
  add(GScript::LEVEL_PUBLIC, QStringLiteral("my tools/grüße.py"), "pass\n");
  refresh();
  QMenu menu;
  GApp::MainWindow::fillSpecialMenu(QString::fromLatin1(ScriptSpecialMenuProvider::MENU_ID), &menu);
  QStringList entries;
  for (QAction* action : menu.actions()) {
    if (action->menu()) {
      entries << action->text() + QStringLiteral(":");
      for (QAction* sub : action->menu()->actions())
        entries << QStringLiteral("  ") + sub->objectName();
    } else if (!action->isSeparator()) {
      entries << action->objectName();
    }
  }
  EXPECT_EQ(entries.mid(6), (QStringList{QStringLiteral("userscript.top"), QStringLiteral("my tools:"),
                                         QStringLiteral("  userscript.my_tools.grüße")}));
  if (!qEnvironmentVariableIsEmpty("ZUT_SCREENSHOT_DIR"))
    menu.grab().save(qEnvironmentVariable("ZUT_SCREENSHOT_DIR") + QStringLiteral("/scripts_menu.png"));
}

TEST_F(ScriptDatabaseTest, ToolBarsOfAFolderFollowItsScripts)
{
  add(GScript::LEVEL_USER, QStringLiteral("tools/a.py"), "pass\n");
  refresh();
  QToolBar tool_bar;
  GTools::CustomToolBarContainer::getInstance().addToolBar(
      &tool_bar, ScriptDatabase::makeGroupCommandName(QStringLiteral("tools")));
  const auto buttons = [&] {
    QStringList names;
    for (const QAction* action : tool_bar.actions())
      names << action->objectName();
    return names;
  };
  EXPECT_EQ(buttons(), QStringList{QStringLiteral("userscript.tools.a")});
  add(GScript::LEVEL_USER, QStringLiteral("tools/b.py"), "pass\n");
  refresh();
  EXPECT_EQ(buttons(), (QStringList{QStringLiteral("userscript.tools.a"), QStringLiteral("userscript.tools.b")}));
}

TEST_F(ScriptDatabaseTest, ARunningScriptKeepsItsCommandUntilItEnds)
{
  // The script removes itself and makes the commands follow the database while it runs.
  const QString other = add(GScript::LEVEL_SYSTEM, QStringLiteral("other.py"), "pass\n");
  add(GScript::LEVEL_USER, QStringLiteral("vanishing.py"),
      QStringLiteral("import os, zut\n"
                     "os.remove(__file__)\n"
                     "zut.script.sys.import_script(files=[%1], names=['copied'])\n"
                     "print('still running')\n")
          .arg(Vel::quotePythonString(other))
          .toUtf8());
  refresh();
  CommandParameters parameters;
  parameters.set(QStringLiteral("collect_stdout"), true);
  EXPECT_EQ(run(QStringLiteral("userscript.vanishing"), parameters), QVariant(QStringLiteral("still running\n")));
  EXPECT_NE(command(QStringLiteral("userscript.copied")), nullptr);
  refresh();
  EXPECT_EQ(command(QStringLiteral("userscript.vanishing")), nullptr);
}
