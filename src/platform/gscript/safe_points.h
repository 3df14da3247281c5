#pragma once

#include <QString>

#include "core/vel_export.h"

namespace Vel::GScript {

// Error code of a run that a KeyboardInterrupt ended: an abort, Ctrl+C or the test timeout.
VEL_EXPORT extern const char* const ERR_SCRIPT_ABORTED;  // "GScriptErr-0002"

// Scripts run on the GUI thread. So that the GUI stays alive and a running script can be
// stopped, a timer thread asks the interpreter for a safe point every INTERVAL_MS
// (Py_AddPendingCall; CPython handles it between two bytecodes on the GUI thread, never per
// line). At a safe point window events are processed, the observer (the break dialog) is told
// how long the run lasts, and a pending abort or an expired test timeout raises
// KeyboardInterrupt in the script. The timer thread is made by the first run and ticks only
// while a script runs.
class VEL_EXPORT SafePoints
{
public:
  static constexpr int INTERVAL_MS = 20;

  // Follows long runs on the GUI thread.
  class Observer
  {
  public:
    virtual ~Observer();
    // At every safe point; `seconds` since the outermost run started.
    virtual void safePoint(double seconds) = 0;
    // The outermost run ended.
    virtual void runEnded() = 0;
  };
  static void setObserver(Observer* observer);
  static Observer* getObserver();

  // Held by every run of Python text: the outermost one starts the timer thread, enables the
  // abort buttons and arms the test timeout; its end undoes all three and drops an abort that
  // came too late.
  class Run
  {
  public:
    Run();
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
  };
  // Held while the host itself runs Python that must finish (formatting a failed run's
  // traceback): no safe point interrupts it meanwhile; an abort waits for the next one.
  class VEL_EXPORT Hold
  {
  public:
    Hold();
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
  };
  // Ends the timer thread; the interpreter calls it before it ends.
  static void stopTimer();
  static bool isScriptRunning();
  static double getRunSeconds();

  // Asks the running script to stop; any thread. Ignored while no script runs.
  static void requestAbort();
  static bool isAbortPending();

  // A safe point for long C++ work on the GUI thread (a command that waits): processes
  // events like the interpreter's safe points. True when the run must stop; `reason` then says
  // why (empty for a plain abort), and the abort counts as handled.
  static bool poll(QString* reason);

  // The test timeout: a run lasting longer is aborted. From now when set while a script runs,
  // else from the start of each run; 0 for none.
  static void setTimeout(double seconds);
  static double getTimeout();

  // Safe points handled since start-up.
  static long long getSafePointCount();
};

}  // namespace Vel::GScript
