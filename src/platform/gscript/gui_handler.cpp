#include "gscript/gui_handler.h"

namespace Vel::GScript {

GUIHandler* GUIHandler::getInstance()
{
  static GUIHandler instance;
  return &instance;
}

}  // namespace Vel::GScript
