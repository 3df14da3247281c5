#include "menu/msys_script/msys_cmd_delay.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cmath>

#include "gapp/progress.h"
#include "gscript/safe_points.h"
#include "menu/msys_script/msys_error_codes.h"

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
    failCommand(
        ERR_PARSE_PARAMETERS,
        QStringLiteral("command argument 'time' must be a finite number of seconds not below 0, not %1").arg(seconds));

  // Milliseconds as a double: a time longer than any clock (1e19 s) waits until the script is
  // stopped instead of overflowing into no wait at all.
  const double total_ms = seconds * 1000.0;
  GApp::Progress& progress = GApp::Progress::getInstance();
  QElapsedTimer clock;
  clock.start();
  for (double passed = 0; passed < total_ms; passed = double(clock.elapsed())) {
    progress.report(passed / 1000.0, seconds);
    // While a script waits, the GUI stays alive and the wait can be aborted; outside a
    // script, events are processed all the same.
    QString reason;
    if (GScript::SafePoints::poll(&reason)) {
      ErrorLog log;
      log.addLine(reason.isEmpty() ? QStringLiteral("KeyboardInterrupt")
                                   : QStringLiteral("KeyboardInterrupt: %1").arg(reason));
      throw GApp::CommandError(QString::fromLatin1(GScript::ERR_SCRIPT_ABORTED), log);
    }
    if (!GScript::SafePoints::isScriptRunning() && QCoreApplication::instance())
      QCoreApplication::processEvents();
    QThread::msleep(ulong(std::clamp(total_ms - double(clock.elapsed()), 0.0, 5.0)));
  }
  progress.report(seconds, seconds);
}

}  // namespace Vel::MSysScript
