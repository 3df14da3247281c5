#include "menu/msys_script/msys_dlg_script_editor.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>

#include "cfg/cfg.h"
#include "core/translate.h"
#include "gapp/command.h"
#include "gedit/source_editor.h"
#include "gscript/execute.h"
#include "gscript/script_database.h"
#include "gtools/error_dialog.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"
#include "menu/msys_script/msys_python_script_database.h"

namespace Vel::MSysScript {

ScriptEditorDialog::ScriptEditorDialog(QWidget* parent)
    : QMainWindow(parent),
      _parser(new PythonParser),
      _output(new QPlainTextEdit),
      _splitter(new QSplitter(Qt::Vertical)),
      _status(new QLabel)
{
  {
    DatabaseLock database;
    _highlighter = new PythonHighlighter(nullptr, database.get());
  }
  _editor = new GEdit::SourceEditor(_parser, _highlighter);
  _output->setReadOnly(true);
  _output->setObjectName(QStringLiteral("output"));
  _output->setFont(_editor->font());
  _output->setPlaceholderText(QStringLiteral("Output of the script appears here (F5 runs it)."));
  _splitter->addWidget(_editor);
  _splitter->addWidget(_output);
  setCentralWidget(_splitter);
  statusBar()->addWidget(_status, 1);

  QToolBar* tools = addToolBar(QStringLiteral("Script"));
  tools->setObjectName(QStringLiteral("tools"));
  QAction* run_action = tools->addAction(QStringLiteral("Run"), this, [this] { run(); });
  run_action->setShortcut(Qt::Key_F5);
  run_action->setObjectName(QStringLiteral("run"));
  QAction* save_action = tools->addAction(QStringLiteral("Save"), this, [this] { saveWithReport(); });
  save_action->setShortcut(QKeySequence::Save);
  save_action->setObjectName(QStringLiteral("save"));

  connect(_editor->document(), &QTextDocument::modificationChanged, this, [this] { updateTitle(); });
  applyConfiguration();
  updateTitle();
}

ScriptEditorDialog::~ScriptEditorDialog() = default;

void ScriptEditorDialog::applyConfiguration()
{
  const int tab_width = 4;
  int width = tab_width;
  bool show_tabs = false;
  double splitter = 0.75;
  QList<int> size{900, 640};
  if (CfgNode* root = configurationRoot()) {
    width = int(root->getUInt(QString::fromLatin1(CFG_TAB_WIDTH)));
    show_tabs = root->getBool(QString::fromLatin1(CFG_SHOW_TABS));
    splitter = root->getDouble(QString::fromLatin1(CFG_SOURCE_EDITOR_SPLITTER));
    const QList<int> stored = root->getIntArray(QString::fromLatin1(CFG_EDITOR_DIALOG_SIZE));
    if (stored.size() == 2 && stored[0] > 0 && stored[1] > 0)
      size = stored;
  }
  _parser->setTabSize(width);
  _editor->setTabWidth(width);
  _editor->setShowTabs(show_tabs);
  resize(size[0], size[1]);
  _splitter->setSizes({int(1000 * splitter), int(1000 * (1 - splitter))});
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
}

bool ScriptEditorDialog::openFile(const QString& path, ErrorLog& log)
{
  QString text;
  QFile file(path);
  if (file.exists()) {
    if (!file.open(QIODevice::ReadOnly)) {
      log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
      return false;
    }
    text = QString::fromUtf8(file.readAll());
  }
  _lock.reset();
  _database_file.clear();
  _file = path;
  _editor->setPlainText(text);
  _editor->document()->setModified(false);
  updateTitle();
  return true;
}

bool ScriptEditorDialog::openDatabaseScript(const QString& file_name, ErrorLog& log)
{
  auto lock = std::make_unique<DatabaseLock>();
  if (!*lock)
    return false;
  std::unique_ptr<GScript::Script> loaded((*lock)->createLoadedScript(file_name, log));
  if (!loaded)
    return false;
  (*lock)->setCurrentScript(file_name);
  _lock = std::move(lock);
  _file.clear();
  _database_file = file_name;
  _editor->setPlainText(loaded->getCode());
  _editor->document()->setModified(false);
  updateTitle();
  return true;
}

bool ScriptEditorDialog::isModified() const
{
  return _editor->document()->isModified();
}

bool ScriptEditorDialog::save(ErrorLog& log)
{
  const QByteArray bytes = _editor->toPlainText().toUtf8();
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
  _editor->document()->setModified(false);
  _status->setText(QStringLiteral("Saved."));
  return true;
}

void ScriptEditorDialog::saveWithReport()
{
  ErrorLog log;
  if (!save(log))
    GTools::ErrorDialog(QString::fromLatin1(ERR_SAVE_SCRIPT), log.getText());
}

bool ScriptEditorDialog::run()
{
  if (_busy)
    return false;
  _busy = true;
  _editor->markErrorLine(-1);
  const QString name = !_file.isEmpty()            ? _file
                       : !_database_file.isEmpty() ? _database_file
                                                   : QStringLiteral("<editor>");
  GScript::Execute execute(_editor->toPlainText());
  execute.setFileName(name);
  execute.setCollectStdout(true);
  execute.setCollectStderr(true);
  QString code;
  ErrorLog log;
  _status->setText(QStringLiteral("Running..."));
  const bool success = execute.execute(0, GScript::Execute::FLAG_MAIN, code, log);
  QString output = execute.getCollectedOutput();
  if (success) {
    _status->setText(QStringLiteral("Finished."));
  } else {
    const GApp::CommandError error(code, log);
    output += error.getText() + QLatin1Char('\n');
    // The innermost frame of this text names the failing line.
    const QRegularExpression frame(QStringLiteral("File \"%1\", line (\\d+)").arg(QRegularExpression::escape(name)));
    int line = -1;
    for (auto it = frame.globalMatch(log.getText()); it.hasNext();)
      line = it.next().captured(1).toInt() - 1;
    _editor->markErrorLine(line);
    _status->setText(line >= 0 ? QStringLiteral("Failed in line %1.").arg(line + 1) : QStringLiteral("Failed."));
  }
  _output->setPlainText(output);
  _busy = false;
  return success;
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
  if (isModified() && GTools::isInteractive()) {
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
        GTools::ErrorDialog(QString::fromLatin1(ERR_SAVE_SCRIPT), log.getText());
        event->ignore();
        return;
      }
    }
  }
  storeGeometry();
  event->accept();
}

}  // namespace Vel::MSysScript
