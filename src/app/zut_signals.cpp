#include "zut_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

const int SIGNALS[] = {SIGTERM, SIGHUP};
int pipe_ends[2] = {-1, -1};
struct sigaction previous[2];

// Only what is safe in a signal handler: one byte into the pipe; the event loop does the rest.
void onSignal(int number)
{
  const int saved_errno = errno;  // the interrupted code may be looking at it
  const unsigned char byte = static_cast<unsigned char>(number);
  const ssize_t ignored = ::write(pipe_ends[1], &byte, 1);
  (void)ignored;
  errno = saved_errno;
}

}  // namespace

QuitOnSignals::QuitOnSignals()
{
  if (::pipe2(pipe_ends, O_CLOEXEC | O_NONBLOCK) != 0)
    return;
  _notifier = new QSocketNotifier(pipe_ends[0], QSocketNotifier::Read, this);
  connect(_notifier, &QSocketNotifier::activated, this, [] {
    unsigned char byte = 0;
    if (::read(pipe_ends[0], &byte, 1) == 1)
      QCoreApplication::exit(128 + byte);
  });
  for (size_t i = 0; i < 2; ++i) {
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGNALS[i], &action, &previous[i]);
  }
}

QuitOnSignals::~QuitOnSignals()
{
  if (!_notifier)
    return;
  for (size_t i = 0; i < 2; ++i)
    sigaction(SIGNALS[i], &previous[i], nullptr);
  delete _notifier;
  ::close(pipe_ends[0]);
  ::close(pipe_ends[1]);
  pipe_ends[0] = pipe_ends[1] = -1;
}
