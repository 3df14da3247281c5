#pragma once

#include <QColor>
#include <QObject>
#include <QSyntaxHighlighter>

#include <vector>

#include "core/vel_export.h"

namespace Vel::GEdit {

// Colours an editor's text line by line: each line starts in the state the line before it ended
// in, so that constructs spanning lines (long strings) continue.
class VEL_EXPORT TextHighlighter : public QObject
{
  Q_OBJECT

public:
  enum Style
  {
    STYLE_NORMAL = 0,
    STYLE_BOLD = 1
  };
  struct Format
  {
    int start;
    int length;
    QColor color;
    int style;
    int tag;  // what the concrete highlighter calls the run (its colour role), or -1
  };

  explicit TextHighlighter(QObject* parent = nullptr);

  // Colours one line through setFormat() and returns the state at its end.
  virtual int highlightLine(unsigned int line, const QString& text, int state) = 0;

  // The runs of the line being coloured.
  void setFormat(int start, int length, const QColor& color, int style, int tag = -1);
  const std::vector<Format>& getFormats() const { return _formats; }
  void clearFormats() { _formats.clear(); }

Q_SIGNALS:
  // Everything from `line` on needs colouring again (the word lists or colours changed).
  void signalUpdate(int line);

private:
  std::vector<Format> _formats;
};

// Binds a TextHighlighter to a Qt text document. Qt re-colours the following lines only while a
// line's end state changes, so an edit costs the lines it really affects.
class VEL_EXPORT SyntaxHighlighterAdapter : public QSyntaxHighlighter
{
  Q_OBJECT

public:
  SyntaxHighlighterAdapter(TextHighlighter* highlighter, QTextDocument* document);

protected:
  void highlightBlock(const QString& text) override;

private:
  TextHighlighter* _highlighter;
};

}  // namespace Vel::GEdit
