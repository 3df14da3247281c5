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

  // Whether the editor records the user's commands into the current script; script commands
  // refuse to run the script being recorded.
  bool isRecording() const { return _recording; }
  void setRecording(bool recording) { _recording = recording; }

private:
  bool _recording = false;
};

}  // namespace Vel::MSysScript
