#include "gedit/text_highlighter.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace Vel::GEdit {
namespace {

// Lines coloured at once after a change; the rest waits for idle time, or for a paint showing it.
constexpr int LINES_AT_ONCE = 1000;
// How long one idle step colours before the event loop goes on.
constexpr qint64 STEP_NSECS = 4000000;
// From so many lines on, colouring reads the text of the document at once; more than a change
// colours at once, so that typing never copies the document.
constexpr int MANY_LINES = 2 * LINES_AT_ONCE;

}  // namespace

TextHighlighter::TextHighlighter(QObject* parent) : QObject(parent) {}

void TextHighlighter::setFormat(int start, int length, const QColor& color, int style, int tag)
{
  if (length > 0)
    _formats.push_back({start, length, color, style, tag});
}

SyntaxHighlighterAdapter::SyntaxHighlighterAdapter(TextHighlighter* highlighter, QTextDocument* document)
    : QObject(document), _highlighter(highlighter), _document(document), _block_count(document->blockCount())
{
  _idle.setSingleShot(true);
  _idle.setInterval(0);
  connect(&_idle, &QTimer::timeout, this, &SyntaxHighlighterAdapter::colourStep);
  connect(document, &QTextDocument::contentsChange, this, &SyntaxHighlighterAdapter::contentsChange);
  connect(highlighter, &TextHighlighter::signalUpdate, this, &SyntaxHighlighterAdapter::rehighlightFrom);
  if (!document->isEmpty())
    scheduleRest();
}

SyntaxHighlighterAdapter::SyntaxHighlighterAdapter(TextHighlighter* highlighter, QPlainTextEdit* view)
    : SyntaxHighlighterAdapter(highlighter, view->document())
{
  _view = view;
  view->viewport()->installEventFilter(this);
}

void SyntaxHighlighterAdapter::rehighlightFrom(int line)
{
  // The lines below keep their old colours until they are coloured anew; what the view shows is
  // coloured before its next paint.
  _char_formats.clear();
  _coloured = qBound(0, line, _coloured);
  scheduleRest();
  if (_view)
    _view->viewport()->update();
}

bool SyntaxHighlighterAdapter::isComplete() const
{
  return _coloured >= _document->blockCount();
}

void SyntaxHighlighterAdapter::scheduleRest()
{
  if (isComplete()) {
    _idle.stop();
    _text = QString();
  } else if (!_idle.isActive())
    _idle.start();
}

void SyntaxHighlighterAdapter::colourUpTo(int line)
{
  const int last = line < 0 ? _document->blockCount() - 1 : qMin(line, _document->blockCount() - 1);
  if (_coloured > last)
    return;
  colourFrom([last](int number, bool) { return number > last; });
  scheduleRest();
}

void SyntaxHighlighterAdapter::colourStep()
{
  QElapsedTimer clock;
  clock.start();
  colourFrom([&clock](int number, bool) { return number % 64 == 0 && clock.nsecsElapsed() > STEP_NSECS; });
  scheduleRest();
}

bool SyntaxHighlighterAdapter::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() == QEvent::Paint && _view && watched == _view->viewport())
    colourVisible();
  return false;
}

void SyntaxHighlighterAdapter::colourVisible()
{
  if (isComplete())
    return;
  // One line per block unless lines wrap; more blocks than fit only colour a little ahead.
  const int lines = _view->viewport()->height() / qMax(1, _view->fontMetrics().lineSpacing()) + 2;
  // The view's top line is its scroll position, counted in the lines of the visible blocks.
  QTextBlock block = _document->findBlockByLineNumber(_view->verticalScrollBar()->value());
  QTextBlock last = block;
  for (int shown = 0; block.isValid() && shown < lines; block = block.next()) {
    shown += block.isVisible() ? 1 : 0;
    last = block;
  }
  if (last.isValid())
    colourUpTo(last.blockNumber());
}

void SyntaxHighlighterAdapter::contentsChange(int position, int removed, int added)
{
  _text = QString();
  const int count = _document->blockCount();
  const int delta = count - _block_count;
  _block_count = count;
  const QTextBlock first_block = _document->findBlock(position);
  const int first = first_block.isValid() ? first_block.blockNumber() : count - 1;
  if (first > _coloured) {
    // Beyond what is coloured: it comes to these lines in its turn.
    scheduleRest();
    return;
  }
  const QTextBlock last_block = _document->findBlock(position + added + (removed > 0 ? 1 : 0));
  const int last = last_block.isValid() ? last_block.blockNumber() : count - 1;
  // The coloured lines after the change keep their colours as long as the state they start in
  // is the same as before; an edit that reached past the coloured lines leaves none.
  const int kept = first < _coloured && last - delta < _coloured ? _coloured + delta : first;
  _coloured = first;
  bool settled = false;
  colourFrom([&](int number, bool previous_changed) {
    if (number <= last)
      return number - first >= LINES_AT_ONCE;
    if (number < kept && !previous_changed) {
      settled = true;
      return true;
    }
    return number >= kept || number - first >= LINES_AT_ONCE;
  });
  if (settled)
    _coloured = kept;
  scheduleRest();
}

template <typename Until>
void SyntaxHighlighterAdapter::colourFrom(Until until)
{
  if (!_highlighter)
    return;
  QTextBlock block = _document->findBlockByNumber(_coloured);
  if (!block.isValid())
    return;
  // The document may have a new format collection since the last time.
  for (CachedFormat& format : _char_formats)
    format.shared = false;
  int number = _coloured;
  int state = number == 0 ? 0 : lineState(block.previous());
  bool previous_changed = true;
  const int from = block.position();
  int position = from;
  int read = 0;
  bool changed = false;
  while (block.isValid() && !until(number, previous_changed)) {
    // Many lines are read out of one copy of the document's text, not each into a string of its
    // own; a cursor would lay each line out.
    if (_text.isNull() && ++read > MANY_LINES)
      _text = _document->toRawText();
    const int length = block.length() - 1;
    const QString text = _text.isNull() ? block.text() : QString::fromRawData(_text.constData() + position, length);
    const int before = lineState(block);
    changed |= colourBlock(block, text, number, state, &state);
    previous_changed = state != before;
    position += block.length();
    block = block.next();
    ++number;
  }
  _coloured = number;
  // One relayout for them all; no contentsChange, which is for text changes.
  if (changed)
    _document->markContentsDirty(from, qMin(position, _document->characterCount()) - from);
}

size_t SyntaxHighlighterAdapter::formatIndex(const QColor& color, int style)
{
  for (size_t index = 0; index < _char_formats.size(); ++index)
    if (_char_formats[index].style == style && _char_formats[index].color == color)
      return index;
  QTextCharFormat format;
  format.setForeground(color);
  if (style == TextHighlighter::STYLE_BOLD)
    format.setFontWeight(QFont::Bold);
  _char_formats.push_back({color, style, format, false});
  return _char_formats.size() - 1;
}

void SyntaxHighlighterAdapter::shareFormats(const QTextLayout* layout)
{
  // The layout keeps the document's copy of each format; comparing with that copy is the quick
  // comparison, which the layout does for every range it is given.
  QList<QTextLayout::FormatRange> formats;
  for (size_t range = 0; range < _range_formats.size(); ++range) {
    CachedFormat& cached = _char_formats[_range_formats[range]];
    if (cached.shared)
      continue;
    if (formats.isEmpty())
      formats = layout->formats();
    cached.format = formats.at(qsizetype(range)).format;
    cached.shared = true;
  }
}

void SyntaxHighlighterAdapter::overlappingRanges(const std::vector<TextHighlighter::Format>& runs, int length,
                                                 QList<QTextLayout::FormatRange>* ranges)
{
  std::vector<int> owner(size_t(length), -1);
  for (const TextHighlighter::Format& run : runs) {
    const int index = int(formatIndex(run.color, run.style));
    for (int i = qMax(0, run.start); i < qMin(length, run.start + run.length); ++i)
      owner[size_t(i)] = index;
  }
  ranges->clear();
  _range_formats.clear();
  for (int i = 0; i < length;) {
    const int start = i;
    while (i < length && owner[size_t(i)] == owner[size_t(start)])
      ++i;
    if (owner[size_t(start)] < 0)
      continue;
    ranges->append({start, i - start, _char_formats[size_t(owner[size_t(start)])].format});
    _range_formats.push_back(size_t(owner[size_t(start)]));
  }
}

void SyntaxHighlighterAdapter::keepPreedit(const QTextLayout* layout, QList<QTextLayout::FormatRange>* ranges)
{
  // Text being composed by an input method is in the layout only, with formats of its own: those
  // stay, and the line's ranges make room for it.
  const int start = layout->preeditAreaPosition();
  const int length = int(layout->preeditAreaText().size());
  if (length == 0)
    return;
  for (QTextLayout::FormatRange& range : *ranges)
    if (range.start >= start)
      range.start += length;
    else if (range.start + range.length >= start)
      range.length += length;
  for (const QTextLayout::FormatRange& range : layout->formats())
    if (range.start >= start && range.start + range.length <= start + length)
      ranges->append(range);
}

int SyntaxHighlighterAdapter::lineState(const QTextBlock& block)
{
  const int state = block.userState();
  return state < 0 ? 0 : state & ~HAS_FORMATS;
}

bool SyntaxHighlighterAdapter::colourBlock(QTextBlock block, const QString& text, int number, int state, int* end_state)
{
  _highlighter->clearFormats();
  *end_state = _highlighter->highlightLine(unsigned(number), text, state) & ~HAS_FORMATS;
  const std::vector<TextHighlighter::Format>& runs = _highlighter->getFormats();
  const bool had_formats = block.userState() >= 0 && (block.userState() & HAS_FORMATS);
  if (runs.empty() && !had_formats) {
    // No layout asked for: most lines of a long text are never shown, and a layout is dear.
    block.setUserState(*end_state);
    return false;
  }
  const int length = int(text.size());
  QList<QTextLayout::FormatRange> ranges;
  _range_formats.clear();
  if (!runs.empty()) {
    ranges.reserve(qsizetype(runs.size()));
    int covered = 0;
    for (const TextHighlighter::Format& run : runs) {
      const int start = qMax(0, run.start);
      const int stop = qMin(length, run.start + run.length);
      if (stop <= start)
        continue;
      if (start < covered) {  // overlapping runs: the later one wins, character by character
        overlappingRanges(runs, length, &ranges);
        break;
      }
      const size_t index = formatIndex(run.color, run.style);
      if (!ranges.isEmpty() && covered == start && _range_formats.back() == index) {
        ranges.last().length += stop - start;  // adjacent runs of one format are one range
      } else {
        ranges.append({start, stop - start, _char_formats[index].format});
        _range_formats.push_back(index);
      }
      covered = stop;
    }
  }
  block.setUserState(ranges.isEmpty() ? *end_state : *end_state | HAS_FORMATS);
  QTextLayout* layout = block.layout();
  keepPreedit(layout, &ranges);
  if (had_formats && layout->formats() == ranges)
    return false;
  layout->setFormats(ranges);
  shareFormats(layout);
  return true;
}

}  // namespace Vel::GEdit
