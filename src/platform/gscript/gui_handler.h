#pragma once

#include <QList>
#include <QVariantList>

#include <functional>

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

// Answers for the user-defined dialogs that follow, from `zut.answer_dialogs(list)` (a recorded
// person's answers): the scripting module, which knows the dialogs, takes them.
using DialogAnswersHandler = std::function<void(const QVariantList& answers)>;
VEL_EXPORT void setDialogAnswersHandler(DialogAnswersHandler handler);
VEL_EXPORT const DialogAnswersHandler& getDialogAnswersHandler();

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
  std::function<void()> _restore;  // puts the cursors taken away back
};

}  // namespace Vel::GScript
