#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "gapp/app_status_manager.h"
#include "gapp/command_container.h"
#include "gapp/progress.h"
#include "gscript/python_interpreter.h"
#include "gscript/safe_points.h"
#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_cmd_test_timeout.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dlg_break.h"
#include "msys_fixture.h"
#include "test_util.h"

using namespace Vel;
using namespace Vel::MSysScript;
using GApp::CommandError;
using GApp::CommandParameters;

namespace {

class ExecuteTest : public ::testing::Test
{
protected:
  void SetUp() override { startedModule(); }

  static GApp::Command* command(const char* name)
  {
    return GApp::CommandContainer::getInstance().getCommand(QString::fromLatin1(name));
  }

  // Runs a command; on failure returns the error's code and log joined as "CODE|log".
  static QString failure(const char* name, const CommandParameters& parameters)
  {
    try {
      command(name)->run(parameters, false);
    } catch (const CommandError& error) {
      return error.getCode() + QLatin1Char('|') + error.getLog().getText();
    }
    return QString();
  }

  QString script(const char* name, const QByteArray& text)
  {
    const QString path = dir.filePath(QString::fromLatin1(name));
    writeFile(path, text);
    return path;
  }

  static CommandParameters fileCall(const QString& path)
  {
    CommandParameters parameters;
    parameters.set(QStringLiteral("file"), QVariant(path));
    return parameters;
  }

  QTemporaryDir dir;
};

}  // namespace

TEST(TypedArguments, MissingAndUnconvertibleArgumentsNameThemselves)
{
  CommandParameters parameters;
  parameters.set(QStringLiteral("count"), QVariant(QStringLiteral("three")));
  parameters.set(QStringLiteral("ratio"), QVariant(qlonglong(2)));
  EXPECT_DOUBLE_EQ(getArgument<double>(parameters, QStringLiteral("ratio")), 2.0);
  try {
    getArgument<int>(parameters, QStringLiteral("missing"));
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_EQ(error.getLog().getText(), QStringLiteral("command argument 'missing' is missing"));
  }
  try {
    getArgument<int>(parameters, QStringLiteral("count"));
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_EQ(
        error.getLog().getText(),
        QStringLiteral("command argument 'count' of type 'string' cannot be converted to required type 'integer'"));
  }
}

TEST_F(ExecuteTest, ScriptFileFailuresCarryLoadErrorAndNeverReachTheInterpreter)
{
  const QString missing = dir.filePath(QStringLiteral("missing.py"));
  const QString empty = script("empty.py", "");

  EXPECT_EQ(failure("sys.execute_script", CommandParameters()),
            QStringLiteral("GAppErr-0001|command argument 'file' is missing"));
  CommandParameters wrong_type;
  wrong_type.set(QStringLiteral("file"), QVariant(qlonglong(3)));
  EXPECT_EQ(
      failure("sys.execute_script", wrong_type),
      QStringLiteral("GAppErr-0001|command argument 'file' of type 'integer' cannot be converted to required type "
                     "'file'"));
  EXPECT_EQ(failure("sys.execute_script", fileCall(missing)),
            QStringLiteral("MSysScriptErr-0002|%1: No such file or directory").arg(QDir::toNativeSeparators(missing)));
  EXPECT_EQ(failure("sys.execute_script", fileCall(empty)),
            QStringLiteral("MSysScriptErr-0002|Unable to access file: %1").arg(QDir::toNativeSeparators(empty)));
  EXPECT_EQ(failure("sys.execute_script", fileCall(dir.path())).section(QLatin1Char('|'), 0, 0),
            QStringLiteral("MSysScriptErr-0002"));
  EXPECT_EQ(GApp::AppStatusManager::getActiveMenuCommandDepth(), 0u);
}

TEST_F(ExecuteTest, ScriptTextIsUtf8WithNormalisedLineEnds)
{
  // CRLF endings and a last line without a line feed; the text reaches Python as it was meant.
  const QString path = script("lines.py", "text = '''a\r\nb'''\r\nprint(repr(text), 'Grüße')");
  CommandParameters parameters = fileCall(path);
  parameters.set(QStringLiteral("collect_stdout"), true);
  EXPECT_EQ(command("sys.execute_script")->run(parameters, false), QVariant(QStringLiteral("'a\\nb' Grüße\n")));
}

TEST_F(ExecuteTest, ScriptFailureKeepsTheRunsCodeAndTraceback)
{
  const QString path = script("fails.py", "x = 1\nraise RuntimeError('boom')\n");
  const QString result = failure("sys.execute_script", fileCall(path));
  EXPECT_TRUE(result.startsWith(QStringLiteral("GScriptErr-0001|"))) << qPrintable(result);
  EXPECT_TRUE(result.contains(QStringLiteral("File \"%1\", line 2").arg(path))) << qPrintable(result);
  EXPECT_TRUE(result.endsWith(QStringLiteral("RuntimeError: boom"))) << qPrintable(result);

  CommandParameters code;
  code.set(QStringLiteral("code"), QStringLiteral("import zut\nzut.script.sys.execute_script(file='%1')").arg(path));
  EXPECT_TRUE(failure("sys.execute_python_code", code).startsWith(QStringLiteral("GScriptErr-0001|")));
}

struct CollectCase
{
  QVariant collect_stdout;  // invalid: argument not given
  QVariant collect_stderr;
  QVariant result;  // invalid: result untouched
};

class CollectSwitches : public ExecuteTest, public ::testing::WithParamInterface<CollectCase>
{};

TEST_P(CollectSwitches, StderrFollowsTheStdoutArgument)
{
  for (const char* name : {"sys.execute_python_code", "sys.execute_script"}) {
    SCOPED_TRACE(name);
    const QString text = QStringLiteral("import sys\nprint('out')\nprint('err', file=sys.stderr)\n");
    CommandParameters parameters;
    if (QByteArray(name) == "sys.execute_script")
      parameters = fileCall(script("collect.py", text.toUtf8()));
    else
      parameters.set(QStringLiteral("code"), text);
    if (GetParam().collect_stdout.isValid())
      parameters.set(QStringLiteral("collect_stdout"), GetParam().collect_stdout);
    if (GetParam().collect_stderr.isValid())
      parameters.set(QStringLiteral("collect_stderr"), GetParam().collect_stderr);

    GApp::Command* target = command(name);
    target->setResult(QStringLiteral("untouched"));
    target->execute(parameters);
    const QVariant expected = GetParam().result.isValid() ? GetParam().result : QVariant(QStringLiteral("untouched"));
    EXPECT_EQ(target->getResult(), expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Switches, CollectSwitches,
                         ::testing::Values(CollectCase{QVariant(), QVariant(), QVariant()},
                                           CollectCase{true, QVariant(), QStringLiteral("out\n")},
                                           CollectCase{false, QVariant(), QString()},
                                           CollectCase{false, true, QString()},
                                           CollectCase{true, false, QStringLiteral("out\nerr\n")},
                                           CollectCase{true, true, QStringLiteral("out\nerr\n")}));

TEST_F(ExecuteTest, StderrSwitchAloneNeedsTheStdoutArgument)
{
  CommandParameters parameters;
  parameters.set(QStringLiteral("code"), QStringLiteral("pass"));
  parameters.set(QStringLiteral("collect_stderr"), true);
  EXPECT_EQ(failure("sys.execute_python_code", parameters),
            QStringLiteral("GAppErr-0001|command argument 'collect_stdout' is missing"));
}

TEST_F(ExecuteTest, ParametersReachTheScriptAndMustBeAMap)
{
  CommandParameters parameters;
  parameters.set(QStringLiteral("code"), QStringLiteral("print(PARAMETERS['n'] * 2, PARAMETERS['s'])"));
  parameters.set(QStringLiteral("parameters"),
                 QVariantMap{{QStringLiteral("n"), qlonglong(21)}, {QStringLiteral("s"), QStringLiteral("ü")}});
  parameters.set(QStringLiteral("collect_stdout"), true);
  EXPECT_EQ(command("sys.execute_python_code")->run(parameters, false), QVariant(QStringLiteral("42 ü\n")));

  parameters.set(QStringLiteral("parameters"), QVariantList{1});
  EXPECT_EQ(failure("sys.execute_python_code", parameters),
            QStringLiteral("GAppErr-0001|command argument 'parameters' of type 'list' cannot be converted to required "
                           "type 'parameter map'"));
}

TEST_F(ExecuteTest, ScriptsNestThroughTheExecutionCommands)
{
  const QString inner = script("inner.py", "import zut\nprint('inner', PARAMETERS['level'])\n");
  const QString outer =
      script("outer.py", QStringLiteral("import zut\n"
                                        "out = zut.script.sys.execute_script(file=%1, parameters={'level': 2},"
                                        " collect_stdout=True)\n"
                                        "print('outer got', repr(out))\n")
                             .arg(QStringLiteral("'%1'").arg(inner))
                             .toUtf8());
  CommandParameters parameters = fileCall(outer);
  parameters.set(QStringLiteral("collect_stdout"), true);
  EXPECT_EQ(command("sys.execute_script")->run(parameters, false),
            QVariant(QStringLiteral("outer got 'inner 2\\n'\n")));
  EXPECT_TRUE(GScript::PythonInterpreter::getInterpreterStack().empty());
  EXPECT_EQ(GApp::AppStatusManager::getActiveMenuCommandDepth(), 0u);
}

TEST_F(ExecuteTest, DelayWaitsWhileEventsAreProcessed)
{
  bool fired = false;
  QTimer::singleShot(20, [&] { fired = true; });
  QSignalSpy progress(&GApp::Progress::getInstance(), &GApp::Progress::signalProgressChanged);
  CommandParameters parameters;
  parameters.set(QStringLiteral("time"), 0.15);
  QElapsedTimer clock;
  clock.start();
  command("sys.delay_script")->run(parameters, false);
  EXPECT_GE(clock.elapsed(), 150);
  EXPECT_TRUE(fired);
  // The share of the time passed, growing from 0 to all of it.
  ASSERT_GE(progress.size(), 3);
  EXPECT_EQ(progress.first().value(0).toDouble(), 0.0);
  EXPECT_EQ(progress.last().value(0).toDouble(), 0.15);
  for (int i = 1; i < progress.size(); ++i) {
    EXPECT_LE(progress[i - 1].value(0).toDouble(), progress[i].value(0).toDouble());
    EXPECT_EQ(progress[i].value(1).toDouble(), 0.15);
  }

  parameters.set(QStringLiteral("time"), -1.0);
  EXPECT_FALSE(failure("sys.delay_script", parameters).isEmpty());
}

TEST_F(ExecuteTest, TestTimeoutIsStored)
{
  CommandParameters parameters;
  parameters.set(QStringLiteral("timeout"), qlonglong(90));
  command("sys.set_test_timeout")->run(parameters, false);
  EXPECT_DOUBLE_EQ(SetTestTimeoutCommand::getTimeout(), 90.0);
  parameters.set(QStringLiteral("timeout"), QStringLiteral("soon"));
  EXPECT_FALSE(failure("sys.set_test_timeout", parameters).isEmpty());
  EXPECT_DOUBLE_EQ(SetTestTimeoutCommand::getTimeout(), 90.0);
  parameters.set(QStringLiteral("timeout"), 0.0);
  command("sys.set_test_timeout")->run(parameters, false);
}

// Times that are no wait are refused with the module's code; one longer than any clock waits
// until the test timeout stops the script.
TEST_F(ExecuteTest, DelayRefusesTimesThatAreNoWaitAndWaitsOutHugeOnes)
{
  CommandParameters parameters;
  parameters.set(QStringLiteral("code"), QStringLiteral("import zut\n"
                                                        "zut.script.sys.set_test_timeout(timeout=0.2)\n"
                                                        "for t in [float('inf'), float('nan'), -1]:\n"
                                                        "    try:\n"
                                                        "        zut.script.sys.delay_script(time=t)\n"
                                                        "    except zut.CommandError as error:\n"
                                                        "        print(error.code, error.log)\n"
                                                        "try:\n"
                                                        "    zut.script.sys.delay_script(time=1e19)\n"
                                                        "except KeyboardInterrupt as interrupt:\n"
                                                        "    print('interrupted:', interrupt)\n"
                                                        "zut.script.sys.set_test_timeout(timeout=0)\n"));
  parameters.set(QStringLiteral("collect_stdout"), true);
  const QString refused = QStringLiteral(
      "MSysScriptErr-0010 command argument 'time' must be a finite number of seconds not below 0, not %1\n");
  EXPECT_EQ(command("sys.execute_python_code")->run(parameters, false).toString(),
            refused.arg(QStringLiteral("inf")) + refused.arg(QStringLiteral("nan")) + refused.arg(-1) +
                QStringLiteral("interrupted: test timeout of 0.2 s expired\n"));
}

TEST_F(ExecuteTest, BreakDialogOffersStopOnceAScriptInTheGuiRunsLong)
{
  ASSERT_TRUE(startedModule().root()->setValue(QString::fromLatin1(CFG_BREAK_DIALOG_TIMEOUT), 1.0));
  QWidget window;  // the application's window: a script in the GUI
  window.show();
  bool clicked = false;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, [&] {
    BreakDialog* dialog = BreakDialogObserver::getInstance().getDialog();
    if (dialog && dialog->isVisible() && !clicked) {
      clicked = true;
      EXPECT_TRUE(dialog->getStopButton()->isEnabled());
      QTest::mouseClick(dialog->getStopButton(), Qt::LeftButton);
    }
  });
  poll.start(50);
  GScript::SafePoints::setTimeout(10);  // should the dialog never come
  CommandParameters parameters;
  parameters.set(QStringLiteral("code"), QStringLiteral("while True:\n    pass\n"));
  const QString error = failure("sys.execute_python_code", parameters);
  GScript::SafePoints::setTimeout(0);
  EXPECT_TRUE(clicked);
  EXPECT_EQ(error, QStringLiteral("GScriptErr-0002|Traceback (most recent call last):\n"
                                  "  File \"<string>\", line 1, in <module>\nKeyboardInterrupt"));
  EXPECT_EQ(BreakDialogObserver::getInstance().getDialog(), nullptr);
}
