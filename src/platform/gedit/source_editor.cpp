#include "gedit/source_editor.h"

#include <QPainter>
#include <QPainterPath>
#include <QTextBlock>

#include <climits>
#include <map>

#include "gedit/text_highlighter.h"
#include "gedit/text_parser.h"

namespace Vel::GEdit {
namespace {

class Margin : public QWidget
{
public:
  explicit Margin(SourceEditor* editor) : QWidget(editor), _editor(editor)
  {
    setObjectName(QStringLiteral("margin"));
    setCursor(Qt::ArrowCursor);
  }
  QSize sizeHint() const override { return QSize(_editor->marginWidth(), 0); }

protected:
  void paintEvent(QPaintEvent* event) override { _editor->paintMargin(event); }
  void mousePressEvent(QMouseEvent* event) override { _editor->marginClicked(event->pos()); }

private:
  SourceEditor* _editor;
};

const int FOLD_AREA = 14;
const int MARK_AREA = 14;  // breakpoints and the current line, left of the numbers

}  // namespace

SourceEditor::SourceEditor(TextParser* parser, TextHighlighter* highlighter, QWidget* parent)
    : QPlainTextEdit(parent), _parser(parser), _highlighter(highlighter), _margin(new Margin(this))
{
  parser->setParent(this);
  highlighter->setParent(this);
  _adapter = new SyntaxHighlighterAdapter(highlighter, this);
  QTextDocument* doc = document();
  parser->setLineSource([doc](int line) { return doc->findBlockByNumber(line).text(); },
                        [doc] { return doc->blockCount(); });
  setLineWrapMode(QPlainTextEdit::NoWrap);
  QFont font(QStringLiteral("Monospace"));
  font.setStyleHint(QFont::TypeWriter);
  setFont(font);
  setTabWidth(4);

  connect(doc, &QTextDocument::contentsChange, this, &SourceEditor::contentsChanged);
  connect(this, &QPlainTextEdit::blockCountChanged, this, [this] { setViewportMargins(marginWidth(), 0, 0, 0); });
  connect(this, &QPlainTextEdit::updateRequest, this, &SourceEditor::updateMargin);
  setViewportMargins(marginWidth(), 0, 0, 0);
  parser->parse();
}

void SourceEditor::setTabWidth(int columns)
{
  setTabStopDistance(fontMetrics().horizontalAdvance(QLatin1Char(' ')) * columns);
}

void SourceEditor::setShowTabs(bool show)
{
  QTextOption option = document()->defaultTextOption();
  option.setFlags(show ? option.flags() | QTextOption::ShowTabsAndSpaces
                       : option.flags() & ~QTextOption::ShowTabsAndSpaces);
  document()->setDefaultTextOption(option);
}

void SourceEditor::markErrorLine(int line)
{
  _error_line = line;
  const QTextBlock block = document()->findBlockByNumber(line);
  if (line >= 0 && block.isValid()) {
    setTextCursor(QTextCursor(block));
    centerCursor();
  }
  updateMarks();
}

void SourceEditor::setCurrentLine(int line)
{
  _current_line = line;
  const QTextBlock block = document()->findBlockByNumber(line);
  if (line >= 0 && block.isValid()) {
    revealLine(line);  // a folded pause would be invisible
    QTextCursor cursor(block);
    setTextCursor(cursor);
    ensureCursorVisible();
  }
  updateMarks();
}

void SourceEditor::setBreakpoint(int line, bool set)
{
  if (line < 0 || line >= blockCount())
    return;
  if (set ? _breakpoints.insert(line).second : _breakpoints.erase(line) != 0) {
    _margin->update();
    Q_EMIT breakpointToggled(line, set);
  }
}

void SourceEditor::updateMarks()
{
  QList<QTextEdit::ExtraSelection> selections;
  const auto mark = [&](int line, const QColor& colour) {
    const QTextBlock block = document()->findBlockByNumber(line);
    if (line < 0 || !block.isValid())
      return;
    QTextEdit::ExtraSelection selection;
    selection.format.setBackground(colour);
    selection.format.setProperty(QTextFormat::FullWidthSelection, true);
    selection.cursor = QTextCursor(block);
    selections << selection;
  };
  mark(_error_line, QColor(255, 210, 210));
  mark(_current_line, QColor(255, 240, 150));
  setExtraSelections(selections);
  _margin->update();
}

int SourceEditor::marginWidth() const
{
  int digits = 1;
  for (int count = qMax(1, blockCount()); count >= 10; count /= 10)
    ++digits;
  return MARK_AREA + 4 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * qMax(3, digits) + FOLD_AREA;
}

void SourceEditor::resizeEvent(QResizeEvent* event)
{
  QPlainTextEdit::resizeEvent(event);
  const QRect area = contentsRect();
  _margin->setGeometry(QRect(area.left(), area.top(), marginWidth(), area.height()));
}

void SourceEditor::updateMargin(const QRect& rect, int dy)
{
  if (dy)
    _margin->scroll(0, dy);
  else
    _margin->update(0, rect.y(), _margin->width(), rect.height());
}

void SourceEditor::paintMargin(QPaintEvent* event)
{
  QPainter painter(_margin);
  painter.fillRect(event->rect(), palette().color(QPalette::Window));
  const int numbers_width = _margin->width() - FOLD_AREA;
  QTextBlock block = firstVisibleBlock();
  int top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
  while (block.isValid() && top <= event->rect().bottom()) {
    const int height = qRound(blockBoundingRect(block).height());
    if (block.isVisible()) {
      const int line = block.blockNumber();
      painter.setPen(line == _error_line ? QColor(200, 0, 0) : palette().color(QPalette::PlaceholderText));
      painter.drawText(0, top, numbers_width - 4, fontMetrics().height(), Qt::AlignRight, QString::number(line + 1));
      const QPointF mark_centre(MARK_AREA / 2.0 + 1, top + fontMetrics().height() / 2.0);
      painter.setRenderHint(QPainter::Antialiasing);
      if (_breakpoints.count(line)) {
        painter.setPen(QColor(150, 20, 20));
        painter.setBrush(QColor(220, 40, 40));
        painter.drawEllipse(mark_centre, 5, 5);
      }
      if (line == _current_line) {
        QPainterPath arrow;
        arrow.moveTo(mark_centre + QPointF(-5, -3));
        arrow.lineTo(mark_centre + QPointF(0, -3));
        arrow.lineTo(mark_centre + QPointF(0, -6));
        arrow.lineTo(mark_centre + QPointF(6, 0));
        arrow.lineTo(mark_centre + QPointF(0, 6));
        arrow.lineTo(mark_centre + QPointF(0, 3));
        arrow.lineTo(mark_centre + QPointF(-5, 3));
        arrow.closeSubpath();
        painter.setPen(QColor(120, 100, 0));
        painter.setBrush(QColor(255, 210, 0));
        painter.drawPath(arrow);
      }
      painter.setRenderHint(QPainter::Antialiasing, false);
      const auto found = _parser->getBlocks().find(line);
      if (found != _parser->getBlocks().end()) {
        // A triangle: pointing down while open, right while folded.
        const QPointF centre(numbers_width + FOLD_AREA / 2.0, top + fontMetrics().height() / 2.0);
        QPainterPath triangle;
        if (isFolded(line)) {
          triangle.moveTo(centre + QPointF(-2.5, -4.5));
          triangle.lineTo(centre + QPointF(3.5, 0));
          triangle.lineTo(centre + QPointF(-2.5, 4.5));
        } else {
          triangle.moveTo(centre + QPointF(-4.5, -2.5));
          triangle.lineTo(centre + QPointF(4.5, -2.5));
          triangle.lineTo(centre + QPointF(0, 3.5));
        }
        triangle.closeSubpath();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(triangle, QColor(110, 110, 110));
        painter.setRenderHint(QPainter::Antialiasing, false);
      }
    }
    block = block.next();
    top += height;
  }
}

void SourceEditor::marginClicked(const QPoint& position)
{
  const QTextCursor cursor = cursorForPosition(QPoint(0, position.y()));
  const int line = cursor.block().blockNumber();
  if (position.x() < _margin->width() - FOLD_AREA)
    setBreakpoint(line, !_breakpoints.count(line));
  else if (_parser->getBlocks().count(line))
    toggleFold(line);
}

void SourceEditor::clearBreakpoints()
{
  _breakpoints.clear();
  _margin->update();
}

void SourceEditor::revealLine(int line)
{
  if (document()->findBlockByNumber(line).isVisible())
    return;
  for (auto it = _folded.begin(); it != _folded.end();)
    it = *it < line && line <= _parser->getBlocks().at(*it) ? _folded.erase(it) : std::next(it);
  applyFolding();
}

void SourceEditor::toggleFold(int first_line)
{
  if (!_folded.erase(first_line))
    _folded.insert(first_line);
  applyFolding();
}

void SourceEditor::applyFolding()
{
  // Folds whose block is gone open again.
  for (auto it = _folded.begin(); it != _folded.end();)
    it = _parser->getBlocks().count(*it) ? std::next(it) : _folded.erase(it);
  if (_folded.empty() && !_hiding) {
    _margin->update();
    return;
  }
  _hiding = !_folded.empty();
  std::vector<bool> hidden(size_t(blockCount()), false);
  for (int first : _folded) {
    const int last = _parser->getBlocks().at(first);
    for (int line = first + 1; line <= last && line < blockCount(); ++line)
      hidden[size_t(line)] = true;
  }
  bool changed = false;
  for (QTextBlock block = document()->firstBlock(); block.isValid(); block = block.next()) {
    const bool visible = !hidden[size_t(block.blockNumber())];
    if (block.isVisible() != visible) {
      block.setVisible(visible);
      changed = true;
    }
  }
  if (changed) {
    document()->markContentsDirty(0, document()->characterCount());
    viewport()->update();
  }
  _margin->update();
}

void SourceEditor::contentsChanged(int position, int removed, int)
{
  const int line = document()->findBlock(position).blockNumber();
  const int delta = blockCount() - _line_count;
  _line_count = blockCount();
  // Removing text may join lines: the parser reads the whole text again.
  if (removed > 0)
    _parser->textDeleted(line, qMax(0, -delta));
  else
    _parser->textInserted(line, delta);
  // Marks below the edit move with their lines; those of removed lines go. An edit at the start
  // of a line moves that line's mark too: its text is what moves.
  if (delta != 0) {
    const int pivot = position == document()->findBlock(position).position() ? line - 1 : line;
    std::set<int> moved;
    for (int mark : _breakpoints)
      if (mark <= pivot)
        moved.insert(mark);
      else if (mark + delta > pivot)
        moved.insert(mark + delta);
    _breakpoints.swap(moved);
    if (_current_line > pivot)
      _current_line = _current_line + delta > pivot ? _current_line + delta : -1;
  }
  if (_error_line >= 0) {
    _error_line = -1;
    updateMarks();
  }
  applyFolding();
}

QString leadingSpace(const QString& line)
{
  int end = 0;
  while (end < line.size() && (line[end] == QLatin1Char(' ') || line[end] == QLatin1Char('\t')))
    ++end;
  return line.left(end);
}

void SourceEditor::commentLines(bool comment)
{
  const QTextCursor selection = textCursor();
  QTextBlock first = document()->findBlock(selection.selectionStart());
  QTextBlock last = document()->findBlock(selection.selectionEnd());
  // A selection that ends at the start of a line does not take that line.
  if (selection.hasSelection() && last != first && selection.selectionEnd() == last.position())
    last = last.previous();
  const auto lines = [&](const auto& visit) {
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
      visit(block);
      if (block == last)
        break;
    }
  };
  int column = INT_MAX;
  lines([&](const QTextBlock& block) {
    if (!block.text().trimmed().isEmpty())
      column = qMin(column, int(leadingSpace(block.text()).size()));
  });
  if (column == INT_MAX)
    return;
  QTextCursor edit(document());
  edit.beginEditBlock();
  lines([&](const QTextBlock& block) {
    const QString text = block.text();
    if (text.trimmed().isEmpty())
      return;
    QTextCursor cursor(block);
    if (comment) {
      cursor.setPosition(block.position() + column);
      cursor.insertText(QStringLiteral("# "));
      return;
    }
    const int mark = int(leadingSpace(text).size());
    if (mark >= text.size() || text[mark] != QLatin1Char('#'))
      return;
    const bool space = mark + 1 < text.size() && text[mark + 1] == QLatin1Char(' ');
    cursor.setPosition(block.position() + mark);
    cursor.setPosition(block.position() + mark + (space ? 2 : 1), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
  });
  edit.endEditBlock();
}

bool SourceEditor::goToLine(int line)
{
  const QTextBlock block = document()->findBlockByNumber(line - 1);
  if (line < 1 || !block.isValid())
    return false;
  revealLine(line - 1);
  setTextCursor(QTextCursor(block));
  centerCursor();
  return true;
}

QString SourceEditor::indentUnit() const
{
  // The step by which lines go in, counted where a line is indented deeper than the non-blank
  // line above it; the most frequent wins, the first seen on a tie.
  std::map<QString, int> counts;
  QString first;
  QString above;
  for (QTextBlock block = document()->firstBlock(); block.isValid(); block = block.next()) {
    const QString line = block.text();
    if (line.trimmed().isEmpty())
      continue;
    const QString lead = leadingSpace(line);
    if (lead.size() > above.size() && lead.startsWith(above)) {
      const QString step = lead.mid(above.size());
      if (step.count(step[0]) == step.size()) {
        if (++counts[step] == 1 && first.isEmpty())
          first = step;
      }
    }
    above = lead;
  }
  QString unit = first.isEmpty() ? QStringLiteral("\t") : first;
  for (const auto& [step, count] : counts)
    if (count > counts[unit])
      unit = step;
  return unit;
}

void SourceEditor::keyPressEvent(QKeyEvent* event)
{
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    // A line feed in any case: a line separator (Qt's Shift+Return) is no line break in source.
    cursor.insertText(QStringLiteral("\n"));
    if (!(event->modifiers() & Qt::ShiftModifier)) {
      QString offset = _parser->getLineOffset(cursor.blockNumber());
      // The parser steps in by tabs; a text indented otherwise gets its own unit.
      const QString above = leadingSpace(cursor.block().previous().text());
      if (offset.size() > above.size() && offset.startsWith(above)) {
        const QString extra = offset.mid(above.size());
        if (extra.count(QLatin1Char('\t')) == extra.size())
          offset = above + indentUnit().repeated(extra.size());
      }
      cursor.insertText(offset);
    }
    cursor.endEditBlock();
    setTextCursor(cursor);
    ensureCursorVisible();
    return;
  }
  QPlainTextEdit::keyPressEvent(event);
}

void replaceDifference(QTextDocument* document, int start, const QString& old_text, const QString& new_text)
{
  int prefix = 0;
  while (prefix < old_text.size() && prefix < new_text.size() && old_text[prefix] == new_text[prefix])
    ++prefix;
  int suffix = 0;
  while (suffix < old_text.size() - prefix && suffix < new_text.size() - prefix &&
         old_text[old_text.size() - 1 - suffix] == new_text[new_text.size() - 1 - suffix])
    ++suffix;
  QTextCursor cursor(document);
  cursor.beginEditBlock();
  cursor.setPosition(start + prefix);
  cursor.setPosition(start + int(old_text.size()) - suffix, QTextCursor::KeepAnchor);
  cursor.insertText(new_text.mid(prefix, new_text.size() - prefix - suffix));
  cursor.endEditBlock();
}

}  // namespace Vel::GEdit
