#include "gedit/text_highlighter.h"

#include <QTextDocument>

namespace Vel::GEdit {

TextHighlighter::TextHighlighter(QObject* parent) : QObject(parent) {}

void TextHighlighter::setFormat(int start, int length, const QColor& color, int style, int tag)
{
  if (length > 0)
    _formats.push_back({start, length, color, style, tag});
}

SyntaxHighlighterAdapter::SyntaxHighlighterAdapter(TextHighlighter* highlighter, QTextDocument* document)
    : QSyntaxHighlighter(document), _highlighter(highlighter)
{
  connect(highlighter, &TextHighlighter::signalUpdate, this, [this](int) { rehighlight(); });
}

void SyntaxHighlighterAdapter::highlightBlock(const QString& text)
{
  const int previous = previousBlockState();
  _highlighter->clearFormats();
  const int state =
      _highlighter->highlightLine(unsigned(currentBlock().blockNumber()), text, previous < 0 ? 0 : previous);
  for (const TextHighlighter::Format& format : _highlighter->getFormats()) {
    QTextCharFormat character;
    character.setForeground(format.color);
    if (format.style == TextHighlighter::STYLE_BOLD)
      character.setFontWeight(QFont::Bold);
    setFormat(format.start, format.length, character);
  }
  setCurrentBlockState(state);
}

}  // namespace Vel::GEdit
