// The script editor's runs: starting them, their pauses, and the panel that shows a paused run.
#include <QAction>
#include <QApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QSplitter>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <memory>

#include "gapp/command.h"
#include "gapp/interaction.h"
#include "gedit/find_bar.h"
#include "gedit/source_editor.h"
#include "gscript/execute.h"
#include "gscript/safe_points.h"
#include "menu/msys_script/msys_dialog_answers.h"
#include "menu/msys_script/msys_dlg_command_parameters.h"
#include "menu/msys_script/msys_dlg_script_editor.h"
#include "menu/msys_script/msys_dlg_update_script.h"
#include "menu/msys_script/msys_dlg_user_defined.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_script_update.h"

namespace Vel::MSysScript {
namespace {

using GScript::Debugger;

// While a run is paused only the editor, the script's own dialogs and what they open take
// input: anything else could start a command in the middle of the paused script.
class PauseInputFilter : public QObject
{
public:
  explicit PauseInputFilter(QWidget* editor) : _editor(editor) { qApp->installEventFilter(this); }
  ~PauseInputFilter() override { qApp->removeEventFilter(this); }
  PauseInputFilter(const PauseInputFilter&) = delete;
  PauseInputFilter& operator=(const PauseInputFilter&) = delete;

  bool eventFilter(QObject* object, QEvent* event) override
  {
    switch (event->type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonRelease:
      case QEvent::MouseButtonDblClick:
      case QEvent::KeyPress:
      case QEvent::KeyRelease:
      case QEvent::Wheel: return object->isWidgetType() && !allowed(static_cast<QWidget*>(object));
      case QEvent::ShortcutOverride:
        // Taken here, the key is no shortcut of that window either.
        if (object->isWidgetType() && !allowed(static_cast<QWidget*>(object))) {
          event->accept();
          return true;
        }
        return false;
      // Sent to the action or shortcut, not to a widget: allowed when it belongs to one that is.
      case QEvent::Shortcut: return !belongsToAllowed(object);
      default: return false;
    }
  }

private:
  bool belongsToAllowed(QObject* object) const
  {
    if (auto* action = qobject_cast<QAction*>(object)) {
      const QList<QObject*> owners = action->associatedObjects();
      return std::any_of(owners.begin(), owners.end(), [this](QObject* owner) {
        return owner->isWidgetType() && allowed(static_cast<QWidget*>(owner));
      });
    }
    QObject* parent = object->parent();
    return parent && parent->isWidgetType() && allowed(static_cast<QWidget*>(parent));
  }

  bool allowed(QWidget* widget) const
  {
    for (QWidget* window = widget->window(); window;) {
      if (window == _editor || qobject_cast<UserDefinedDialog*>(window))
        return true;
      QWidget* parent = window->parentWidget();
      window = parent ? parent->window() : nullptr;
    }
    return false;
  }

  QWidget* _editor;
};

// A script file by its name alone; database scripts and texts without a file keep theirs.
QString shortName(const QString& file)
{
  return QFileInfo(file).isAbsolute() ? QFileInfo(file).fileName() : file;
}

QTreeWidgetItem* variableGroup(QTreeWidget* view, const QString& title, const QList<QPair<QString, QString>>& values)
{
  auto* group = new QTreeWidgetItem(view, {title});
  group->setFirstColumnSpanned(true);
  for (const auto& [name, value] : values) {
    // The module's own bookkeeping says nothing about the script.
    if (name.startsWith(QLatin1String("__")) && name != QLatin1String("__name__"))
      continue;
    auto* item = new QTreeWidgetItem(group, {name, value});
    item->setToolTip(1, value.left(2000));
  }
  return group;
}

}  // namespace

QWidget* ScriptEditorDialog::createDebugPanel()
{
  _stack_view = new QListWidget;
  _stack_view->setObjectName(QStringLiteral("stack"));
  _variables_view = new QTreeWidget;
  _variables_view->setObjectName(QStringLiteral("variables"));
  _variables_view->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Value")});
  _variables_view->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  _console_output = new QPlainTextEdit;
  _console_output->setObjectName(QStringLiteral("console_output"));
  _console_output->setReadOnly(true);
  _console_output->setFont(_editor->font());
  _console_input = new QLineEdit;
  _console_input->setObjectName(QStringLiteral("console_input"));
  _console_input->setFont(_editor->font());
  _console_input->setPlaceholderText(QStringLiteral("Python expression, evaluated in the paused frame"));
  connect(_stack_view, &QListWidget::currentRowChanged, this, &ScriptEditorDialog::showFrame);
  connect(_console_input, &QLineEdit::returnPressed, this, &ScriptEditorDialog::evaluateConsole);

  const auto titled = [](const QString& title, QWidget* content, QWidget* below = nullptr) {
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    layout->addWidget(new QLabel(QStringLiteral("<b>%1</b>").arg(title)));
    layout->addWidget(content, 1);
    if (below)
      layout->addWidget(below);
    return box;
  };
  auto* panel = new QSplitter(Qt::Vertical);
  panel->setObjectName(QStringLiteral("debug_panel"));
  panel->addWidget(titled(QStringLiteral("Call Stack"), _stack_view));
  panel->addWidget(titled(QStringLiteral("Variables"), _variables_view));
  panel->addWidget(titled(QStringLiteral("Console"), _console_output, _console_input));
  panel->setSizes({200, 300, 200});
  return panel;
}

void ScriptEditorDialog::createActions()
{
  struct Entry
  {
    const char* name;
    const char* text;
    QKeySequence key;
    std::function<void()> slot;
    bool tool_bar;
  };
  const QList<QPair<QString, QList<Entry>>> menus{
      {QStringLiteral("&File"), {{"save", "Save", QKeySequence::Save, [this] { saveWithReport(); }, true}}},
      {QStringLiteral("&Edit"),
       {{"find", "Find...", QKeySequence::Find, [this] { _find_bar->start(false); }, false},
        {"replace", "Replace...", QKeySequence(Qt::CTRL | Qt::Key_H), [this] { _find_bar->start(true); }, false},
        {"go_to_line", "Go to Line...", QKeySequence(Qt::CTRL | Qt::Key_G),
         [this] {
           bool ok = false;
           const int line = QInputDialog::getInt(this, QStringLiteral("Go to Line"), QStringLiteral("Line:"),
                                                 _editor->textCursor().blockNumber() + 1, 1,
                                                 _editor->document()->blockCount(), 1, &ok);
           if (ok)
             _editor->goToLine(line);
         },
         false},
        {"comment", "Comment Lines", QKeySequence(Qt::ALT | Qt::Key_3), [this] { _editor->commentLines(true); }, false},
        {"uncomment", "Uncomment Lines", QKeySequence(Qt::ALT | Qt::Key_4), [this] { _editor->commentLines(false); },
         false},
        {"command_parameters", "Command Parameters...", QKeySequence(Qt::CTRL | Qt::Key_E),
         [this] {
           ErrorLog log;
           editCommandParameters(_editor, _editor->textCursor().blockNumber(), this, log);
         },
         false},
        {"update_names", "Update Replaced Names", QKeySequence(), [this] { updateReplacedNames(); }, false}}},
      {QStringLiteral("&Debug"),
       {{"run", "Run", QKeySequence(Qt::Key_F5), [this] { goOn(&Debugger::resume, Start::Run); }, true},
        {"stop", "Stop", QKeySequence(Qt::SHIFT | Qt::Key_F5), [this] { stopRun(); }, true},
        {"step_into", "Step Into", QKeySequence(Qt::Key_F11), [this] { goOn(&Debugger::stepInto, Start::Step); }, true},
        {"step_over", "Step Over", QKeySequence(Qt::Key_F10), [this] { goOn(&Debugger::stepOver, Start::Step); }, true},
        {"step_out", "Step Out", QKeySequence(Qt::SHIFT | Qt::Key_F11), [this] { resumeWith(&Debugger::stepOut); },
         true},
        {"run_to_cursor", "Run to Cursor", QKeySequence(Qt::CTRL | Qt::Key_F10), [this] { runToCursor(); }, true},
        {"toggle_breakpoint", "Toggle Breakpoint", QKeySequence(Qt::Key_F9),
         [this] {
           const int line = _editor->textCursor().blockNumber();
           _editor->setBreakpoint(line, !_editor->getBreakpoints().count(line));
         },
         false},
        {"record", "Record", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R),
         [this] {
           if (isRecording()) {
             stopRecording();
             return;
           }
           ErrorLog log;
           if (!startRecording(log)) {
             action("record")->setChecked(false);
             GApp::ErrorDialog(QString::fromLatin1(ERR_RECORD_SCRIPT), log.getText());
           }
         },
         true}}}};
  QToolBar* tools = addToolBar(QStringLiteral("Script"));
  tools->setObjectName(QStringLiteral("tools"));
  for (const auto& [title, entries] : menus) {
    QMenu* menu = menuBar()->addMenu(title);
    for (const Entry& entry : entries) {
      QAction* action = menu->addAction(QString::fromLatin1(entry.text), this, entry.slot);
      action->setObjectName(QString::fromLatin1(entry.name));
      action->setShortcut(entry.key);
      action->setToolTip(QStringLiteral("%1 (%2)").arg(action->text(), entry.key.toString(QKeySequence::NativeText)));
      if (entry.tool_bar)
        tools->addAction(action);
    }
  }
  action("record")->setCheckable(true);
}

QAction* ScriptEditorDialog::action(const char* name) const
{
  return findChild<QAction*>(QString::fromLatin1(name));
}

void ScriptEditorDialog::updateActions()
{
  const bool paused = isPaused();
  action("run")->setText(paused ? QStringLiteral("Continue") : QStringLiteral("Run"));
  // What a recording writes must not land in a text that runs.
  action("run")->setEnabled((!_busy && !isRecording()) || paused);
  action("stop")->setEnabled(_busy);
  for (const char* name : {"step_into", "step_over", "run_to_cursor"})
    action(name)->setEnabled((!_busy && !isRecording()) || paused);
  action("record")->setEnabled(!_busy);
  // The lines a run pauses at are those of the text it started with.
  _editor->setReadOnly(_busy);
  for (const char* name : {"replace", "comment", "uncomment", "command_parameters", "update_names"})
    action(name)->setEnabled(!_busy);
  action("step_out")->setEnabled(paused);
  _console_input->setEnabled(paused);
}

void ScriptEditorDialog::setStatus(const QString& text)
{
  _status->setText(text);
}

QString ScriptEditorDialog::statusText() const
{
  return _status->text();
}

QString ScriptEditorDialog::runName() const
{
  return !_file.isEmpty() ? _file : !_database_file.isEmpty() ? _database_file : QStringLiteral("<editor>");
}

bool ScriptEditorDialog::run()
{
  return startRun(Start::Run);
}

bool ScriptEditorDialog::runToCursor()
{
  if (!isPaused())
    return startRun(Start::ToCursor);
  QString error;
  if (!_debugger->runTo(runName(), _editor->textCursor().blockNumber() + 1, &error)) {
    setStatus(QStringLiteral("Cannot run to line %1: %2.").arg(_editor->textCursor().blockNumber() + 1).arg(error));
    return false;
  }
  _pause_loop->quit();
  _pause_loop = nullptr;
  return true;
}

bool ScriptEditorDialog::startRun(Start start)
{
  if (_busy)
    return false;
  const QString name = runName();
  const QString source = text();
  QStringList notes;
  // One debugger at a time: a run that another debugged run starts is not debugged itself.
  std::unique_ptr<Debugger> debugger;
  if (!Debugger::active()) {
    debugger = std::make_unique<Debugger>(static_cast<Debugger::Frontend&>(*this));
    debugger->sourceCompiled(name, source.toUtf8());
    for (int line : _editor->getBreakpoints()) {
      QString error;
      if (!debugger->setBreakpoint(name, line + 1, QString(), false, &error))
        notes << QStringLiteral("The breakpoint in line %1 does nothing: %2.").arg(line + 1).arg(error);
    }
    if (start == Start::ToCursor) {
      const int line = _editor->textCursor().blockNumber() + 1;
      QString error;
      if (!debugger->runTo(name, line, &error)) {
        setStatus(QStringLiteral("Cannot run to line %1: %2.").arg(line).arg(error));
        return false;
      }
    }
    debugger->attach(start == Start::Step);
    _debugger = debugger.get();
  }
  _busy = true;
  _close_after_run = false;
  _run_has_paused = false;
  // Whatever leaves the run, the editor is idle again afterwards.
  struct Idle
  {
    ScriptEditorDialog* dialog;
    Idle(const Idle&) = delete;
    Idle& operator=(const Idle&) = delete;
    ~Idle()
    {
      dialog->_busy = false;
      dialog->_running = nullptr;
      if (dialog->_debugger)
        dialog->_debugger->detach();
      dialog->_debugger = nullptr;
      dialog->updateActions();
    }
  } idle{this};
  _editor->markErrorLine(-1);
  _console_output->clear();
  updateActions();

  GScript::Execute execute(source);
  execute.setFileName(name);
  execute.setQuoteOwnText(true);
  execute.setCollectStdout(true);
  execute.setCollectStderr(true);
  QString code;
  ErrorLog log;
  setStatus(QStringLiteral("Running..."));
  _running = &execute;
  const bool success = execute.execute(0, GScript::Execute::FLAG_MAIN, code, log);
  _running = nullptr;
  const bool stopped = _debugger && _debugger->stopped();
  // Answers that the run gave for dialogs that never came must not answer a person's later.
  notes << DialogAnswers::getUnused();
  DialogAnswers::reset();
  QString output = notes.isEmpty() ? QString() : notes.join(QLatin1Char('\n')) + QLatin1Char('\n');
  output += execute.getCollectedOutput();
  if (success) {
    setStatus(QStringLiteral("Finished."));
  } else {
    const GApp::CommandError error(code, log);
    output += error.getText() + QLatin1Char('\n');
    // The innermost frame of this text names the failing line.
    const QRegularExpression frame(QStringLiteral("File \"%1\", line (\\d+)").arg(QRegularExpression::escape(name)));
    int line = -1;
    for (auto it = frame.globalMatch(log.getText()); it.hasNext();)
      line = it.next().captured(1).toInt() - 1;
    if (!stopped)
      _editor->markErrorLine(line);
    setStatus(stopped     ? QStringLiteral("Stopped.")
              : line >= 0 ? QStringLiteral("Failed in line %1.").arg(line + 1)
                          : QStringLiteral("Failed."));
  }
  _output->setPlainText(output);
  if (_close_after_run)
    QTimer::singleShot(0, this, &QWidget::close);
  return success;
}

void ScriptEditorDialog::paused(Debugger& debugger, const Debugger::Stop& stop)
{
  // A run that nobody is stepping through reports its failure as it always did; one that has
  // paused before stops once more at the exception, for a look at its frames.
  if (stop.reason == Debugger::Reason::Exception && !_run_has_paused)
    return;
  _run_has_paused = true;
  if (_running)
    _output->setPlainText(_running->getCollectedOutputSoFar());
  _frames = debugger.stack();
  const Debugger::Frame here = _frames.value(_frames.size() - 1);
  const bool own = here.file == runName();
  _editor->setCurrentLine(own ? here.line - 1 : -1);
  _stack_view->clear();
  for (int i = int(_frames.size()) - 1; i >= 0; --i) {
    auto* item = new QListWidgetItem(
        QStringLiteral("%1  %2:%3").arg(_frames[i].function, shortName(_frames[i].file)).arg(_frames[i].line),
        _stack_view);
    item->setToolTip(QStringLiteral("%1, line %2").arg(_frames[i].file).arg(_frames[i].line));
  }
  QString where = QStringLiteral("%1, line %2").arg(shortName(here.file)).arg(here.line);
  if (!own) {
    // Paused in another script (a database script stepped into): its lines around the pause
    // stand in the console, since the editor shows only its own text.
    QStringList context{QStringLiteral("-- %1 --").arg(here.file)};
    for (int line = qMax(1, here.line - 3); line <= here.line + 3; ++line) {
      const QString source = debugger.sourceLine(here.file, line);
      if (source.isEmpty() && line > here.line)
        break;
      context << QStringLiteral("%1%2  %3")
                     .arg(line == here.line ? QStringLiteral("->") : QStringLiteral("  "))
                     .arg(line, 4)
                     .arg(source);
    }
    _console_output->appendPlainText(context.join(QLatin1Char('\n')));
  }
  switch (stop.reason) {
    case Debugger::Reason::Exception:
      setStatus(QStringLiteral("Stopped by %1 in %2. Continue ends the run.").arg(stop.message, where));
      break;
    case Debugger::Reason::Breakpoint:
      setStatus(stop.message.isEmpty()
                    ? QStringLiteral("Paused at the breakpoint in %1.").arg(where)
                    : QStringLiteral("Paused in %1: the breakpoint's condition failed: %2").arg(where, stop.message));
      break;
    case Debugger::Reason::Step: setStatus(QStringLiteral("Paused in %1.").arg(where)); break;
  }

  QEventLoop loop;
  _pause_loop = &loop;
  _stack_view->setCurrentRow(0);
  updateActions();
  {
    const PauseInputFilter filter(this);
    Q_EMIT runPaused(own ? here.line - 1 : -1);
    // A stop may have come while the signal was handled.
    if (_pause_loop)
      loop.exec();
  }
  _pause_loop = nullptr;
  _frames.clear();
  _stack_view->clear();
  _variables_view->clear();
  _editor->setCurrentLine(-1);
  setStatus(QStringLiteral("Running..."));
  updateActions();
}

void ScriptEditorDialog::goOn(void (Debugger::*how)(), Start start)
{
  if (isPaused())
    resumeWith(how);
  else
    startRun(start);
}

void ScriptEditorDialog::resumeWith(void (Debugger::*how)())
{
  if (!isPaused())
    return;
  (_debugger->*how)();
  _pause_loop->quit();
  _pause_loop = nullptr;
}

void ScriptEditorDialog::stopRun()
{
  if (isPaused()) {
    resumeWith(&Debugger::stop);
  } else if (_busy) {
    GScript::SafePoints::requestAbort();
  }
}

void ScriptEditorDialog::showFrame(int row)
{
  _variables_view->clear();
  const int frame = int(_frames.size()) - 1 - row;
  if (!_debugger || row < 0 || frame < 0)
    return;
  const auto locals = _debugger->locals(frame);
  const auto globals = _debugger->globals(frame);
  // At module level the two are one namespace.
  if (locals != globals)
    variableGroup(_variables_view, QStringLiteral("Locals"), locals)->setExpanded(true);
  variableGroup(_variables_view, QStringLiteral("Globals"), globals)->setExpanded(locals == globals);
  if (_frames[frame].file == runName())
    _editor->goToLine(_frames[frame].line);
}

void ScriptEditorDialog::updateReplacedNames()
{
  // A saved script is updated as a file, side by side and with a backup; unsaved text in place.
  const QString path = !_file.isEmpty() ? _file : databaseScriptPath();
  if (!isModified() && !path.isEmpty() && QFileInfo::exists(path)) {
    ErrorLog log;
    if (showScriptUpdate(path, this, log)) {
      ErrorLog reload;
      if (!_file.isEmpty() ? openFile(_file, reload) : openDatabaseScript(_database_file, reload))
        setStatus(QStringLiteral("Updated."));
      else
        GApp::ErrorDialog(QString::fromLatin1(ERR_LOAD_SCRIPT), reload.getText());
    }
    return;
  }
  const QString before = text();
  const ScriptUpdate update = updateScriptText(before, UpdateRules::fromCommands());
  QStringList report;
  for (const ScriptChange& change : update.changes)
    report << QStringLiteral("line %1: %2 -> %3").arg(change.line).arg(change.old_text, change.new_text);
  report << update.problems;
  _output->setPlainText(report.join(QLatin1Char('\n')));
  if (update.changes.isEmpty()) {
    setStatus(QStringLiteral("No replaced command or argument names to update."));
    return;
  }
  GEdit::replaceDifference(_editor->document(), 0, before, update.text);
  setStatus(QStringLiteral("%1 names updated; the output lists them.").arg(update.changes.size()));
}

void ScriptEditorDialog::evaluateConsole()
{
  const QString expression = _console_input->text().trimmed();
  if (expression.isEmpty() || !isPaused())
    return;
  const int frame = int(_frames.size()) - 1 - qMax(0, _stack_view->currentRow());
  QString result;
  _debugger->evaluate(expression, frame, result);
  _console_output->appendPlainText(QStringLiteral(">>> %1\n%2").arg(expression, result));
  _console_input->clear();
}

}  // namespace Vel::MSysScript
