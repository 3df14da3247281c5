#pragma once

#include <QIcon>

#include "core/vel_export.h"

namespace Vel::GIcon {

// The application's standard pictures that dialogs may show on their buttons.
struct SystemIcon
{
  enum Type_t
  {
    Ok,
    Cancel,
    ArrowUp,
    ArrowDown,
    ArrowLeft,
    ArrowRight
  };
};

// The sizes at which the application shows its standard pictures.
struct SystemIconSize
{
  enum Type_t
  {
    Default,
    Large,
    ExtraLarge
  };
};

class VEL_EXPORT Cache
{
public:
  // The icon that marks things of a configuration level (system, public, user); made once.
  static QIcon getConfigLevelIcon(int level);
  // A standard picture; null without a GUI application.
  static QIcon getSystemIcon(SystemIcon::Type_t type);
  // The edge of a standard picture of that size, in pixels.
  static int getSystemIconExtent(SystemIconSize::Type_t size);
};

}  // namespace Vel::GIcon
