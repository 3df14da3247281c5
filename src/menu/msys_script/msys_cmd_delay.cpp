#include "menu/msys_script/msys_cmd_delay.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <cmath>

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

DelayCommand::DelayCommand()
    : MSysCommand(QStringLiteral("sys.delay_script"), {"MSysScript_cmd", "Delay script execution", "id=9984"},
                  {{QStringLiteral("time"), Meta::TYPE_DOUBLE, QStringLiteral("time to wait in seconds"), true}})
{}

void DelayCommand::execute(const GApp::CommandParameters& parameters)
{
  const double seconds = getArgument<double>(parameters, QStringLiteral("time"));
  if (!std::isfinite(seconds) || seconds < 0)
    throw GApp::CommandError(QStringLiteral("command argument 'time' must be a number of seconds not below 0"));

  // Events keep being processed: the GUI stays alive and timers of open dialogs fire.
  QDeadlineTimer deadline(qint64(std::llround(seconds * 1000.0)));
  while (!deadline.hasExpired()) {
    if (QCoreApplication::instance())
      QCoreApplication::processEvents(QEventLoop::AllEvents, int(std::min<qint64>(deadline.remainingTime(), 50)));
    QThread::msleep(std::min<qint64>(deadline.remainingTime(), 5));
  }
}

}  // namespace Vel::MSysScript
