#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QPlainTextEdit>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include <gtest/gtest.h>
#include <random>

#include "gapp/app_status_manager.h"
#include "gapp/command_container.h"
#include "gapp/data_change_notifier.h"
#include "gapp/interaction.h"
#include "gedit/source_editor.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_dlg_script_editor.h"
#include "menu/msys_script/msys_python_dump.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"
#include "msys_fixture.h"
#include "test_util.h"

using namespace Vel;
using namespace Vel::MSysScript;

namespace {

QString referenceDir()
{
  return qEnvironmentVariable("ZUT_SOURCE_DIR") + QStringLiteral("/tests/menu/msys_script/editor_reference");
}

QStringList referenceInputs()
{
  QStringList inputs = QDir(referenceDir()).entryList({QStringLiteral("*.py")}, QDir::Files, QDir::Name);
  return inputs;
}

// The runs that the editor's document shows for each line, read back from the text layouts.
std::vector<ColourRun> editorRuns(const GEdit::SourceEditor& editor, const PythonHighlighter& highlighter)
{
  std::vector<ColourRun> runs;
  for (QTextBlock block = editor.document()->firstBlock(); block.isValid(); block = block.next())
    for (const QTextLayout::FormatRange& range : block.layout()->formats()) {
      int role = -1;
      for (int candidate = 0; candidate <= PythonHighlighter::ROLE_SCRIPT_COMMAND; ++candidate) {
        const auto r = PythonHighlighter::ColorRole_t(candidate);
        if (highlighter.getColor(r) == range.format.foreground().color() &&
            (r == PythonHighlighter::ROLE_KEYWORD) == (range.format.fontWeight() == QFont::Bold) &&
            r != PythonHighlighter::ROLE_SPECIAL_METHOD)
          role = candidate;
      }
      runs.push_back({block.blockNumber(), range.start, range.length, role});
    }
  return runs;
}

// Roles 3 and 4 share a colour; the editor tells them apart by weight only, so compare without
// that distinction where the document is read back.
std::vector<ColourRun> withoutSpecialMethods(std::vector<ColourRun> runs)
{
  for (ColourRun& run : runs)
    if (run.role == PythonHighlighter::ROLE_SPECIAL_METHOD)
      run.role = -1;
  return runs;
}

// Types text as key events; QTest::keyClicks knows ASCII only.
void type(QWidget* widget, const QString& text)
{
  for (const QChar c : text)
    QTest::sendKeyEvent(QTest::Click, widget, Qt::Key_unknown, QString(c), Qt::NoModifier);
}

class EditorTest : public ::testing::Test
{
protected:
  void SetUp() override { startedModule(); }
};

class ReferenceFiles : public EditorTest, public ::testing::WithParamInterface<QString>
{};

}  // namespace

TEST_P(ReferenceFiles, BlocksAndColoursMatchTheReference)
{
  const QString base = referenceDir() + QLatin1Char('/') + GetParam().chopped(3);
  const QString text = QString::fromUtf8(readFile(base + QStringLiteral(".py")));
  EXPECT_EQ(blocksToText(findBlocks(text)), QString::fromUtf8(readFile(base + QStringLiteral(".blocks"))))
      << "after a deliberate change: scripts/update-editor-reference";
  PythonHighlighter highlighter;
  EXPECT_EQ(runsToText(colourText(text, highlighter)), QString::fromUtf8(readFile(base + QStringLiteral(".colors"))))
      << "after a deliberate change: scripts/update-editor-reference";
}

TEST_P(ReferenceFiles, TheEditorColoursLikeTheLineByLineScan)
{
  const QString text = QString::fromUtf8(readFile(referenceDir() + QLatin1Char('/') + GetParam()));
  auto* highlighter = new PythonHighlighter;
  GEdit::SourceEditor editor(new PythonParser, highlighter);
  editor.setPlainText(text);
  EXPECT_EQ(withoutSpecialMethods(editorRuns(editor, *highlighter)),
            withoutSpecialMethods(colourText(text, *highlighter)));

  // Typing into the middle re-colours exactly what the new text needs, no more and no less.
  QTextCursor cursor(editor.document()->findBlockByNumber(editor.document()->blockCount() / 2));
  cursor.insertText(QStringLiteral("'''"));
  EXPECT_EQ(withoutSpecialMethods(editorRuns(editor, *highlighter)),
            withoutSpecialMethods(colourText(editor.toPlainText(), *highlighter)));
  cursor.deletePreviousChar();
  EXPECT_EQ(withoutSpecialMethods(editorRuns(editor, *highlighter)),
            withoutSpecialMethods(colourText(editor.toPlainText(), *highlighter)));
  const auto parsed = editor.getParser()->getBlocks();
  const std::vector<std::pair<int, int>> blocks(parsed.begin(), parsed.end());
  EXPECT_EQ(blocks, findBlocks(editor.toPlainText()));
}

INSTANTIATE_TEST_SUITE_P(Inputs, ReferenceFiles, ::testing::ValuesIn(referenceInputs()),
                         [](const auto& info) { return info.param.chopped(3).toStdString(); });

namespace {

// Pieces the block parser reads differently: headers, colons in strings and comments, command
// calls left open and closed, continuations, lone quotes; indented by blanks and tabs.
const QStringList PIECES = QStringLiteral(R"(def f(a, b):
class C(object):
if x:  # why:
else:
for i in range(3):
return c
x = 1
s = 'a:b'
t = "#" + ':'
u = '#':
# a comment:
pass
zut.script.sys.delay_script(
a = zut.interactive.x.y(
zut.gui.a \
time=1)
b=2,
)
w = 1 + \
'''doc:
z = 'open
call(x)
)")
                               .split(QLatin1Char('\n'));
const char* const INDENTS[] = {"", "", "  ", "    ", "\t", "\t  ", "        "};
const QString CHARACTERS = QStringLiteral(" \t\n:#()'\"\\x=");

struct Edit
{
  int position;
  int removed;
  QString inserted;
};

class RandomText
{
public:
  explicit RandomText(unsigned seed) : _random(seed) {}
  int pick(int count) { return count > 0 ? int(_random() % unsigned(count)) : 0; }
  QString line() { return QString::fromLatin1(INDENTS[pick(std::size(INDENTS))]) + PIECES[pick(int(PIECES.size()))]; }
  QString lines(int count)
  {
    QStringList lines;
    for (int i = 0; i < count; ++i)
      lines << line();
    return lines.join(QLatin1Char('\n'));
  }
  // Single characters, whole lines and chunks of lines, anywhere, the ends of the text included.
  Edit edit(const QString& text)
  {
    std::vector<int> starts{0};
    for (int i = 0; i < text.size(); ++i)
      if (text[i] == QLatin1Char('\n'))
        starts.push_back(i + 1);
    const int size = int(text.size());
    const int start = starts[size_t(pick(int(starts.size())))];
    const auto lineEnd = [&](int from, int lines) {
      int end = from;
      while (end < size && (text[end] != QLatin1Char('\n') || --lines > 0))
        ++end;
      return std::min(end + 1, size);
    };
    switch (pick(7)) {
      case 0: return {pick(size + 1), 0, QString(CHARACTERS[pick(int(CHARACTERS.size()))])};
      case 1: return {pick(size), std::min(1, size), QString()};
      case 2: return {start, 0, line() + QLatin1Char('\n')};
      case 3: return {start, lineEnd(start, 1 + pick(3)) - start, QString()};
      case 4: {
        const int position = pick(size + 1);
        return {position, std::min(pick(40), size - position), lines(pick(4)) + (pick(2) ? "\n" : "")};
      }
      case 5: return {pick(2) ? 0 : size, 0, lines(1 + pick(3)) + QLatin1Char('\n')};
      default: return {start, lineEnd(start, 1) - start, line() + QLatin1Char('\n')};
    }
  }

private:
  std::mt19937 _random;
};

}  // namespace

TEST(PythonParser, AfterEveryEditTheBlocksAreThoseOfAFullParse)
{
  // The same edits go to a parser told which lines changed and to an editor typed into (and
  // undone in now and then); both must then hold the blocks that a parse of the whole new text
  // finds.
  const unsigned seed = 20261124;
  RandomText random(seed);
  QString text = random.lines(60);
  QStringList lines = text.split(QLatin1Char('\n'));
  PythonParser parser;
  parser.setLineSource([&](int line) { return lines.value(line); }, [&] { return int(lines.size()); });
  parser.parse();
  GEdit::SourceEditor editor(new PythonParser, new PythonHighlighter);
  editor.setPlainText(text);

  for (int step = 0; step < 4000; ++step) {
    Edit edit = text.size() > 6000 ? Edit{0, int(text.size()) / 2, QString()} : random.edit(text);
    if (step % 25 == 24) {
      // An undo changes the document as Qt sees fit; the parser is told the difference.
      editor.undo();
      const QString now = editor.toPlainText();
      int prefix = 0, suffix = 0;
      while (prefix < std::min(text.size(), now.size()) && text[prefix] == now[prefix])
        ++prefix;
      while (suffix < std::min(text.size(), now.size()) - prefix &&
             text[text.size() - 1 - suffix] == now[now.size() - 1 - suffix])
        ++suffix;
      edit = {prefix, int(text.size()) - prefix - suffix, now.mid(prefix, now.size() - prefix - suffix)};
    } else {
      QTextCursor cursor(editor.document());
      cursor.setPosition(edit.position);
      cursor.setPosition(edit.position + edit.removed, QTextCursor::KeepAnchor);
      cursor.insertText(edit.inserted);
    }
    const int line = int(text.left(edit.position).count(QLatin1Char('\n')));
    const int removed = 1 + int(text.mid(edit.position, edit.removed).count(QLatin1Char('\n')));
    text.replace(edit.position, edit.removed, edit.inserted);
    lines = text.split(QLatin1Char('\n'));
    parser.textReplaced(line, removed, 1 + int(edit.inserted.count(QLatin1Char('\n'))));

    const auto parsed = findBlocks(text);
    const GEdit::TextParser::BlockMap full(parsed.begin(), parsed.end());
    const auto where = [&] {
      return QStringLiteral("seed %1, step %2: %3 characters at %4 replaced by '%5'")
          .arg(seed)
          .arg(step)
          .arg(edit.removed)
          .arg(edit.position)
          .arg(edit.inserted)
          .toStdString();
    };
    ASSERT_EQ(parser.getBlocks(), full) << where();
    ASSERT_EQ(editor.toPlainText(), text) << where();
    ASSERT_EQ(editor.getParser()->getBlocks(), full) << where();

    // Folds stay on blocks and hide exactly their lines, whatever the edits did around them.
    if (step % 16 == 0 && !full.empty()) {
      auto block = full.begin();
      std::advance(block, random.pick(int(full.size())));
      editor.toggleFold(block->first);
    }
    int hidden_to = -1;
    for (QTextBlock block = editor.document()->firstBlock(); block.isValid(); block = block.next()) {
      const int number = block.blockNumber();
      ASSERT_EQ(block.isVisible(), number > hidden_to) << where() << ", line " << number;
      if (editor.isFolded(number)) {
        ASSERT_TRUE(full.count(number)) << where() << ", a fold without a block at " << number;
        hidden_to = std::max(hidden_to, full.at(number));
      }
    }
  }
}

TEST(PythonParser, IndentationCommandStartsAndLineOffsets)
{
  PythonParser parser;
  parser.setText(QStringLiteral("def f():\n\tif x:  # why:\n\t\tpass\nname = '#':\ncall()  # done:\n    x = 1"));
  EXPECT_EQ(parser.getLineOffset(0), QString());
  EXPECT_EQ(parser.getLineOffset(1), QStringLiteral("\t"));
  EXPECT_EQ(parser.getLineOffset(2), QStringLiteral("\t\t"));
  EXPECT_EQ(parser.getLineOffset(3), QStringLiteral("\t\t"));
  EXPECT_EQ(parser.getLineOffset(4), QStringLiteral("\t")) << "':' inside quotes ends a header line";
  EXPECT_EQ(parser.getLineOffset(5), QString()) << "a ':' in a comment opens nothing";

  // A tab counts as many columns as the tab size.
  parser.setText(QStringLiteral("if a:\n\tb = 1\n    c = 2\nd = 3"));
  parser.parse();
  EXPECT_EQ(parser.getBlocks(), (GEdit::TextParser::BlockMap{{0, 2}}));
  parser.setTabSize(8);
  parser.parse();
  EXPECT_EQ(parser.getBlocks(), (GEdit::TextParser::BlockMap{{0, 2}}));

  for (const char* start : {"zut.script.sys.delay_script(", "x = zut.interactive.a.b(", "zut.gui.x \\"})
    EXPECT_TRUE(parser.isCommandStartLine(QString::fromLatin1(start))) << start;
  // The first "=" decides: a keyword argument on the first line hides the command.
  for (const char* other : {"print(zut.script.x())", "zut.script", "zut.script.sys.delay_script(time=1", "a == b"})
    EXPECT_FALSE(parser.isCommandStartLine(QString::fromLatin1(other))) << other;
}

TEST(LineAccess, LinesWithAndWithoutTheirLineFeed)
{
  const LineAccess access(QStringLiteral("first\nsecond\nlast"));
  EXPECT_EQ(access.getNumberOfLines(), 3u);
  EXPECT_EQ(access.getLine(0, false), QStringLiteral("first\n"));
  EXPECT_EQ(access.getLine(0, true), QStringLiteral("first"));
  EXPECT_EQ(access.getLine(2, true), QStringLiteral("last"));
  EXPECT_EQ(access.getLine(3, true), QString());
  EXPECT_EQ(LineAccess(QStringLiteral("a\n")).getNumberOfLines(), 2u);
}

TEST(CommandBlockAccess, FindsTheOneCommandAroundALine)
{
  const QString text = QStringLiteral(
      "import zut\n"                                                                // 0
      "a, b = zut.script.sys.execute_python_code(\n"                                // 1
      "    code='print(1)',\n"                                                      // 2
      "    collect_stdout=True)\n"                                                  // 3
      "x = 1\n"                                                                     // 4
      "zut.interactive.sys.delay_script(time=1)\n"                                  // 5
      "obj.attr = zut.script.sys.delay_script(time=1)\n"                            // 6
      "zut.script.sys.delay_script(time=1); zut.script.sys.delay_script(time=2)\n"  // 7
      "zut.script.sys.delay_script(\n");                                            // 8
  const CommandBlockAccess access(text);
  using Interval = CommandBlockAccess::Interval;
  EXPECT_EQ(access.getCommandInterval(0), CommandBlockAccess::INVALID);
  EXPECT_EQ(access.getCommandInterval(1), Interval(1, 3));
  EXPECT_EQ(access.getCommandInterval(3), Interval(1, 3));
  EXPECT_EQ(access.getCommandBlock(2), access.getLine(1, false) + access.getLine(2, false) + access.getLine(3, false));
  EXPECT_EQ(access.getCommandInterval(4), CommandBlockAccess::INVALID) << "the command before ends above";
  EXPECT_EQ(access.getCommandInterval(5), Interval(5, 5));
  EXPECT_EQ(access.getCommandInterval(6), CommandBlockAccess::INVALID)
      << "a dotted target is no assignment target, so the line starts no command";
  EXPECT_EQ(access.getCommandInterval(7), CommandBlockAccess::INVALID) << "two commands on one line";
  EXPECT_EQ(access.getCommandInterval(8), CommandBlockAccess::INVALID) << "never closed";
  EXPECT_TRUE(access.getCommandBlock(0).isEmpty());

  EXPECT_TRUE(CommandBlockAccess::isCommandBlockStart(QStringLiteral("  a, b = zut.gui.x()")));
  EXPECT_FALSE(CommandBlockAccess::isCommandBlockStart(QStringLiteral("self.x = zut.script.a()")));
  EXPECT_TRUE(CommandBlockAccess::isCommandBlockStart(QStringLiteral("zut.script.a(b=1)")));
}

TEST_F(EditorTest, HighlighterFollowsCommandsDatabaseAndConfiguration)
{
  class InteractiveOnly : public GApp::Command
  {
  public:
    InteractiveOnly() : Command(QStringLiteral("test.asks")) {}
    int getScriptKind() const override { return 1; }
    void execute(const GApp::CommandParameters&) override {}
  } command;
  PythonHighlighter highlighter;
  highlighter.updateDatabase(nullptr);
  const auto roleOf = [&](const char* line) {
    const auto runs = colourText(QString::fromLatin1(line), highlighter);
    return runs.empty() ? -1 : runs.front().role;
  };
  EXPECT_EQ(roleOf("zut.interactive.test.asks"), PythonHighlighter::ROLE_INTERACTIVE_COMMAND);
  EXPECT_EQ(roleOf("zut.script.test.asks"), -1) << "only its interactive spelling is known";
  EXPECT_EQ(roleOf("zut.script.sys.delay_script"), PythonHighlighter::ROLE_SCRIPT_COMMAND);
  EXPECT_EQ(roleOf("import_me"), -1);
  EXPECT_EQ(roleOf("None"), -1);

  highlighter.setColor(PythonHighlighter::ROLE_COMMENT, Qt::green);
  GApp::DataChangeNotifier::getInstance()->notify(GApp::DATA_CHANGED_SCRIPTS);
  EXPECT_EQ(highlighter.getColor(PythonHighlighter::ROLE_COMMENT), QColor(Qt::green));
  GApp::DataChangeNotifier::getInstance()->notify(GApp::DATA_CHANGED_CONFIGURATION);
  EXPECT_EQ(highlighter.getColor(PythonHighlighter::ROLE_COMMENT), QColor(180, 56, 56));
}

TEST_F(EditorTest, EditorIndentsFoldsRunsAndSaves)
{
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("work.py"));
  writeFile(path, "def f():\n\treturn 1 / 0\n\nf()\n");
  ScriptEditorDialog dialog;
  ErrorLog log;
  ASSERT_TRUE(dialog.openFile(path, log));
  GEdit::SourceEditor* editor = dialog.getEditor();

  // A new line after a header gets one more level.
  QTextCursor cursor(editor->document()->findBlockByNumber(0));
  cursor.movePosition(QTextCursor::EndOfBlock);
  editor->setTextCursor(cursor);
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(editor->document()->findBlockByNumber(1).text(), QStringLiteral("\t"));
  QTest::keyClicks(editor, QStringLiteral("x = 2"));
  EXPECT_EQ(editor->getParser()->getBlocks(), (GEdit::TextParser::BlockMap{{0, 2}}));

  editor->toggleFold(0);
  EXPECT_FALSE(editor->document()->findBlockByNumber(1).isVisible());
  EXPECT_TRUE(editor->document()->findBlockByNumber(3).isVisible());
  editor->toggleFold(0);
  EXPECT_TRUE(editor->document()->findBlockByNumber(1).isVisible());

  EXPECT_FALSE(dialog.run());
  EXPECT_EQ(editor->getErrorLine(), 2) << qPrintable(dialog.getOutput()->toPlainText());
  EXPECT_TRUE(dialog.getOutput()->toPlainText().contains(QStringLiteral("ZeroDivisionError")));

  ASSERT_TRUE(dialog.isModified());
  ASSERT_TRUE(dialog.save(log)) << qPrintable(log.getText());
  EXPECT_EQ(readFile(path), QByteArray("def f():\n\tx = 2\n\treturn 1 / 0\n\nf()\n"));
  EXPECT_FALSE(dialog.isModified());
}

TEST_F(EditorTest, ExitKeepsUnsavedChangesForRecoveryAndLeavesTheFileAlone)
{
  QTemporaryDir dir;
  qputenv("XDG_DATA_HOME", dir.filePath(QStringLiteral("data")).toLocal8Bit());
  auto* command = dynamic_cast<EditorCommand*>(
      GApp::CommandContainer::getInstance().getCommand(QStringLiteral("sys.show_script_editor")));
  ASSERT_NE(command, nullptr);
  const QString path = dir.filePath(QStringLiteral("exit.py"));
  writeFile(path, "x = 1\n");
  GApp::CommandParameters parameters;
  parameters.set(QStringLiteral("file"), QVariant(path));
  const auto typeAtEnd = [&](const QString& text) {
    command->run(parameters, false);
    GEdit::SourceEditor* editor = command->getDialog()->getEditor();
    editor->moveCursor(QTextCursor::End);
    QTest::keyClicks(editor, text);
  };
  std::vector<QString> questions;
  bool answer = true;
  GApp::setQuestionHandler([&](const QString&, const QString& question) {
    questions.push_back(question);
    return answer;
  });

  typeAtEnd(QStringLiteral("y = 2"));
  const QString recovery = command->getDialog()->recoveryFile();
  EXPECT_TRUE(GApp::AppStatusManager::requestExit(true));
  EXPECT_FALSE(command->hasDialog());
  EXPECT_EQ(readFile(path), QByteArray("x = 1\n")) << "never written behind the user's back";
  ASSERT_TRUE(QFile::exists(recovery));

  // Opened again: offered, restored unsaved; saving writes it and the recovery goes.
  command->run(parameters, false);
  ASSERT_EQ(questions.size(), 1u);
  EXPECT_TRUE(questions[0].contains(path)) << qPrintable(questions[0]);
  ScriptEditorDialog* dialog = command->getDialog();
  EXPECT_EQ(dialog->text(), QStringLiteral("x = 1\ny = 2"));
  EXPECT_TRUE(dialog->isModified());
  EXPECT_FALSE(QFile::exists(recovery));
  ErrorLog log;
  ASSERT_TRUE(dialog->save(log)) << qPrintable(log.getText());
  EXPECT_EQ(readFile(path), QByteArray("x = 1\ny = 2"));

  // Declined: set aside, not offered again, not lost.
  typeAtEnd(QStringLiteral("#"));
  EXPECT_TRUE(GApp::AppStatusManager::requestExit(true));
  answer = false;
  command->run(parameters, false);
  EXPECT_EQ(questions.size(), 2u);
  EXPECT_EQ(command->getDialog()->text(), QStringLiteral("x = 1\ny = 2"));
  EXPECT_TRUE(QFile::exists(recovery + QStringLiteral(".discarded")));

  // A recovery file that cannot be written is reported.
  std::vector<QString> shown;
  GApp::setErrorDialogHandler([&](const QString& code, const QString&) { shown.push_back(code); });
  writeFile(dir.filePath(QStringLiteral("blocked")), "a file where the folder would be");
  qputenv("XDG_DATA_HOME", dir.filePath(QStringLiteral("blocked")).toLocal8Bit());
  typeAtEnd(QStringLiteral("#"));
  EXPECT_TRUE(GApp::AppStatusManager::requestExit(true));
  GApp::setErrorDialogHandler(nullptr);
  GApp::setQuestionHandler(nullptr);
  EXPECT_EQ(shown, std::vector<QString>{QStringLiteral("MSysScriptErr-0003")});
  EXPECT_EQ(readFile(path), QByteArray("x = 1\ny = 2"));
}

struct RoundTrip
{
  const char* what;
  QByteArray bytes;
  const char* typed;  // at the end of the first line
  QByteArray saved;
};

class EditorRoundTrip : public EditorTest, public ::testing::WithParamInterface<RoundTrip>
{};

TEST_P(EditorRoundTrip, SavesInTheEncodingLineEndingsAndMarkItRead)
{
  const RoundTrip& c = GetParam();
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("file.py"));
  writeFile(path, c.bytes);
  ScriptEditorDialog dialog;
  ErrorLog log;
  ASSERT_TRUE(dialog.openFile(path, log)) << qPrintable(log.getText());
  ASSERT_TRUE(dialog.save(log)) << qPrintable(log.getText());
  EXPECT_EQ(readFile(path), c.bytes) << "unchanged, byte for byte";

  GEdit::SourceEditor* editor = dialog.getEditor();
  QTextCursor cursor(editor->document()->firstBlock());
  cursor.movePosition(QTextCursor::EndOfBlock);
  editor->setTextCursor(cursor);
  type(editor, QString::fromUtf8(c.typed));
  ASSERT_TRUE(dialog.save(log)) << qPrintable(log.getText());
  EXPECT_EQ(readFile(path), c.saved);
}

INSTANTIATE_TEST_SUITE_P(
    Files, EditorRoundTrip,
    ::testing::Values(
        RoundTrip{"latin1", "# -*- coding: latin-1 -*-\nx = 'caf\xe9\xa0'\n", "\xc3\xa9",
                  "# -*- coding: latin-1 -*-\xe9\nx = 'caf\xe9\xa0'\n"},
        RoundTrip{"latin1BelowShebang", "#!/usr/bin/python3\n# vim: set fileencoding=iso-8859-15 :\ns = '\xa4'\n", "!",
                  "#!/usr/bin/python3!\n# vim: set fileencoding=iso-8859-15 :\ns = '\xa4'\n"},
        RoundTrip{"crlf", "a = 1\r\nb = 2\r\n", "  # \xc3\xa4", "a = 1  # \xc3\xa4\r\nb = 2\r\n"},
        RoundTrip{"cr", "a = 1\rb = 2", "!", "a = 1!\rb = 2"},
        RoundTrip{"bom", "\xef\xbb\xbfs = '\xc3\xa4'\r\n", "#", "\xef\xbb\xbfs = '\xc3\xa4'#\r\n"},
        RoundTrip{"bomWithUtf8Declaration", "\xef\xbb\xbf# coding: utf-8\n", "!", "\xef\xbb\xbf# coding: utf-8!\n"},
        RoundTrip{"noFinalLineFeedAndNbsp", "s = '\xc2\xa0'\n\n\n\tpass", "", "s = '\xc2\xa0'\n\n\n\tpass"}),
    [](const ::testing::TestParamInfo<RoundTrip>& info) { return std::string(info.param.what); });

struct Refused
{
  const char* what;
  QByteArray bytes;
  const char* reason;
};

class EditorRefusesToGuess : public EditorTest, public ::testing::WithParamInterface<Refused>
{};

TEST_P(EditorRefusesToGuess, OpensNothingAndSaysWhy)
{
  const Refused& c = GetParam();
  QTemporaryDir dir;
  const QString earlier = dir.filePath(QStringLiteral("earlier.py"));
  writeFile(earlier, "print('earlier')\n");
  const QString path = dir.filePath(QStringLiteral("file.py"));
  writeFile(path, c.bytes);
  ScriptEditorDialog dialog;
  ErrorLog log;
  ASSERT_TRUE(dialog.openFile(earlier, log));
  EXPECT_FALSE(dialog.openFile(path, log));
  EXPECT_TRUE(log.getText().contains(QString::fromUtf8(c.reason))) << qPrintable(log.getText());
  EXPECT_EQ(dialog.getFileName(), earlier) << "the earlier file stays open";
  EXPECT_EQ(dialog.text(), QStringLiteral("print('earlier')\n"));
  EXPECT_EQ(readFile(path), c.bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Files, EditorRefusesToGuess,
    ::testing::Values(Refused{"latin1Undeclared", "x = 1\ns = 'caf\xe9'\n", "line 2 is not valid UTF-8"},
                      Refused{"declaredTooLate", "x = 1\n# coding: latin-1\ns = '\xe9'\n", "line 3 is not valid UTF-8"},
                      Refused{"badUtf8", "# coding: utf-8\ns = '\xff'\n", "line 2 is not valid UTF-8"},
                      Refused{"bomAndLatin1", "\xef\xbb\xbf# coding: latin-1\n", "byte-order mark"},
                      Refused{"unknownEncoding", "# coding: no-such-encoding\n", "'no-such-encoding'"}),
    [](const ::testing::TestParamInfo<Refused>& info) { return std::string(info.param.what); });

TEST_F(EditorTest, ACharacterTheEncodingCannotHoldIsNotSaved)
{
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("file.py"));
  const QByteArray original = "# coding: latin-1\ns = ''\n";
  writeFile(path, original);
  ScriptEditorDialog dialog;
  ErrorLog log;
  ASSERT_TRUE(dialog.openFile(path, log));
  dialog.getEditor()->moveCursor(QTextCursor::End);
  type(dialog.getEditor(), QStringLiteral("t = '\u20ac'"));
  EXPECT_FALSE(dialog.save(log));
  EXPECT_TRUE(log.getText().contains(QStringLiteral("line 3: the character U+20ac cannot be written in iso-8859-1")))
      << qPrintable(log.getText());
  EXPECT_EQ(readFile(path), original);
  EXPECT_TRUE(dialog.isModified());
}

struct Indent
{
  const char* what;
  const char* text;
  int line;  // Return at its end
  const char* inserted;
};

class EditorIndent : public EditorTest, public ::testing::WithParamInterface<Indent>
{};

TEST_P(EditorIndent, NewLinesUseTheIndentationTheFileAlreadyUses)
{
  const Indent& c = GetParam();
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("file.py"));
  writeFile(path, c.text);
  ScriptEditorDialog dialog;
  ErrorLog log;
  ASSERT_TRUE(dialog.openFile(path, log));
  GEdit::SourceEditor* editor = dialog.getEditor();
  QTextCursor cursor(editor->document()->findBlockByNumber(c.line));
  cursor.movePosition(QTextCursor::EndOfBlock);
  editor->setTextCursor(cursor);
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(editor->document()->findBlockByNumber(c.line + 1).text(), QString::fromLatin1(c.inserted));
  QTest::keyClicks(editor, QStringLiteral("x = 0"));
  EXPECT_TRUE(dialog.run()) << "no TabError: " << qPrintable(dialog.getOutput()->toPlainText());
}

INSTANTIATE_TEST_SUITE_P(Files, EditorIndent,
                         ::testing::Values(Indent{"fourSpaces", "def f():\n    return 1\n", 0, "    "},
                                           Indent{"twoSpacesNested", "if True:\n  if True:\n    pass\n", 1, "    "},
                                           Indent{"tabs", "if True:\n\tpass\n", 0, "\t"},
                                           Indent{"sameLevel", "if True:\n    a = 1\n", 1, "    "},
                                           Indent{"nothingIndentedYet", "if True: pass\nif True:\n", 1, "\t"},
                                           Indent{"mostlyFour",
                                                  "if 1:\n    if 1:\n        pass\nx = (1,\n  2)\nif 1:\n    pass\n", 5,
                                                  "    "}),
                         [](const ::testing::TestParamInfo<Indent>& info) { return std::string(info.param.what); });
