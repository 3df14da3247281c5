#pragma once

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

// "sys.show_script_editor": opens the script editor.
class EditorCommand : public MSysCommand
{
public:
  EditorCommand();
  void execute(const GApp::CommandParameters& parameters) override;

  // Whether the editor dialog exists (exit handling saves and closes it). There is no editor
  // dialog yet, so never.
  bool hasDialog() const { return false; }
};

}  // namespace Vel::MSysScript
