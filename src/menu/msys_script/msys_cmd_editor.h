#pragma once

#include <QPointer>

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

class ScriptEditorDialog;

// "sys.show_script_editor": opens the script editor on the database's current script. The
// program passes a file to edit as the optional argument "file" (not offered to scripts).
class EditorCommand : public MSysCommand
{
public:
  EditorCommand();
  ~EditorCommand() override;
  void execute(const GApp::CommandParameters& parameters) override;

  // The editor dialog, while it exists (exit handling saves and closes it).
  bool hasDialog() const { return !_dialog.isNull(); }
  ScriptEditorDialog* getDialog() const;  // in the GUI half, which makes the window
  void setDialog(QObject* dialog) { _dialog = dialog; }
  void destroyDialog() { delete _dialog.data(); }

  // Whether the editor records the user's commands into the current script; script commands
  // refuse to run the script being recorded.
  bool isRecording() const { return _recording; }
  void setRecording(bool recording) { _recording = recording; }

private:
  bool _recording = false;
  QPointer<QObject> _dialog;
};

}  // namespace Vel::MSysScript
