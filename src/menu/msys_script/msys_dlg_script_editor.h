#pragma once

#include <QMainWindow>

#include <memory>

#include "core/error_log.h"

class QPlainTextEdit;
class QSplitter;
class QLabel;

namespace Vel::GEdit {
class SourceEditor;
}

namespace Vel::MSysScript {

class DatabaseLock;
class PythonParser;
class PythonHighlighter;

// The script editor: the source text with colours, folds and line numbers above, the output of
// the last run below. It edits a file, or the database's current script (holding the database
// while it is open).
class ScriptEditorDialog : public QMainWindow
{
  Q_OBJECT

public:
  explicit ScriptEditorDialog(QWidget* parent = nullptr);
  ~ScriptEditorDialog() override;

  // Loads a file; a file that does not exist yet starts empty. False (reason in `log`) when it
  // cannot be read.
  bool openFile(const QString& path, ErrorLog& log);
  // Edits the database script of that file name; false when there is none.
  bool openDatabaseScript(const QString& file_name, ErrorLog& log);

  bool isModified() const;
  // Writes the text to its file or database script; false (reason in `log`) on failure.
  bool save(ErrorLog& log);
  // Runs the text; the output pane shows what it printed and, on failure, the error, with the
  // failing line marked in the text.
  bool run();
  bool isBusy() const { return _busy; }

  GEdit::SourceEditor* getEditor() const { return _editor; }
  QPlainTextEdit* getOutput() const { return _output; }
  const QString& getFileName() const { return _file; }

protected:
  void closeEvent(QCloseEvent* event) override;

private:
  void updateTitle();
  void saveWithReport();
  void applyConfiguration();
  void storeGeometry();

  GEdit::SourceEditor* _editor;
  PythonParser* _parser;
  PythonHighlighter* _highlighter;
  QPlainTextEdit* _output;
  QSplitter* _splitter;
  QLabel* _status;
  QString _file;           // a file on disk, or
  QString _database_file;  // the database file name of the script
  std::unique_ptr<DatabaseLock> _lock;
  bool _busy = false;
};

}  // namespace Vel::MSysScript
