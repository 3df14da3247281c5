// zut debug driven as a person at a terminal drives it: commands on standard input, pauses and
// answers read back from standard output.

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "test_util.h"

namespace {

const char* const PROMPT = "(zut-debug) ";

struct Session
{
  int status = -1;
  QString out;
  QString err;
  // What the program printed before its first prompt (the first pause), then after each
  // command in turn.
  QStringList answers;
};

class ZutDebug : public ::testing::Test
{
protected:
  void SetUp() override
  {
    QDir().mkpath(home.filePath(QStringLiteral("data/zut/scripts")));
    write("loop.py",
          "import sys\n"
          "\n"
          "def square(x):\n"
          "    y = x * x\n"
          "    return y\n"
          "\n"
          "total = 0\n"
          "for i in range(4):\n"
          "    total += square(i)\n"
          "print('total', total)\n");
  }

  void write(const char* name, const QByteArray& text) { writeFile(home.filePath(QString::fromLatin1(name)), text); }

  // Runs `zut debug ARGUMENTS` with the commands as its input; standard input ends after them.
  Session debug(const QStringList& arguments, const QStringList& commands)
  {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
    environment.remove(QStringLiteral("ZUT_PUBLIC_SCRIPTS"));
    environment.remove(QStringLiteral("DISPLAY"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(home.path());
    process.start(qEnvironmentVariable("ZUT_BIN"), QStringList{QStringLiteral("debug")} + arguments);
    EXPECT_TRUE(process.waitForStarted(10000));
    for (const QString& command : commands)
      process.write((command + QLatin1Char('\n')).toUtf8());
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000)) << "zut debug did not end";
    Session session;
    session.status = process.exitCode();
    session.out = QString::fromUtf8(process.readAllStandardOutput());
    session.err = QString::fromUtf8(process.readAllStandardError());
    session.answers = session.out.split(QString::fromLatin1(PROMPT));
    return session;
  }

  // The pause an answer shows ("loop.py:9 <module>"), empty when it shows none.
  static QString pause(const QString& answer)
  {
    for (const QString& line : answer.split(QLatin1Char('\n')))
      if (line.startsWith(QLatin1String("> ")))
        return line.mid(2);
    return QString();
  }

  QTemporaryDir home;
};

}  // namespace

TEST_F(ZutDebug, ItPausesAtTheFirstLineWithTheSourceAndThePrompt)
{
  const Session session = debug({QStringLiteral("loop.py")}, {QStringLiteral("continue")});
  ASSERT_EQ(session.answers.size(), 2) << qPrintable(session.out);
  EXPECT_EQ(session.answers[0], QStringLiteral("> loop.py:1 <module>\n-> import sys\n"));
  EXPECT_EQ(session.answers[1], QStringLiteral("total 14\n"));
  EXPECT_EQ(session.status, 0) << qPrintable(session.err);
}

TEST_F(ZutDebug, ABreakpointInALoopPausesOnEveryPassAndPrintShowsTheLoopVariable)
{
  QStringList commands{QStringLiteral("break 9")};
  for (int pass = 0; pass < 4; ++pass)
    commands << QStringLiteral("continue") << QStringLiteral("print i");
  commands << QStringLiteral("continue");
  const Session session = debug({QStringLiteral("loop.py")}, commands);
  ASSERT_EQ(session.answers.size(), commands.size() + 1) << qPrintable(session.out);
  EXPECT_EQ(session.answers[1], QStringLiteral("Breakpoint 1 at loop.py:9\n"));
  for (int pass = 0; pass < 4; ++pass) {
    EXPECT_EQ(session.answers[2 + 2 * pass], QStringLiteral("> loop.py:9 <module>\n-> total += square(i)\n"));
    EXPECT_EQ(session.answers[3 + 2 * pass], QString::number(pass) + QLatin1Char('\n'));
  }
  EXPECT_EQ(session.answers.last(), QStringLiteral("total 14\n"));
  EXPECT_EQ(session.status, 0);
}

TEST_F(ZutDebug, ConditionalAndTemporaryBreakpointsPauseOnlyWhenTheyShould)
{
  // A condition that holds once; a temporary breakpoint that holds every pass but pauses once;
  // a condition that fails pauses and says why.
  const Session conditional = debug({QStringLiteral("loop.py")},
                                    {QStringLiteral("break 4 if x == 2"), QStringLiteral("continue"),
                                     QStringLiteral("print x, total"), QStringLiteral("continue")});
  ASSERT_EQ(conditional.answers.size(), 5) << qPrintable(conditional.out);
  EXPECT_EQ(conditional.answers[1], QStringLiteral("Breakpoint 1 at loop.py:4 if x == 2\n"));
  EXPECT_EQ(pause(conditional.answers[2]), QStringLiteral("loop.py:4 square"));
  EXPECT_EQ(conditional.answers[3], QStringLiteral("(2, 1)\n"));
  EXPECT_EQ(conditional.answers[4], QStringLiteral("total 14\n"));

  const Session temporary = debug({QStringLiteral("loop.py")},
                                  {QStringLiteral("tbreak 9"), QStringLiteral("continue"), QStringLiteral("p i"),
                                   QStringLiteral("break"), QStringLiteral("continue")});
  ASSERT_EQ(temporary.answers.size(), 6) << qPrintable(temporary.out);
  EXPECT_EQ(temporary.answers[3], QStringLiteral("0\n"));
  EXPECT_EQ(temporary.answers[4], QStringLiteral("No breakpoints\n"));
  EXPECT_EQ(temporary.answers[5], QStringLiteral("total 14\n"));

  const Session failing = debug({QStringLiteral("loop.py")},
                                {QStringLiteral("break 5 if missing > 1"), QStringLiteral("continue"),
                                 QStringLiteral("clear 5"), QStringLiteral("continue")});
  ASSERT_EQ(failing.answers.size(), 5) << qPrintable(failing.out);
  EXPECT_TRUE(failing.answers[2].startsWith(
      QStringLiteral("*** the condition 'missing > 1' failed: NameError: name 'missing' is not defined\n"
                     "> loop.py:5 square\n")))
      << qPrintable(failing.answers[2]);
  EXPECT_EQ(failing.answers[3], QStringLiteral("Deleted breakpoint 1 at loop.py:5\n"));
  EXPECT_EQ(failing.status, 0);
}

TEST_F(ZutDebug, StepsGoIntoOverAndOutOfFunctionsAndUntilRunsToALaterLine)
{
  struct Case
  {
    QStringList commands;
    QStringList pauses;  // after each command
  };
  const Case cases[] = {
      // step: line by line, into square
      {{"tbreak 9", "continue", "step", "step", "step", "step"},
       {"", "loop.py:9 <module>", "loop.py:4 square", "loop.py:5 square", "loop.py:8 <module>", "loop.py:9 <module>"}},
      // next: over square
      {{"tbreak 9", "continue", "next", "next"}, {"", "loop.py:9 <module>", "loop.py:8 <module>", "loop.py:9 <module>"}},
      // return: back in the caller
      {{"tbreak 4", "continue", "return", "where"}, {"", "loop.py:4 square", "loop.py:8 <module>", ""}},
      // until: to a later line, over the loop
      {{"until 10", "print total"}, {"loop.py:10 <module>", ""}},
  };
  for (const Case& test : cases) {
    const Session session = debug({QStringLiteral("loop.py")}, test.commands + QStringList{QStringLiteral("continue")});
    ASSERT_EQ(session.answers.size(), test.commands.size() + 2) << qPrintable(session.out);
    for (int i = 0; i < test.commands.size(); ++i)
      EXPECT_EQ(pause(session.answers[i + 1]).toStdString(), test.pauses[i].toStdString())
          << qPrintable(test.commands.join(QLatin1Char(',')) + QStringLiteral(": after ") + test.commands[i]);
    EXPECT_EQ(session.status, 0) << qPrintable(session.err);
  }
  const Session until = debug({QStringLiteral("loop.py")}, {QStringLiteral("until 10"), QStringLiteral("p total")});
  EXPECT_EQ(until.answers.value(2), QStringLiteral("14\n"));
}

TEST_F(ZutDebug, StepEntersADatabaseScriptAndReturnComesBack)
{
  writeFile(home.filePath(QStringLiteral("data/zut/scripts/helper.py")),
            "value = 40\nvalue += 2\nprint('helper', value)\n");
  write("caller.py",
        "import json, zut\n"
        "text = json.dumps([1, 2])\n"
        "zut.script.userscript.helper()\n"
        "print('back')\n");
  const Session session =
      debug({QStringLiteral("caller.py")},
            {QStringLiteral("step"), QStringLiteral("step"), QStringLiteral("step"), QStringLiteral("where"),
             QStringLiteral("step"), QStringLiteral("print value"), QStringLiteral("return"), QStringLiteral("continue")});
  ASSERT_EQ(session.answers.size(), 9) << qPrintable(session.out);
  // The standard library is stepped over, not into.
  EXPECT_EQ(pause(session.answers[1]), QStringLiteral("caller.py:2 <module>"));
  EXPECT_EQ(pause(session.answers[2]), QStringLiteral("caller.py:3 <module>"));
  EXPECT_EQ(session.answers[3], QStringLiteral("> helper.py:1 <module>\n-> value = 40\n"));
  EXPECT_EQ(session.answers[4], QStringLiteral("   caller.py:3 <module>\n=> helper.py:1 <module>\n"));
  EXPECT_EQ(session.answers[6], QStringLiteral("40\n"));
  EXPECT_EQ(session.answers[7], QStringLiteral("helper 42\n> caller.py:4 <module>\n-> print('back')\n"));
  EXPECT_EQ(session.answers[8], QStringLiteral("back\n"));
  EXPECT_EQ(session.status, 0) << qPrintable(session.err);

  // A breakpoint names a database script by its file name, before the script has run.
  const Session named = debug({QStringLiteral("caller.py")},
                              {QStringLiteral("break helper.py:2"), QStringLiteral("continue"),
                               QStringLiteral("continue")});
  ASSERT_EQ(named.answers.size(), 4) << qPrintable(named.out);
  EXPECT_EQ(named.answers[1], QStringLiteral("Breakpoint 1 at helper.py:2\n"));
  EXPECT_EQ(pause(named.answers[2]), QStringLiteral("helper.py:2 <module>"));
}

TEST_F(ZutDebug, AnUncaughtExceptionPausesAtItsLine)
{
  write("fail.py", "def divide(n):\n    return 10 / n\n\ndivide(5)\ndivide(0)\n");
  const Session session = debug({QStringLiteral("fail.py")},
                                {QStringLiteral("continue"), QStringLiteral("print n"), QStringLiteral("where"),
                                 QStringLiteral("continue")});
  ASSERT_EQ(session.answers.size(), 5) << qPrintable(session.out);
  EXPECT_EQ(session.answers[1],
            QStringLiteral("!! ZeroDivisionError: division by zero\n> fail.py:2 divide\n-> return 10 / n\n"));
  EXPECT_EQ(session.answers[2], QStringLiteral("0\n"));
  EXPECT_EQ(session.answers[3], QStringLiteral("   fail.py:5 <module>\n=> fail.py:2 divide\n"));
  // As zut run: the traceback on standard error, status 1.
  EXPECT_EQ(session.status, 1);
  EXPECT_TRUE(session.err.contains(QStringLiteral("ZeroDivisionError: division by zero"))) << qPrintable(session.err);
}

TEST_F(ZutDebug, QuitAndTheEndOfInputEndTheScriptWithItsFinallyBlocksRun)
{
  write("work.py",
        "def work():\n"
        "    try:\n"
        "        for i in range(3):\n"
        "            print('pass', i)\n"
        "    finally:\n"
        "        print('finally ran')\n"
        "work()\n"
        "print('not reached')\n");
  for (const QStringList& end : {QStringList{QStringLiteral("quit")}, QStringList()}) {
    const Session session =
        debug({QStringLiteral("work.py")}, QStringList{QStringLiteral("break 4"), QStringLiteral("continue")} + end);
    EXPECT_TRUE(session.out.endsWith(QStringLiteral("finally ran\n"))) << qPrintable(session.out);
    EXPECT_FALSE(session.out.contains(QStringLiteral("pass 0"))) << qPrintable(session.out);
    EXPECT_FALSE(session.out.contains(QStringLiteral("not reached")));
    EXPECT_EQ(session.status, 3) << qPrintable(session.err);
  }
}

TEST_F(ZutDebug, BadCommandsGiveAClearMessageAndThePromptAgain)
{
  write("comment.py", "x = 1\n# a comment\n\ny = 2\n");
  const std::pair<const char*, const char*> cases[] = {
      {"bogus", "*** unknown command 'bogus' (help lists the commands)\n"},
      {"break", "No breakpoints\n"},
      {"break x", "*** 'x' is not a line number\n"},
      {"break 0", "*** '0' is not a line number\n"},
      {"break 2", "*** line 2 of comment.py has no code\n"},
      {"break 3", "*** line 3 of comment.py has no code\n"},
      {"break 99", "*** comment.py has no line 99\n"},
      {"break nowhere.py:1", "*** no script or file named 'nowhere.py'\n"},
      {"break 4 if", "*** 'if' needs a condition\n"},
      {"break 4 if (", "*** the condition does not compile: SyntaxError: '(' was never closed\n"},
      {"clear 4", "*** no breakpoint at comment.py:4\n"},
      {"until", "*** a line number is needed: N or FILE:N\n"},
      {"until 2", "*** line 2 of comment.py has no code\n"},
      {"print", "*** print needs an expression\n"},
      {"print y", "*** NameError: name 'y' is not defined\n"},
      {"print 1 +", "*** SyntaxError: invalid syntax\n"},
      {"step 3", "*** step takes no argument\n"},
      {"where now", "*** where takes no argument\n"},
  };
  QStringList commands;
  for (const auto& test : cases)
    commands << QString::fromLatin1(test.first);
  const Session session = debug({QStringLiteral("comment.py")}, commands + QStringList{QStringLiteral("continue")});
  ASSERT_EQ(session.answers.size(), commands.size() + 2) << qPrintable(session.out);
  for (int i = 0; i < commands.size(); ++i)
    EXPECT_EQ(session.answers[i + 1].toStdString(), cases[i].second) << qPrintable(commands[i]);
  EXPECT_EQ(session.status, 0);

  // Wrong use of the program itself.
  const Session missing = debug({}, {});
  EXPECT_EQ(missing.status, 2);
  EXPECT_TRUE(missing.err.contains(QStringLiteral("no script file given"))) << qPrintable(missing.err);
  const Session unreadable = debug({QStringLiteral("absent.py")}, {});
  EXPECT_EQ(unreadable.status, 1);
  EXPECT_TRUE(unreadable.err.contains(QStringLiteral("absent.py"))) << qPrintable(unreadable.err);
}

TEST_F(ZutDebug, TheScriptRunsAsZutRunRunsIt)
{
  write("main.py",
        "import sys\n"
        "print(__name__, sys.argv, PARAMETERS)\n"
        "sys.exit(int(sys.argv[1]))\n");
  for (const char* exit_code : {"0", "4"}) {
    const Session session = debug({QStringLiteral("-p"), QStringLiteral("n=3"), QStringLiteral("main.py"),
                                   QString::fromLatin1(exit_code)},
                                  {QStringLiteral("continue")});
    EXPECT_EQ(session.answers.value(1),
              QStringLiteral("__main__ ['main.py', '%1'] {'n': 3}\n").arg(QString::fromLatin1(exit_code)));
    // zut run fails a run that exits with a non-zero status.
    EXPECT_EQ(session.status, exit_code == QLatin1String("0") ? 0 : 1) << qPrintable(session.err);
  }
}
