#include <pybind11/embed.h>

#include <QDate>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVariant>

#include <functional>
#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>
#include <thread>
#include <vector>

#include "core/color.h"
#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gapp/main_window.h"
#include "gapp/progress.h"
#include "gscript/execute.h"
#include "gscript/python_interpreter.h"
#include "gscript/python_values.h"
#include "gscript/safe_points.h"

using namespace Vel;
using namespace Vel::GScript;
namespace py = pybind11;

namespace {

// Runs its "code" argument as a nested script and records the interpreter depth it saw.
class NestedRunCommand : public GApp::Command
{
public:
  NestedRunCommand() : Command(QStringLiteral("test.nested.run"))
  {
    getMetaInfo().setArgumentTypes({{QStringLiteral("code"), GApp::CommandMetaInfo::TYPE_STRING, QString(), true}});
  }
  void execute(const GApp::CommandParameters& parameters) override
  {
    depths.push_back(PythonInterpreter::getInterpreterStack().size());
    Execute run(parameters.get(QStringLiteral("code")).getValue().toString());
    QString code;
    ErrorLog log;
    if (!run.execute(0, Execute::FLAG_MAIN, code, log))
      throw GApp::CommandError(code, log);
    depths.push_back(PythonInterpreter::getInterpreterStack().size());
  }
  std::vector<size_t> depths;
};

class EchoCommand : public GApp::Command
{
public:
  EchoCommand() : Command(QStringLiteral("test.echo"))
  {
    getMetaInfo().setArgumentTypes({{QStringLiteral("value"), GApp::CommandMetaInfo::TYPE_ANY, QString()},
                                    {QStringLiteral("fail"), GApp::CommandMetaInfo::TYPE_BOOLEAN, QString()}});
  }
  void execute(const GApp::CommandParameters& parameters) override
  {
    if (parameters.contains(QStringLiteral("fail"))) {
      ErrorLog log;
      log.addLine(QStringLiteral("first line"));
      log.addLine(QStringLiteral("second line"));
      throw GApp::CommandError(QStringLiteral("TestErr-0042"), log);
    }
    setResult(parameters.get(QStringLiteral("value")).getValue());
  }
};

// A command that comes and goes while scripts run, as database scripts do; each one made
// answers with its own number, so a call shows which of them ran.
class LateCommand : public GApp::Command
{
public:
  explicit LateCommand(const QString& name) : Command(name), _number(++made) {}
  void execute(const GApp::CommandParameters&) override { setResult(_number); }
  static inline int made = 0;

private:
  int _number;
};

// test.commands(add=NAME) registers a LateCommand, test.commands(remove=NAME) withdraws one.
class CommandsCommand : public GApp::Command
{
public:
  CommandsCommand() : Command(QStringLiteral("test.commands"))
  {
    getMetaInfo().setArgumentTypes({{QStringLiteral("add"), GApp::CommandMetaInfo::TYPE_STRING, QString()},
                                    {QStringLiteral("remove"), GApp::CommandMetaInfo::TYPE_STRING, QString()}});
  }
  void execute(const GApp::CommandParameters& parameters) override
  {
    if (parameters.contains(QStringLiteral("add")))
      new LateCommand(parameters.get(QStringLiteral("add")).getValue().toString());
    if (parameters.contains(QStringLiteral("remove")))
      GApp::CommandContainer::getInstance().removeCommand(parameters.get(QStringLiteral("remove")).getValue().toString());
  }
};

struct RunResult
{
  bool ok;
  QString code;
  QString log;
  QString output;
};

RunResult run(const QString& text, const QString& file = QString(), bool collect_out = false, bool collect_err = false,
              const QMap<QString, QVariant>& parameters = {})
{
  Execute execute(text);
  execute.setFileName(file);
  execute.setCollectStdout(collect_out);
  execute.setCollectStderr(collect_err);
  execute.setParameters(parameters);
  RunResult result;
  ErrorLog log;
  result.ok = execute.execute(0, Execute::FLAG_MAIN, result.code, log);
  result.log = log.getText();
  result.output = execute.getCollectedOutput();
  return result;
}

class GScriptTest : public ::testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    nested = new NestedRunCommand;
    echo = new EchoCommand;
  }
  static void TearDownTestSuite()
  {
    delete nested;
    delete echo;
  }
  static NestedRunCommand* nested;
  static EchoCommand* echo;
};

NestedRunCommand* GScriptTest::nested = nullptr;
EchoCommand* GScriptTest::echo = nullptr;

}  // namespace

TEST_F(GScriptTest, EveryRunHasAFreshNamespaceWithItsParameters)
{
  EXPECT_TRUE(run(QStringLiteral("leftover = 1\nassert __name__ == '__main__'")).ok);
  const RunResult second =
      run(QStringLiteral("print(sorted(PARAMETERS.items()), 'leftover' in globals())"), QString(), true, false,
          {{QStringLiteral("b"), QVariantList{1, QStringLiteral("x")}}, {QStringLiteral("a"), 2.5}});
  ASSERT_TRUE(second.ok) << qPrintable(second.log);
  EXPECT_EQ(second.output, QStringLiteral("[('a', 2.5), ('b', [1, 'x'])] False\n"));
  EXPECT_TRUE(run(QStringLiteral("assert PARAMETERS == {}")).ok);
}

TEST_F(GScriptTest, CollectsEachStreamOnlyWhenAsked)
{
  const QString text = QStringLiteral("import sys\nprint('out')\nprint('err', file=sys.stderr)\n");
  EXPECT_EQ(run(text, QString(), true, false).output, QStringLiteral("out\n"));
  EXPECT_EQ(run(text, QString(), false, true).output, QStringLiteral("err\n"));
  EXPECT_EQ(run(text, QString(), true, true).output, QStringLiteral("out\nerr\n"));
  EXPECT_EQ(run(text, QString(), false, false).output, QString());
  // The streams are back after the run, also after a failure.
  run(QStringLiteral("raise ValueError()"), QString(), true, true);
  EXPECT_TRUE(
      run(QStringLiteral("import sys\nassert sys.stdout is sys.__stdout__\nassert sys.stderr is sys.__stderr__")).ok);
}

TEST_F(GScriptTest, FailureReportsTracebackWithFileAndLine)
{
  const RunResult failed =
      run(QStringLiteral("x = 1\n\ndef f():\n    return 1 / 0\nf()\n"), QStringLiteral("/scripts/calc.py"));
  EXPECT_FALSE(failed.ok);
  EXPECT_EQ(failed.code, QString::fromLatin1(ERR_SCRIPT_FAILED));
  EXPECT_TRUE(failed.log.contains(QStringLiteral("File \"/scripts/calc.py\", line 4, in f"))) << qPrintable(failed.log);
  EXPECT_TRUE(failed.log.endsWith(QStringLiteral("ZeroDivisionError: division by zero"))) << qPrintable(failed.log);

  const RunResult syntax = run(QStringLiteral("if True\n    pass\n"), QStringLiteral("broken.py"));
  EXPECT_FALSE(syntax.ok);
  EXPECT_TRUE(syntax.log.contains(QStringLiteral("File \"broken.py\", line 1"))) << qPrintable(syntax.log);
  EXPECT_TRUE(syntax.log.contains(QStringLiteral("SyntaxError"))) << qPrintable(syntax.log);
}

TEST_F(GScriptTest, SystemExitEndsTheRunAndOnlyAFailingStatusFails)
{
  EXPECT_TRUE(run(QStringLiteral("import sys\nsys.exit()\nraise ValueError()")).ok);
  EXPECT_TRUE(run(QStringLiteral("raise SystemExit(0)")).ok);
  const RunResult failed = run(QStringLiteral("raise SystemExit(3)"));
  EXPECT_FALSE(failed.ok);
  EXPECT_EQ(failed.log, QStringLiteral("SystemExit: 3"));
}

TEST_F(GScriptTest, ScriptsCallCommandsWithKeywordsAndGetTheirResults)
{
  const RunResult ok = run(QStringLiteral("import zut\n"
                                          "print(repr(zut.script.test.echo(value={'a': [1, 2.5, None, True]})))\n"
                                          "print(zut.script.test.echo())\n"
                                          "print(zut.script.test.echo(value='Grüße'))\n"
                                          "print('echo' in dir(zut.script.test), zut.script.test)\n"
                                          "shared = [1]\n"
                                          "print(zut.script.test.echo(value=[shared, (shared,)], fail=None))\n"),
                           QString(), true);
  ASSERT_TRUE(ok.ok) << qPrintable(ok.log);
  EXPECT_EQ(ok.output,
            QStringLiteral("{'a': [1, 2.5, None, True]}\nNone\nGrüße\nTrue <zut.script.test>\n[[1], [[1]]]\n"));
}

// Namespace objects remember what their names were found to be; commands that come and go
// while a script keeps such objects must give the same answers as a fresh look-up.
TEST_F(GScriptTest, KeptNamesFollowCommandsThatComeAndGo)
{
  struct Case
  {
    const char* what;
    const char* code;
    const char* output;
  };
  const CommandsCommand commands;
  for (const Case& c : {
           Case{"a kept callable and namespace of a withdrawn command fail as unknown names do, and reach a "
                "command of that name once there is one again",
                "zut.script.test.commands(add='test.late.one')\n"
                "f, i, ns = zut.script.test.late.one, zut.interactive.test.late.one, zut.script.test.late\n"
                "print(f(), i())\n"
                "zut.script.test.commands(remove='test.late.one')\n"
                "for call in (f, i, lambda: ns.one, lambda: zut.script.test.late):\n"
                "    try:\n"
                "        call()\n"
                "    except AttributeError as e:\n"
                "        print(e)\n"
                "zut.script.test.commands(add='test.late.one')\n"
                "print(f(), i(), ns.one(), f is zut.script.test.late.one)\n",
                "1 1\n"
                "zut.script has no command 'test.late.one'\n"
                "zut.interactive has no command 'test.late.one'\n"
                "zut.script has no command 'test.late.one'\n"
                "zut.script has no command 'test.late'\n"
                "2 2 2 False\n"},
           Case{"a name that was unknown names a command added later",
                "for _ in range(2):\n"
                "    try:\n"
                "        print(zut.script.test.late.two())\n"
                "    except AttributeError as e:\n"
                "        print(e)\n"
                "        zut.script.test.commands(add='test.late.two')\n",
                "zut.script has no command 'test.late'\n1\n"},
           Case{"a namespace keeps its other commands when one goes",
                "zut.script.test.commands(add='test.late.a')\n"
                "zut.script.test.commands(add='test.late.b')\n"
                "ns = zut.script.test.late\n"
                "print(dir(ns), ns.a())\n"
                "zut.script.test.commands(remove='test.late.a')\n"
                "print(dir(ns), ns.b(), hasattr(ns, 'a'))\n",
                "['a', 'b'] 1\n['b'] 2 False\n"},
           Case{"dunder names and the type's own attributes are no commands",
                "ns = zut.script.test\n"
                "for name in ('__wrapped__', '__length_hint__'):\n"
                "    print(hasattr(ns, name), end=' ')\n"
                "try:\n"
                "    ns.__wrapped__\n"
                "except AttributeError as e:\n"
                "    print(e)\n"
                "print(repr(ns.echo), type(ns).__name__, callable(ns), ns.echo.__call__(value=3), ns.__dir__() == dir(ns))\n"
                "print(zut.script.test.echo is ns.echo, zut.interactive.test.echo is ns.echo)\n",
                "False False __wrapped__\n<zut.script.test.echo> CommandNamespace True 3 True\nTrue False\n"}}) {
    LateCommand::made = 0;
    const RunResult result = run(QStringLiteral("import zut\n") + QString::fromLatin1(c.code), QString(), true);
    EXPECT_TRUE(result.ok) << c.what << "\n" << qPrintable(result.log);
    EXPECT_EQ(result.output, QString::fromLatin1(c.output)) << c.what;
    for (const char* name : {"test.late.one", "test.late.two", "test.late.a", "test.late.b"})
      GApp::CommandContainer::getInstance().removeCommand(QString::fromLatin1(name));
  }
}

// Colours and dates travel as zut.Color and datetime.date, in both directions.
TEST_F(GScriptTest, ColoursAndDatesCrossIntoPythonAndBack)
{
  const RunResult ok =
      run(QStringLiteral("import zut, datetime\n"
                         "c = zut.script.test.echo(value=zut.Color(255, 16, 1, alpha=0))\n"
                         "print(repr(c), c.red, c.green, c.blue, c.alpha, c == zut.Color(255, 16, 1, 0))\n"
                         "print(repr(zut.Color(1, 2, 3)), len({zut.Color(), zut.Color(0, 0, 0)}))\n"
                         "print(repr(zut.script.test.echo(value=datetime.date(2024, 2, 29))))\n"
                         "for bad in ((256, 0, 0), (0, -1, 0)):\n"
                         "    try:\n"
                         "        zut.Color(*bad)\n"
                         "    except ValueError as e:\n"
                         "        print(e)\n"
                         "try:\n"
                         "    c.red = 3\n"
                         "except AttributeError:\n"
                         "    print('read-only')\n"),
          QString(), true);
  ASSERT_TRUE(ok.ok) << qPrintable(ok.log);
  EXPECT_EQ(ok.output, QStringLiteral("zut.Color ('#ff100100') 255 16 1 0 True\n"
                                      "zut.Color ('#010203ff') 1\n"
                                      "datetime.date(2024, 2, 29)\n"
                                      "red must be between 0 and 255, not 256\n"
                                      "green must be between 0 and 255, not -1\n"
                                      "read-only\n"));
}

TEST_F(GScriptTest, MisuseFromPythonRaisesPythonErrors)
{
  struct Case
  {
    const char* code;
    const char* error;
  };
  for (const Case& c :
       {Case{"zut.script.no_such_command", "AttributeError: zut.script has no command 'no_such_command'"},
        Case{"zut.script.test()", "AttributeError: zut.script has no command 'test'"},
        Case{"zut.script.test.echo(1)", "TypeError: zut.script.test.echo() takes keyword arguments only"},
        Case{"zut.script.test.echo(value=object())", "TypeError: cannot pass an object of type 'object'"},
        Case{"zut.script.test.echo(value={1: 2})", "TypeError: dictionary keys passed to a command"},
        Case{"zut.script.test.echo(value=2**70)", "TypeError: integer too large"},
        Case{"zut.script.test.echo(value={1, 2})", "TypeError: cannot pass an object of type 'set'"},
        Case{"zut.script.test.echo(value=[b'1'])", "TypeError: cannot pass an object of type 'bytes'"},
        Case{"v = []\nv.append(v)\nzut.script.test.echo(value=v)",
             "ValueError: cannot pass a list that contains itself"},
        Case{"d = {}\nd['d'] = [d]\nzut.script.test.echo(value=d)",
             "ValueError: cannot pass a dict that contains itself"},
        Case{"v = []\nfor _ in range(50000): v = [v]\nzut.script.test.echo(value=v)",
             "ValueError: cannot pass a value nested deeper than 1000 levels"},
        Case{"zut.script.test.echo(valeu=1, value={1})",
             "TypeError: test.echo has no argument 'valeu'; its arguments are value, fail"},
        Case{"zut.script.test.nested.run(cod='', x=1)",
             "TypeError: test.nested.run has no arguments 'cod', 'x'; its arguments are code"}}) {
    const RunResult failed = run(QStringLiteral("import zut\n") + QString::fromLatin1(c.code));
    EXPECT_FALSE(failed.ok);
    EXPECT_TRUE(failed.log.contains(QString::fromLatin1(c.error))) << c.code << "\n" << qPrintable(failed.log);
  }
}

TEST_F(GScriptTest, FailingCommandRaisesCommandErrorAndAnUncaughtOneKeepsItsCode)
{
  const RunResult caught = run(QStringLiteral("import zut\n"
                                              "try:\n"
                                              "    zut.script.test.echo(fail=True)\n"
                                              "except zut.CommandError as e:\n"
                                              "    print(e.code, repr(e.log))\n"),
                               QString(), true);
  ASSERT_TRUE(caught.ok) << qPrintable(caught.log);
  EXPECT_EQ(caught.output, QStringLiteral("TestErr-0042 'first line\\nsecond line'\n"));

  const RunResult uncaught = run(QStringLiteral("import zut\nzut.script.test.echo(fail=True)\n"));
  EXPECT_FALSE(uncaught.ok);
  EXPECT_EQ(uncaught.code, QStringLiteral("TestErr-0042"));
  EXPECT_TRUE(uncaught.log.contains(QStringLiteral("second line"))) << qPrintable(uncaught.log);
}

TEST_F(GScriptTest, NestedRunsGrowAndShrinkTheInterpreterStackStrictly)
{
  nested->depths.clear();
  const RunResult result =
      run(QStringLiteral("import zut\n"
                         "zut.script.test.nested.run(code='import zut\\nzut.script.test.nested.run(code=\"pass\")')\n"
                         "try:\n"
                         "    zut.script.test.nested.run(code='raise KeyError(1)')\n"
                         "except zut.CommandError:\n"
                         "    pass\n"));
  ASSERT_TRUE(result.ok) << qPrintable(result.log);
  // Entry and exit depth of each call, outermost call first in entry order.
  EXPECT_EQ(nested->depths, (std::vector<size_t>{1, 2, 2, 1, 1}));
  EXPECT_TRUE(PythonInterpreter::getInterpreterStack().empty());
}

TEST(PythonValues, RoundTripAndLiterals)
{
  PythonInterpreter::initialize();
  const QVariantList values = {QVariant(),
                               true,
                               qlonglong(-3),
                               1.5,
                               QStringLiteral("ä"),
                               QVariantList{1, QStringLiteral("x")},
                               QVariantMap{{QStringLiteral("k"), QVariantList{}}},
                               QVariant::fromValue(Vel::Color(1, 2, 3, 0)),
                               QDate(2024, 2, 29)};
  for (const QVariant& value : values) {
    const QVariant back = toVariant(fromVariant(value));
    EXPECT_EQ(back, value) << qPrintable(PythonInterpreter::repr(value));
  }
  QVariant parsed;
  ASSERT_TRUE(PythonInterpreter::parseLiteral(QStringLiteral("{'a': (1, 2)}"), parsed));
  EXPECT_EQ(parsed, QVariant(QVariantMap{{QStringLiteral("a"), QVariantList{qlonglong(1), qlonglong(2)}}}));
  EXPECT_FALSE(PythonInterpreter::parseLiteral(QStringLiteral("hello"), parsed));
  EXPECT_FALSE(PythonInterpreter::parseLiteral(QStringLiteral("__import__('os')"), parsed));
  for (const char* refused : {"{1, 2}", "b'1'", "[18446744073709551616]"})
    EXPECT_THROW(PythonInterpreter::parseLiteral(QString::fromLatin1(refused), parsed), GApp::CommandError) << refused;
  EXPECT_EQ(PythonInterpreter::repr(QVariantList{1, QStringLiteral("a")}), QStringLiteral("[1, 'a']"));
}

// Every way of stopping a script reaches a tight loop through the safe points: the script gets
// KeyboardInterrupt, its finally block runs, and the run fails with the abort code.
TEST(SafePoints, EveryAbortStopsATightLoopAndItsFinallyRuns)
{
  QWidget window;
  auto* button = new QPushButton(QStringLiteral("Abort"), &window);
  GApp::MainWindow::addAbortButton(button);
  window.show();
  bool enabled_while_running = false;

  struct Case
  {
    const char* name;
    std::function<void()> abort;
    const char* last_log_line;
  };
  const std::vector<Case> cases = {
      {"abort button",
       [&] {
         enabled_while_running = button->isEnabled();
         QTest::mouseClick(button, Qt::LeftButton);
       },
       "KeyboardInterrupt"},
      {"another thread", [] { std::thread([] { SafePoints::requestAbort(); }).join(); }, "KeyboardInterrupt"},
      {"Ctrl+C", [] { ::kill(::getpid(), SIGINT); }, "KeyboardInterrupt"},
      {"test timeout", [] { SafePoints::setTimeout(0.05); }, "KeyboardInterrupt: test timeout of 0.05 s expired"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_FALSE(button->isEnabled());
    const int requests = GApp::MainWindow::getAbortRequestCount();
    // The timer fires at a safe point of the running loop, where window events are processed;
    // it waits for the loop itself, which a loaded machine may reach only after several.
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      if (!pybind11::hasattr(pybind11::module_::import("builtins"), "zut_test_looping"))
        return;
      poll.stop();
      c.abort();
    });
    poll.start(10);
    const RunResult result = run(QStringLiteral("import builtins\ntry:\n    builtins.zut_test_looping = True\n"
                                                "    while True:\n        pass\nfinally:\n"
                                                "    del builtins.zut_test_looping\n    print('finally')\n"),
                                 QString(), true);
    SafePoints::setTimeout(0);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.code, QLatin1String(ERR_SCRIPT_ABORTED));
    EXPECT_EQ(result.log.section(QLatin1Char('\n'), -1), QLatin1String(c.last_log_line)) << qPrintable(result.log);
    EXPECT_EQ(result.output, QStringLiteral("finally\n"));
    EXPECT_EQ(GApp::MainWindow::getAbortRequestCount() - requests, std::string(c.name) == "abort button" ? 1 : 0);
    EXPECT_FALSE(SafePoints::isScriptRunning());
  }
  EXPECT_TRUE(enabled_while_running);
  EXPECT_FALSE(button->isEnabled());

  // An abort asked for while nothing runs is dropped; Ctrl+C is the program's again.
  SafePoints::requestAbort();
  struct sigaction action = {};
  sigaction(SIGINT, nullptr, &action);
  EXPECT_EQ(action.sa_handler, SIG_DFL);
  EXPECT_TRUE(run(QStringLiteral("x = sum(range(100000))")).ok);
}

TEST(SafePoints, NestedRunsUnwindEveryLevelAndTheScriptMayCatchTheInterrupt)
{
  NestedRunCommand nested;
  // Asked for once the innermost level loops: a fixed wait may end before a slow build gets there.
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, [&] {
    if (nested.depths.size() < 2)
      return;
    poll.stop();
    GApp::MainWindow::requestAbort();
  });
  poll.start(10);
  const RunResult result = run(
      QStringLiteral(
          "import zut\n"
          "try:\n"
          "    zut.script.test.nested.run(code='import zut\\nzut.script.test.nested.run(code=\"while True: pass\")')\n"
          "except zut.CommandError:\n"
          "    print('not a command error')\n"
          "except KeyboardInterrupt:\n"
          "    print('interrupted')\n"),
      QString(), true);
  EXPECT_TRUE(result.ok) << qPrintable(result.log);
  EXPECT_EQ(result.output, QStringLiteral("interrupted\n"));
  EXPECT_EQ(nested.depths, (std::vector<size_t>{1, 2}));
  EXPECT_TRUE(PythonInterpreter::getInterpreterStack().empty());
}

TEST(SafePoints, ScriptsReportProgressThroughTheHostUntilTheRunEnds)
{
  GApp::Progress& progress = GApp::Progress::getInstance();
  QSignalSpy changed(&progress, &GApp::Progress::signalProgressChanged);
  QSignalSpy cleared(&progress, &GApp::Progress::signalProgressCleared);
  const RunResult result =
      run(QStringLiteral("import zut\n"
                         "zut.progress(1, 4, 'first')\n"
                         "zut.progress(done=3, total=4)\n"
                         "for bad in [(1, 0), (-1, 4), (5, 4), (float('nan'), 4), (1, float('inf'))]:\n"
                         "    try:\n"
                         "        zut.progress(*bad)\n"
                         "        print('accepted', bad)\n"
                         "    except ValueError:\n"
                         "        pass\n"),
          QString(), true);
  ASSERT_TRUE(result.ok) << qPrintable(result.log);
  EXPECT_EQ(result.output, QString());
  ASSERT_EQ(changed.size(), 2);
  EXPECT_EQ(changed[0], (QVariantList{1.0, 4.0, QStringLiteral("first")}));
  EXPECT_EQ(changed[1], (QVariantList{3.0, 4.0, QString()}));
  EXPECT_EQ(cleared.size(), 1);
  EXPECT_FALSE(progress.isActive());
}
