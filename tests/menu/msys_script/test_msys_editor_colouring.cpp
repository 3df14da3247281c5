#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gedit/source_editor.h"
#include "gedit/text_highlighter.h"
#include "menu/msys_script/msys_python_dump.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"

using namespace Vel;
using namespace Vel::MSysScript;

namespace {

struct Run
{
  int line;
  int start;
  int length;
  QRgb colour;
  bool bold;
  bool operator==(const Run& other) const
  {
    return line == other.line && start == other.start && length == other.length && colour == other.colour &&
           bold == other.bold;
  }
};

void PrintTo(const Run& run, std::ostream* out)
{
  *out << "line " << run.line << " [" << run.start << "+" << run.length << "] #" << std::hex << run.colour << std::dec
       << (run.bold ? " bold" : "");
}

// What the document shows for lines first..last, read back from the text layouts.
std::vector<Run> shownRuns(const QTextDocument* document, int first = 0, int last = INT_MAX)
{
  std::vector<Run> runs;
  for (QTextBlock block = document->findBlockByNumber(first); block.isValid() && block.blockNumber() <= last;
       block = block.next())
    for (const QTextLayout::FormatRange& range : block.layout()->formats())
      runs.push_back({block.blockNumber(), range.start, range.length, range.format.foreground().color().rgba(),
                      range.format.fontWeight() == QFont::Bold});
  return runs;
}

// What the line-by-line scan gives for the same lines; touching runs of one look are one range.
std::vector<Run> scannedRuns(const QString& text, PythonHighlighter& highlighter, int first = 0, int last = INT_MAX)
{
  std::vector<Run> runs;
  for (const ColourRun& run : colourText(text, highlighter)) {
    if (run.line < first || run.line > last)
      continue;
    const auto role = PythonHighlighter::ColorRole_t(run.role);
    const Run next{run.line, run.start, run.length, highlighter.getColor(role).rgba(),
                   role == PythonHighlighter::ROLE_KEYWORD};
    Run* previous = runs.empty() ? nullptr : &runs.back();
    if (previous && previous->line == next.line && previous->start + previous->length == next.start &&
        previous->colour == next.colour && previous->bold == next.bold)
      previous->length += next.length;
    else
      runs.push_back(next);
  }
  return runs;
}

// Many lines, with strings over several lines that change the state every following line starts in.
QString longText(int lines)
{
  QStringList text;
  for (int i = 0; text.size() < lines; ++i) {
    text << QStringLiteral("def function%1(self, value):").arg(i) << QStringLiteral("    '''Text of")
         << QStringLiteral("    several lines # not a comment") << QStringLiteral("    '''")
         << QStringLiteral("    name = \"x\" + 'y'  # a comment") << QString()
         << QStringLiteral("    return zut.script.sys.delay_script(value) if True else None");
  }
  return text.mid(0, lines).join(QLatin1Char('\n'));
}

GEdit::SyntaxHighlighterAdapter* adapterOf(const QPlainTextEdit& editor)
{
  return editor.document()->findChild<GEdit::SyntaxHighlighterAdapter*>();
}

bool colouredToTheEnd(const QPlainTextEdit& editor)
{
  return QTest::qWaitFor([&] { return adapterOf(editor)->isComplete(); }, 10000);
}

const int LONG = 20000;

}  // namespace

TEST(EditorColouring, ALongTextIsColouredInStepsWhileIdleAndThenAsTheLineScan)
{
  auto* highlighter = new PythonHighlighter;
  GEdit::SourceEditor editor(new PythonParser, highlighter);
  editor.setPlainText(longText(LONG));
  const int at_once = adapterOf(editor)->colouredLines();
  EXPECT_GT(at_once, 0);
  EXPECT_LT(at_once, LONG) << "not all of it before the event loop runs";
  EXPECT_EQ(shownRuns(editor.document(), 0, at_once - 1),
            scannedRuns(editor.toPlainText(), *highlighter, 0, at_once - 1));
  ASSERT_TRUE(colouredToTheEnd(editor));
  EXPECT_EQ(shownRuns(editor.document()), scannedRuns(editor.toPlainText(), *highlighter));

  // New colours: everything again, in new colours.
  highlighter->setColor(PythonHighlighter::ROLE_STRING, Qt::green);
  adapterOf(editor)->rehighlight();
  ASSERT_TRUE(colouredToTheEnd(editor));
  EXPECT_EQ(shownRuns(editor.document()), scannedRuns(editor.toPlainText(), *highlighter));
}

struct Edit
{
  const char* name;
  bool wait_first;  // until everything is coloured, else at once while most is still to colour
  int line;
  int removed_lines;
  const char* inserted;
};

void PrintTo(const Edit& edit, std::ostream* out)
{
  *out << edit.name;
}

class EditorColouringEdits : public ::testing::TestWithParam<Edit>
{};

TEST_P(EditorColouringEdits, LeaveTheColoursOfTheLineScan)
{
  const Edit& edit = GetParam();
  auto* highlighter = new PythonHighlighter;
  GEdit::SourceEditor editor(new PythonParser, highlighter);
  editor.setPlainText(longText(LONG));
  if (edit.wait_first) {
    ASSERT_TRUE(colouredToTheEnd(editor));
  }
  QTextCursor cursor(editor.document()->findBlockByNumber(edit.line));
  cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, edit.removed_lines);
  cursor.insertText(QString::fromLatin1(edit.inserted));
  // What is on the screen is right at once: the lines of the edit and those it changed after it.
  const int shown = edit.line + 200;
  if (adapterOf(editor)->colouredLines() > shown) {
    EXPECT_EQ(shownRuns(editor.document(), 0, shown), scannedRuns(editor.toPlainText(), *highlighter, 0, shown));
  }
  ASSERT_TRUE(colouredToTheEnd(editor));
  EXPECT_EQ(shownRuns(editor.document()), scannedRuns(editor.toPlainText(), *highlighter));
}

INSTANTIATE_TEST_SUITE_P(Edits, EditorColouringEdits,
                         ::testing::Values(Edit{"TypedInColouredLines", false, 100, 0, "x = 'typed' # here\n"},
                                           Edit{"TypedBelowTheColouredLines", false, LONG / 2, 0, "x = 'typed'\n"},
                                           Edit{"OpensAStringNearTheTop", false, 3, 0, "'''\n"},
                                           Edit{"OpensAStringWhenAllIsColoured", true, 3, 0, "'''\n"},
                                           Edit{"ClosesAStringWhenAllIsColoured", true, 3, 1, ""},
                                           Edit{"RemovesLinesAcrossTheColouredEnd", false, 990, 30, "y = 1\n"},
                                           Edit{"ReplacesEverythingWhenAllIsColoured", true, 0, LONG, "print 'new'"}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(EditorColouring, ALineScrolledToIsColouredBeforeItIsPainted)
{
  auto* highlighter = new PythonHighlighter;
  GEdit::SourceEditor editor(new PythonParser, highlighter);
  editor.resize(600, 400);
  editor.setPlainText(longText(LONG));
  editor.show();
  editor.verticalScrollBar()->setValue(LONG / 2);
  editor.grab();  // paints at once, before any idle step
  EXPECT_LT(adapterOf(editor)->colouredLines(), LONG);
  const int top = LONG / 2;
  const int bottom = top + editor.viewport()->height() / editor.fontMetrics().lineSpacing();
  ASSERT_GE(adapterOf(editor)->colouredLines(), bottom);
  EXPECT_EQ(shownRuns(editor.document(), top, bottom), scannedRuns(editor.toPlainText(), *highlighter, top, bottom));
}

TEST(EditorColouring, TextAnInputMethodComposesKeepsItsLookAndMovesTheColoursAfterIt)
{
  auto* highlighter = new PythonHighlighter;
  GEdit::SourceEditor editor(new PythonParser, highlighter);
  editor.setPlainText(QStringLiteral("x = 'text'"));
  QTextCursor cursor(editor.document());
  cursor.setPosition(4);
  editor.setTextCursor(cursor);
  QTextCharFormat underline;
  underline.setFontUnderline(true);
  QInputMethodEvent compose(QStringLiteral("ab"), {{QInputMethodEvent::TextFormat, 0, 2, underline}});
  QCoreApplication::sendEvent(&editor, &compose);

  std::vector<std::tuple<int, int, bool, QRgb>> ranges;
  for (const QTextLayout::FormatRange& range : editor.document()->firstBlock().layout()->formats())
    ranges.emplace_back(
        range.start, range.length, range.format.fontUnderline(),
        range.format.hasProperty(QTextFormat::ForegroundBrush) ? range.format.foreground().color().rgba() : QRgb(0));
  const QRgb string = highlighter->getColor(PythonHighlighter::ROLE_STRING).rgba();
  EXPECT_THAT(ranges, ::testing::UnorderedElementsAre(std::make_tuple(6, 6, false, string),
                                                      std::make_tuple(4, 2, true, QRgb(0))));
}
