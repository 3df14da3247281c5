#include "menu/msys_script/msys_dlg_update_script.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTextBlock>
#include <QVBoxLayout>

#include <set>
#include <utility>

#include "cfg/cfg.h"
#include "core/translate.h"
#include "gapp/interaction.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {
namespace {

QString text(const char* source)
{
  return translate("VelMSysScript_UpdateScript", source, "");
}

bool hasItem(const CfgNode* root, const char* key)
{
  return root && root->contains(QString::fromLatin1(key));
}

QWidget* titledView(const QString& title, QPlainTextEdit* view)
{
  auto* panel = new QWidget;
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(new QLabel(title, panel));
  layout->addWidget(view);
  return panel;
}

void markLines(QPlainTextEdit* view, const std::set<int>& lines)
{
  QList<QTextEdit::ExtraSelection> selections;
  for (const int line : lines) {
    QTextEdit::ExtraSelection selection;
    selection.cursor = QTextCursor(view->document()->findBlockByNumber(line - 1));
    selection.format.setBackground(QColor(255, 236, 160));
    selection.format.setProperty(QTextFormat::FullWidthSelection, true);
    selections << selection;
  }
  view->setExtraSelections(selections);
}

}  // namespace

UpdateScriptDialog::UpdateScriptDialog(const QString& path, QWidget* parent) : QDialog(parent), _path(path)
{
  QString original;
  ErrorLog log;
  if (!readScriptFile(path, original, _format, log))
    failCommand(ERR_LOAD_SCRIPT, log);
  _update = updateScriptText(original, UpdateRules::fromCommands());

  setObjectName(QStringLiteral("VelMSysScript_UpdateScriptDialog"));
  setWindowTitle(text("Update Script - %1").arg(QFileInfo(path).fileName()));
  auto* layout = new QVBoxLayout(this);
  const qsizetype count = _update.changes.size();
  auto* summary = new QLabel(count == 0   ? text("The script calls no replaced command or argument.")
                             : count == 1 ? text("1 name to update; its line is marked.")
                                          : text("%1 names to update; their lines are marked.").arg(count),
                             this);
  summary->setObjectName(QStringLiteral("summary"));
  layout->addWidget(summary);

  const auto view = [this](const QString& content) {
    auto* edit = new QPlainTextEdit(content, this);
    edit->setReadOnly(true);
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return edit;
  };
  _original_view = view(original);
  _updated_view = view(_update.text);
  std::set<int> lines;
  for (const ScriptChange& change : _update.changes)
    lines.insert(change.line);
  // Names change within their lines, so a line has the same number in both texts.
  markLines(_original_view, lines);
  markLines(_updated_view, lines);
  for (auto [from, to] : {std::pair(_original_view, _updated_view), std::pair(_updated_view, _original_view)}) {
    connect(from->verticalScrollBar(), &QScrollBar::valueChanged, to->verticalScrollBar(), &QScrollBar::setValue);
    connect(from->horizontalScrollBar(), &QScrollBar::valueChanged, to->horizontalScrollBar(), &QScrollBar::setValue);
  }

  _splitter = new QSplitter(Qt::Horizontal, this);
  _splitter->addWidget(titledView(text("Original"), _original_view));
  _splitter->addWidget(titledView(text("Updated"), _updated_view));
  _splitter->setChildrenCollapsible(false);
  layout->addWidget(_splitter, 1);

  if (!_update.problems.isEmpty()) {
    auto* problems = new QLabel(_update.problems.join(QLatin1Char('\n')), this);
    problems->setObjectName(QStringLiteral("problems"));
    problems->setWordWrap(true);
    layout->addWidget(problems);
  }

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText(text("Update"));
  buttons->button(QDialogButtonBox::Ok)->setEnabled(!_update.changes.isEmpty());
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);

  QSize size(640, 480);
  double position = 0.5;
  if (const CfgNode* root = configurationRoot(); hasItem(root, CFG_UPDATE_SCRIPT_DIALOG_WIDTH)) {
    const int width = root->getInt(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_WIDTH));
    const int height = root->getInt(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_HEIGHT));
    if (width > 0 && height > 0)
      size = QSize(width, height);
    position = root->getDouble(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_SPLITTER));
  }
  resize(size);
  // Before the splitter is shown its sizes are proportions.
  _splitter->setSizes({int(position * 1000), int((1 - position) * 1000)});
}

void UpdateScriptDialog::accept()
{
  if (!_update.changes.isEmpty()) {
    ErrorLog log;
    if (!writeUpdatedScript(_path, _update.text, _format, backupWanted(), &_backup, log)) {
      GApp::ErrorDialog(QString::fromLatin1(ERR_SAVE_SCRIPT), log.getText());
      return;
    }
  }
  QDialog::accept();
}

void UpdateScriptDialog::done(int result)
{
  if (CfgNode* root = configurationRoot(); hasItem(root, CFG_UPDATE_SCRIPT_DIALOG_WIDTH)) {
    root->setValue(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_WIDTH), width());
    root->setValue(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_HEIGHT), height());
    const QList<int> sizes = _splitter->sizes();
    if (sizes.size() == 2 && sizes[0] + sizes[1] > 0)
      root->setValue(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_SPLITTER), double(sizes[0]) / (sizes[0] + sizes[1]));
  }
  QDialog::done(result);
}

bool showScriptUpdate(const QString& path, QWidget* parent, ErrorLog& log)
{
  try {
    UpdateScriptDialog dialog(path, parent);
    return dialog.exec() == QDialog::Accepted && !dialog.update().changes.isEmpty();
  } catch (const GApp::CommandError& error) {
    log.append(error.getLog());
    GApp::ErrorDialog(error.getCode(), error.getLog().getText());
    return false;
  }
}

}  // namespace Vel::MSysScript
