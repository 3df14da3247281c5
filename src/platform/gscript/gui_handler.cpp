#include "gscript/gui_handler.h"

#include "gapp/interaction.h"

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
  if (const auto& take = GApp::Gui::services().take_cursors)
    _restore = take();
}

CursorDisabler::~CursorDisabler()
{
  if (_restore)
    _restore();
}

}  // namespace Vel::GScript
