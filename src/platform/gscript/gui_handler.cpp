#include "gscript/gui_handler.h"

#include <QGuiApplication>

namespace Vel::GScript {

GUIHandler* GUIHandler::getInstance()
{
  static GUIHandler instance;
  return &instance;
}

namespace {
DialogAnswersHandler& answersHandler()
{
  static DialogAnswersHandler handler;
  return handler;
}
}  // namespace

void setDialogAnswersHandler(DialogAnswersHandler handler)
{
  answersHandler() = std::move(handler);
}

const DialogAnswersHandler& getDialogAnswersHandler()
{
  return answersHandler();
}

CursorDisabler::CursorDisabler()
{
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
    return;
  while (const QCursor* cursor = QGuiApplication::overrideCursor()) {
    _cursors << *cursor;
    QGuiApplication::restoreOverrideCursor();
  }
}

CursorDisabler::~CursorDisabler()
{
  for (auto it = _cursors.crbegin(); it != _cursors.crend(); ++it)
    QGuiApplication::setOverrideCursor(*it);
}

}  // namespace Vel::GScript
