#pragma once

#include <QString>
#include <QStringView>

#include <utility>
#include <vector>

#include "gedit/text_parser.h"

namespace Vel::MSysScript {

// The foldable blocks of a Python script: compound statements opened by a line ending in ":",
// and command calls spread over several lines. Also the indentation of a new line.
//
// What the parse needs of a line is kept per line, so that after an edit only the edited lines
// are read again. The parse itself runs again from the last line before the edit where nothing
// was open (a code line at indentation 0 outside a call) and stops at the first such line after
// the edit that was one before it too: from there on the parse cannot differ from the last one.
class PythonParser : public GEdit::TextParser
{
  Q_OBJECT

public:
  explicit PythonParser(QObject* parent = nullptr);

  void parse() override;
  void textReplaced(int line, int removed, int added) override;
  QString getLineOffset(int line) const override;

  // The (trimmed) line opens a command call: its right-hand side starts with a command prefix
  // and holds a "(" or a line continuation.
  bool isCommandStartLine(const QString& line) const;

  // Takes effect with the next parse().
  void setTabSize(int size);
  int getTabSize() const { return _tab_size; }

private:
  struct LineFacts
  {
    int indentation = 0;
    quint8 flags = 0;
  };

  int computeIndentationLevel(const QString& line) const;
  static QString stripTrailingComment(const QString& line);
  // Where the trailing "#" comment of a line begins; its length when it has none.
  static qsizetype commentStart(QStringView line);
  bool isCommandStart(QStringView line) const;
  LineFacts factsOf(const QString& line) const;
  // Parses from `first`, which nothing open may precede, to the end or to the first line from
  // `settled` on that began at the top level in the last parse and does so again; returns the
  // line where it stopped.
  int scan(int first, int settled);

  int _tab_size = 4;
  GEdit::LineTable<LineFacts> _facts;
  bool _facts_valid = false;                  // _facts describe the text as it is
  std::vector<std::pair<int, int>> _headers;  // the open headers of a scan, kept for their memory
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
