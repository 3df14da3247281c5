#include "menu/msys_script/msys_python_parser.h"

#include <algorithm>
#include <climits>

#include "gscript/macro_script.h"
#include "gscript/parser.h"

namespace Vel::MSysScript {
namespace {

bool startsWithPrefix(const QString& text)
{
  return text.startsWith(QLatin1String(GScript::Parser::SCRIPT_PREFIX)) ||
         text.startsWith(QLatin1String(GScript::Parser::INTERACTIVE_PREFIX)) ||
         text.startsWith(QLatin1String(GScript::Parser::GUI_PREFIX));
}

}  // namespace

PythonParser::PythonParser(QObject* parent)
    : GEdit::TextParser(parent),
      _script_prefix(QString::fromLatin1(GScript::Parser::SCRIPT_PREFIX)),
      _interactive_prefix(QString::fromLatin1(GScript::Parser::INTERACTIVE_PREFIX)),
      _gui_prefix(QString::fromLatin1(GScript::Parser::GUI_PREFIX))
{}

int PythonParser::computeIndentationLevel(const QString& line) const
{
  int level = 0;
  for (const QChar c : line) {
    if (!c.isSpace())
      break;
    level += c == QLatin1Char('\t') ? _tab_size : 1;
  }
  return level;
}

QString PythonParser::stripTrailingComment(const QString& line)
{
  bool escaped = false, in_single = false, in_double = false;
  for (int i = 0; i < line.size(); ++i) {
    const QChar c = line[i];
    if (escaped) {
      escaped = false;
      continue;
    }
    if (c == QLatin1Char('\\'))
      escaped = true;
    else if (c == QLatin1Char('\'') && !in_double)
      in_single = !in_single;
    else if (c == QLatin1Char('"') && !in_single)
      in_double = !in_double;
    else if (c == QLatin1Char('#') && !in_single && !in_double)
      return line.left(i);
  }
  return line;
}

bool PythonParser::isCommandStartLine(const QString& line) const
{
  const int equals = int(line.indexOf(QLatin1Char('=')));
  const QString text = equals >= 0 ? line.mid(equals + 1).trimmed() : line;
  if (!text.startsWith(_script_prefix) && !text.startsWith(_interactive_prefix) && !text.startsWith(_gui_prefix))
    return false;
  return text.indexOf(QLatin1Char('(')) > 0 || text.indexOf(QLatin1Char('\\')) > 0;
}

void PythonParser::parse()
{
  clearBlocks();
  parse(0, getNumberOfLines() - 1);
}

void PythonParser::parse(int first, int last)
{
  std::vector<std::pair<int, int>> headers;  // header line, indentation of the header below it
  int top_indentation = 0;
  int last_code_line = 0;
  int open_command = -1;

  for (int number = first; number <= last; ++number) {
    const QString raw = getLine(number);
    const int indentation = computeIndentationLevel(raw);
    const QString line = raw.trimmed();
    if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
      continue;
    if (open_command >= 0) {
      if (line.endsWith(QLatin1Char(')'))) {
        addBlock(open_command, number);
        open_command = -1;
      }
      last_code_line = number;
      continue;
    }
    while (!headers.empty() && indentation <= top_indentation) {
      const auto header = headers.back();
      if (header.first < last_code_line)
        addBlock(header.first, last_code_line);
      top_indentation = header.second;
      headers.pop_back();
    }
    if (isCommandStartLine(line) && !line.endsWith(QLatin1Char(')'))) {
      open_command = number;
    } else if (stripTrailingComment(line).trimmed().endsWith(QLatin1Char(':'))) {
      headers.emplace_back(number, top_indentation);
      top_indentation = indentation;
    }
    last_code_line = number;
  }
  while (!headers.empty()) {
    if (headers.back().first < last_code_line)
      addBlock(headers.back().first, last_code_line);
    headers.pop_back();
  }
}

void PythonParser::textInserted(int line, int count)
{
  // The block map is ordered by first line (first lines are unique), so walking it is walking
  // the blocks sorted by first and last line.
  BlockMap& blocks = mutableBlocks();
  int range_first = line, range_last = line;
  bool contained = false;
  const std::pair<const int, int>* preceding = nullptr;
  int previous_top_last = -1;
  for (const auto& block : blocks) {
    if (block.first > line)
      break;
    if (block.first < previous_top_last)
      continue;  // nested in the previous top-level block
    previous_top_last = block.second;
    if (block.second >= line) {
      range_first = std::min(range_first, block.first);
      range_last = std::max(range_last, block.second);
      contained = true;
    } else if (!preceding || block.first > preceding->first) {
      preceding = &block;
    }
  }
  if (!contained) {
    parse();
    return;
  }
  if (preceding) {
    range_first = std::min(range_first, preceding->first);
    range_last = std::max(range_last, preceding->second);
  }
  // Blocks before the range stay; blocks in it go; blocks after it move down by `count`,
  // node by node, without copying the map.
  std::vector<BlockMap::node_type> moved;
  for (auto it = blocks.lower_bound(range_first); it != blocks.end();) {
    if (it->first > range_last) {
      auto node = blocks.extract(it++);
      node.key() += count;
      node.mapped() += count;
      moved.push_back(std::move(node));
    } else {
      it = blocks.erase(it);
    }
  }
  for (auto& node : moved)
    blocks.insert(blocks.end(), std::move(node));
  parse(range_first, range_last + count);
}

void PythonParser::textDeleted(int, int)
{
  parse();
}

QString PythonParser::getLineOffset(int line) const
{
  QString offset = GEdit::TextParser::getLineOffset(line);
  if (line > 0) {
    const QString previous = getLine(line - 1).trimmed();
    if (!previous.isEmpty() && stripTrailingComment(previous).trimmed().endsWith(QLatin1Char(':')))
      offset += QLatin1Char('\t');
  }
  return offset;
}

// ---------------------------------------------------------------------------------------------

LineAccess::LineAccess(const QString& text) : _text(text)
{
  _line_starts.push_back(0);
  for (int i = 0; i < text.size(); ++i)
    if (text[i] == QLatin1Char('\n'))
      _line_starts.push_back(unsigned(i + 1));
}

QString LineAccess::getLine(unsigned line, bool strip) const
{
  if (line >= _line_starts.size())
    return QString();
  const unsigned start = _line_starts[line];
  const unsigned end = line + 1 < _line_starts.size() ? _line_starts[line + 1] : unsigned(_text.size());
  QString result = _text.mid(int(start), int(end - start));
  if (strip && result.endsWith(QLatin1Char('\n')))
    result.chop(1);
  return result;
}

const CommandBlockAccess::Interval CommandBlockAccess::INVALID(UINT_MAX, UINT_MAX);

CommandBlockAccess::CommandBlockAccess(const QString& text) : LineAccess(text) {}

bool CommandBlockAccess::isCommandBlockStart(const QString& line)
{
  const QString trimmed = line.trimmed();
  QString text = trimmed;
  const int equals = int(trimmed.indexOf(QLatin1Char('=')));
  if (equals >= 0) {
    const QString target = trimmed.left(equals);
    bool valid = !target.isEmpty() && (target[0].isLetter() || target[0] == QLatin1Char('_'));
    for (int i = 1; valid && i < target.size(); ++i) {
      const QChar c = target[i];
      valid = c.isLetterOrNumber() || c.isSpace() || c == QLatin1Char('_') || c == QLatin1Char(',');
    }
    const QString value = trimmed.mid(equals + 1).trimmed();
    if (valid && !value.isEmpty())
      text = value;
  }
  return startsWithPrefix(text);
}

CommandBlockAccess::Interval CommandBlockAccess::getCommandInterval(unsigned line) const
{
  const unsigned count = getNumberOfLines();
  if (line >= count)
    return INVALID;
  unsigned start = line;
  while (!isCommandBlockStart(getLine(start, true))) {
    if (start == 0)
      return INVALID;
    --start;
  }

  if (_scan_mode == ScanMode::NEXT_START) {
    // The command runs to the line before the next command start (or to the end).
    unsigned end = start;
    while (end + 1 < count && !isCommandBlockStart(getLine(end + 1, true)))
      ++end;
    return end >= line ? Interval(start, end) : INVALID;
  }

  QString text;
  for (unsigned current = start; current < count; ++current) {
    text += getLine(current, false);
    const QString trimmed = text.trimmed();
    if (trimmed.endsWith(QLatin1Char('\\')) || trimmed.endsWith(QLatin1Char(',')))
      continue;  // certainly incomplete
    ErrorLog log;
    GScript::ScriptElements elements;
    if (!GScript::MacroScript::parse(text, log, elements))
      continue;  // incomplete: take the next line
    int commands = 0;
    for (const auto& element : elements) {
      if (!dynamic_cast<const GScript::ScriptCommand*>(element.get()))
        break;
      ++commands;
    }
    if (commands == 1 && current >= line)
      return Interval(start, current);
    return INVALID;
  }
  return INVALID;
}

QString CommandBlockAccess::getCommandBlock(unsigned line) const
{
  const Interval interval = getCommandInterval(line);
  if (interval == INVALID)
    return QString();
  QString text;
  for (unsigned current = interval.first; current <= interval.second; ++current)
    text += getLine(current, false);
  return text;
}

}  // namespace Vel::MSysScript
