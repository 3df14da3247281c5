#pragma once

#include "core/vel_export.h"

namespace Vel::GScript {

// The user's request to stop running scripts (the Escape key while a script runs).
class VEL_EXPORT GUIHandler
{
public:
  static GUIHandler* getInstance();

  void requestEscape() { _escape = true; }
  bool isEscapeRequested() const { return _escape; }
  void resetEscape() { _escape = false; }

private:
  GUIHandler() = default;
  bool _escape = false;
};

}  // namespace Vel::GScript
