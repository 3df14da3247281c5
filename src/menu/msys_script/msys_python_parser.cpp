#include "menu/msys_script/msys_python_parser.h"

#include <algorithm>
#include <climits>

#include "gscript/macro_script.h"
#include "gscript/parser.h"

namespace Vel::MSysScript {
namespace {

enum LineFlag : quint8
{
  CODE = 1,         // neither blank nor a comment
  CLOSES_CALL = 2,  // ends with ")"
  OPENS_CALL = 4,   // a command call left open
  HEADER = 8,       // ends with ":" before any comment
  TOP_LEVEL = 16,   // the last parse met it at indentation 0 outside a call: nothing before it stays open
};

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
  return line.left(commentStart(line));
}

qsizetype PythonParser::commentStart(QStringView line)
{
  bool escaped = false, in_single = false, in_double = false;
  for (qsizetype i = 0; i < line.size(); ++i) {
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
      return i;
  }
  return line.size();
}

bool PythonParser::isCommandStartLine(const QString& line) const
{
  return isCommandStart(line);
}

bool PythonParser::isCommandStart(QStringView line) const
{
  const qsizetype equals = line.indexOf(QLatin1Char('='));
  const QStringView text = equals >= 0 ? line.mid(equals + 1).trimmed() : line;
  if (!text.startsWith(_script_prefix) && !text.startsWith(_interactive_prefix) && !text.startsWith(_gui_prefix))
    return false;
  return text.indexOf(QLatin1Char('(')) > 0 || text.indexOf(QLatin1Char('\\')) > 0;
}

void PythonParser::setTabSize(int size)
{
  if (size != _tab_size)
    _facts_valid = false;
  _tab_size = size;
}

PythonParser::LineFacts PythonParser::factsOf(const QString& raw) const
{
  // Read in place: this runs for every line of a new text.
  LineFacts facts;
  const QStringView line = QStringView(raw).trimmed();
  if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
    return facts;
  facts.indentation = computeIndentationLevel(raw);
  facts.flags = CODE;
  if (line.endsWith(QLatin1Char(')')))
    facts.flags |= CLOSES_CALL;
  else if (isCommandStart(line))
    facts.flags |= OPENS_CALL;
  // What stripTrailingComment() leaves of the line, trimmed, ends with ":".
  qsizetype end = commentStart(line);
  while (end > 0 && line[end - 1].isSpace())
    --end;
  if (end > 0 && line[end - 1] == QLatin1Char(':'))
    facts.flags |= HEADER;
  return facts;
}

void PythonParser::parse()
{
  const int count = getNumberOfLines();
  _facts.assign(count, LineFacts());
  int line = 0;
  readLines(0, count - 1, [&](const QString& text) { _facts[line++] = factsOf(text); });
  _facts_valid = true;
  clearBlocks();
  scan(0, count);
  setChangedLines(0, count - 1);
}

int PythonParser::scan(int first, int settled)
{
  _headers.clear();  // header line, indentation of the header below it
  int top_indentation = 0;
  int last_code_line = 0;
  int open_command = -1;
  const auto closeHeaders = [&](int indentation) {
    while (!_headers.empty() && indentation <= top_indentation) {
      const auto header = _headers.back();
      if (header.first < last_code_line)
        addBlock(header.first, last_code_line);
      top_indentation = header.second;
      _headers.pop_back();
    }
  };

  const int count = _facts.size();
  int number = first;
  for (; number < count; ++number) {
    LineFacts& line = _facts[number];
    if (number >= settled && open_command < 0 && (line.flags & TOP_LEVEL))
      break;  // re-synchronised with the last parse
    line.flags &= quint8(~TOP_LEVEL);
    removeBlock(number);
    if (!(line.flags & CODE))
      continue;
    if (open_command >= 0) {
      if (line.flags & CLOSES_CALL) {
        addBlock(open_command, number);
        open_command = -1;
      }
      last_code_line = number;
      continue;
    }
    closeHeaders(line.indentation);
    if (line.indentation == 0)
      line.flags |= TOP_LEVEL;
    if (line.flags & OPENS_CALL) {
      open_command = number;
    } else if (line.flags & HEADER) {
      _headers.emplace_back(number, top_indentation);
      top_indentation = line.indentation;
    }
    last_code_line = number;
  }
  // At the end of the text, or at a line at indentation 0 that closes them all.
  closeHeaders(0);
  return number;
}

void PythonParser::textReplaced(int line, int removed, int added)
{
  const int old_count = _facts.size();
  if (!_facts_valid || line < 0 || removed < 0 || added < 0 || line + removed > old_count ||
      old_count - removed + added != getNumberOfLines() || getBlockLines() != old_count) {
    parse();
    return;
  }
  // Nothing was open before the line when the last parse met it at the top level.
  const bool top_level_before = line < old_count && (_facts[line].flags & TOP_LEVEL);
  _facts.replace(line, removed, added, LineFacts());
  replaceBlockLines(line, removed, added);
  int number = line;
  readLines(line, line + added - 1, [&](const QString& text) { _facts[number++] = factsOf(text); });

  // The parse starts again where nothing is open: at the line itself when it stands at
  // indentation 0 after such a point, else at the last top-level line above it.
  int first = line;
  const bool starts_top_level = line < _facts.size() && (_facts[line].flags & CODE) && _facts[line].indentation == 0;
  if (!(top_level_before && starts_top_level)) {
    first = line - 1;
    while (first > 0 && !(_facts[first].flags & TOP_LEVEL))
      --first;
    first = std::max(first, 0);
  }
  const int end = scan(first, line + added);
  setChangedLines(first, end - 1);
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
