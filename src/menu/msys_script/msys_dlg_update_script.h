#pragma once

#include <QDialog>
#include <QString>

#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_dlg_script_editor.h"
#include "menu/msys_script/msys_script_update.h"

class QPlainTextEdit;
class QSplitter;

namespace Vel::MSysScript {

// A script file and its update side by side, the changed lines marked; "Update" writes the update
// (after keeping a backup of the original while the configuration asks for one).
class UpdateScriptDialog : public QDialog
{
  Q_OBJECT

public:
  // Reads and updates the file; throws GApp::CommandError (ERR_LOAD_SCRIPT) when it cannot be read.
  explicit UpdateScriptDialog(const QString& path, QWidget* parent = nullptr);

  const ScriptUpdate& update() const { return _update; }
  QPlainTextEdit* originalView() const { return _original_view; }
  QPlainTextEdit* updatedView() const { return _updated_view; }
  QSplitter* splitter() const { return _splitter; }
  // Where the original was kept, once written with a backup.
  const QString& backupPath() const { return _backup; }

  // Writes; a failed write is shown with ERR_SAVE_SCRIPT and the dialog stays open.
  void accept() override;
  // Keeps the size and the splitter's position for the next time.
  void done(int result) override;

private:
  QString _path;
  ScriptFileFormat _format;
  ScriptUpdate _update;
  QString _backup;
  QPlainTextEdit* _original_view = nullptr;
  QPlainTextEdit* _updated_view = nullptr;
  QSplitter* _splitter = nullptr;
};

// Shows the update of a script file and writes it when the person agrees. A file that cannot be
// read is shown with its error code (and returned in `log`). True when the file was written.
bool showScriptUpdate(const QString& path, QWidget* parent, ErrorLog& log);

}  // namespace Vel::MSysScript
