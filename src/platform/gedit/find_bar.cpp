#include "gedit/find_bar.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QTextDocument>

#include "gedit/source_editor.h"

namespace Vel::GEdit {

FindBar::FindBar(QPlainTextEdit* editor, QWidget* parent)
    : QWidget(parent),
      _editor(editor),
      _find(new QLineEdit),
      _replace(new QLineEdit),
      _case(new QCheckBox(QStringLiteral("Match case"))),
      _replace_row(new QWidget),
      _note(new QLabel)
{
  _find->setObjectName(QStringLiteral("find_text"));
  _replace->setObjectName(QStringLiteral("replace_text"));
  _find->setPlaceholderText(QStringLiteral("Find"));
  _replace->setPlaceholderText(QStringLiteral("Replace with"));
  auto* next = new QPushButton(QStringLiteral("Next"));
  auto* previous = new QPushButton(QStringLiteral("Previous"));
  auto* replace = new QPushButton(QStringLiteral("Replace"));
  auto* replace_all = new QPushButton(QStringLiteral("Replace All"));
  auto* close = new QPushButton(QStringLiteral("Close"));
  replace_all->setObjectName(QStringLiteral("replace_all"));
  for (QPushButton* button : {next, previous, replace, replace_all, close})
    button->setAutoDefault(false);

  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(4, 2, 4, 2);
  layout->addWidget(_find, 0, 0);
  layout->addWidget(next, 0, 1);
  layout->addWidget(previous, 0, 2);
  layout->addWidget(_case, 0, 3);
  layout->addWidget(_note, 0, 4);
  layout->addWidget(close, 0, 5);
  auto* row = new QHBoxLayout(_replace_row);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(_replace, 1);
  row->addWidget(replace);
  row->addWidget(replace_all);
  layout->addWidget(_replace_row, 1, 0, 1, 3);
  layout->setColumnStretch(0, 1);
  layout->setColumnStretch(4, 1);

  connect(next, &QPushButton::clicked, this, [this] { findNext(); });
  connect(previous, &QPushButton::clicked, this, [this] { findNext(true); });
  connect(replace, &QPushButton::clicked, this, [this] { replaceOne(); });
  connect(replace_all, &QPushButton::clicked, this, [this] { replaceAll(); });
  connect(close, &QPushButton::clicked, this, [this] {
    hide();
    _editor->setFocus();
  });
  connect(_find, &QLineEdit::textEdited, this, [this] { _note->clear(); });
  hide();
}

void FindBar::start(bool replace)
{
  const QString selected = _editor->textCursor().selectedText();
  if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
    _find->setText(selected);
  _replace_row->setVisible(replace);
  _note->clear();
  show();
  _find->setFocus();
  _find->selectAll();
}

QTextDocument::FindFlags FindBar::findFlags(bool backward) const
{
  QTextDocument::FindFlags flags;
  if (backward)
    flags |= QTextDocument::FindBackward;
  if (_case->isChecked())
    flags |= QTextDocument::FindCaseSensitively;
  return flags;
}

bool FindBar::findNext(bool backward)
{
  const QString what = _find->text();
  if (what.isEmpty())
    return false;
  const QTextDocument::FindFlags flags = findFlags(backward);
  QTextDocument* document = _editor->document();
  QTextCursor found = document->find(what, _editor->textCursor(), flags);
  if (found.isNull()) {
    // Round the end, once.
    QTextCursor from(document);
    if (backward)
      from.movePosition(QTextCursor::End);
    found = document->find(what, from, flags);
  }
  if (found.isNull()) {
    _note->setText(QStringLiteral("Not found."));
    return false;
  }
  _note->clear();
  // A match inside a fold opens the fold.
  if (auto* source = qobject_cast<SourceEditor*>(_editor))
    source->revealLine(found.blockNumber());
  _editor->setTextCursor(found);
  _editor->ensureCursorVisible();
  return true;
}

bool FindBar::selectionMatches() const
{
  const QString selected = _editor->textCursor().selectedText();
  return !selected.isEmpty() &&
         selected.compare(_find->text(), _case->isChecked() ? Qt::CaseSensitive : Qt::CaseInsensitive) == 0;
}

bool FindBar::replaceOne()
{
  if (_editor->isReadOnly())
    return false;
  if (selectionMatches())
    _editor->textCursor().insertText(_replace->text());
  return findNext();
}

int FindBar::replaceAll()
{
  const QString what = _find->text();
  if (what.isEmpty() || _editor->isReadOnly())
    return 0;
  QTextDocument* document = _editor->document();
  const QTextDocument::FindFlags flags = findFlags(false);
  QTextCursor edit(document);
  edit.beginEditBlock();
  int count = 0;
  for (QTextCursor found = document->find(what, 0, flags); !found.isNull();
       found = document->find(what, found, flags)) {
    found.insertText(_replace->text());
    ++count;
  }
  edit.endEditBlock();
  _note->setText(QStringLiteral("%1 replaced.").arg(count));
  return count;
}

void FindBar::keyPressEvent(QKeyEvent* event)
{
  if (event->key() == Qt::Key_Escape) {
    hide();
    _editor->setFocus();
    return;
  }
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (_replace->hasFocus())
      replaceOne();
    else
      findNext(event->modifiers() & Qt::ShiftModifier);
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace Vel::GEdit
