#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "test_util.h"

namespace {

struct Result
{
  int status;
  QString out;
  QString err;
};

// Runs the built program with its own configuration folder and no display.
class ZutProgram : public ::testing::Test
{
protected:
  Result zut(const QStringList& arguments)
  {
    QProcess process;
    start(process, arguments);
    EXPECT_TRUE(process.waitForFinished(60000)) << qPrintable(process.errorString());
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
  }
  void start(QProcess& process, const QStringList& arguments, const QString& display = QString())
  {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
    environment.remove(QStringLiteral("ZUT_PUBLIC_SCRIPTS"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    if (!display.isEmpty())
      environment.insert(QStringLiteral("DISPLAY"), display);
    for (const auto& [name, value] : overrides)
      environment.insert(name, value);
    process.setProcessEnvironment(environment);
    // Whatever a script writes beside itself lands in the test's own folder.
    process.setWorkingDirectory(home.path());
    process.start(qEnvironmentVariable("ZUT_BIN"), arguments);
  }
  QString file(const char* name, const QByteArray& text)
  {
    const QString path = home.filePath(QString::fromLatin1(name));
    writeFile(path, text);
    return path;
  }
  QString configFile() const { return home.filePath(QStringLiteral("config/zut/config.json")); }

  QTemporaryDir home;
  std::map<QString, QString> overrides;  // of the environment
};

}  // namespace

TEST_F(ZutProgram, ListsTheModuleCommands)
{
  const Result plain = zut({QStringLiteral("commands")});
  ASSERT_EQ(plain.status, 0) << qPrintable(plain.err);
  EXPECT_EQ(plain.out.count(QStringLiteral("sys.")), 14);
  EXPECT_TRUE(plain.err.isEmpty()) << qPrintable(plain.err);

  const Result json = zut({QStringLiteral("commands"), QStringLiteral("--json")});
  const QJsonArray list = QJsonDocument::fromJson(json.out.toUtf8()).array();
  ASSERT_EQ(list.size(), 14);
  EXPECT_EQ(list.first().toObject().value(QStringLiteral("name")).toString(),
            QStringLiteral("sys.close_user_defined_dialog"));
}

TEST_F(ZutProgram, ExecCallAndRun)
{
  EXPECT_EQ(zut({QStringLiteral("exec"), QStringLiteral("print(6*7)")}).out, QStringLiteral("42\n"));

  const Result call = zut({QStringLiteral("call"), QStringLiteral("sys.execute_python_code"),
                           QStringLiteral("code=print(1)"), QStringLiteral("collect_stdout=True")});
  EXPECT_EQ(call.status, 0) << qPrintable(call.err);
  EXPECT_EQ(call.out, QStringLiteral("1\n"));

  const Result json = zut({QStringLiteral("call"), QStringLiteral("--json"), QStringLiteral("sys.execute_python_code"),
                           QStringLiteral("code=print(PARAMETERS)"), QStringLiteral("parameters={'a': [1, 'x']}"),
                           QStringLiteral("collect_stdout=True")});
  EXPECT_EQ(QJsonDocument::fromJson(json.out.toUtf8()).object().value(QStringLiteral("result")).toString(),
            QStringLiteral("{'a': [1, 'x']}\n"));

  const QString script = file("params.py", "print(PARAMETERS['n'] + 1, PARAMETERS['s'])");
  const Result run = zut({QStringLiteral("run"), script, QStringLiteral("-p"), QStringLiteral("n=41"),
                          QStringLiteral("-p"), QStringLiteral("s=some text")});
  EXPECT_EQ(run.out, QStringLiteral("42 some text\n")) << qPrintable(run.err);
}

// A run that draws nothing loads no widget library; the first dialog brings the windows up in
// the middle of the run, which goes on with its catalogue, its dialog answers and its commands.
TEST_F(ZutProgram, WindowsComeUpWhenTheFirstIsNeededAndTheRunGoesOn)
{
  const QString script = file("windows.py", R"(import sys, zut
def windows():
    return any('libQt6Gui' in line for line in open('/proc/self/maps'))
def failure():
    try:
        zut.script.sys.execute_script(file='/nonexistent/none.py')
    except zut.CommandError as error:
        return str(error).splitlines()[0]
print(windows(), failure())
zut.answer_dialogs([{"values": {"offset": 0.5}, "button": "ok"}])
result = zut.script.sys.execute_user_defined_dialog(content=open(sys.argv[1]).read())
print(windows(), result.result, result.offset, failure())
)");
  overrides[QStringLiteral("LANG")] = QStringLiteral("de_DE.UTF-8");
  const QString dialog =
      qEnvironmentVariable("ZUT_SOURCE_DIR") + QStringLiteral("/examples/dialogs/control_okcancel.xml");
  const Result run = zut({QStringLiteral("run"), script, dialog});
  EXPECT_EQ(run.status, 0) << qPrintable(run.err);
  EXPECT_EQ(run.out, QStringLiteral("False MSysScriptErr-0002: Fehler beim Laden des Skripts\n"
                                    "True True 0.5 MSysScriptErr-0002: Fehler beim Laden des Skripts\n"));
}

TEST_F(ZutProgram, FailuresPrintCodeMessageAndLogAndExitOne)
{
  const QString empty = file("empty.py", "");
  const Result empty_run = zut({QStringLiteral("run"), empty});
  EXPECT_EQ(empty_run.status, 1);
  EXPECT_EQ(empty_run.err,
            QStringLiteral("MSysScriptErr-0002: Error loading script\nUnable to access file: %1\n").arg(empty));

  const QString failing = file("failing.py", "a = 1\nb = a / 0\n");
  const Result failed = zut({QStringLiteral("run"), failing});
  EXPECT_EQ(failed.status, 1);
  EXPECT_TRUE(failed.err.contains(QStringLiteral("File \"%1\", line 2, in <module>").arg(failing)))
      << qPrintable(failed.err);
  EXPECT_TRUE(failed.err.contains(QStringLiteral("ZeroDivisionError"))) << qPrintable(failed.err);

  const Result no_content = zut({QStringLiteral("call"), QStringLiteral("sys.create_user_defined_dialog")});
  EXPECT_EQ(no_content.status, 1);
  EXPECT_TRUE(no_content.err.contains(QStringLiteral("'content' is missing"))) << qPrintable(no_content.err);
}

// Values no command can take and arguments a command does not have are the user's fault: a
// code, a message naming the value or argument, exit 1 (never an abort).
TEST_F(ZutProgram, BadArgumentValuesAndNamesFailWithCodeAndMessage)
{
  const QString script = file("p.py", "print(PARAMETERS)\n");
  struct Case
  {
    QStringList arguments;
    QString message;
  };
  const std::vector<Case> cases = {
      {{QStringLiteral("run"), script, QStringLiteral("-p"), QStringLiteral("g={1,2}")},
       QStringLiteral("g={1,2}: cannot pass an object of type 'set' to a command")},
      {{QStringLiteral("run"), script, QStringLiteral("-p"), QStringLiteral("b=b\"1\"")},
       QStringLiteral("b=b\"1\": cannot pass an object of type 'bytes' to a command")},
      {{QStringLiteral("run"), script, QStringLiteral("-p"), QStringLiteral("big=99999999999999999999999")},
       QStringLiteral("big=99999999999999999999999: integer too large")},
      {{QStringLiteral("call"), QStringLiteral("sys.delay_script"), QStringLiteral("time=b\"1\"")},
       QStringLiteral("time=b\"1\": cannot pass an object of type 'bytes'")},
      {{QStringLiteral("call"), QStringLiteral("sys.execute_python_code"), QStringLiteral("code=print(1)"),
        QStringLiteral("colect_stdout=True")},
       QStringLiteral("sys.execute_python_code has no argument 'colect_stdout'; its arguments are code, parameters, "
                      "collect_stdout, collect_stderr")},
      {{QStringLiteral("call"), QStringLiteral("sys.execute_script"), QStringLiteral("file=") + script,
        QStringLiteral("parameter={'a': 1}")},
       QStringLiteral("sys.execute_script has no argument 'parameter'; its arguments are file, parameters, "
                      "collect_stdout, collect_stderr")}};
  for (const Case& c : cases) {
    const Result result = zut(c.arguments);
    SCOPED_TRACE(qPrintable(c.arguments.join(QLatin1Char(' '))));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.startsWith(QStringLiteral("GAppErr-0002: Invalid command argument\n")))
        << qPrintable(result.err);
    EXPECT_TRUE(result.err.contains(c.message)) << qPrintable(result.err);
    EXPECT_TRUE(result.out.isEmpty()) << "nothing ran: " << qPrintable(result.out);
  }
}

// A command's title, arguments and their types, from the command line and from Python.
TEST_F(ZutProgram, CommandsExplainThemselves)
{
  const Result help = zut({QStringLiteral("call"), QStringLiteral("sys.import_script"), QStringLiteral("--help")});
  EXPECT_EQ(help.status, 0) << qPrintable(help.err);
  for (const char* line : {"Usage: zut call sys.import_script [ARG=VALUE]...\n\nImport Script\n",
                           "  files (list, required)\n      file names of scripts to import\n",
                           "  config_level (configuration level: 0, 1, 2 or system, public, user)\n"})
    EXPECT_TRUE(help.out.contains(QString::fromLatin1(line))) << line << "\n" << qPrintable(help.out);

  const Result python =
      zut({QStringLiteral("exec"), QStringLiteral("import inspect, zut\n"
                                                  "help(zut.script.sys.execute_script)\n"
                                                  "print(inspect.signature(zut.interactive.sys.execute_script))\n"
                                                  "print(dir(zut.script.sys)[:3])\n")});
  EXPECT_EQ(python.status, 0) << qPrintable(python.err);
  for (const char* text :
       {"execute_script(*, file, parameters=None, collect_stdout=None, collect_stderr=None, arguments=None)\n", "Execute Script\n",
        "collect_stdout (boolean)\n", "\n(*, file=None, parameters=None, collect_stdout=None, collect_stderr=None, arguments=None)\n",
        "['close_user_defined_dialog', 'create_user_defined_dialog', 'delay_script']\n"})
    EXPECT_TRUE(python.out.contains(QString::fromLatin1(text))) << text << "\n" << qPrintable(python.out);
}

TEST_F(ZutProgram, WrongUsageExitsTwoAndHelpExitsZero)
{
  for (const QStringList& arguments :
       {QStringList{}, QStringList{QStringLiteral("frobnicate")}, QStringList{QStringLiteral("run")},
        QStringList{QStringLiteral("exec")}, QStringList{QStringLiteral("call"), QStringLiteral("no.such.command")},
        QStringList{QStringLiteral("call"), QStringLiteral("sys.delay_script"), QStringLiteral("time")}})
    EXPECT_EQ(zut(arguments).status, 2) << qPrintable(arguments.join(QLatin1Char(' ')));
  for (const QStringList& arguments :
       {QStringList{QStringLiteral("--help")}, QStringList{QStringLiteral("run"), QStringLiteral("--help")},
        QStringList{QStringLiteral("config"), QStringLiteral("--help")}}) {
    const Result help = zut(arguments);
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.startsWith(QStringLiteral("Usage: zut"))) << qPrintable(help.out);
  }
}

TEST_F(ZutProgram, ConfigurationSurvivesARestartAndRefusesBadValues)
{
  EXPECT_EQ(zut({QStringLiteral("config"), QStringLiteral("MSysScript/TabWidth")}).out, QStringLiteral("4\n"));
  EXPECT_EQ(zut({QStringLiteral("config"), QStringLiteral("MSysScript/TabWidth"), QStringLiteral("8")}).status, 0);
  EXPECT_EQ(zut({QStringLiteral("config"), QStringLiteral("MSysScript/TabWidth")}).out, QStringLiteral("8\n"));

  const Result refused = zut({QStringLiteral("config"), QStringLiteral("MSysScript/TabWidth"), QStringLiteral("33")});
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(refused.err.contains(QStringLiteral("outside the range 1 to 32"))) << qPrintable(refused.err);
  EXPECT_EQ(zut({QStringLiteral("config"), QStringLiteral("MSysScript/TabWidth")}).out, QStringLiteral("8\n"));

  const QJsonObject item =
      QJsonDocument::fromJson(
          zut({QStringLiteral("config"), QStringLiteral("--json"), QStringLiteral("MSysScript/ShowTabs")}).out.toUtf8())
          .object();
  EXPECT_EQ(item.value(QStringLiteral("value")).toBool(true), false);
  EXPECT_EQ(item.value(QStringLiteral("type")).toString(), QStringLiteral("boolean"));
}

TEST_F(ZutProgram, ConcurrentConfigChangesAreAllKept)
{
  const std::vector<std::pair<QString, QString>> changes{
      {QStringLiteral("MSysScript/TabWidth"), QStringLiteral("8")},
      {QStringLiteral("MSysScript/ShowTabs"), QStringLiteral("true")},
      {QStringLiteral("MSysScript/HideWhenRecording"), QStringLiteral("false")},
      {QStringLiteral("MSysScript/EditorDialog/Splitter"), QStringLiteral("0.5")},
      {QStringLiteral("MSysScript/DialogEditor/Width"), QStringLiteral("700")},
      {QStringLiteral("MSysScript/NumberWidget/Precision"), QStringLiteral("5")}};
  std::vector<std::unique_ptr<QProcess>> processes;
  for (const auto& change : changes) {
    processes.push_back(std::make_unique<QProcess>());
    start(*processes.back(), {QStringLiteral("config"), change.first, change.second});
  }
  for (auto& process : processes) {
    ASSERT_TRUE(process->waitForFinished(60000));
    EXPECT_EQ(process->exitCode(), 0) << process->readAllStandardError().constData();
  }
  for (const auto& change : changes)
    EXPECT_EQ(zut({QStringLiteral("config"), change.first}).out, change.second + QLatin1Char('\n'))
        << qPrintable(change.first);
}

namespace {

// Whether process `pid` has a handler of its own for `signal` (it is ready to end in order).
bool catches(qint64 pid, int signal)
{
  for (const QByteArray& line : readFile(QStringLiteral("/proc/%1/status").arg(pid)).split('\n'))
    if (line.startsWith("SigCgt:"))
      return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> (signal - 1)) & 1;
  return false;
}

}  // namespace

TEST_F(ZutProgram, EditorEndsInOrderOnSigtermAndSighup)
{
  if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty())
    GTEST_SKIP() << "the editor needs a display; Xvfb is not installed";
  QProcess xvfb;
  xvfb.start(QStringLiteral("Xvfb"),
             {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
  ASSERT_TRUE(xvfb.waitForReadyRead(20000)) << "Xvfb did not start";
  const QString display = QLatin1Char(':') + QString::fromLatin1(xvfb.readLine()).trimmed();

  const QString script = file("edited.py", "print('kept as it is')\r\n");
  for (const int signal : {SIGTERM, SIGHUP}) {
    QFile::remove(configFile());
    QProcess editor;
    start(editor, {QStringLiteral("editor"), script}, display);
    ASSERT_TRUE(editor.waitForStarted());
    for (int wait = 0; wait < 600 && !catches(editor.processId(), signal); ++wait)
      QThread::msleep(100);
    ASSERT_TRUE(catches(editor.processId(), signal)) << editor.readAllStandardError().constData();
    ::kill(pid_t(editor.processId()), signal);
    ASSERT_TRUE(editor.waitForFinished(30000));
    EXPECT_EQ(editor.exitStatus(), QProcess::NormalExit) << signal;
    EXPECT_EQ(editor.exitCode(), 128 + signal) << editor.readAllStandardError().constData();
    // The exit sequence ran: the editor closed and its size was stored.
    EXPECT_TRUE(readFile(configFile()).contains("MSysScript/EditorDialog/Size")) << signal;
    EXPECT_EQ(readFile(script), QByteArray("print('kept as it is')\r\n"));
  }
  xvfb.terminate();
  xvfb.waitForFinished();
}

TEST_F(ZutProgram, DamagedConfigurationIsKeptAsideAndReported)
{
  QDir().mkpath(QFileInfo(configFile()).absolutePath());
  writeFile(configFile(), "{\"MSysScript/TabWidth\": 8,");
  const Result result = zut({QStringLiteral("config"), QStringLiteral("MSysScript/TabWidth")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, QStringLiteral("4\n"));
  EXPECT_TRUE(result.err.contains(QStringLiteral("is damaged"))) << qPrintable(result.err);
  EXPECT_EQ(readFile(configFile() + QStringLiteral(".damaged")), QByteArray("{\"MSysScript/TabWidth\": 8,"));
  // Reported once: the next start finds nothing wrong.
  EXPECT_TRUE(zut({QStringLiteral("config"), QStringLiteral("MSysScript/TabWidth")}).err.isEmpty());
}

TEST_F(ZutProgram, ExampleScriptsRun)
{
  const QString examples = qEnvironmentVariable("ZUT_SOURCE_DIR") + QStringLiteral("/examples/");
  const Result hello = zut(
      {QStringLiteral("run"), examples + QStringLiteral("hello.py"), QStringLiteral("-p"), QStringLiteral("name=Ada")});
  EXPECT_EQ(hello.status, 0) << qPrintable(hello.err);
  EXPECT_TRUE(hello.out.contains(QStringLiteral("'Hello, Ada!\\n'"))) << qPrintable(hello.out);
  EXPECT_TRUE(hello.out.contains(QStringLiteral("MSysScriptErr-0002"))) << qPrintable(hello.out);

  const Result nested = zut({QStringLiteral("run"), examples + QStringLiteral("nested.py")});
  EXPECT_EQ(nested.status, 0) << qPrintable(nested.err);
  EXPECT_TRUE(nested.out.endsWith(QStringLiteral("level 0\n"))) << qPrintable(nested.out);

  // The dialog examples run without a person on their answer files, and each picture is drawn.
  const std::vector<std::pair<const char*, const char*>> dialogs = {
      {"query", "probing 12 points with a 1.50 mm tip, twice\n"},
      {"driven", "True B-42 True\n"},
      {"progress", "measured 100 points; the dialog followed yes\n"},
      {"wizard", "True Kim #ff0000ff\n"},
      {"report", "Minimum zone star bore_report.txt 12.0030\n"}};
  for (const auto& [name, printed] : dialogs) {
    const QString stem = examples + QStringLiteral("dialogs/") + QString::fromLatin1(name);
    QStringList arguments{QStringLiteral("run"), stem + QStringLiteral(".py")};
    if (QFile::exists(stem + QStringLiteral(".answers.json")))
      arguments << QStringLiteral("--answers") << stem + QStringLiteral(".answers.json");
    const Result run = zut(arguments);
    EXPECT_EQ(run.status, 0) << name << "\n" << qPrintable(run.err);
    EXPECT_EQ(run.out, QString::fromLatin1(printed)) << name;
    EXPECT_EQ(run.err, QString()) << name;
  }
  QFile report(home.filePath(QStringLiteral("bore_report.txt")));
  ASSERT_TRUE(report.open(QIODevice::ReadOnly));
  EXPECT_EQ(report.readAll(), QByteArray("method: Minimum zone\nprobe: star\nmean: 12.0030 mm\n"));
}

TEST_F(ZutProgram, ScriptsDroppedIntoTheUserLevelBecomeCommands)
{
  const QString scripts = home.filePath(QStringLiteral("data/zut/scripts"));
  QDir().mkpath(scripts + QStringLiteral("/my tools"));
  writeFile(scripts + QStringLiteral("/hello.py"), "import zut\nprint('hello', PARAMETERS.get('n', 0))\n");
  writeFile(scripts + QStringLiteral("/my tools/grüße.py"),
            "import zut\nprint(zut.script.userscript.hello(parameters={'n': 7}, collect_stdout=True), end='')\n");

  const Result call = zut({QStringLiteral("call"), QStringLiteral("userscript.my_tools.grüße")});
  EXPECT_EQ(call.status, 0) << qPrintable(call.err);
  EXPECT_EQ(call.out, QStringLiteral("hello 7\n"));

  // Database scripts are compiled from their bytes as files run by sys.execute_script are.
  writeFile(scripts + QStringLiteral("/latin.py"), "# -*- coding: latin-1 -*-\nprint('gr\xfc\xdf" "e')\n");
  writeFile(scripts + QStringLiteral("/broken.py"), "print('gr\xfc\xdf" "e')\n");
  const Result latin = zut({QStringLiteral("call"), QStringLiteral("userscript.latin")});
  EXPECT_EQ(latin.status, 0) << qPrintable(latin.err);
  EXPECT_EQ(latin.out, QStringLiteral("grüße\n"));
  const Result broken = zut({QStringLiteral("call"), QStringLiteral("userscript.broken")});
  EXPECT_EQ(broken.status, 1);
  EXPECT_TRUE(broken.err.contains(QStringLiteral("broken.py\", line 1"))) << qPrintable(broken.err);
  // A module of the database imports with its declared encoding too.
  writeFile(scripts + QStringLiteral("/importer.py"), "import latin\n");
  const Result imported = zut({QStringLiteral("call"), QStringLiteral("userscript.importer")});
  EXPECT_EQ(imported.out, QStringLiteral("grüße\n")) << qPrintable(imported.err);
  QFile::remove(scripts + QStringLiteral("/importer.py"));
  QFile::remove(scripts + QStringLiteral("/latin.py"));
  QFile::remove(scripts + QStringLiteral("/broken.py"));

  const QJsonArray list =
      QJsonDocument::fromJson(zut({QStringLiteral("scripts"), QStringLiteral("--json")}).out.toUtf8()).array();
  ASSERT_EQ(list.size(), 2);
  EXPECT_EQ(list[1].toObject().value(QStringLiteral("qualified_name")).toString(), QStringLiteral("my tools/grüße"));
  EXPECT_EQ(list[1].toObject().value(QStringLiteral("command")).toString(),
            QStringLiteral("userscript.my_tools.grüße"));
  EXPECT_EQ(list[1].toObject().value(QStringLiteral("level")).toString(), QStringLiteral("user"));
}

TEST_F(ZutProgram, ScriptsWhoseCommandNamesCollideAreListedUnderNamesOfTheirOwn)
{
  const QString scripts = home.filePath(QStringLiteral("data/zut/scripts"));
  for (const char* folder : {"my tools", "my-tools", "my_tools"}) {
    QDir().mkpath(scripts + QLatin1Char('/') + QString::fromLatin1(folder));
    writeFile(scripts + QLatin1Char('/') + QString::fromLatin1(folder) + QStringLiteral("/x.py"),
              QByteArray("print('") + folder + "')\n");
  }
  const Result list = zut({QStringLiteral("scripts")});
  for (const char* line : {"my tools/x  userscript.my_tools.x_2\n", "my-tools/x  userscript.my_tools.x_3\n",
                           "my_tools/x  userscript.my_tools.x\n"})
    EXPECT_TRUE(list.out.contains(QString::fromLatin1(line))) << line << qPrintable(list.out);
  EXPECT_EQ(zut({QStringLiteral("call"), QStringLiteral("userscript.my_tools.x_3")}).out, QStringLiteral("my-tools\n"));
}

TEST_F(ZutProgram, UpdateScriptsRewritesCallsOfReplacedNamesAndLeavesUnreadableScriptsAlone)
{
  const QString scripts = home.filePath(QStringLiteral("data/zut/scripts"));
  QDir().mkpath(scripts + QStringLiteral("/tools"));
  writeFile(scripts + QStringLiteral("/tools/renamed.py"), "print('renamed', PARAMETERS['n'])\n");
  writeFile(scripts + QStringLiteral("/tools/renamed.meta.json"), R"({"replaces": ["userscript.old_name"]})");
  const QByteArray caller =
      "import zut\n"
      "# zut.script.userscript.old_name() stays in a comment\n"
      "zut.script.userscript.old_name(parameters={'n': 1})\n";
  const QByteArray damaged = "zut.script.userscript.old_name()\nx = '\xff'\n";
  writeFile(scripts + QStringLiteral("/caller.py"), caller);
  writeFile(scripts + QStringLiteral("/damaged.py"), damaged);
  const QString caller_path = QDir(scripts).filePath(QStringLiteral("caller.py"));
  const QString damaged_path = QDir(scripts).filePath(QStringLiteral("damaged.py"));
  const QString change = QStringLiteral("%1:3: userscript.old_name -> userscript.tools.renamed\n").arg(caller_path);
  const QString refusal =
      QStringLiteral("%1: MSysScriptErr-0002: Error loading script\n%1: line 2 is not valid UTF-8, and the file "
                     "declares no other encoding (a first line such as '# -*- coding: latin-1 -*-' names the "
                     "encoding it is written in).\n")
          .arg(damaged_path);

  const Result dry = zut({QStringLiteral("update-scripts"), QStringLiteral("--dry-run")});
  EXPECT_EQ(dry.status, 1);
  EXPECT_EQ(dry.out, change);
  EXPECT_EQ(dry.err, refusal);
  EXPECT_EQ(readFile(caller_path), caller);
  EXPECT_EQ(readFile(damaged_path), damaged);
  EXPECT_FALSE(QFile::exists(caller_path + QStringLiteral(".bak")));

  const Result update = zut({QStringLiteral("update-scripts")});
  EXPECT_EQ(update.status, 1);
  EXPECT_EQ(update.out, change);
  EXPECT_EQ(readFile(caller_path), QByteArray("import zut\n"
                                              "# zut.script.userscript.old_name() stays in a comment\n"
                                              "zut.script.userscript.tools.renamed(parameters={'n': 1})\n"));
  EXPECT_EQ(readFile(caller_path + QStringLiteral(".bak")), caller);
  EXPECT_EQ(readFile(damaged_path), damaged);
  const Result run = zut({QStringLiteral("call"), QStringLiteral("userscript.caller")});
  EXPECT_EQ(run.out, QStringLiteral("renamed 1\n")) << qPrintable(run.err);

  // Named files only; without the backup setting no backup is kept, and nothing to do is no fault.
  const QString loose = file("loose.py", "zut.interactive.userscript.old_name()\n");
  const QString backup_key = QStringLiteral("MSysScript/UpdateScriptDialog/Backup");
  ASSERT_EQ(zut({QStringLiteral("config"), backup_key, QStringLiteral("false")}).status, 0);
  const Result named = zut({QStringLiteral("update-scripts"), loose, caller_path});
  EXPECT_EQ(named.status, 0) << qPrintable(named.err);
  EXPECT_EQ(named.out, QStringLiteral("%1:1: userscript.old_name -> userscript.tools.renamed\n").arg(loose));
  EXPECT_EQ(readFile(loose), QByteArray("zut.interactive.userscript.tools.renamed()\n"));
  EXPECT_FALSE(QFile::exists(loose + QStringLiteral(".bak")));
  EXPECT_EQ(zut({QStringLiteral("update-scripts"), home.filePath(QStringLiteral("missing.py"))}).status, 1);
}

TEST_F(ZutProgram, EditorToolsPrintBlocksColoursAndPictures)
{
  const QString reference =
      qEnvironmentVariable("ZUT_SOURCE_DIR") + QStringLiteral("/tests/menu/msys_script/editor_reference/");
  const QString input = reference + QStringLiteral("measure_report.py");
  EXPECT_EQ(zut({QStringLiteral("blocks"), input}).out,
            QString::fromUtf8(readFile(reference + QStringLiteral("measure_report.blocks"))));
  EXPECT_EQ(zut({QStringLiteral("highlight"), input}).out,
            QString::fromUtf8(readFile(reference + QStringLiteral("measure_report.colors"))));
  const QJsonArray blocks =
      QJsonDocument::fromJson(zut({QStringLiteral("blocks"), QStringLiteral("--json"), input}).out.toUtf8()).array();
  ASSERT_FALSE(blocks.isEmpty());
  EXPECT_EQ(blocks.first().toObject().value(QStringLiteral("first")).toInt(), 7);

  const QString picture = home.filePath(QStringLiteral("editor.png"));
  const Result shot = zut({QStringLiteral("editor"), input, QStringLiteral("--screenshot"), picture});
  EXPECT_EQ(shot.status, 0) << qPrintable(shot.err);
  EXPECT_TRUE(readFile(picture).startsWith("\x89PNG"));
  EXPECT_EQ(zut({QStringLiteral("editor"), input}).status, 2) << "no display to edit on";
  EXPECT_EQ(zut({QStringLiteral("blocks"), home.filePath(QStringLiteral("missing.py"))}).status, 1);
}

TEST_F(ZutProgram, LintReportsEachFaultWithFileAndLineAndNormalizesOlderWords)
{
  const QString good =
      file("good.xml",
           "<dialog><title>T</title><control id=\"Close\"/><embedding>embedded</embedding>\n"
           "<content rows=\"1\" columns=\"2\"><widget type=\"empty\" row=\"0\" column=\"1\"/></content>"
           "</dialog>\n");
  // One fault of each kind: each is reported at its own line, the later ones despite the earlier.
  const QString broken = file(
      "broken.xml",
      "<dialog>\n<title>T</title>\n<control id=\"Close\"/>\n<position>middle</position>\n"
      "<content rows=\"3\" columns=\"4\">\n"
      "<widget type=\"input::gauge\" row=\"0\" column=\"0\"/>\n"
      "<widget type=\"button::pushbutton\" row=\"0\" column=\"1\"><name>b</name>\n<type>Toggle</type></widget>\n"
      "<widget type=\"input::checkbox\" row=\"0\" column=\"2\"><name>c</name></widget>\n"
      "<widget type=\"input::string\" row=\"0\" column=\"3\"><name>c</name></widget>\n"
      "<widget type=\"input::radiobutton\" row=\"1\" column=\"0\"><name>r</name><items/></widget>\n"
      "<widget type=\"input::file\" row=\"1\" column=\"1\"><name>f</name><file_types><file_type>"
      "<name>*.txt,*.csv</name><description>Tables</description></file_type></file_types></widget>\n"
      "<widget type=\"display::log\" row=\"1\" column=\"2\"><name>l</name><show_save>true</show_save>"
      "<save_dialog_title></save_dialog_title></widget>\n"
      "<widget type=\"image\" row=\"1\" column=\"3\"><name>i</name>\n<system_image>tip</system_image></widget>\n"
      "<widget type=\"label\" row=\"2\" column=\"0\"><name>t</name></widget>\n"
      "</content>\n</dialog>\n");
  const QString truncated = file("truncated.xml", "<dialog>\n<title>T</title>\n");
  // Nesting far beyond any dialog is refused at once, not after the parser has worked through it.
  QByteArray deep = "<dialog>\n";
  for (int level = 0; level < 100000; ++level)
    deep += "<a>";
  const QString nested = file("nested.xml", deep);

  const Result clean = zut({QStringLiteral("lint"), good});
  EXPECT_EQ(clean.status, 0) << qPrintable(clean.err);
  EXPECT_EQ(clean.out, QString());

  const Result faults = zut({QStringLiteral("lint"), good, broken, truncated, nested});
  EXPECT_EQ(faults.status, 1);
  const QStringList lines = faults.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  const QStringList expected = {
      broken + QStringLiteral(":4: The type \"middle\" is invalid for tag \"position\"."),
      broken + QStringLiteral(":6: The GUI element type \"input::gauge\" is expected."),
      broken + QStringLiteral(":8: The button type \"Toggle\" is invalid."),
      broken + QStringLiteral(":9: Element \"c\" does not has a labeling."),
      broken + QStringLiteral(":10: The name \"c\" of the GUI element exists twice."),
      broken + QStringLiteral(":11: For object \"r\" no button was added yet."),
      broken + QStringLiteral(":12: The file extension *.txt,*.csv is invalid. Make sure that an asterisk was "
                              "entered directly before the file extension. Enter one file extension only or "
                              "separate several file extensions by a space."),
      broken + QStringLiteral(":13: The dialog title of the save dialog must not be empty."),
      broken + QStringLiteral(":15: The system image name \"tip\" is invalid."),
      broken + QStringLiteral(":16: For object \"t\" no text was entered yet."),
  };
  ASSERT_EQ(lines.size(), expected.size() + 2) << qPrintable(faults.err);
  EXPECT_EQ(lines.mid(0, expected.size()), expected);
  EXPECT_TRUE(lines[expected.size()].startsWith(truncated + QStringLiteral(":3: Parse error: ")))
      << qPrintable(lines[expected.size()]);
  EXPECT_EQ(lines[expected.size() + 1], nested + QStringLiteral(":2: Parse error: elements are nested deeper than 256 levels"));

  const Result json = zut({QStringLiteral("lint"), QStringLiteral("--json"), broken});
  EXPECT_EQ(json.status, 1);
  const QJsonArray list = QJsonDocument::fromJson(json.out.toUtf8()).array();
  ASSERT_EQ(list.size(), expected.size()) << qPrintable(json.out);
  EXPECT_EQ(list[1].toObject().value(QStringLiteral("line")).toInt(), 6);

  const Result normalized = zut({QStringLiteral("lint"), QStringLiteral("--normalize"), good});
  ASSERT_EQ(normalized.status, 0) << qPrintable(normalized.err);
  EXPECT_TRUE(normalized.out.contains(QStringLiteral("<embedding>embedded_in_kiosk</embedding>")));
  EXPECT_TRUE(normalized.out.contains(QStringLiteral("<position>left</position>")));
  // Both cells are written, the one the text left out included.
  EXPECT_EQ(normalized.out.count(QStringLiteral("type=\"empty\"")), 2);

  EXPECT_EQ(zut({QStringLiteral("lint")}).status, 2);
  EXPECT_EQ(zut({QStringLiteral("lint"), QStringLiteral("--normalize"), good, broken}).status, 2);
}

TEST_F(ZutProgram, ExampleDialogsPassLintAndBareElementsNormalizeToTheirDefaults)
{
  const QDir examples(qEnvironmentVariable("ZUT_SOURCE_DIR") + QStringLiteral("/examples/dialogs"));
  QStringList arguments{QStringLiteral("lint")};
  for (const QString& name : examples.entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name))
    arguments << examples.filePath(name);
  ASSERT_GE(arguments.size(), 6);
  const Result lint = zut(arguments);
  EXPECT_EQ(lint.status, 0) << qPrintable(lint.err);

  QString cells;
  const QStringList types{"input::number",      "input::integer", "input::string", "input::slider",
                          "input::checkbox",    "input::file",    "input::date",   "input::color",
                          "button::pushbutton", "button::abort",  "label",         "separator",
                          "spacer::horizontal", "spacer::vertical", "display::progressbar", "display::text",
                          "display::log",       "image",          "input::list",   "input::radiobutton"};
  // A checkbox without a label and a push button without a text fail the check, so these two
  // have the one tag they need and nothing else.
  const std::map<QString, QString> needed = {{QStringLiteral("input::checkbox"), QStringLiteral("<title>Twice</title>")},
                                             {QStringLiteral("button::pushbutton"), QStringLiteral("<text>Go</text>")},
                                             {QStringLiteral("label"), QStringLiteral("<text>Bore</text>")},
                                             {QStringLiteral("input::radiobutton"),
                                              QStringLiteral("<items><item state=\"a\" description=\"A\"/></items>")}};
  for (int column = 0; column < types.size(); ++column)
    cells += QStringLiteral("<widget type=\"%1\" row=\"0\" column=\"%2\"><name>e%2</name>%3</widget>\n")
                 .arg(types[column])
                 .arg(column)
                 .arg(needed.count(types[column]) ? needed.at(types[column]) : QString());
  const QString bare = file("bare.xml", QStringLiteral("<dialog><title>T</title><control id=\"Close\"/>\n"
                                                       "<content rows=\"1\" columns=\"%1\">\n%2</content></dialog>\n")
                                            .arg(types.size())
                                            .arg(cells)
                                            .toUtf8());
  const Result normalized = zut({QStringLiteral("lint"), QStringLiteral("--normalize"), bare});
  ASSERT_EQ(normalized.status, 0) << qPrintable(normalized.err);
  for (const char* expected : {"<minimum>-1.7976931348623157e+308</minimum>", "<maximum>1.7976931348623157e+308</maximum>",
                               "<precision>2</precision>", "<minimum>-2147483648</minimum>", "<maximum>2147483647</maximum>",
                               "<read_only>false</read_only>", "<orientation>horizontal</orientation>",
                               "<minimum>0</minimum>", "<step>1</step>", "<tick_interval>0.1</tick_interval>",
                               "<use_current_date>true</use_current_date>",
                               "<show_today_button>true</show_today_button>", "<alpha>255</alpha>",
                               "<transparency_allowed>false</transparency_allowed>", "<type>push</type>",
                               "<icon_type>none</icon_type>", "<icon_type>system</icon_type>",
                               "<icon_system_type>ok</icon_system_type>", "<icon_system_type>cancel</icon_system_type>",
                               "<icon_size>icon</icon_size>", "<icon_system_size>default</icon_system_size>",
                               "<title></title>", "<minimum_size>0</minimum_size>", "<text>percentage</text>",
                               "<mode>manual</mode>", "<parts>1</parts>", "<type>any</type>",
                               "<title>Select File</title>", "<limited>false</limited>", "<file_types/>",
                               "<text><![CDATA[]]></text>", "<wordwrap>true</wordwrap>",
                               "<scroll_automatically>true</scroll_automatically>",
                               "<system_image>system_message_information</system_image>",
                               "<keep_original_size>true</keep_original_size>"})
    EXPECT_TRUE(normalized.out.contains(QString::fromLatin1(expected))) << expected << "\n" << qPrintable(normalized.out);
  EXPECT_FALSE(normalized.out.contains(QStringLiteral("<unit>")));
}

TEST_F(ZutProgram, DialogsRunOnAnswersOrFailAtOnceAndArePicturedAndListed)
{
  const QString example = qEnvironmentVariable("ZUT_SOURCE_DIR") + QStringLiteral("/examples/dialogs/inputs_and_buttons.xml");
  const QString answers = file("answers.json", R"([{"title": "Bore inspection", "values": {"diameter": 30, "part": "B-2"},
                                                   "button": "cancel"}, {"title": "Later"}])");
  const QString bad = file("bad.json", R"([{"values": {"points": 2}}])");
  const QString picture = home.filePath(QStringLiteral("dialog.png"));
  struct Case
  {
    QStringList arguments;
    int status;
    const char* out;
    const char* err;
  };
  const QString d = QStringLiteral("dialog");
  const QString a = QStringLiteral("--answers");
  for (const Case& c : {
           // Nobody to answer: at once, never waiting.
           Case{{d, example}, 1, "", "waits for a person, but there is no display and no answer for it."},
           Case{{d, example, a, answers}, 0, "result = False\ndiameter = 30.0\n",
                "warning: Answer 2 (Later) was not used: no dialog asked for it."},
           Case{{d, example, a, answers, QStringLiteral("--json")}, 0, "\"marker\": \"#008080ff\"", ""},
           Case{{d, example, a, bad}, 1, "", "the value 2 of element \"points\" is outside 3 to 360."},
           Case{{d, example, a, home.filePath(QStringLiteral("missing.json"))}, 1, "", "Cannot read the dialog answers"},
           Case{{d, example, QStringLiteral("--dump")}, 0, "2,0 1x2 input::string part = 'Housing A-17'\n", ""},
           Case{{d, example, QStringLiteral("--dump"), QStringLiteral("--json")}, 0, "\"type\": \"button::abort\"", ""},
           Case{{d, example, QStringLiteral("--screenshot"), picture}, 0, "", ""},
           Case{{d, file("broken.xml", "<dialog>\n<title>T</title>\n</dialog>\n"), QStringLiteral("--dump")}, 1, "",
                "1: The element with tag \"control\" is missing."},
           Case{{d}, 2, "", "one FILE.xml or --template NAME is expected"},
           Case{{d, QStringLiteral("--templates")}, 0, "progress_with_abort  module\nvalue_query  module\n", ""},
           Case{{d, QStringLiteral("--template"), QStringLiteral("value_query"), QStringLiteral("--dump")}, 0,
                "0,0 1x1 input::number value = 0\n", ""},
           Case{{d, QStringLiteral("--template"), QStringLiteral("none")}, 1, "",
                "MSysScriptErr-0018: Cannot access the dialog template database."},
       }) {
    const Result result = zut(c.arguments);
    EXPECT_EQ(result.status, c.status) << qPrintable(c.arguments.join(' ')) << "\n" << qPrintable(result.err);
    EXPECT_TRUE(result.out.contains(QString::fromUtf8(c.out))) << qPrintable(result.out);
    EXPECT_TRUE(result.err.contains(QString::fromUtf8(c.err))) << qPrintable(result.err);
  }
  EXPECT_FALSE(QImage(picture).isNull());
  // Templates a station does not want are not listed.
  ASSERT_EQ(zut({QStringLiteral("config"), QStringLiteral("MSysScript/ScriptDialogTemplateDatabase/InvisibleTemplates"),
                 QStringLiteral("value_query")})
                .status,
            0);
  EXPECT_EQ(zut({d, QStringLiteral("--templates")}).out,
            QStringLiteral("progress_with_abort  module\nyes_no_question  module\n"));

  // A script's dialogs take the answers in turn and the script goes on with them.
  const QString script = file("two.py", QStringLiteral("import zut, pathlib\n"
                                                       "xml = pathlib.Path(%1).read_text()\n"
                                                       "for _ in range(2):\n"
                                                       "    r = zut.script.sys.execute_user_defined_dialog(content=xml)\n"
                                                       "    print(r.result, r.diameter)\n")
                                            .arg(QStringLiteral("'%1'").arg(example))
                                            .toUtf8());
  const Result two = zut({QStringLiteral("run"), script, a,
                          file("two.json", R"([{"values": {"diameter": 42}}, {"button": "cancel"}])")});
  EXPECT_EQ(two.status, 0) << qPrintable(two.err);
  EXPECT_EQ(two.out, QStringLiteral("True 42.0\nFalse 12.0\n"));
  // Driven through handles: values set by the script, the handler told of each answered change
  // and of the timer, a close from the handler with a result; a failing handler's exception
  // reaches the waiting script with the handler's line.
  const QString driven = file("driven.py", QStringLiteral(R"(import zut, pathlib
xml = pathlib.Path(%1).read_text()
dlg = zut.script.sys.create_user_defined_dialog(content=xml)
dlg.part.value = "set by script"
print(dlg.part)
print(isinstance(dlg, zut.dialog.DialogHandle), type(dlg.part).__name__, dlg.part == dlg.part, dlg.part == dlg.points)
seen = []
def handler(widget):
    seen.append(widget if isinstance(widget, str) else widget.name)
    if widget == dlg.diameter:
        dlg.control.ok.enabled = widget.value < 100
        dlg.control.status = "checked"
        zut.script.sys.close_user_defined_dialog(dialog=dlg, result=widget.value)
dlg.handler = handler
r = zut.script.sys.show_user_defined_dialog(dialog=dlg)
print(r.result, r.part, seen)
try:
    dlg.title
except zut.CommandError as error:
    print("gone:", error.log)
bad = zut.script.sys.create_user_defined_dialog(content=xml)
def failing(widget):
    raise ValueError("handler failed")
bad.handler = failing
try:
    zut.script.sys.show_user_defined_dialog(dialog=bad)
except ValueError as error:
    import traceback
    last = traceback.extract_tb(error.__traceback__)[-1]
    print("raised:", error, last.name, last.lineno)
try:
    bad2 = zut.script.sys.create_user_defined_dialog(content=xml)
    bad2.points.value = 2.5
except zut.ScriptTypeError as error:
    print("refused:", error)
)")
                                                   .arg(QStringLiteral("'%1'").arg(example))
                                                   .toUtf8());
  const Result handled = zut({QStringLiteral("run"), driven, a,
                              file("driven.json", R"([{"values": {"diameter": 42}}, {}])")});
  EXPECT_EQ(handled.status, 0) << qPrintable(handled.err);
  EXPECT_EQ(handled.out,
            QStringLiteral("zut.dialog.StringWidget (name='part', value='set by script', read_only=False)\n"
                           "True StringWidget True False\n"
                           "42.0 set by script ['initialize', 'diameter']\n"
                           "gone: A dialog with this ID does not exist.\n"
                           "raised: handler failed failing 23\n"
                           "refused: The value has not the expected type.\n"));
  // A modeless dialog left open when the script ends is closed where nobody can close it.
  const Result left_open = zut({QStringLiteral("run"),
                                file("modeless.py", QStringLiteral("import zut, pathlib\n"
                                                                   "xml = pathlib.Path(%1).read_text()\n"
                                                                   "dlg = zut.script.sys.create_user_defined_dialog(content=xml)\n"
                                                                   "zut.script.sys.open_user_defined_dialog(dialog=dlg)\n")
                                                        .arg(QStringLiteral("'%1'").arg(example))
                                                        .toUtf8())});
  EXPECT_EQ(left_open.status, 0) << qPrintable(left_open.err);
  EXPECT_TRUE(left_open.err.contains(QStringLiteral("closing the dialog \"Bore inspection\"")))
      << qPrintable(left_open.err);
  // A listing is the same on every run.
  EXPECT_EQ(zut({d, example, QStringLiteral("--dump")}).out, zut({d, example, QStringLiteral("--dump")}).out);
}

namespace {

// A script run as python3 would run it: the files are written to a folder of their own, the
// first is run with the arguments, and what it prints is compared.
struct PythonLikeRun
{
  const char* name;
  std::vector<std::pair<const char*, QByteArray>> files;
  QStringList arguments;
  int status;
  QString out;
  // Each must be in standard error; "%1" stands for the case's folder.
  QStringList err;
};

const PythonLikeRun PYTHON_LIKE_RUNS[] = {
    {"MainModule",
     {{"main.py",
       "import pickle, sys, typing, unittest\n"
       "class Point:\n    near: 'Later'\nclass Later: pass\n"
       "assert sys.modules['__main__'].__dict__ is globals() and __file__ == sys.argv[0]\n"
       "print(type(pickle.loads(pickle.dumps(Point()))).__name__, "
       "typing.get_type_hints(Point)['near'].__name__)\n"
       "class Test(unittest.TestCase):\n"
       "    def test_one(self): pass\n    def test_two(self): pass\n"
       "unittest.main()\n"}},
     {},
     0,
     "Point Later\n",
     {"Ran 2 tests"}},
    {"ArgumentsPathAndExecutable",
     {{"main.py",
       "import os, subprocess, sys\nimport sibling\n"
       "print(sys.argv[1:], PARAMETERS, sibling.NAME, "
       "sys.path[0] == os.path.dirname(os.path.realpath(__file__)))\n"
       // The python3 that sys.executable names is the embedded version, whatever PATH says.
       "version = subprocess.run([sys.executable, '-c', 'import sys; print(sys.version)'],\n"
       "                         capture_output=True, text=True).stdout\n"
       "print(version == sys.version + '\\n')\n"},
      {"sibling.py", "NAME = 'sibling'\n"}},
     {"a", "-p", "n=1", "b", "--", "-p", "--help"},
     0,
     "['a', 'b', '-p', '--help'] {'n': 1} sibling True\nTrue\n",
     {}},
    {"NestedRunIsMainWhileItRuns",
     {{"outer.py",
       "import os, sys, zut\nhere = sys.path[0]\n"
       "try:\n"
       "    zut.script.sys.execute_script(file=os.path.join(here, 'inner', 'inner.py'), arguments=['x'])\n"
       "except zut.CommandError:\n    pass\n"
       "print(sys.modules['__main__'].__file__ == __file__, sys.argv[1:], sys.path.count(here), "
       "sys.path[0] == here)\n"},
      {"inner/inner.py",
       "import sys\nprint(__name__, sys.modules['__main__'].__file__.endswith('inner.py'), "
       "sys.argv[1:], sys.path[0].endswith('inner'))\n"
       // Put back after a failure too.
       "raise SystemExit(3)\n"}},
     {},
     0,
     "__main__ True ['x'] True\nTrue [] 1 True\n",
     {}},
    {"NamespaceOutlivesTheRun",
     {{"main.py",
       "import atexit, threading, time\nWORD = 'kept'\n"
       "atexit.register(lambda: print('atexit', WORD))\n"
       "def later():\n    time.sleep(0.1)\n    print('thread', WORD)\n"
       "threading.Thread(target=later).start()\n"}},
     {},
     0,
     "thread kept\natexit kept\n",
     {}},
    {"MultiprocessingForkAndSpawn",
     {{"main.py",
       "import multiprocessing\ndef square(x): return x * x\n"
       "if __name__ == '__main__':\n"
       "    for method in ('fork', 'spawn'):\n"
       "        with multiprocessing.get_context(method).Pool(2) as pool:\n"
       "            print(method, pool.map(square, range(4)))\n"}},
     {},
     0,
     "fork [0, 1, 4, 9]\nspawn [0, 1, 4, 9]\n",
     {}},
    {"DeclaredEncoding",
     {{"latin.py", "# -*- coding: latin-1 -*-\nprint(ascii('caf\xe9'))\n"}},
     {},
     0,
     "'caf\\xe9'\n",
     {}},
    {"UndeclaredEncodingIsALoadError",
     {{"bad.py", "x = 1\n# caf\xe9\n"}},
     {},
     1,
     "",
     {"MSysScriptErr-0002: Error loading script", "File \"%1/bad.py\", line 2",
      "Non-UTF-8 code starting with '\\xe9' in file %1/bad.py on line 2, but no encoding declared"}},
};

void PrintTo(const PythonLikeRun& run, std::ostream* stream)
{
  *stream << run.name;
}

class ZutRunsLikePython : public ZutProgram, public ::testing::WithParamInterface<PythonLikeRun>
{};

}  // namespace

TEST_P(ZutRunsLikePython, Prints)
{
  const PythonLikeRun& run = GetParam();
  const QString folder = home.filePath(QString::fromLatin1(run.name));
  for (const auto& [name, text] : run.files) {
    const QString path = folder + QLatin1Char('/') + QString::fromLatin1(name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    ASSERT_TRUE(writeFile(path, text));
  }
  const Result result =
      zut(QStringList{QStringLiteral("run"), folder + QLatin1Char('/') + QString::fromLatin1(run.files.front().first)} +
          run.arguments);
  EXPECT_EQ(result.status, run.status) << qPrintable(result.err);
  EXPECT_EQ(result.out, run.out) << qPrintable(result.err);
  for (QString expected : run.err) {
    expected.replace(QStringLiteral("%1"), folder);
    EXPECT_TRUE(result.err.contains(expected)) << qPrintable(expected) << "\n" << qPrintable(result.err);
  }
}

INSTANTIATE_TEST_SUITE_P(Scripts, ZutRunsLikePython, ::testing::ValuesIn(PYTHON_LIKE_RUNS),
                         [](const ::testing::TestParamInfo<PythonLikeRun>& info) { return info.param.name; });

// SIGPIPE is ignored as python3 ignores it: the script sees a BrokenPipeError when the reader
// is gone, instead of the program dying.
// Scripts give value limits as plain Python objects; one that fits no rule, or the wrong kind
// for the element, is refused and the element stays as it was.
TEST_F(ZutProgram, ScriptsSetValueLimitsWithPythonObjects)
{
  const QString script = file("limits.py", R"(import zut
xml = """<dialog><title>Limits</title><control id="OkCancel"/><content rows="6" columns="1">
<widget type="input::number" row="0" column="0"><name>d</name><value>4</value></widget>
<widget type="input::integer" row="1" column="0"><name>n</name></widget>
<widget type="input::slider" row="2" column="0"><name>s</name></widget>
<widget type="input::list" row="3" column="0"><name>m</name><items><item>A</item></items></widget>
<widget type="input::file" row="4" column="0"><name>f</name></widget>
<widget type="label" row="5" column="0"><name>l</name><text>x</text></widget>
</content></dialog>"""
dlg = zut.script.sys.create_user_defined_dialog(content=xml)
dlg.d.limits = (0.0, 10.0)
dlg.d.value = 12.5
print(dlg.d.value, dlg.d.limits)
dlg.d.limits = (-1.0, 1.0, 4)
print(dlg.d.value, dlg.d.precision)
dlg.d.limits = 3
print(dlg.d.limits["limited"], dlg.d.precision)
dlg.n.limits = {"lower": 0.5, "upper": 9.5, "limited": True}
print(dlg.n.minimum, dlg.n.maximum)
dlg.s.limits = (2.0, 4.0, 1)
dlg.s.limits = dlg.s.limits
print(dlg.s.minimum, dlg.s.maximum, dlg.s.precision)
dlg.m.limits = {"descriptions": ["Gauss", 3], "limited": True}
print(dlg.m.items, dlg.m.value)
dlg.f.limits = {"extensions": ["stl", "txt"], "limited": True}
print(dlg.f.limits)
dlg.f.limits = {"extensions": ["*", ""], "limited": False}
dlg.f.limits = dlg.f.limits
print(dlg.f.file_types)
before = repr(dlg.d), repr(dlg.m), repr(dlg.f)
for target, value in [(dlg.d, (0, 10)), (dlg.d, {"lower": 0.0, "step": 1.0}), (dlg.d, (5.0, 1.0)),
                      (dlg.d, {"descriptions": ["a"]}), (dlg.m, (0.0, 1.0)), (dlg.f, {"descriptions": ["a"]}),
                      (dlg.d, "3"), (dlg.l, 3)]:
    try:
        target.limits = value
        print("taken:", value)
    except zut.ScriptTypeError as error:
        print("refused:", error)
print(before == (repr(dlg.d), repr(dlg.m), repr(dlg.f)))
print(dlg.d.__doc__.splitlines()[0], "limits dict" in dlg.d.__doc__)
)");
  const Result run = zut({QStringLiteral("run"), script});
  EXPECT_EQ(run.status, 0) << qPrintable(run.err);
  const QString wrong = QStringLiteral("refused: The value has not the expected type.\n");
  EXPECT_EQ(run.out, QStringLiteral("10.0 {'digits': 2, 'limited': True, 'lower': 0.0, 'upper': 10.0}\n"
                                    "1.0 4\n"
                                    "False 3\n"
                                    "1 9\n"
                                    "2.0 4.0 1\n"
                                    "['Gauss', '3'] Gauss\n"
                                    "{'extensions': ['stl', 'txt'], 'limited': True}\n"
                                    "[['*.*', 'All files'], ['*.', 'Files without extension']]\n") +
                         wrong.repeated(7) +
                         QStringLiteral("refused: The object has no writeable attribute \"limits\".\nTrue\n"
                                        "Handle for a widget called 'd' of type 'Decimal' (input::number) True\n"));
}

TEST_F(ZutProgram, ABrokenPipeIsAnErrorTheScriptCatches)
{
  const QString script = file("pipe.py",
                              "import os, sys\n"
                              "try:\n"
                              "    for i in range(100000):\n"
                              "        print('line', i)\n"
                              "    sys.stdout.flush()\n"
                              "except BrokenPipeError:\n"
                              "    os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())\n"
                              "    print('caught', file=sys.stderr)\n");
  QProcess program;
  QProcess head;
  program.setStandardOutputProcess(&head);
  head.start(QStringLiteral("head"), {QStringLiteral("-n1")});
  start(program, {QStringLiteral("run"), script});
  ASSERT_TRUE(program.waitForFinished(60000));
  ASSERT_TRUE(head.waitForFinished(60000));
  EXPECT_EQ(QString::fromUtf8(head.readAllStandardOutput()), QStringLiteral("line 0\n"));
  EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(program.exitCode(), 0);
  EXPECT_EQ(QString::fromUtf8(program.readAllStandardError()), QStringLiteral("caught\n"));
}

// A script in a tight loop is stopped as under python3: Ctrl+C, or the test timeout that the
// script set, is a KeyboardInterrupt; its finally block runs and the program exits with 130.
TEST_F(ZutProgram, ATightLoopStopsOnCtrlCAndOnTheTestTimeout)
{
  const QByteArray loop =
      "try:\n    print('looping', flush=True)\n    while True:\n        pass\nfinally:\n    print('finally ran')\n";
  QProcess interrupted;
  start(interrupted, {QStringLiteral("run"), file("loop.py", loop)});
  // The whole first line, so that the interrupt meets the loop and not the print (unbuffered
  // output writes the line's end apart).
  QByteArray output;
  while (!output.contains('\n') && interrupted.waitForReadyRead(60000))
    output += interrupted.readAllStandardOutput();
  ::kill(pid_t(interrupted.processId()), SIGINT);
  ASSERT_TRUE(interrupted.waitForFinished(60000));
  EXPECT_EQ(interrupted.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(interrupted.exitCode(), 130);
  EXPECT_EQ(QString::fromUtf8(output + interrupted.readAllStandardOutput()), QStringLiteral("looping\nfinally ran\n"));
  EXPECT_TRUE(
      QString::fromUtf8(interrupted.readAllStandardError()).endsWith(QStringLiteral("\nKeyboardInterrupt\n")));

  const Result timed_out = zut({QStringLiteral("exec"),
                                QStringLiteral("import zut\nzut.script.sys.set_test_timeout(timeout=0.2)\n") +
                                    QString::fromUtf8(loop)});
  EXPECT_EQ(timed_out.status, 130);
  EXPECT_EQ(timed_out.out, QStringLiteral("looping\nfinally ran\n"));
  EXPECT_TRUE(timed_out.err.contains(QStringLiteral("KeyboardInterrupt: test timeout of 0.2 s expired")))
      << qPrintable(timed_out.err);

  // A script that swallows the interrupt is interrupted again: a test never hangs.
  const Result swallowed = zut({QStringLiteral("exec"), QStringLiteral("import zut\n"
                                                                       "zut.script.sys.set_test_timeout(timeout=0.2)\n"
                                                                       "try:\n    while True:\n        pass\n"
                                                                       "except KeyboardInterrupt:\n    print('swallowed')\n"
                                                                       "while True:\n    pass\n")});
  EXPECT_EQ(swallowed.status, 130);
  EXPECT_EQ(swallowed.out, QStringLiteral("swallowed\n"));
}
