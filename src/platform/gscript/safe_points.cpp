#include "gscript/safe_points.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <Python.h>
#include <atomic>
#include <csignal>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "gapp/main_window.h"
#include "gapp/progress.h"

namespace Vel::GScript {

const char* const ERR_SCRIPT_ABORTED = "GScriptErr-0002";

namespace {

// Read by the signal handler and the timer thread; written on the GUI thread.
std::atomic<int> depth{0};
std::atomic<bool> abort_requested{false};
// A safe point is asked for and not yet handled: the interpreter's queue is not flooded while
// the GUI thread is busy outside Python.
std::atomic<bool> scheduled{false};
std::atomic<long long> safe_point_count{0};

// GUI thread only.
SafePoints::Observer* observer = nullptr;
QElapsedTimer run_clock;
double timeout_seconds = 0;
double deadline_ms = -1;  // on run_clock; -1 for none
bool in_events = false;
int held = 0;  // Hold guards alive

// Made with the first run and parked while no script runs, so that a run costs no thread of
// its own; the interpreter's end stops it.
struct Timer
{
  std::thread thread;
  std::mutex mutex;
  std::condition_variable wake;
  bool active = false;  // a script runs: tick
  bool stop = false;

  ~Timer()
  {
    // A program that ends without finalising the interpreter.
    if (thread.joinable())
      thread.detach();
  }
};
Timer timer;

int pendingSafePoint(void*);

void schedule()
{
  if (!scheduled.exchange(true) && Py_AddPendingCall(&pendingSafePoint, nullptr) != 0)
    scheduled = false;
}

void timerLoop()
{
  std::unique_lock<std::mutex> lock(timer.mutex);
  while (!timer.stop) {
    if (!timer.active) {
      timer.wake.wait(lock, [] { return timer.active || timer.stop; });
      continue;
    }
    timer.wake.wait_for(lock, std::chrono::milliseconds(SafePoints::INTERVAL_MS));
    if (timer.stop || !timer.active)
      continue;
    lock.unlock();
    schedule();
    // CPython 3.11 lets only the main thread notice a call added from another thread. Asking
    // for the interpreter lock makes the running script stop at its next check, where it
    // handles the pending call before it hands the lock over.
    const PyGILState_STATE state = PyGILState_Ensure();
    PyGILState_Release(state);
    lock.lock();
  }
}

void armDeadline()
{
  deadline_ms = timeout_seconds > 0 ? double(run_clock.elapsed()) + timeout_seconds * 1000.0 : -1;
}

// The work of a safe point on the GUI thread. True when the script must stop.
bool safePoint(QString* reason)
{
  ++safe_point_count;
  // Events may start another run, whose waits poll again: events are not processed inside
  // their own processing.
  if (!in_events) {
    in_events = true;
    QCoreApplication* application = QCoreApplication::instance();
    if (application && QThread::currentThread() == application->thread())
      QCoreApplication::processEvents();
    if (observer)
      observer->safePoint(SafePoints::getRunSeconds());
    in_events = false;
  }
  if (deadline_ms >= 0 && double(run_clock.elapsed()) > deadline_ms) {
    // Again after as long: a script that swallows the interrupt does not hang the test.
    armDeadline();
    *reason = QStringLiteral("test timeout of %1 s expired").arg(timeout_seconds);
    return true;
  }
  if (abort_requested.exchange(false)) {
    reason->clear();
    return true;
  }
  return false;
}

int pendingSafePoint(void*)
{
  scheduled = false;
  // A request that was queued before the run ended, or one that comes while the host's own
  // Python work must not be cut short; the next tick asks again.
  if (depth == 0 || held > 0)
    return 0;
  QString reason;
  if (!safePoint(&reason))
    return 0;
  if (reason.isEmpty())
    PyErr_SetNone(PyExc_KeyboardInterrupt);
  else
    PyErr_SetString(PyExc_KeyboardInterrupt, reason.toUtf8().constData());
  return -1;
}

// Ctrl+C while a script runs is Python's own, as under python3: its handler raises
// KeyboardInterrupt in the script at once (a blocking sleep included), and _thread.interrupt_main
// and scripts' own SIGINT handlers behave as there. Outside runs the program's disposition
// stands; an ignored SIGINT (a job started in the background) stays ignored.
bool python_owns_interrupts = false;

void setInterruptHandler(const char* handler)
{
  // The C module: the signal package would import enum, a cost on every start.
  PyObject* signal = PyImport_ImportModule("_signal");
  PyObject* result = nullptr;
  if (signal) {
    PyObject* function = PyObject_GetAttrString(signal, handler);
    if (function)
      result = PyObject_CallMethod(signal, "signal", "iO", SIGINT, function);
    Py_XDECREF(function);
  }
  Py_XDECREF(result);
  Py_XDECREF(signal);
  // Only the main thread may set handlers; elsewhere Ctrl+C stays the program's.
  if (!result)
    PyErr_Clear();
}

void takeInterrupts()
{
  struct sigaction current = {};
  if (!Py_IsInitialized() || !PyGILState_Check() || sigaction(SIGINT, nullptr, &current) != 0 ||
      current.sa_handler != SIG_DFL)
    return;
  setInterruptHandler("default_int_handler");
  sigaction(SIGINT, nullptr, &current);
  python_owns_interrupts = current.sa_handler != SIG_DFL;
}

void giveBackInterrupts()
{
  if (!python_owns_interrupts)
    return;
  python_owns_interrupts = false;
  setInterruptHandler("SIG_DFL");
}

}  // namespace

SafePoints::Observer::~Observer() = default;

void SafePoints::setObserver(Observer* new_observer)
{
  observer = new_observer;
}

SafePoints::Observer* SafePoints::getObserver()
{
  return observer;
}

SafePoints::Run::Run()
{
  if (depth++ != 0)
    return;
  run_clock.start();
  armDeadline();
  abort_requested = false;
  takeInterrupts();
  GApp::MainWindow::setScriptRunning(true);
  {
    std::lock_guard<std::mutex> lock(timer.mutex);
    timer.active = true;
    timer.stop = false;
    if (!timer.thread.joinable())
      timer.thread = std::thread(timerLoop);
  }
  timer.wake.notify_all();
}

SafePoints::Run::~Run()
{
  if (--depth != 0)
    return;
  {
    std::lock_guard<std::mutex> lock(timer.mutex);
    timer.active = false;
  }
  abort_requested = false;
  giveBackInterrupts();
  deadline_ms = -1;
  GApp::MainWindow::setScriptRunning(false);
  GApp::Progress::getInstance().clear();
  if (observer)
    observer->runEnded();
}

void SafePoints::stopTimer()
{
  if (!timer.thread.joinable())
    return;
  {
    std::lock_guard<std::mutex> lock(timer.mutex);
    timer.stop = true;
  }
  timer.wake.notify_all();
  // The timer thread may wait for the interpreter lock, which this thread may hold.
  PyThreadState* state = PyGILState_Check() ? PyEval_SaveThread() : nullptr;
  timer.thread.join();
  if (state)
    PyEval_RestoreThread(state);
}

bool SafePoints::isScriptRunning()
{
  return depth != 0;
}

double SafePoints::getRunSeconds()
{
  return depth != 0 ? double(run_clock.elapsed()) / 1000.0 : 0.0;
}

void SafePoints::requestAbort()
{
  if (depth == 0)
    return;
  abort_requested = true;
  schedule();
  // From another thread, the timer thread makes the script notice at once.
  timer.wake.notify_all();
}

SafePoints::Hold::Hold()
{
  ++held;
}

SafePoints::Hold::~Hold()
{
  --held;
}

bool SafePoints::isAbortPending()
{
  return abort_requested;
}

bool SafePoints::poll(QString* reason)
{
  QString ignored;
  return depth != 0 && safePoint(reason ? reason : &ignored);
}

void SafePoints::setTimeout(double seconds)
{
  timeout_seconds = seconds > 0 ? seconds : 0;
  if (depth != 0)
    armDeadline();
}

double SafePoints::getTimeout()
{
  return timeout_seconds;
}

long long SafePoints::getSafePointCount()
{
  return safe_point_count;
}

}  // namespace Vel::GScript
