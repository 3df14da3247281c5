#include "gedit/source_editor.h"

#include <QPainter>
#include <QPainterPath>
#include <QTextBlock>

#include <algorithm>
#include <climits>
#include <functional>
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

// Marks below an edit move with their lines; those of removed lines go.
void moveMarks(std::set<int>& marks, int pivot, int delta)
{
  std::set<int> moved;
  for (int mark : marks)
    if (mark <= pivot)
      moved.insert(moved.end(), mark);
    else if (mark + delta > pivot)
      moved.insert(moved.end(), mark + delta);
  marks.swap(moved);
}

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
                        [doc] { return doc->blockCount(); },
                        [doc](int first, int last, const std::function<void(const QString&)>& visit) {
                          for (QTextBlock block = doc->findBlockByNumber(first); block.isValid() && first <= last;
                               block = block.next(), ++first)
                            visit(block.text());
                        });
  setLineWrapMode(QPlainTextEdit::NoWrap);
  QFont font(QStringLiteral("Monospace"));
  font.setStyleHint(QFont::TypeWriter);
  setFont(font);
  setTabWidth(4);

  connect(doc, &QTextDocument::contentsChange, this, &SourceEditor::contentsChanged);
  // Only a new number of digits widens the margin; setting the same margins lays the area out again.
  connect(this, &QPlainTextEdit::blockCountChanged, this, [this] {
    if (viewportMargins().left() != marginWidth())
      setViewportMargins(marginWidth(), 0, 0, 0);
  });
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
      if (_parser->getBlockLast(line) >= 0) {
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
  else if (_parser->getBlockLast(line) >= 0)
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
  int from = line, to = line;
  for (auto it = _folded.begin(); it != _folded.end();) {
    const int last = _parser->getBlockLast(*it);
    if (*it < line && line <= last) {
      from = std::min(from, *it);
      to = std::max(to, last);
      it = _folded.erase(it);
    } else {
      ++it;
    }
  }
  applyFolding(from, to);
}

void SourceEditor::toggleFold(int first_line)
{
  if (!_folded.erase(first_line))
    _folded.insert(first_line);
  applyFolding(first_line, std::max(first_line, _parser->getBlockLast(first_line)));
}

void SourceEditor::applyFolding(int from, int to)
{
  // Folds whose block is gone open again.
  for (auto it = _folded.lower_bound(from); it != _folded.end() && *it <= to;)
    it = _parser->getBlockLast(*it) >= 0 ? std::next(it) : _folded.erase(it);
  from = std::max(from, 0);
  to = std::min(to, blockCount() - 1);
  if ((_folded.empty() && !_hiding) || from > to) {
    _margin->update();
    return;
  }
  _hiding = !_folded.empty();
  std::vector<bool> hidden(size_t(to - from + 1), false);
  for (int first : _folded) {
    if (first >= to)
      break;
    const int last = std::min(_parser->getBlockLast(first), to);
    for (int line = std::max(first + 1, from); line <= last; ++line)
      hidden[size_t(line - from)] = true;
  }
  int dirty_from = -1, dirty_to = -1;
  QTextBlock block = document()->findBlockByNumber(from);
  for (int line = from; line <= to && block.isValid(); ++line, block = block.next()) {
    const bool visible = !hidden[size_t(line - from)];
    if (block.isVisible() != visible) {
      block.setVisible(visible);
      if (dirty_from < 0)
        dirty_from = block.position();
      dirty_to = block.position() + block.length();
    }
  }
  if (dirty_from >= 0) {
    document()->markContentsDirty(dirty_from, dirty_to - dirty_from);
    viewport()->update();
  }
  _margin->update();
}

void SourceEditor::contentsChanged(int position, int, int added)
{
  QTextDocument* doc = document();
  const QTextBlock block = doc->findBlock(position);
  QTextBlock end = doc->findBlock(position + added);
  if (!end.isValid())
    end = doc->lastBlock();
  const int line = block.isValid() ? block.blockNumber() : end.blockNumber();
  const int delta = blockCount() - _line_count;
  _line_count = blockCount();
  // The lines of the new text are the only ones to read again; the parser re-parses as far as
  // their blocks reach.
  const int added_lines = end.blockNumber() - line + 1;
  _parser->textReplaced(line, added_lines - delta, added_lines);
  // An edit at the start of a line moves that line's marks too: its text is what moves.
  if (delta != 0) {
    const int pivot = position == block.position() ? line - 1 : line;
    moveMarks(_breakpoints, pivot, delta);
    moveMarks(_folded, pivot, delta);
    if (_current_line > pivot)
      _current_line = _current_line + delta > pivot ? _current_line + delta : -1;
  }
  if (_error_line >= 0) {
    _error_line = -1;
    updateMarks();
  }
  const auto [first, last] = _parser->getChangedLines();
  applyFolding(first, last);
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
