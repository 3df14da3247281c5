#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "core/vel_export.h"

namespace Vel::GEdit {

// One entry per line of a text that is edited at one place after another: entries are taken
// out and put in where the last edit was without moving the rest, so typing costs the same in
// a short and in a long text. Elements are copied as plain values.
template <typename T>
class LineTable
{
public:
  int size() const { return int(_data.size() - gapSize()); }
  T& operator[](int index) { return _data[slot(index)]; }
  const T& operator[](int index) const { return _data[slot(index)]; }

  void assign(int count, const T& value)
  {
    _data.assign(size_t(count), value);
    _gap_begin = _gap_end = size_t(count);
  }

  // Replaces `removed` entries from `at` on by `added` entries of `value`.
  void replace(int at, int removed, int added, const T& value)
  {
    moveGap(size_t(at));
    _gap_end += size_t(removed);
    if (gapSize() < size_t(added))
      grow(size_t(added));
    std::fill(_data.begin() + std::ptrdiff_t(_gap_begin), _data.begin() + std::ptrdiff_t(_gap_begin + size_t(added)),
              value);
    _gap_begin += size_t(added);
  }

private:
  size_t gapSize() const { return _gap_end - _gap_begin; }
  size_t slot(int index) const { return size_t(index) < _gap_begin ? size_t(index) : size_t(index) + gapSize(); }

  void moveGap(size_t at)
  {
    const auto data = _data.begin();
    if (at < _gap_begin)
      std::move_backward(data + std::ptrdiff_t(at), data + std::ptrdiff_t(_gap_begin), data + std::ptrdiff_t(_gap_end));
    else if (at > _gap_begin)
      std::move(data + std::ptrdiff_t(_gap_end), data + std::ptrdiff_t(_gap_end + at - _gap_begin),
                data + std::ptrdiff_t(_gap_begin));
    _gap_end = at + gapSize();
    _gap_begin = at;
  }

  void grow(size_t needed)
  {
    const size_t tail = _data.size() - _gap_end;
    std::vector<T> data(std::max(_data.size() * 2, size() + needed + 64));
    std::copy(_data.begin(), _data.begin() + std::ptrdiff_t(_gap_begin), data.begin());
    std::copy(_data.end() - std::ptrdiff_t(tail), _data.end(), data.end() - std::ptrdiff_t(tail));
    _gap_end = data.size() - tail;
    _data.swap(data);
  }

  std::vector<T> _data;
  size_t _gap_begin = 0;  // the free slots between the entries before and after the last edit
  size_t _gap_end = 0;
};

// Finds the foldable blocks of an editor's text. The editor calls parse() for a new text and
// textReplaced() after every change; a concrete parser knows the language. Blocks are kept per
// line, as the distance from their first to their last line, so that lines put in or taken out
// above a block move it without touching it.
class VEL_EXPORT TextParser : public QObject
{
  Q_OBJECT

public:
  // First line to last line, 0-based, keyed by the first line.
  using BlockMap = std::map<int, int>;
  // Calls `visit` with the text of each line from `first` to `last`.
  using LineReader = std::function<void(int first, int last, const std::function<void(const QString&)>& visit)>;

  explicit TextParser(QObject* parent = nullptr);

  // The lines come from the editor's document, or from a text of their own. `range`, when
  // given, reads consecutive lines faster than one `line` call each.
  void setLineSource(std::function<QString(int)> line, std::function<int()> count, LineReader range = {});
  void setText(const QString& text);

  QString getLine(int line) const;
  int getNumberOfLines() const;
  void readLines(int first, int last, const std::function<void(const QString&)>& visit) const;

  // The last line of the block that starts at `first_line`, or -1 when none starts there.
  int getBlockLast(int first_line) const
  {
    return first_line >= 0 && first_line < _blocks.size() && _blocks[first_line] ? first_line + _blocks[first_line]
                                                                                 : -1;
  }
  BlockMap getBlocks() const;
  // The lines (first, last) whose blocks the last parse() or textReplaced() may have changed;
  // blocks elsewhere stayed as they were, only moved with the lines.
  std::pair<int, int> getChangedLines() const { return _changed; }

  virtual void parse() = 0;
  // The old lines from `line` on, `removed` of them, are now the `added` lines from `line` on;
  // the lines after them are unchanged.
  virtual void textReplaced(int line, int removed, int added) = 0;
  // `count` more lines where line `line` was (that line included).
  void textInserted(int line, int count) { textReplaced(line, 1, count + 1); }
  // `count` lines fewer: the lines from `line` on, `count` + 1 of them, are now line `line`.
  void textDeleted(int line, int count) { textReplaced(line, count + 1, 1); }
  // The leading white space for a new line at `line`: that of the line before it.
  virtual QString getLineOffset(int line) const;

protected:
  // One slot per line of the text, no block in any.
  void clearBlocks();
  void addBlock(int first, int last)
  {
    if (first >= 0 && first < last && first < _blocks.size())
      _blocks[first] = last - first;
  }
  void removeBlock(int first) { _blocks[first] = 0; }
  // Moves the blocks below an edit with their lines; the new lines have none.
  void replaceBlockLines(int line, int removed, int added) { _blocks.replace(line, removed, added, 0); }
  int getBlockLines() const { return _blocks.size(); }
  void setChangedLines(int first, int last) { _changed = {first, last}; }

private:
  LineTable<int> _blocks;  // per line: last line - first line of the block it opens, or 0
  std::pair<int, int> _changed{0, -1};
  QStringList _lines;
  std::function<QString(int)> _line;
  std::function<int()> _count;
  LineReader _range;
};

}  // namespace Vel::GEdit
