#include "menu/msys_script/msys_cmd_test_timeout.h"

#include <cmath>

#include "gscript/safe_points.h"

namespace Vel::MSysScript {

SetTestTimeoutCommand::SetTestTimeoutCommand()
    : MSysCommand(
          QStringLiteral("sys.set_test_timeout"), {"MSysScript_cmd", "set timeout for script tests", nullptr},
          {{QStringLiteral("timeout"), GApp::CommandMetaInfo::TYPE_DOUBLE, QStringLiteral("timeout in seconds"), true}})
{}

void SetTestTimeoutCommand::execute(const GApp::CommandParameters& parameters)
{
  const double timeout = getArgument<double>(parameters, QStringLiteral("timeout"));
  if (!std::isfinite(timeout) || timeout < 0)
    throw GApp::CommandError(QStringLiteral("command argument 'timeout' must be a number of seconds not below 0"));
  GScript::SafePoints::setTimeout(timeout);
}

double SetTestTimeoutCommand::getTimeout()
{
  return GScript::SafePoints::getTimeout();
}

}  // namespace Vel::MSysScript
