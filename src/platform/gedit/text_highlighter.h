#pragma once

#include <QColor>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTextCharFormat>
#include <QTextLayout>
#include <QTimer>

#include <vector>

#include "core/vel_export.h"

class QPlainTextEdit;
class QTextBlock;
class QTextDocument;

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

  // Colours one line through setFormat() and returns the state at its end, a number below 2^30.
  // The text may be a view into a larger buffer: valid during the call only, not to be kept.
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

// Binds a TextHighlighter to a Qt text document: each line's runs become the formats of its text
// layout and its end state the block's user state. An edit re-colours the lines it changed and
// the following ones while their start state changes.
//
// A large text is not coloured at once: a change colours a first stretch of lines at once, and
// the rest goes on in short steps while the event loop is idle. With a view, whatever the view is
// about to paint is coloured before it is painted.
class VEL_EXPORT SyntaxHighlighterAdapter : public QObject
{
  Q_OBJECT

public:
  SyntaxHighlighterAdapter(TextHighlighter* highlighter, QTextDocument* document);
  // Follows the view's document and colours what the view shows first.
  SyntaxHighlighterAdapter(TextHighlighter* highlighter, QPlainTextEdit* view);

  // Colours the document again from a line (0-based) on, what the view shows first: the word
  // lists or the colours changed.
  void rehighlightFrom(int line);
  void rehighlight() { rehighlightFrom(0); }
  // Colours whatever is still to be coloured now.
  void colourAll() { colourUpTo(-1); }
  // Lines up to `line` (0-based; -1 for the last) carry their colours when this returns. Not
  // inside an edit block of the document, whose pending change it would hand to the layout early.
  void colourUpTo(int line);
  // How many lines from the top carry their colours; the rest is still to be coloured.
  int colouredLines() const { return _coloured; }
  bool isComplete() const;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void contentsChange(int position, int removed, int added);
  void colourStep();
  void colourVisible();
  // Colours from line `_coloured` on until `until` says to stop, then makes the layout take it.
  template <typename Until>
  void colourFrom(Until until);
  // Colours one line; false when its formats stayed as they were.
  bool colourBlock(QTextBlock block, const QString& text, int number, int state, int* end_state);
  static int lineState(const QTextBlock& block);
  static void keepPreedit(const QTextLayout* layout, QList<QTextLayout::FormatRange>* ranges);
  size_t formatIndex(const QColor& color, int style);
  void shareFormats(const QTextLayout* layout);
  void overlappingRanges(const std::vector<TextHighlighter::Format>& runs, int length,
                         QList<QTextLayout::FormatRange>* ranges);
  void scheduleRest();

  // Kept in a block's user state beside the highlighter's state: the block's layout holds formats.
  static constexpr int HAS_FORMATS = 1 << 30;

  struct CachedFormat
  {
    QColor color;
    int style;
    QTextCharFormat format;
    bool shared;  // the document's own copy, which it compares fastest
  };

  QPointer<TextHighlighter> _highlighter;
  QTextDocument* _document;
  QPointer<QPlainTextEdit> _view;
  int _coloured = 0;  // lines [0, _coloured) carry their colours and end states
  int _block_count = 1;
  QTimer _idle;
  QString _text;                            // the document's text while much of it is to be coloured, or null
  std::vector<CachedFormat> _char_formats;  // one per colour and style
  std::vector<size_t> _range_formats;       // the cached format of each range of the line
};

}  // namespace Vel::GEdit
