#pragma once

#include <QString>

#include <utility>
#include <vector>

#include "gedit/text_parser.h"

namespace Vel::MSysScript {

// The foldable blocks of a Python script: compound statements opened by a line ending in ":",
// and command calls spread over several lines. Also the indentation of a new line.
class PythonParser : public GEdit::TextParser
{
  Q_OBJECT

public:
  explicit PythonParser(QObject* parent = nullptr);

  void parse() override;
  void textInserted(int line, int count) override;
  void textDeleted(int line, int count) override;
  QString getLineOffset(int line) const override;

  // The (trimmed) line opens a command call: its right-hand side starts with a command prefix
  // and holds a "(" or a line continuation.
  bool isCommandStartLine(const QString& line) const;

  void setTabSize(int size) { _tab_size = size; }
  int getTabSize() const { return _tab_size; }

private:
  int computeIndentationLevel(const QString& line) const;
  static QString stripTrailingComment(const QString& line);
  void parse(int first, int last);

  int _tab_size = 4;
  QString _script_prefix;
  QString _interactive_prefix;
  QString _gui_prefix;
};

// A script held as one string, read line by line.
class LineAccess
{
public:
  explicit LineAccess(const QString& text);
  virtual ~LineAccess() = default;
  LineAccess(const LineAccess&) = default;
  LineAccess& operator=(const LineAccess&) = default;

  unsigned getNumberOfLines() const { return unsigned(_line_starts.size()); }
  // The line with its "\n" (without it when `strip`); empty beyond the end.
  QString getLine(unsigned line, bool strip) const;

protected:
  QString _text;
  std::vector<unsigned> _line_starts;
};

// Finds the lines that make up the script command around a line.
class CommandBlockAccess : public LineAccess
{
public:
  struct ScanMode
  {
    enum Type_t
    {
      PARSE = 0,       // the interpreter's compiler decides where a command ends
      NEXT_START = 1,  // a command ends before the next line that starts one
    };
  };
  using Interval = std::pair<unsigned, unsigned>;
  static const Interval INVALID;

  explicit CommandBlockAccess(const QString& text);

  static bool isCommandBlockStart(const QString& line);
  // First and last line of the one command that holds `line`, or INVALID.
  Interval getCommandInterval(unsigned line) const;
  // The text of those lines; empty for INVALID.
  QString getCommandBlock(unsigned line) const;

  ScanMode::Type_t getScanMode() const { return _scan_mode; }
  void setScanMode(ScanMode::Type_t mode) { _scan_mode = mode; }

private:
  ScanMode::Type_t _scan_mode = ScanMode::PARSE;
};

}  // namespace Vel::MSysScript
