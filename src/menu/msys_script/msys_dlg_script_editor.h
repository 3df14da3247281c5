#pragma once

#include <QMainWindow>

#include <memory>

#include "core/error_log.h"
#include "gscript/debugger.h"
#include "menu/msys_script/msys_script_file_format.h"

class QAction;
class QEventLoop;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QSplitter;
class QTreeWidget;

namespace Vel::GScript {
class Execute;
}

namespace Vel::GEdit {
class FindBar;
class SourceEditor;
}  // namespace Vel::GEdit

namespace Vel::MSysScript {

class DatabaseLock;
class ScriptRecorder;
class PythonParser;
class PythonHighlighter;

// The script editor: the source text with colours, folds and line numbers above, the output of
// the last run below, and beside them what a paused run shows: its call stack, the variables of
// the chosen frame and a console that evaluates there. It edits a file, or the database's
// current script (holding the database while it is open).
//
// Runs are debugged: breakpoints set in the line numbers pause them, and Step, Run to cursor and
// Stop drive them. A paused run waits in a nested event loop in which only the editor and the
// script's own dialogs take input.
class ScriptEditorDialog : public QMainWindow, private GScript::Debugger::Frontend
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
  // failing line marked in the text. Returns when the run has ended, pauses included.
  bool run();
  // Runs the text until the cursor's line (while paused: goes on to it).
  bool runToCursor();
  bool isBusy() const { return _busy; }
  bool isPaused() const { return _pause_loop != nullptr; }
  // Ends the run: where it is paused, or at its next safe point.
  void stopRun();
  // The name runs give the text: the file, the database script, or "<editor>".
  QString runName() const;

  // Records the commands a person runs as lines at the cursor, the window hidden meanwhile when
  // "MSysScript/HideWhenRecording" says so (a small window then offers Stop). False (reason in
  // `log`) when it cannot record now.
  bool startRecording(ErrorLog& log);
  void stopRecording();
  bool isRecording() const { return _recorder != nullptr; }
  QWidget* getRecordingWindow() const { return _recording_window; }

  QAction* action(const char* name) const;
  QListWidget* getStackView() const { return _stack_view; }
  QTreeWidget* getVariablesView() const { return _variables_view; }
  QLineEdit* getConsoleInput() const { return _console_input; }
  QPlainTextEdit* getConsoleOutput() const { return _console_output; }
  GEdit::FindBar* getFindBar() const { return _find_bar; }
  QString statusText() const;

  GEdit::SourceEditor* getEditor() const { return _editor; }
  QPlainTextEdit* getOutput() const { return _output; }
  const QString& getFileName() const { return _file; }

Q_SIGNALS:
  // A run paused; `line` is the line (0-based) of the editor's text, -1 when it is paused in
  // another script.
  void runPaused(int line);

protected:
  void closeEvent(QCloseEvent* event) override;

private:
  enum class Start
  {
    Run,
    Step,
    ToCursor
  };
  bool startRun(Start start);
  void paused(GScript::Debugger& debugger, const GScript::Debugger::Stop& stop) override;
  void resumeWith(void (GScript::Debugger::*how)());
  // While paused, resumes so; otherwise starts a run so.
  void goOn(void (GScript::Debugger::*how)(), Start start);
  void showFrame(int row);
  void evaluateConsole();
  // Older command and argument names become the current ones: a saved script through the
  // side-by-side update dialog, unsaved text in place as one undo step.
  void updateReplacedNames();
  // The file of the database script being edited; empty for none.
  QString databaseScriptPath() const;
  void updateActions();
  void setStatus(const QString& text);
  void insertRecorded(const QStringList& lines);
  void setEditorCommandRecording(bool recording);
  void createActions();
  QWidget* createDebugPanel();
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
  QSplitter* _splitter;       // the source above the output
  QSplitter* _main_splitter;  // those beside the debugging panel
  GEdit::FindBar* _find_bar;
  QListWidget* _stack_view;
  QTreeWidget* _variables_view;
  QLineEdit* _console_input;
  QPlainTextEdit* _console_output;
  QLabel* _status;
  QString _file;           // a file on disk, or
  QString _database_file;  // the database file name of the script
  ScriptFileFormat _format;
  std::unique_ptr<DatabaseLock> _lock;
  bool _busy = false;
  bool _close_after_run = false;
  bool _run_has_paused = false;
  GScript::Debugger* _debugger = nullptr;  // while a run of this editor is debugged
  const GScript::Execute* _running = nullptr;
  QEventLoop* _pause_loop = nullptr;  // while paused
  std::unique_ptr<ScriptRecorder> _recorder;
  QWidget* _recording_window = nullptr;
  QList<GScript::Debugger::Frame> _frames;  // while paused, outermost first
};

}  // namespace Vel::MSysScript
