#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cctype>
#include <gtest/gtest.h>
#include <map>

#include "gapp/command_container.h"
#include "gapp/interaction.h"
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

struct BadEntry
{
  const char* what;
  QString file_name;
  QString icon_name;
  const char* reason;
};

class ArchiveBadEntry : public ArchiveTest, public ::testing::WithParamInterface<BadEntry>
{};

TEST_P(ArchiveBadEntry, RefusesTheWholeArchiveBeforeWritingAnything)
{
  const BadEntry& c = GetParam();
  std::vector<ArchivedScript> scripts(2);
  scripts[0].file_name = QStringLiteral("good.py");
  scripts[0].code = "print('good')\n";
  scripts[1].file_name = c.file_name;
  scripts[1].code = "print('bad')\n";
  scripts[1].metadata.icon = c.icon_name;
  scripts[1].icon = c.icon_name.isEmpty() ? QByteArray() : QByteArray("png");
  const QString archive = dir.filePath(QStringLiteral("bad.scriptar"));
  writeFile(archive, ScriptArchive::write(scripts));

  const QString result = failure("sys.import_script_archive", withFile(archive));
  EXPECT_TRUE(result.startsWith(QStringLiteral("MSysScriptErr-0015|The script archive cannot be imported: entry 2: ")))
      << qPrintable(result);
  EXPECT_TRUE(result.contains(QString::fromLatin1(c.reason))) << qPrintable(result);
  EXPECT_TRUE(snapshot(user).empty()) << "nothing written";

  // The same names are refused when scripts are written one by one.
  DatabaseLock database;
  ErrorLog log;
  ScriptToWrite single{c.file_name, "print('bad')\n", QString(), true, c.icon_name, scripts[1].icon, {}};
  EXPECT_FALSE(writeScripts(*database.get(), GScript::LEVEL_USER, {single}, true, log));
  EXPECT_TRUE(snapshot(user).empty());
}

INSTANTIATE_TEST_SUITE_P(
    Names, ArchiveBadEntry,
    ::testing::Values(
        BadEntry{"NUL", QString::fromUtf8("a\0b.py", 6), QString(), "'a\\x00b.py'"},
        BadEntry{"hidden file", QStringLiteral(".hidden.py"), QString(), "hidden"},
        BadEntry{"hidden folder", QStringLiteral("tools/.cache/x.py"), QString(), "hidden"},
        BadEntry{"line break", QStringLiteral("a\nb.py"), QString(), "control character"},
        BadEntry{"backslash", QStringLiteral("tools\\x.py"), QString(), "not '\\'"},
        BadEntry{"outside", QStringLiteral("../x.py"), QString(), "'..'"},
        BadEntry{"absolute", QStringLiteral("/tmp/x.py"), QString(), "relative"},
        BadEntry{"no .py", QStringLiteral("x.txt"), QString(), "ends in '.py'"},
        BadEntry{"icon path", QStringLiteral("x.py"), QStringLiteral("../../etc/x.png"), "beside their script"},
        BadEntry{"hidden icon", QStringLiteral("x.py"), QStringLiteral(".x.png"), "hidden"},
        BadEntry{"icon over a script", QStringLiteral("x.py"), QStringLiteral("good.py"), "replace a script"},
        BadEntry{"icon over metadata", QStringLiteral("x.py"), QStringLiteral("good.meta.json"), "replace a script"},
        BadEntry{"icon with NUL", QStringLiteral("x.py"), QString::fromUtf8("i\0.png", 6), "control character"}),
    [](const ::testing::TestParamInfo<BadEntry>& info) {
      std::string name;
      for (const char* c = info.param.what; *c; ++c)
        name += std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_';
      return name;
    });

TEST_F(ArchiveTest, ExportReadsIconsOnlyInsideTheDatabaseAndKeepsScriptsWhoseIconIsMissing)
{
  const QString secret = dir.filePath(QStringLiteral("secret.txt"));
  writeFile(secret, "secret outside the database");
  const QString climb = QDir(user).relativeFilePath(secret);  // "../../../secret.txt"
  add(QStringLiteral("climbs.py"), "print('climbs')\n");
  add(QStringLiteral("climbs.meta.json"), QStringLiteral("{\"icon\": \"%1\"}").arg(climb).toUtf8());
  add(QStringLiteral("linked.py"), "print('linked')\n");
  add(QStringLiteral("linked.meta.json"), "{\"icon\": \"linked.png\"}");
  ASSERT_TRUE(QFile::link(secret, QDir(user).filePath(QStringLiteral("linked.png"))));
  add(QStringLiteral("missing.py"), "print('missing')\n");
  add(QStringLiteral("missing.meta.json"), "{\"icon\": \"gone.png\", \"display_name\": \"Missing\"}");
  add(QStringLiteral("fine.py"), "print('fine')\n");
  add(QStringLiteral("fine.meta.json"), "{\"icon\": \"fine.png\"}");
  add(QStringLiteral("fine.png"), "fine icon");
  UpdateRegisteredCommands();

  QStringList warnings;
  GApp::setErrorDialogHandler(
      [&](const QString& code, const QString& text) { warnings << code + QLatin1Char('|') + text; });
  const QString archive = dir.filePath(QStringLiteral("all.scriptar"));
  const QVariant exported = run("sys.export_script_archive", withFile(archive));
  GApp::setErrorDialogHandler(nullptr);

  EXPECT_EQ(exported.toStringList().size(), 4);
  ASSERT_EQ(warnings.size(), 1);
  for (const char* name : {"climbs.py: the icon is left out", "linked.py: the icon is left out",
                           "missing.py: the icon is left out", "outside the script database"})
    EXPECT_TRUE(warnings.first().contains(QString::fromLatin1(name))) << qPrintable(warnings.first());
  EXPECT_TRUE(warnings.first().startsWith(QStringLiteral("MSysScriptErr-0017|")));
  EXPECT_FALSE(warnings.first().contains(QStringLiteral("fine.py")));
  EXPECT_FALSE(readFile(archive).contains(QByteArray("secret outside the database").toBase64()));

  std::vector<ArchivedScript> back;
  ErrorLog log;
  ASSERT_TRUE(ScriptArchive::read(readFile(archive), back, log)) << qPrintable(log.getText());
  useUserFolder(QStringLiteral("second"));
  EXPECT_EQ(run("sys.import_script_archive", withFile(archive)).toStringList().size(), 4);
  EXPECT_EQ(readFile(QDir(user).filePath(QStringLiteral("fine.png"))), QByteArray("fine icon"));
  EXPECT_EQ(readFile(QDir(user).filePath(QStringLiteral("missing.meta.json"))).contains("Missing"), true);
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
            QStringLiteral("MSysScriptErr-0006|'../escape.py' is not a valid script name: a part of it is empty, "
                           "'.' or '..'."));
}

TEST(ScriptArchiveFormat, KeepsEveryByteAndRejectsDuplicates)
{
  std::vector<ArchivedScript> scripts(2);
  scripts[0].file_name = QStringLiteral("a.py");
  scripts[0].code = QByteArray("\x00\x01\r\n", 4);
  scripts[1].file_name = QStringLiteral("b/c.py");
  scripts[1].metadata.display_name = QStringLiteral("C");
  scripts[1].metadata.icon = QStringLiteral("c.png");
  scripts[1].metadata.replaces = QStringList{QStringLiteral("userscript.old_c")};
  scripts[1].icon = "png";
  std::vector<ArchivedScript> back;
  ErrorLog log;
  ASSERT_TRUE(ScriptArchive::read(ScriptArchive::write(scripts), back, log)) << qPrintable(log.getText());
  ASSERT_EQ(back.size(), 2u);
  EXPECT_EQ(back[0].code, scripts[0].code);
  EXPECT_EQ(back[1].icon, scripts[1].icon);
  EXPECT_EQ(back[1].metadata.display_name, QStringLiteral("C"));
  EXPECT_EQ(back[1].metadata.replaces, scripts[1].metadata.replaces);

  scripts[1].file_name = scripts[0].file_name;
  EXPECT_FALSE(ScriptArchive::read(ScriptArchive::write(scripts), back, log));
  EXPECT_EQ(back.size(), 2u) << "a failed read leaves the earlier result";
}
