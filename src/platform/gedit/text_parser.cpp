#include "gedit/text_parser.h"

namespace Vel::GEdit {

TextParser::TextParser(QObject* parent) : QObject(parent) {}

void TextParser::setLineSource(std::function<QString(int)> line, std::function<int()> count, LineReader range)
{
  _line = std::move(line);
  _count = std::move(count);
  _range = std::move(range);
  _lines.clear();
}

void TextParser::setText(const QString& text)
{
  _lines = text.split(QLatin1Char('\n'));
  _line = [this](int line) { return _lines.value(line); };
  _count = [this] { return int(_lines.size()); };
  _range = [this](int first, int last, const std::function<void(const QString&)>& visit) {
    for (int line = first; line <= last; ++line)
      visit(_lines.at(line));
  };
}

QString TextParser::getLine(int line) const
{
  return _line ? _line(line) : QString();
}

int TextParser::getNumberOfLines() const
{
  return _count ? _count() : 0;
}

void TextParser::readLines(int first, int last, const std::function<void(const QString&)>& visit) const
{
  first = std::max(first, 0);
  last = std::min(last, getNumberOfLines() - 1);
  if (first > last)
    return;
  if (_range) {
    _range(first, last, visit);
    return;
  }
  for (int line = first; line <= last; ++line)
    visit(getLine(line));
}

TextParser::BlockMap TextParser::getBlocks() const
{
  BlockMap blocks;
  for (int line = 0; line < _blocks.size(); ++line)
    if (_blocks[line])
      blocks.emplace_hint(blocks.end(), line, line + _blocks[line]);
  return blocks;
}

void TextParser::clearBlocks()
{
  _blocks.assign(getNumberOfLines(), 0);
}

QString TextParser::getLineOffset(int line) const
{
  if (line <= 0)
    return QString();
  const QString previous = getLine(line - 1);
  int end = 0;
  while (end < previous.size() && previous[end].isSpace())
    ++end;
  return previous.left(end);
}

}  // namespace Vel::GEdit
