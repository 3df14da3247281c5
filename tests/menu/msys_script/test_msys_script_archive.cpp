#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <map>

#include "gapp/command_container.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_cmd_export_script.h"
#include "menu/msys_script/msys_python_script_database.h"
#include "menu/msys_script/msys_script_archive.h"
#include "msys_fixture.h"
#include "test_util.h"

using namespace Vel;
using namespace Vel::MSysScript;
using GApp::CommandError;
using GApp::CommandParameters;

namespace {

// Every file below a folder, by relative path, with its bytes.
std::map<QString, QByteArray> snapshot(const QString& folder)
{
  std::map<QString, QByteArray> files;
  QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
  while (it.hasNext()) {
    const QString path = it.next();
    files[QDir(folder).relativeFilePath(path)] = readFile(path);
  }
  return files;
}

class ArchiveTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    startedModule();
    qputenv("ZUT_SYSTEM_SCRIPTS", dir.filePath(QStringLiteral("system")).toLocal8Bit());
    qunsetenv("ZUT_PUBLIC_SCRIPTS");
    useUserFolder(QStringLiteral("first"));
  }
  void TearDown() override
  {
    qputenv("XDG_DATA_HOME", dir.filePath(QStringLiteral("none")).toLocal8Bit());
    UpdateRegisteredCommands();
  }

  void useUserFolder(const QString& name)
  {
    qputenv("XDG_DATA_HOME", dir.filePath(name).toLocal8Bit());
    user = dir.filePath(name + QStringLiteral("/zut/scripts"));
    QDir().mkpath(user);
    UpdateRegisteredCommands();
  }
  void add(const QString& file_name, const QByteArray& bytes)
  {
    const QString path = QDir(user).filePath(file_name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    writeFile(path, bytes);
  }
  static QVariant run(const char* name, const CommandParameters& parameters)
  {
    return GApp::CommandContainer::getInstance().getCommand(QString::fromLatin1(name))->run(parameters, false);
  }
  static QString failure(const char* name, const CommandParameters& parameters)
  {
    try {
      run(name, parameters);
    } catch (const CommandError& error) {
      return error.getCode() + QLatin1Char('|') + error.getLog().getText();
    }
    return QString();
  }
  static CommandParameters withFile(const QString& path)
  {
    CommandParameters parameters;
    parameters.set(QStringLiteral("file"), QVariant(path));
    return parameters;
  }

  QTemporaryDir dir;
  QString user;
};

}  // namespace

TEST_F(ArchiveTest, ExportThenImportIntoAnEmptyDatabaseGivesTheSameFilesByteForByte)
{
  add(QStringLiteral("plain.py"), "print('a')\r\n\tno newline at end");
  static const char binary[] = "x = '\xc3\xa4'\n\x00\xff binary tail";
  add(QStringLiteral("tools/grüße mit Leerzeichen.py"), QByteArray(binary, sizeof(binary) - 1));
  add(QStringLiteral("tools/grüße mit Leerzeichen.meta.json"),
      "{\n    \"display_name\": \"Grüße\",\n    \"icon\": \"icon.png\",\n    \"show_in_menu\": false\n}\n");
  static const char icon[] = "\x89PNG not really an image";
  add(QStringLiteral("tools/icon.png"), QByteArray(icon, sizeof(icon) - 1));
  UpdateRegisteredCommands();
  const auto before = snapshot(user);

  const QString archive = dir.filePath(QStringLiteral("all.scriptar"));
  const QVariant exported = run("sys.export_script_archive", withFile(archive));
  EXPECT_EQ(exported.toStringList().size(), 2);

  useUserFolder(QStringLiteral("second"));
  EXPECT_EQ(run("sys.import_script_archive", withFile(archive)).toStringList().size(), 2);
  EXPECT_EQ(snapshot(user), before);
  EXPECT_NE(GApp::CommandContainer::getInstance().getCommand(QStringLiteral("userscript.tools.grüße_mit_Leerzeichen")),
            nullptr)
      << "imported scripts are commands at once";
}

TEST_F(ArchiveTest, DamagedOrTruncatedArchivesFailAndChangeNothing)
{
  add(QStringLiteral("a.py"), "print('original a')\n");
  add(QStringLiteral("b.py"), "print('b')\n");
  const QString archive = dir.filePath(QStringLiteral("ab.scriptar"));
  run("sys.export_script_archive", withFile(archive));
  const QByteArray good = readFile(archive);

  useUserFolder(QStringLiteral("target"));
  add(QStringLiteral("keep.py"), "print('keep')\n");
  const auto before = snapshot(user);

  QByteArray flipped = good;
  const int code_at = int(flipped.indexOf("\"code\": \"")) + 12;
  flipped[code_at] = flipped[code_at] == 'A' ? 'B' : 'A';
  QByteArray renamed = good;
  renamed.replace("\"a.py\"", "\"../a.py\"");
  const std::vector<std::pair<const char*, QByteArray>> damaged = {
      {"truncated", good.left(good.size() / 2)},
      {"cut before the last entry", good.left(good.lastIndexOf("{"))},
      {"one changed byte", flipped},
      {"a name outside the database", renamed},
      {"not an archive", "print('hello')\n"},
      {"empty", QByteArray()},
  };
  for (const auto& [what, bytes] : damaged) {
    writeFile(archive, bytes);
    const QString result = failure("sys.import_script_archive", withFile(archive));
    EXPECT_TRUE(result.startsWith(QStringLiteral("MSysScriptErr-0015|"))) << what << ": " << qPrintable(result);
    EXPECT_EQ(snapshot(user), before) << what;
  }
  EXPECT_TRUE(failure("sys.import_script_archive", withFile(dir.filePath(QStringLiteral("missing.scriptar"))))
                  .startsWith(QStringLiteral("MSysScriptErr-0015|")));
}

TEST_F(ArchiveTest, ExistingAndRunningScriptsAreNotReplaced)
{
  add(QStringLiteral("a.py"), "print('from the archive')\n");
  const QString archive = dir.filePath(QStringLiteral("a.scriptar"));
  run("sys.export_script_archive", withFile(archive));

  useUserFolder(QStringLiteral("target"));
  add(QStringLiteral("a.py"), "print('mine')\n");
  EXPECT_EQ(failure("sys.import_script_archive", withFile(archive)),
            QStringLiteral("MSysScriptErr-0015|The script 'a.py' exists already."));
  EXPECT_EQ(readFile(QDir(user).filePath(QStringLiteral("a.py"))), QByteArray("print('mine')\n"));

  PythonScriptDatabase::scriptStarted(QStringLiteral("a.py"));
  DatabaseLock database;
  ErrorLog log;
  ScriptToWrite replacement;
  replacement.file_name = QStringLiteral("a.py");
  replacement.code = "print('new')\n";
  const bool written = writeScripts(*database.get(), GScript::LEVEL_USER, {replacement}, true, log);
  PythonScriptDatabase::scriptTerminated(QStringLiteral("a.py"));
  EXPECT_FALSE(written);
  EXPECT_EQ(log.getText(), QStringLiteral("The script 'a.py' is running and cannot be replaced."));
}

TEST_F(ArchiveTest, ImportScriptCopiesFilesUnderTheirNewNames)
{
  const QString source = dir.filePath(QStringLiteral("outside/tool.py"));
  QDir().mkpath(QFileInfo(source).absolutePath());
  writeFile(source, "print('tool')\n");

  CommandParameters parameters;
  parameters.set(QStringLiteral("files"), QVariantList{source});
  parameters.set(QStringLiteral("names"), QVariantList{QStringLiteral("tools/renamed")});
  parameters.set(QStringLiteral("display_names"), QVariantList{QStringLiteral("Renamed tool")});
  EXPECT_EQ(run("sys.import_script", parameters), QVariant(QStringList{QStringLiteral("tools/renamed.py")}));
  EXPECT_EQ(readFile(QDir(user).filePath(QStringLiteral("tools/renamed.py"))), QByteArray("print('tool')\n"));
  EXPECT_EQ(GApp::CommandContainer::getInstance().getCommand(QStringLiteral("userscript.tools.renamed"))->getTitle(),
            QStringLiteral("Renamed tool (script)"));

  EXPECT_EQ(failure("sys.import_script", parameters),
            QStringLiteral("MSysScriptErr-0006|The script 'tools/renamed.py' exists already."));
  parameters.set(QStringLiteral("replace_existing_scripts"), true);
  EXPECT_TRUE(failure("sys.import_script", parameters).isEmpty());

  parameters.set(QStringLiteral("config_level"), QStringLiteral("system"));
  EXPECT_EQ(failure("sys.import_script", parameters),
            QStringLiteral("MSysScriptErr-0006|The system level of the script database is read-only."));
  parameters.set(QStringLiteral("config_level"), QStringLiteral("admin"));
  EXPECT_EQ(failure("sys.import_script", parameters),
            QStringLiteral("GAppErr-0002|config_level takes a configuration level: 0, 1, 2 or system, public, user"));
  parameters.set(QStringLiteral("config_level"), QStringLiteral("user"));
  parameters.set(QStringLiteral("names"), QVariantList{QStringLiteral("../escape")});
  EXPECT_EQ(failure("sys.import_script", parameters),
            QStringLiteral("MSysScriptErr-0006|'../escape.py' is not a valid script name."));
}

TEST(ScriptArchiveFormat, KeepsEveryByteAndRejectsDuplicates)
{
  std::vector<ArchivedScript> scripts(2);
  scripts[0].file_name = QStringLiteral("a.py");
  scripts[0].code = QByteArray("\x00\x01\r\n", 4);
  scripts[1].file_name = QStringLiteral("b/c.py");
  scripts[1].metadata.display_name = QStringLiteral("C");
  scripts[1].metadata.icon = QStringLiteral("c.png");
  scripts[1].icon = "png";
  std::vector<ArchivedScript> back;
  ErrorLog log;
  ASSERT_TRUE(ScriptArchive::read(ScriptArchive::write(scripts), back, log)) << qPrintable(log.getText());
  ASSERT_EQ(back.size(), 2u);
  EXPECT_EQ(back[0].code, scripts[0].code);
  EXPECT_EQ(back[1].icon, scripts[1].icon);
  EXPECT_EQ(back[1].metadata.display_name, QStringLiteral("C"));

  scripts[1].file_name = scripts[0].file_name;
  EXPECT_FALSE(ScriptArchive::read(ScriptArchive::write(scripts), back, log));
  EXPECT_EQ(back.size(), 2u) << "a failed read leaves the earlier result";
}
