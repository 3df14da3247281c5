#include "zut_debug.h"

#include <pybind11/embed.h>

#include <QRegularExpression>

#include <cerrno>
#include <unistd.h>

#include "gscript/debugger.h"
#include "zut_commands.h"

namespace py = pybind11;
using Vel::GScript::Debugger;

const char* const DEBUG_HELP =
    "Runs a Python script as 'zut run' does (sys.argv, __main__, PARAMETERS, the same exit\n"
    "status), under the debugger, which reads its commands from standard input, one a line:\n"
    "\n"
    "  break [FILE:]N [if COND]   a breakpoint (tbreak: one that is removed when reached);\n"
    "                             without FILE in the file where the script is paused; break alone\n"
    "                             lists them. FILE is a path, or a database script's file name\n"
    "                             (tools/helpers.py)\n"
    "  clear [FILE:]N             removes a breakpoint\n"
    "  step (s)                   one line, into calls (a database script called as a command too)\n"
    "  next (n)                   one line, over calls\n"
    "  return (r)                 on until the current function returns\n"
    "  until [FILE:]N (u)         on until the line is reached\n"
    "  continue (c)               on until a breakpoint\n"
    "  print EXPR (p)             the value of EXPR in the current frame\n"
    "  where (w, bt)              the call stack, outermost first\n"
    "  quit (q)                   ends the script: a KeyboardInterrupt where it is paused, so its\n"
    "                             finally blocks run\n"
    "  help (h)                   this list\n"
    "\n"
    "It pauses at the first line, at breakpoints, after steps and on an uncaught exception. Each\n"
    "pause prints\n"
    "\n"
    "  > FILE:LINE FUNCTION\n"
    "  -> SOURCE LINE\n"
    "\n"
    "then the prompt '(zut-debug) ' (no newline). An uncaught exception is announced first by\n"
    "'!! TYPE: MESSAGE'; at that pause the script has ended and any command but print and where\n"
    "finishes it. 'where' prints one 'FILE:LINE FUNCTION' line a frame, the current one marked by\n"
    "'=> ', the others by three spaces. A command that cannot be done prints '*** REASON' and the\n"
    "prompt again. The end of standard input is quit.\n"
    "\n"
    "Exit status: as zut run (0, 1, 130), or 3 when quit ended the script.";

namespace {

// One line of standard input without its line end; false at its end. Read a byte at a time,
// so that what follows the command stays there for the script's own input().
bool readLine(QString& line)
{
  QByteArray bytes;
  for (;;) {
    char byte = 0;
    const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
    if (count == 1) {
      if (byte == '\n')
        break;
      bytes += byte;
      continue;
    }
    if (count < 0 && errno == EINTR) {
      // Ctrl+C while waiting for a command ends the run, as quit does.
      if (PyErr_CheckSignals() == 0)
        continue;
      PyErr_Clear();
      return false;
    }
    if (bytes.isEmpty())
      return false;
    break;
  }
  if (bytes.endsWith('\r'))
    bytes.chop(1);
  line = QString::fromLocal8Bit(bytes);
  return true;
}

// The script's own output first, so that it and ours keep their order.
void flushScriptOutput()
{
  try {
    const py::module_ sys = py::module_::import("sys");
    for (const char* name : {"stdout", "stderr"}) {
      const py::object stream = sys.attr(name);
      if (!stream.is_none() && py::hasattr(stream, "flush"))
        stream.attr("flush")();
    }
  } catch (py::error_already_set&) {
    // a closed stream: nothing to keep in order
  }
}

class DebugConsole : public Debugger::Frontend
{
public:
  void paused(Debugger& debugger, const Debugger::Stop& stop) override
  {
    flushScriptOutput();
    const QList<Debugger::Frame> stack = debugger.stack();
    if (stack.isEmpty())
      return;
    const Debugger::Frame& current = stack.last();
    if (stop.reason == Debugger::Reason::Exception)
      printOut(QStringLiteral("!! %1\n").arg(stop.message));
    else if (!stop.message.isEmpty())
      printOut(QStringLiteral("*** %1\n").arg(stop.message));
    printOut(QStringLiteral("> %1:%2 %3\n").arg(current.file).arg(current.line).arg(current.function));
    const QString source = debugger.sourceLine(current.file, current.line).trimmed();
    if (!source.isEmpty())
      printOut(QStringLiteral("-> %1\n").arg(source));
    while (!command(debugger, stack)) {
    }
  }

private:
  // Reads and does one command; true when the script goes on.
  bool command(Debugger& debugger, const QList<Debugger::Frame>& stack)
  {
    printOut(QStringLiteral("(zut-debug) "));
    QString line;
    if (!readLine(line)) {
      printOut(QStringLiteral("\n"));
      debugger.stop();
      return true;
    }
    line = line.trimmed();
    if (line.isEmpty())
      return false;
    const int space = int(line.indexOf(QLatin1Char(' ')));
    const QString word = space < 0 ? line : line.left(space);
    const QString rest = space < 0 ? QString() : line.mid(space + 1).trimmed();
    const QString& file = stack.last().file;
    const auto is = [&](std::initializer_list<const char*> names) {
      for (const char* name : names)
        if (word == QLatin1String(name))
          return true;
      return false;
    };
    const auto noOperand = [&]() {
      if (rest.isEmpty())
        return true;
      fail(QStringLiteral("%1 takes no argument").arg(word));
      return false;
    };

    // The ways on that take no operand.
    const struct
    {
      std::initializer_list<const char*> names;
      void (Debugger::*how)();
    } moves[] = {{{"step", "s"}, &Debugger::stepInto},
                 {{"next", "n"}, &Debugger::stepOver},
                 {{"return", "r"}, &Debugger::stepOut},
                 {{"continue", "c", "cont"}, &Debugger::resume}};
    for (const auto& move : moves) {
      if (!is(move.names))
        continue;
      if (!noOperand())
        return false;
      (debugger.*move.how)();
      return true;
    }
    if (is({"quit", "q", "exit"})) {
      debugger.stop();
      return true;
    }
    if (is({"until", "u"})) {
      QString target;
      int number = 0;
      if (!location(rest, file, target, number))
        return false;
      QString error;
      if (!debugger.runTo(target, number, &error)) {
        fail(error);
        return false;
      }
      return true;
    }
    if (is({"break", "b", "tbreak"})) {
      if (rest.isEmpty()) {
        listBreakpoints(debugger);
        return false;
      }
      static const QRegularExpression condition_split(QStringLiteral("\\s+if(\\s+|$)"));
      const QRegularExpressionMatch split = condition_split.match(rest);
      const QString where = split.hasMatch() ? rest.left(split.capturedStart()) : rest;
      const QString condition = split.hasMatch() ? rest.mid(split.capturedEnd()).trimmed() : QString();
      if (split.hasMatch() && condition.isEmpty()) {
        fail(QStringLiteral("'if' needs a condition"));
        return false;
      }
      QString target;
      int number = 0;
      if (!location(where, file, target, number))
        return false;
      QString error;
      const int id = debugger.setBreakpoint(target, number, condition, word == QLatin1String("tbreak"), &error);
      if (!id) {
        fail(error);
        return false;
      }
      printOut(QStringLiteral("Breakpoint %1 at %2:%3%4\n")
                   .arg(id)
                   .arg(target)
                   .arg(number)
                   .arg(condition.isEmpty() ? QString() : QStringLiteral(" if ") + condition));
      return false;
    }
    if (is({"clear", "cl"})) {
      QString target;
      int number = 0;
      if (!location(rest, file, target, number))
        return false;
      const int id = debugger.clearBreakpoint(target, number);
      if (id)
        printOut(QStringLiteral("Deleted breakpoint %1 at %2:%3\n").arg(id).arg(target).arg(number));
      else
        fail(QStringLiteral("no breakpoint at %1:%2").arg(target).arg(number));
      return false;
    }
    if (is({"print", "p"})) {
      if (rest.isEmpty()) {
        fail(QStringLiteral("print needs an expression"));
        return false;
      }
      QString result;
      const bool ok = debugger.evaluate(rest, int(stack.size()) - 1, result);
      flushScriptOutput();
      if (ok)
        printOut(result + QLatin1Char('\n'));
      else
        fail(result);
      return false;
    }
    if (is({"where", "w", "bt"})) {
      if (!noOperand())
        return false;
      QString text;
      for (int i = 0; i < stack.size(); ++i)
        text += QStringLiteral("%1%2:%3 %4\n")
                    .arg(i == stack.size() - 1 ? QStringLiteral("=> ") : QStringLiteral("   "), stack[i].file)
                    .arg(stack[i].line)
                    .arg(stack[i].function);
      printOut(text);
      return false;
    }
    if (is({"help", "h", "?"})) {
      printOut(QString::fromLatin1(DEBUG_HELP) + QLatin1Char('\n'));
      return false;
    }
    fail(QStringLiteral("unknown command '%1' (help lists the commands)").arg(word));
    return false;
  }

  // "N" in the current file, or "FILE:N".
  bool location(const QString& text, const QString& current, QString& file, int& line)
  {
    if (text.isEmpty()) {
      fail(QStringLiteral("a line number is needed: N or FILE:N"));
      return false;
    }
    const int colon = int(text.lastIndexOf(QLatin1Char(':')));
    file = colon < 0 ? current : text.left(colon).trimmed();
    const QString number = colon < 0 ? text : text.mid(colon + 1).trimmed();
    bool ok = false;
    line = number.toInt(&ok);
    if (!ok || line < 1) {
      fail(QStringLiteral("'%1' is not a line number").arg(number));
      return false;
    }
    return true;
  }

  void listBreakpoints(const Debugger& debugger)
  {
    const auto list = debugger.breakpoints();
    if (list.empty()) {
      printOut(QStringLiteral("No breakpoints\n"));
      return;
    }
    QString text;
    for (const Debugger::Breakpoint& entry : list)
      text += QStringLiteral("%1 %2:%3%4%5 hits %6\n")
                  .arg(entry.number)
                  .arg(entry.file)
                  .arg(entry.line)
                  .arg(entry.condition.isEmpty() ? QString() : QStringLiteral(" if ") + entry.condition)
                  .arg(entry.temporary ? QStringLiteral(" temporary") : QString())
                  .arg(entry.hits);
    printOut(text);
  }

  static void fail(const QString& reason) { printOut(QStringLiteral("*** %1\n").arg(reason)); }
};

}  // namespace

int runUnderDebugger(const std::function<int()>& run)
{
  DebugConsole console;
  Debugger debugger(console);
  debugger.attach(true);
  const int status = run();
  const bool stopped = debugger.stopped();
  debugger.detach();
  return stopped ? EXIT_DEBUG_QUIT : status;
}
