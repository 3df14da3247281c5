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

// How a script file is laid out in bytes, so that saving gives back what was read: its encoding
// (decided as Python decides it: a UTF-8 byte-order mark, else a coding declaration in the first
// two lines, else UTF-8), its line endings and its byte-order mark.
struct ScriptFileFormat
{
  QByteArray encoding = "utf-8";  // as Python normalises the name
  QByteArray line_ending = "\n";
  bool bom = false;

  // The text of `bytes` with line feeds only. False (the reason, with the line, in `error`) when
  // the bytes are not valid in their encoding: nothing is replaced silently.
  static bool decode(const QByteArray& bytes, QString& text, ScriptFileFormat& format, QString& error);
  // The bytes of `text` in this format; the encoding is the one the text itself declares (else
  // UTF-8), as Python will read it. False with the reason when a character cannot be written.
  bool encode(const QString& text, QByteArray& bytes, QString& error) const;
  // The encoding a coding declaration in the first two lines names, normalised; empty if none.
  static QByteArray declaredEncoding(const QByteArray& head);
};

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
  // Writes the text to its file or database script, in the format it was read in; false
  // (reason in `log`) on failure.
  bool save(ErrorLog& log);
  // Keeps unsaved changes in a recovery file instead of the edited file (the application ends
  // without asking); opening the file again offers them. False (reason in `log`) on failure.
  bool writeRecovery(ErrorLog& log);
  // The recovery file of the file or database script being edited.
  QString recoveryFile() const;
  // The text exactly as it is saved (before encoding).
  QString text() const;
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
  bool load(const QByteArray& bytes, const QString& name, ErrorLog& log);
  void offerRecovery();
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
  ScriptFileFormat _format;
  std::unique_ptr<DatabaseLock> _lock;
  bool _busy = false;
};

}  // namespace Vel::MSysScript
