#include "menu/msys_script/msys_dlg_script_editor.h"

#include <QAction>
#include <QCloseEvent>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSplitter>
#include <QStatusBar>
#include <QStringDecoder>
#include <QStringEncoder>
#include <QTextBlock>
#include <QToolBar>
#include <QVBoxLayout>

#include <functional>

#include "cfg/cfg.h"
#include "core/translate.h"
#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gedit/find_bar.h"
#include "gedit/source_editor.h"
#include "gscript/execute.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"
#include "menu/msys_script/msys_python_script_database.h"
#include "menu/msys_script/msys_script_recorder.h"

namespace Vel::MSysScript {
namespace {

// The small window that stands in for the hidden editor while it records: closing it stops the
// recording like its button, so that the editor never stays hidden.
class RecordingWindow : public QWidget
{
public:
  RecordingWindow(QWidget* editor, const QString& name, std::function<void()> stop)
      : QWidget(editor, Qt::Tool | Qt::WindowStaysOnTopHint), _stop(std::move(stop))
  {
    setObjectName(QStringLiteral("recording_window"));
    setWindowTitle(QStringLiteral("Recording"));
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Recording into %1").arg(name)));
    auto* button = new QPushButton(QStringLiteral("Stop Recording"));
    button->setObjectName(QStringLiteral("stop_recording"));
    layout->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this] { _stop(); });
  }

protected:
  void closeEvent(QCloseEvent* event) override
  {
    event->accept();
    _stop();
  }

private:
  std::function<void()> _stop;
};

QString recoveryFolder()
{
  QString base = qEnvironmentVariable("XDG_DATA_HOME");
  if (base.isEmpty())
    base = QDir::homePath() + QStringLiteral("/.local/share");
  return base + QStringLiteral("/zut/recovery");
}

}  // namespace

// ---------------------------------------------------------------------------------------------

ScriptEditorDialog::ScriptEditorDialog(QWidget* parent)
    : QMainWindow(parent),
      _parser(new PythonParser),
      _output(new QPlainTextEdit),
      _splitter(new QSplitter(Qt::Vertical)),
      _main_splitter(new QSplitter(Qt::Horizontal)),
      _status(new QLabel)
{
  {
    DatabaseLock database;
    _highlighter = new PythonHighlighter(nullptr, database.get());
  }
  _editor = new GEdit::SourceEditor(_parser, _highlighter);
  _editor->setObjectName(QStringLiteral("source"));
  _find_bar = new GEdit::FindBar(_editor);
  _output->setReadOnly(true);
  _output->setObjectName(QStringLiteral("output"));
  _output->setFont(_editor->font());
  _output->setPlaceholderText(QStringLiteral("Output of the script appears here (F5 runs it)."));
  auto* source = new QWidget;
  auto* source_layout = new QVBoxLayout(source);
  source_layout->setContentsMargins(0, 0, 0, 0);
  source_layout->setSpacing(0);
  source_layout->addWidget(_editor);
  source_layout->addWidget(_find_bar);
  _splitter->addWidget(source);
  _splitter->addWidget(_output);
  _main_splitter->addWidget(_splitter);
  _main_splitter->addWidget(createDebugPanel());
  setCentralWidget(_main_splitter);
  _status->setObjectName(QStringLiteral("status"));
  statusBar()->addWidget(_status, 1);
  createActions();

  connect(_editor->document(), &QTextDocument::modificationChanged, this, [this] {
    updateTitle();
    // What was saved is not what is shown any more.
    if (isModified() && _status->text() == QLatin1String("Saved."))
      _status->clear();
  });
  connect(_editor, &GEdit::SourceEditor::breakpointToggled, this, [this](int line, bool set) {
    if (!_debugger)
      return;
    QString error;
    if (set && !_debugger->setBreakpoint(runName(), line + 1, QString(), false, &error))
      setStatus(QStringLiteral("No breakpoint in line %1: %2.").arg(line + 1).arg(error));
    else if (!set)
      _debugger->clearBreakpoint(runName(), line + 1);
  });
  applyConfiguration();
  updateTitle();
  updateActions();
}

ScriptEditorDialog::~ScriptEditorDialog()
{
  stopRecording();
}

bool ScriptEditorDialog::startRecording(ErrorLog& log)
{
  if (_recorder)
    return true;
  if (_busy) {
    log.addLine(QStringLiteral("The editor cannot record while its script runs."));
    return false;
  }
  if (GApp::Command::getRecorder()) {
    log.addLine(QStringLiteral("Another editor is recording already."));
    return false;
  }
  _recorder = std::make_unique<ScriptRecorder>(
      [this](const QStringList& lines) { insertRecorded(lines); },
      [](const QString& message) { GApp::ErrorDialog(QString::fromLatin1(ERR_RECORD_SCRIPT), message); });
  setEditorCommandRecording(true);
  action("record")->setChecked(true);
  setStatus(QStringLiteral("Recording: the commands you run are written at the cursor."));
  CfgNode* root = configurationRoot();
  if (root && root->getBool(QString::fromLatin1(CFG_HIDE_WHEN_RECORDING))) {
    if (!_recording_window)
      _recording_window =
          new RecordingWindow(this, windowTitle().section(QLatin1String(" - "), 0, 0), [this] { stopRecording(); });
    _recording_window->show();
    hide();
  }
  updateActions();
  return true;
}

void ScriptEditorDialog::stopRecording()
{
  if (!_recorder)
    return;
  _recorder.reset();
  setEditorCommandRecording(false);
  if (QAction* record = action("record"))
    record->setChecked(false);
  if (_recording_window) {
    _recording_window->hide();
    show();
    raise();
    activateWindow();
  }
  setStatus(QStringLiteral("Recording stopped."));
  updateActions();
}

void ScriptEditorDialog::setEditorCommandRecording(bool recording)
{
  if (auto* command = dynamic_cast<EditorCommand*>(
          GApp::CommandContainer::getInstance().getCommand(QStringLiteral("sys.show_script_editor"))))
    command->setRecording(recording);
}

void ScriptEditorDialog::insertRecorded(const QStringList& lines)
{
  // At the start of the cursor's line, indented like it, so that the calls land where the
  // person points; the cursor stays below them for the next.
  QTextCursor cursor = _editor->textCursor();
  cursor.clearSelection();
  cursor.movePosition(QTextCursor::StartOfBlock);
  const QString line = cursor.block().text();
  const QString indent = line.trimmed().isEmpty() ? QString() : GEdit::leadingSpace(line);
  QString text;
  for (const QString& recorded : lines)
    text += indent + recorded + QLatin1Char('\n');
  cursor.beginEditBlock();
  cursor.insertText(text);
  // The lines need the package: imported once, at the top, below a first line such as "#!...".
  static const QRegularExpression imported(
      QStringLiteral("^[ \\t]*(import[ \\t]+zut\\b|from[ \\t]+zut[ \\t]+import\\b)"),
      QRegularExpression::MultilineOption);
  if (!imported.match(_editor->toPlainText()).hasMatch()) {
    QTextCursor top(_editor->document());
    if (_editor->document()->firstBlock().text().startsWith(QLatin1String("#!")))
      top.movePosition(QTextCursor::NextBlock);
    top.insertText(QStringLiteral("import zut\n"));
  }
  cursor.endEditBlock();
  _editor->setTextCursor(cursor);
}

void ScriptEditorDialog::applyConfiguration()
{
  const int tab_width = 4;
  int width = tab_width;
  bool show_tabs = false;
  double splitter = 0.75;
  double main_splitter = 0.75;
  QList<int> size{1100, 700};
  if (CfgNode* root = configurationRoot()) {
    width = int(root->getUInt(QString::fromLatin1(CFG_TAB_WIDTH)));
    show_tabs = root->getBool(QString::fromLatin1(CFG_SHOW_TABS));
    splitter = root->getDouble(QString::fromLatin1(CFG_SOURCE_EDITOR_SPLITTER));
    main_splitter = root->getDouble(QString::fromLatin1(CFG_EDITOR_DIALOG_SPLITTER));
    const QList<int> stored = root->getIntArray(QString::fromLatin1(CFG_EDITOR_DIALOG_SIZE));
    if (stored.size() == 2 && stored[0] > 0 && stored[1] > 0)
      size = stored;
  }
  _parser->setTabSize(width);
  _editor->setTabWidth(width);
  _editor->setShowTabs(show_tabs);
  resize(size[0], size[1]);
  _splitter->setSizes({int(1000 * splitter), int(1000 * (1 - splitter))});
  _main_splitter->setSizes({int(1000 * main_splitter), int(1000 * (1 - main_splitter))});
}

void ScriptEditorDialog::storeGeometry()
{
  CfgNode* root = configurationRoot();
  if (!root)
    return;
  root->setValue(QString::fromLatin1(CFG_EDITOR_DIALOG_SIZE), QVariantList{width(), height()});
  const QList<int> sizes = _splitter->sizes();
  if (sizes.size() == 2 && sizes[0] + sizes[1] > 0)
    root->setValue(QString::fromLatin1(CFG_SOURCE_EDITOR_SPLITTER), double(sizes[0]) / (sizes[0] + sizes[1]));
  const QList<int> beside = _main_splitter->sizes();
  if (beside.size() == 2 && beside[0] + beside[1] > 0)
    root->setValue(QString::fromLatin1(CFG_EDITOR_DIALOG_SPLITTER), double(beside[0]) / (beside[0] + beside[1]));
}

bool ScriptEditorDialog::load(const QByteArray& bytes, const QString& name, ErrorLog& log)
{
  QString text;
  ScriptFileFormat format;
  QString error;
  if (!ScriptFileFormat::decode(bytes, text, format, error)) {
    log.addLine(QStringLiteral("%1: %2. It was not opened, so that nothing in it is changed.").arg(name, error));
    return false;
  }
  _format = format;
  _editor->clearBreakpoints();  // they were set in another text
  _editor->setPlainText(text);
  _editor->document()->setModified(false);
  return true;
}

bool ScriptEditorDialog::openFile(const QString& path, ErrorLog& log)
{
  QByteArray bytes;
  QFile file(path);
  if (file.exists()) {
    if (!file.open(QIODevice::ReadOnly)) {
      log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
      return false;
    }
    bytes = file.readAll();
  }
  if (!load(bytes, QDir::toNativeSeparators(path), log))
    return false;
  _lock.reset();
  _database_file.clear();
  _file = path;
  offerRecovery();
  updateTitle();
  return true;
}

bool ScriptEditorDialog::openDatabaseScript(const QString& file_name, ErrorLog& log)
{
  auto lock = std::make_unique<DatabaseLock>();
  if (!*lock)
    return false;
  QByteArray bytes;
  if (!(*lock)->readScriptBytes(file_name, bytes, nullptr, log) || !load(bytes, file_name, log))
    return false;
  (*lock)->setCurrentScript(file_name);
  _lock = std::move(lock);
  _file.clear();
  _database_file = file_name;
  offerRecovery();
  updateTitle();
  return true;
}

QString ScriptEditorDialog::databaseScriptPath() const
{
  const GScript::Script* script = _lock && !_database_file.isEmpty() ? (*_lock)->getScript(_database_file) : nullptr;
  return script ? script->getPath() : QString();
}

bool ScriptEditorDialog::isModified() const
{
  return _editor->document()->isModified();
}

QString ScriptEditorDialog::text() const
{
  // Not toPlainText(): that turns non-breaking spaces into spaces.
  QString text = _editor->document()->toRawText();
  text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
  return text;
}

bool ScriptEditorDialog::save(ErrorLog& log)
{
  QByteArray bytes;
  QString error;
  if (!_format.encode(text(), bytes, error)) {
    log.addLine(
        QStringLiteral("%1: %2.").arg(!_file.isEmpty() ? QDir::toNativeSeparators(_file) : _database_file, error));
    return false;
  }
  if (!_database_file.isEmpty()) {
    const GScript::Script* script = (*_lock)->getScript(_database_file);
    const int level = script ? script->getConfigLevel() : int(GScript::LEVEL_USER);
    const GScript::ScriptMetadata metadata = script ? script->getMetadata() : GScript::ScriptMetadata();
    if (!(*_lock)->writeScript(level, _database_file, bytes, metadata, log))
      return false;
  } else {
    if (_file.isEmpty()) {
      log.addLine(QStringLiteral("The script has no file name yet."));
      return false;
    }
    QSaveFile file(_file);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
      log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(_file), file.errorString()));
      return false;
    }
  }
  QFile::remove(recoveryFile());
  _editor->document()->setModified(false);
  setStatus(QStringLiteral("Saved."));
  return true;
}

QString ScriptEditorDialog::recoveryFile() const
{
  const QString key = !_file.isEmpty()            ? QFileInfo(_file).absoluteFilePath()
                      : !_database_file.isEmpty() ? QStringLiteral("database:") + _database_file
                                                  : QString();
  if (key.isEmpty())
    return QString();
  const QByteArray hash = QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha1).toHex();
  return recoveryFolder() + QLatin1Char('/') + QString::fromLatin1(hash) + QStringLiteral(".json");
}

bool ScriptEditorDialog::writeRecovery(ErrorLog& log)
{
  const QString path = recoveryFile();
  if (!isModified() || path.isEmpty())
    return true;
  const QJsonObject recovery{{QStringLiteral("file"), !_file.isEmpty() ? _file : _database_file},
                             {QStringLiteral("written"), QDateTime::currentDateTime().toString(Qt::ISODate)},
                             {QStringLiteral("text"), text()}};
  const QByteArray bytes = QJsonDocument(recovery).toJson();
  QDir().mkpath(QFileInfo(path).absolutePath());
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
    log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
    return false;
  }
  return true;
}

void ScriptEditorDialog::offerRecovery()
{
  const QString path = recoveryFile();
  QFile file(path);
  if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
    return;
  const QJsonObject recovery = QJsonDocument::fromJson(file.readAll()).object();
  file.close();
  const QJsonValue kept = recovery.value(QStringLiteral("text"));
  if (!kept.isString())
    return;  // not ours to judge: it stays where it is
  if (kept.toString() == text()) {
    QFile::remove(path);
    return;
  }
  const QString name = !_file.isEmpty() ? QDir::toNativeSeparators(_file) : _database_file;
  // Nobody to ask: the changes come back unsaved, the file stays as it is.
  const bool restore = GApp::askYesNo(
      windowTitle(),
      QStringLiteral("Changes to %1 were not saved when the application ended (%2).\n"
                     "Restore them? No sets them aside in %3.discarded.")
          .arg(name, recovery.value(QStringLiteral("written")).toString(), QDir::toNativeSeparators(path)),
      true);
  if (restore) {
    _editor->setPlainText(kept.toString());
    _editor->document()->setModified(true);
    setStatus(QStringLiteral("Unsaved changes restored: save them to keep them."));
    QFile::remove(path);
  } else {
    // "No" may also be a question cut short by the end of the program: set aside, never deleted.
    QFile::remove(path + QStringLiteral(".discarded"));
    QFile::rename(path, path + QStringLiteral(".discarded"));
  }
}

void ScriptEditorDialog::saveWithReport()
{
  ErrorLog log;
  if (!save(log))
    GApp::ErrorDialog(QString::fromLatin1(ERR_SAVE_SCRIPT), log.getText());
}

void ScriptEditorDialog::updateTitle()
{
  const QString name = !_file.isEmpty()            ? QFileInfo(_file).fileName()
                       : !_database_file.isEmpty() ? _database_file
                                                   : QStringLiteral("untitled");
  setWindowTitle(QStringLiteral("%1%2 - %3")
                     .arg(name, isModified() ? QStringLiteral(" *") : QString(),
                          translate("MSysScript_cmd", "Edit Script", "id=25937")));
}

void ScriptEditorDialog::closeEvent(QCloseEvent* event)
{
  // The run's frames live on this window's stack: it closes once the run has ended.
  if (_busy) {
    _close_after_run = true;
    stopRun();
    event->ignore();
    return;
  }
  if (isModified() && GApp::isInteractive()) {
    const auto answer = QMessageBox::question(this, windowTitle(), QStringLiteral("Save the changes?"),
                                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    if (answer == QMessageBox::Cancel) {
      event->ignore();
      return;
    }
    if (answer == QMessageBox::Discard)
      _editor->document()->setModified(false);
    if (answer == QMessageBox::Save) {
      ErrorLog log;
      if (!save(log)) {
        GApp::ErrorDialog(QString::fromLatin1(ERR_SAVE_SCRIPT), log.getText());
        event->ignore();
        return;
      }
    }
  }
  stopRecording();
  storeGeometry();
  event->accept();
}

}  // namespace Vel::MSysScript
