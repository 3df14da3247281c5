#pragma once

#include <QIcon>

#include "core/vel_export.h"

namespace Vel::GIcon {

class VEL_EXPORT Cache
{
public:
  // The icon that marks things of a configuration level (system, public, user); made once.
  static QIcon getConfigLevelIcon(int level);
};

}  // namespace Vel::GIcon
