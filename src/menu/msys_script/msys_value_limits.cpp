#include "menu/msys_script/msys_value_limits.h"

namespace Vel::MSysScript {

ValueLimits::~ValueLimits() = default;

}  // namespace Vel::MSysScript
