#include "gedit/text_parser.h"

namespace Vel::GEdit {

TextParser::TextParser(QObject* parent) : QObject(parent) {}

void TextParser::setLineSource(std::function<QString(int)> line, std::function<int()> count)
{
  _line = std::move(line);
  _count = std::move(count);
  _lines.clear();
}

void TextParser::setText(const QString& text)
{
  _lines = text.split(QLatin1Char('\n'));
  _line = [this](int line) { return _lines.value(line); };
  _count = [this] { return int(_lines.size()); };
}

QString TextParser::getLine(int line) const
{
  return _line ? _line(line) : QString();
}

int TextParser::getNumberOfLines() const
{
  return _count ? _count() : 0;
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
