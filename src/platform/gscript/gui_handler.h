#pragma once

#include <QCursor>
#include <QList>

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

// Takes the application's busy cursor away while a script runs, so that the person can work with
// the dialogs the script shows, and puts it back afterwards.
class VEL_EXPORT CursorDisabler
{
public:
  CursorDisabler();
  ~CursorDisabler();
  CursorDisabler(const CursorDisabler&) = delete;
  CursorDisabler& operator=(const CursorDisabler&) = delete;

private:
  QList<QCursor> _cursors;  // the override cursors taken away, innermost first
};

}  // namespace Vel::GScript
