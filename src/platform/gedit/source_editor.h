#pragma once

#include <QPlainTextEdit>

#include <set>

#include "core/vel_export.h"

namespace Vel::GEdit {

class TextParser;
class TextHighlighter;
class SyntaxHighlighterAdapter;

// A text editor for source code: line numbers and fold markers in a margin, folding of the
// parser's blocks, automatic indentation of new lines, and the highlighter's colours.
class VEL_EXPORT SourceEditor : public QPlainTextEdit
{
  Q_OBJECT

public:
  // Takes the parser and the highlighter as children.
  SourceEditor(TextParser* parser, TextHighlighter* highlighter, QWidget* parent = nullptr);

  TextParser* getParser() const { return _parser; }
  TextHighlighter* getHighlighter() const { return _highlighter; }

  void setTabWidth(int columns);
  void setShowTabs(bool show);
  // Marks a line (0-based) as the one where something failed, and shows it; -1 clears.
  void markErrorLine(int line);
  int getErrorLine() const { return _error_line; }
  // The line where a run is paused (0-based), marked with an arrow and a background; -1 clears.
  void setCurrentLine(int line);
  int getCurrentLine() const { return _current_line; }

  // Breakpoint marks (0-based lines), set by clicking the line numbers; they move with the text.
  const std::set<int>& getBreakpoints() const { return _breakpoints; }
  void setBreakpoint(int line, bool set);

  bool isFolded(int first_line) const { return _folded.count(first_line) != 0; }
  void toggleFold(int first_line);

  // Comments out the lines of the selection (the cursor's line without one) with "# " at their
  // common indentation, or takes one comment mark off each; one step to undo. Blank lines stay.
  void commentLines(bool comment);
  // Opens the folds that hide a line (0-based).
  void revealLine(int line);
  void clearBreakpoints();

  // Moves the cursor to the start of a line (from 1) and shows it; false for no such line.
  bool goToLine(int line);

  // The indentation the text already uses for one level: a tab, or so many spaces.
  QString indentUnit() const;

  int marginWidth() const;
  void paintMargin(QPaintEvent* event);
  void marginClicked(const QPoint& position);

Q_SIGNALS:
  void breakpointToggled(int line, bool set);

protected:
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

private:
  void contentsChanged(int position, int removed, int added);
  // Shows and hides the lines from `from` to `to` as the folds say; the folds there whose block
  // is gone open again.
  void applyFolding(int from, int to);
  void updateMargin(const QRect& rect, int dy);
  void updateMarks();

  TextParser* _parser;
  TextHighlighter* _highlighter;
  SyntaxHighlighterAdapter* _adapter;
  QWidget* _margin;
  std::set<int> _folded;
  int _line_count = 1;
  int _error_line = -1;
  int _current_line = -1;
  std::set<int> _breakpoints;
  bool _hiding = false;  // some line may be hidden by a fold
};

// The blanks and tabs a line begins with.
VEL_EXPORT QString leadingSpace(const QString& line);

// Replaces `old_text`, which stands at `start` of the document, by `new_text`, changing only the
// part between their common beginning and end, so that the cursor, folds and marks elsewhere stay;
// one step to undo.
VEL_EXPORT void replaceDifference(QTextDocument* document, int start, const QString& old_text, const QString& new_text);

}  // namespace Vel::GEdit
