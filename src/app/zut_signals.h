#pragma once

#include <QObject>

class QSocketNotifier;

// While it lives, SIGTERM and SIGHUP end the event loop in order (with the status 128 + the
// signal's number) instead of killing the program: the exit sequence that follows keeps the
// editor's unsaved changes for recovery.
class QuitOnSignals : public QObject
{
public:
  QuitOnSignals();
  ~QuitOnSignals() override;

private:
  QSocketNotifier* _notifier = nullptr;
};
