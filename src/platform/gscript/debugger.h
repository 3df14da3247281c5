#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

#include <memory>
#include <vector>

#include "core/vel_export.h"

namespace Vel::GScript {

// Debugs the scripts that Execute runs on this thread: breakpoints, stepping, the call stack and
// evaluation in a paused frame. A front end (the editor window, `zut debug`) drives it; the
// debugger calls the front end back, on the script's own thread, each time the script pauses,
// and the script goes on when the front end returns, having chosen how.
//
// Only script frames are traced: not the standard library, installed packages or the zut
// package's own Python. With no breakpoints and no stepping, no hook is installed at all; with
// breakpoints only calls are watched, and lines only in the code that holds a breakpoint.
//
// Files are named as scripts are compiled: a script file by its path as it was given to the run,
// a database script by its file name in the database ("tools/helpers.py"), and text without a
// file by the run's name for it ("<editor>", "<string>").
class VEL_EXPORT Debugger
{
public:
  struct Breakpoint
  {
    int number = 0;
    QString file;
    int line = 0;
    QString condition;  // empty: always
    bool temporary = false;
    int hits = 0;
  };

  struct Frame
  {
    QString file;
    int line = 0;
    QString function;
  };

  enum class Reason
  {
    Step,        // a step, a run to a line, or the start
    Breakpoint,  // `breakpoint` says which; `message` is set when its condition failed
    Exception    // uncaught: the run has ended, the frames are those of its traceback
  };

  struct Stop
  {
    Reason reason = Reason::Step;
    int breakpoint = 0;
    QString message;  // the exception ("ZeroDivisionError: division by zero"), or a condition's failure
  };

  class VEL_EXPORT Frontend
  {
  public:
    virtual ~Frontend();
    // The script is paused. Returns after choosing how it goes on (stepInto, ..., stop); without
    // a choice it continues. Python run meanwhile (evaluation, the front end's own) is not traced.
    virtual void paused(Debugger& debugger, const Stop& stop) = 0;
  };

  explicit Debugger(Frontend& frontend);
  ~Debugger();
  Debugger(const Debugger&) = delete;
  Debugger& operator=(const Debugger&) = delete;

  // Debugs the runs that follow until detach(); one debugger at a time. `pause_at_start`: the
  // first script line that runs pauses.
  void attach(bool pause_at_start);
  void detach();
  static Debugger* active();

  // A breakpoint on a line with code; its number, or 0 with the reason in `error` (no such
  // file, no such line, a line without code, a condition that does not compile).
  int setBreakpoint(const QString& file, int line, const QString& condition, bool temporary, QString* error);
  // The breakpoint that was removed, 0 when there was none.
  int clearBreakpoint(const QString& file, int line);
  // Sets a breakpoint without condition where there is none, clears it otherwise; true when set.
  bool toggleBreakpoint(const QString& file, int line, QString* error);
  std::vector<Breakpoint> breakpoints() const;

  // How a pause ends; only while paused. Steps count from the current (innermost) frame.
  void stepInto();
  void stepOver();
  void stepOut();
  // Runs until the line is reached (breakpoints still pause); false with `error` as setBreakpoint.
  bool runTo(const QString& file, int line, QString* error);
  void resume();
  // Ends the run: a KeyboardInterrupt (zut.DebuggerQuit) is raised where it is paused, so its
  // finally blocks run. Nothing pauses until the run has ended.
  void stop();

  // While paused: the script frames, outermost first; the innermost is where it is paused.
  QList<Frame> stack() const;
  // repr() of `expression` evaluated in a frame of stack(); false when it failed, `result` then
  // being the exception ("NameError: name 'x' is not defined").
  bool evaluate(const QString& expression, int frame, QString& result);
  // Names and repr() of a frame's variables, by name.
  QList<QPair<QString, QString>> locals(int frame) const;
  QList<QPair<QString, QString>> globals(int frame) const;

  // A line of a script (from 1), empty when unknown.
  QString sourceLine(const QString& file, int line) const;
  // Whether stop() ended the last run.
  bool stopped() const;

  // From Execute: what a run compiles under which name (a front end that has the text before
  // it runs, the editor, tells it too, so that breakpoints can be set first), and the exception
  // that ended the outermost run (PyObject*s), which pauses it once more for a look at its frames.
  void sourceCompiled(const QString& file, const QByteArray& source);
  void uncaughtException(void* type, void* value, void* traceback);

  class Private;

private:
  std::unique_ptr<Private> _d;
};

}  // namespace Vel::GScript
