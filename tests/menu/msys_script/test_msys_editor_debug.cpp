// The script editor as a person debugs with it: real clicks in the line numbers, real keys for
// the debugger's actions, answered from inside each pause.
#include <QAction>
#include <QApplication>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <QTreeWidget>

#include <functional>
#include <gtest/gtest.h>

#include "dialog_test_element.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gedit/find_bar.h"
#include "gedit/source_editor.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_dialog_answers.h"
#include "menu/msys_script/msys_dlg_script_editor.h"
#include "menu/msys_script/msys_dlg_user_defined.h"
#include "msys_fixture.h"
#include "test_util.h"

using namespace Vel;
using namespace Vel::MSysScript;

namespace {

const QByteArray LOOP_SCRIPT =
    "total = 0\n"                 // 0
    "for i in range(3):\n"        // 1
    "    total += i\n"            // 2
    "def helper(x):\n"            // 3
    "    y = x * 2\n"             // 4
    "    return y\n"              // 5
    "result = helper(total)\n"    // 6
    "print('result', result)\n";  // 7

class EditorDebugging : public ::testing::Test
{
protected:
  void SetUp() override
  {
    startedModule();
    TestElement::registryWithTestElement();  // run-time dialogs need the application's supplier
    _path = _dir.filePath(QStringLiteral("work.py"));
  }

  // An editor on a file holding `text`, shown and active so that its shortcuts work.
  void open(const QByteArray& text)
  {
    ASSERT_TRUE(writeFile(_path, text));
    ErrorLog log;
    ASSERT_TRUE(dialog.openFile(_path, log)) << qPrintable(log.getText());
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    editor()->setFocus();
  }

  GEdit::SourceEditor* editor() const { return dialog.getEditor(); }

  void clickLineNumber(int line)
  {
    QWidget* margin = editor()->findChild<QWidget*>(QStringLiteral("margin"));
    const QTextBlock block = editor()->document()->findBlockByNumber(line);
    const int y = editor()->cursorRect(QTextCursor(block)).center().y();
    QTest::mouseClick(margin, Qt::LeftButton, Qt::NoModifier, QPoint(6, y));
  }

  void putCursorOn(int line) { editor()->setTextCursor(QTextCursor(editor()->document()->findBlockByNumber(line))); }

  // Runs with `start` (a key), answering the pauses in turn; each answer is given from inside
  // the pause, after its line was recorded. A pause without an answer stops the run.
  QList<int> debug(int key, Qt::KeyboardModifiers modifiers, std::vector<std::function<void()>> answers)
  {
    QList<int> lines;
    size_t next = 0;
    const QMetaObject::Connection connection =
        QObject::connect(&dialog, &ScriptEditorDialog::runPaused, &dialog, [&](int line) {
          lines << line;
          const std::function<void()> answer = next < answers.size() ? answers[next++] : [this] {
            ADD_FAILURE() << "a pause more than expected";
            dialog.stopRun();
          };
          QTimer::singleShot(0, &dialog, answer);
          // A pause that its answer left waiting would hang the test: it fails instead.
          QTimer::singleShot(60000, &dialog, [this, pause = lines.size()] {
            if (dialog.isPaused() && _pauses_seen == pause) {
              ADD_FAILURE() << "pause " << pause << " was not answered";
              dialog.stopRun();
            }
          });
          _pauses_seen = lines.size();
        });
    press(key, modifiers);
    QObject::disconnect(connection);
    EXPECT_EQ(next, answers.size()) << "pauses answered";
    return lines;
  }

  // A key as a person gives it: to the editor's window, which has the input.
  void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
  {
    QApplication::setActiveWindow(&dialog);
    QTest::keyClick(editor(), Qt::Key(key), modifiers);
  }

  QString variable(const QString& name) const
  {
    const QList<QTreeWidgetItem*> found =
        dialog.getVariablesView()->findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? QStringLiteral("<none>") : found.first()->text(1);
  }

  QString evaluate(const QString& expression)
  {
    dialog.getConsoleOutput()->clear();
    QTest::keyClicks(dialog.getConsoleInput(), expression);
    QTest::keyClick(dialog.getConsoleInput(), Qt::Key_Return);
    return dialog.getConsoleOutput()->toPlainText().section(QLatin1Char('\n'), 1);
  }

  QTemporaryDir _dir;
  QString _path;
  qsizetype _pauses_seen = 0;
  ScriptEditorDialog dialog;
};

}  // namespace

// A breakpoint clicked in the line numbers stops every pass of a loop; the variables and the
// console show the pass; Run to cursor and Step move the marker; Continue runs to the end.
TEST_F(EditorDebugging, BreakpointsStepAndRunToCursorMoveTheMarker)
{
  open(LOOP_SCRIPT);
  clickLineNumber(2);
  EXPECT_EQ(editor()->getBreakpoints(), std::set<int>{2});

  QStringList seen;
  const QList<int> lines =
      debug(Qt::Key_F5, Qt::NoModifier,
            {[&] {
               seen << variable(QStringLiteral("i")) << evaluate(QStringLiteral("i + 10"));
               EXPECT_EQ(editor()->getCurrentLine(), 2);
               press(Qt::Key_F5);
             },
             [&] {
               seen << variable(QStringLiteral("i"));
               clickLineNumber(2);  // off again, while paused
               putCursorOn(5);
               press(Qt::Key_F10, Qt::ControlModifier);
             },
             [&] {
               // In the function: its own frame and the module's.
               seen << QString::number(dialog.getStackView()->count()) << variable(QStringLiteral("y"));
               clickLineNumber(7);
               // With ZUT_TEST_SCREENSHOTS set, the paused editor is kept as a picture.
               if (const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS"); !folder.isEmpty())
                 dialog.grab().save(folder + QStringLiteral("/editor_paused.png"));
               press(Qt::Key_F10);
             },
             [&] { press(Qt::Key_F10); }});
  EXPECT_EQ(lines, (QList<int>{2, 2, 5, 7})) << qPrintable(dialog.getOutput()->toPlainText());
  EXPECT_EQ(seen, (QStringList{QStringLiteral("0"), QStringLiteral("10"), QStringLiteral("1"), QStringLiteral("2"),
                               QStringLiteral("6")}));
  EXPECT_EQ(editor()->getCurrentLine(), -1);
  EXPECT_EQ(dialog.getOutput()->toPlainText(), QStringLiteral("result 6\n"));
  EXPECT_EQ(dialog.statusText(), QStringLiteral("Finished."));
}

// Step into from an idle editor pauses at the first line, and each pause shows what the run has
// printed so far; Stop raises KeyboardInterrupt where it is paused, so the script's finally
// blocks run.
TEST_F(EditorDebugging, StepStartsPausedAndStopRunsFinallyBlocks)
{
  QString printed;
  open("print('start')\ntry:\n    x = 1\n    x = 2\nfinally:\n    print('cleaned up')\nprint('not reached')\n");
  const QList<int> lines = debug(Qt::Key_F11, Qt::NoModifier,
                                 {[&] { press(Qt::Key_F10); }, [&] { press(Qt::Key_F10); },
                                  [&] {
                                    printed = dialog.getOutput()->toPlainText();
                                    press(Qt::Key_F5, Qt::ShiftModifier);
                                  }});
  EXPECT_EQ(lines, (QList<int>{0, 1, 2}));
  EXPECT_EQ(printed, QStringLiteral("start\n"));
  EXPECT_TRUE(dialog.getOutput()->toPlainText().startsWith(QStringLiteral("start\ncleaned up\n")))
      << qPrintable(dialog.getOutput()->toPlainText());
  EXPECT_FALSE(dialog.getOutput()->toPlainText().contains(QStringLiteral("not reached")));
  EXPECT_EQ(dialog.statusText(), QStringLiteral("Stopped."));
  EXPECT_EQ(editor()->getErrorLine(), -1);
}

// While paused, the script's own modeless dialog answers its handler, and other windows take no
// input until the run goes on.
TEST_F(EditorDebugging, WhilePausedTheScriptsDialogAnswersAndOtherWindowsWait)
{
  open(
      "import zut\n"
      "xml = '''<dialog><title>Probe</title><control id=\"Empty\"/><content rows=\"1\" columns=\"1\">"
      "<widget type=\"button::pushbutton\" row=\"0\" column=\"0\"><name>go</name><text>Go</text></widget>"
      "</content></dialog>'''\n"
      "dlg = zut.script.sys.create_user_defined_dialog(content=xml)\n"
      "clicks = []\n"
      "def handler(widget):\n"
      "    if widget == dlg.go:\n"
      "        clicks.append('go')\n"
      "dlg.handler = handler\n"
      "zut.script.sys.open_user_defined_dialog(dialog=dlg)\n"
      "print('clicks', clicks)\n"
      "zut.script.sys.close_user_defined_dialog(dialog=dlg)\n");
  clickLineNumber(9);
  QPushButton other(QStringLiteral("Elsewhere"));
  other.show();
  int other_clicks = 0;
  QObject::connect(&other, &QPushButton::clicked, [&] { ++other_clicks; });

  QString inside;
  debug(Qt::Key_F5, Qt::NoModifier, {[&] {
          QPushButton* go = nullptr;
          for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* shown = qobject_cast<UserDefinedDialog*>(window))
              for (QPushButton* button : shown->findChildren<QPushButton*>())
                if (button->text() == QLatin1String("Go"))
                  go = button;
          if (!go) {
            ADD_FAILURE() << "the dialog is not shown";
            return press(Qt::Key_F5, Qt::ShiftModifier);
          }
          QTest::mouseClick(go, Qt::LeftButton);
          QTest::mouseClick(&other, Qt::LeftButton);
          inside = evaluate(QStringLiteral("clicks"));
          press(Qt::Key_F5);
        }});
  EXPECT_EQ(inside, QStringLiteral("['go']"));
  EXPECT_EQ(other_clicks, 0);
  EXPECT_TRUE(dialog.getOutput()->toPlainText().startsWith(QStringLiteral("clicks ['go']")))
      << qPrintable(dialog.getOutput()->toPlainText());
  QTest::mouseClick(&other, Qt::LeftButton);
  EXPECT_EQ(other_clicks, 1);
}

// A failed run quotes the text in the editor, not the file on disk; the status line does not
// say "Saved." over changes made since.
TEST_F(EditorDebugging, TracebacksQuoteTheEditorsTextAndTheStatusFollowsChanges)
{
  open("x = 1\nraise ValueError('as saved')\n");
  QTextCursor cursor(editor()->document()->findBlockByNumber(1));
  cursor.movePosition(QTextCursor::EndOfBlock);
  cursor.insertText(QStringLiteral("  # edited"));
  press(Qt::Key_F5);
  const QString output = dialog.getOutput()->toPlainText();
  EXPECT_TRUE(output.contains(QStringLiteral("raise ValueError('as saved')  # edited"))) << qPrintable(output);
  EXPECT_EQ(editor()->getErrorLine(), 1);

  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(dialog.statusText(), QStringLiteral("Saved."));
  QTest::keyClicks(editor(), QStringLiteral("y"));
  EXPECT_NE(dialog.statusText(), QStringLiteral("Saved."));
}

// Find, replace, go to line and commenting, through their keys; breakpoints move with the lines.
TEST_F(EditorDebugging, FindReplaceGoToLineAndCommentLines)
{
  open("def f():\n    value = 1\n    return value\n\nf()\n");
  clickLineNumber(4);
  putCursorOn(0);
  press(Qt::Key_F, Qt::ControlModifier);
  QTest::keyClicks(dialog.getFindBar()->findField(), QStringLiteral("VALUE"));
  QTest::keyClick(dialog.getFindBar()->findField(), Qt::Key_Return);
  EXPECT_EQ(editor()->textCursor().blockNumber(), 1);
  QTest::keyClick(dialog.getFindBar()->findField(), Qt::Key_Return);
  EXPECT_EQ(editor()->textCursor().blockNumber(), 2);

  press(Qt::Key_H, Qt::ControlModifier);
  QTest::keyClicks(dialog.getFindBar()->replaceField(), QStringLiteral("amount"));
  QTest::mouseClick(dialog.getFindBar()->findChild<QPushButton*>(QStringLiteral("replace_all")), Qt::LeftButton);
  EXPECT_EQ(dialog.text(), QStringLiteral("def f():\n    amount = 1\n    return amount\n\nf()\n"));
  editor()->undo();
  EXPECT_EQ(dialog.text(), QStringLiteral("def f():\n    value = 1\n    return value\n\nf()\n"));

  // Lines 2 and 3 selected: commented at their common indentation, and back.
  QTextCursor selection(editor()->document()->findBlockByNumber(1));
  selection.setPosition(editor()->document()->findBlockByNumber(2).position() + 5, QTextCursor::KeepAnchor);
  editor()->setTextCursor(selection);
  press(Qt::Key_3, Qt::AltModifier);
  EXPECT_EQ(dialog.text(), QStringLiteral("def f():\n    # value = 1\n    # return value\n\nf()\n"));
  press(Qt::Key_4, Qt::AltModifier);
  EXPECT_EQ(dialog.text(), QStringLiteral("def f():\n    value = 1\n    return value\n\nf()\n"));

  EXPECT_TRUE(editor()->goToLine(4));
  EXPECT_EQ(editor()->textCursor().blockNumber(), 3);
  EXPECT_FALSE(editor()->goToLine(99));
  QTest::keyClick(editor(), Qt::Key_Return);
  EXPECT_EQ(editor()->getBreakpoints(), std::set<int>{5});
  // Text put in front of a marked line takes the mark down with the line; removing the line
  // removes its mark.
  QTextCursor(editor()->document()->findBlockByNumber(5)).insertText(QStringLiteral("g = 1\n"));
  EXPECT_EQ(editor()->getBreakpoints(), std::set<int>{6});
  QTextCursor line(editor()->document()->findBlockByNumber(6));
  line.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor);
  line.removeSelectedText();
  EXPECT_EQ(editor()->getBreakpoints(), std::set<int>{});
}

// What a person runs while the editor records becomes lines at the cursor (with the answers the
// person gave a dialog, and without arguments left at their defaults); run again with nobody
// there, the lines do the same.
TEST_F(EditorDebugging, RecordedCommandsRunAgainDoTheSame)
{
  open("");
  const QString log = _dir.filePath(QStringLiteral("log.txt"));
  const QString asking = _dir.filePath(QStringLiteral("ask.py"));
  ASSERT_TRUE(writeFile(
      asking,
      "import zut\n"
      "xml = '''<dialog><title>Tip</title><control id=\"OkCancel\"/><content rows=\"1\" columns=\"1\">"
      "<widget type=\"input::number\" row=\"0\" column=\"0\"><name>diameter</name></widget></content></dialog>'''\n"
      "answer = zut.script.sys.execute_user_defined_dialog(content=xml)\n"
      "with open(PARAMETERS['log'], 'a') as out:\n"
      "    out.write(f'{answer.diameter:.2f}\\n')\n"));
  press(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_TRUE(dialog.isRecording());
  EXPECT_FALSE(dialog.isVisible());  // MSysScript/HideWhenRecording
  ASSERT_TRUE(dialog.getRecordingWindow() && dialog.getRecordingWindow()->isVisible());
  if (const QString folder = qEnvironmentVariable("ZUT_TEST_SCREENSHOTS"); !folder.isEmpty())
    dialog.getRecordingWindow()->grab().save(folder + QStringLiteral("/recording_window.png"));

  // A person: runs two commands, answering the dialog that the second one shows.
  UserDefinedDialog::setResponder([](UserDefinedDialog* shown) {
    QTimer::singleShot(0, shown, [shown] {
      auto* field = shown->findChild<QDoubleSpinBox*>();
      field->selectAll();
      QTest::keyClicks(field, QStringLiteral("2.5"));
      shown->accept();
    });
    return true;
  });
  GApp::CommandContainer& commands = GApp::CommandContainer::getInstance();
  EXPECT_TRUE(
      static_cast<EditorCommand*>(commands.getCommand(QStringLiteral("sys.show_script_editor")))->isRecording());

  // A dialog handle has no form a line can hold: reported, and nothing is written.
  GApp::CommandParameters content;
  content.set(
      QStringLiteral("content"),
      QStringLiteral("<dialog><title>T</title><control id=\"Empty\"/><content rows=\"1\" columns=\"1\"/></dialog>"));
  GApp::CommandParameters handle;
  handle.set(QStringLiteral("dialog"),
             commands.getCommand(QStringLiteral("sys.create_user_defined_dialog"))->run(content, false));
  QStringList shown;
  GApp::setErrorDialogHandler([&](const QString& code, const QString&) { shown << code; });
  commands.getCommand(QStringLiteral("sys.close_user_defined_dialog"))->run(handle, true);
  GApp::setErrorDialogHandler(nullptr);
  EXPECT_EQ(shown, QStringList{QStringLiteral("MSysScriptErr-0005")});
  EXPECT_EQ(dialog.text(), QString());

  GApp::CommandParameters code;
  code.set(QStringLiteral("code"), QStringLiteral("open(r'%1', 'a').write('start\\n')").arg(log));
  code.set(QStringLiteral("collect_stdout"), false);
  commands.getCommand(QStringLiteral("sys.execute_python_code"))->run(code, true);
  GApp::CommandParameters script;
  script.set(QStringLiteral("file"), asking);
  script.set(QStringLiteral("parameters"), QVariantMap{{QStringLiteral("log"), log}});
  commands.getCommand(QStringLiteral("sys.execute_script"))->run(script, true);
  UserDefinedDialog::setResponder(nullptr);
  dialog.getRecordingWindow()->close();  // as its Stop Recording button does
  EXPECT_FALSE(dialog.isRecording());
  EXPECT_TRUE(dialog.isVisible());
  const QByteArray done = readFile(log);
  EXPECT_EQ(done, QByteArray("start\n2.50\n"));

  const QStringList lines = dialog.text().split(QLatin1Char('\n'));
  ASSERT_EQ(lines.size(), 5) << qPrintable(dialog.text());
  EXPECT_EQ(lines[0], QStringLiteral("import zut"));
  EXPECT_TRUE(lines[1].startsWith(QStringLiteral("zut.script.sys.execute_python_code(code="))) << qPrintable(lines[1]);
  EXPECT_FALSE(lines[1].contains(QStringLiteral("collect_stdout")));
  EXPECT_EQ(lines[2], QStringLiteral("zut.answer_dialogs([{'title': 'Tip', 'values': {'diameter': 2.5}}])"));
  EXPECT_TRUE(lines[3].startsWith(QStringLiteral("zut.script.sys.execute_script(file="))) << qPrintable(lines[3]);

  ASSERT_TRUE(QFile::remove(log));
  QApplication::setActiveWindow(&dialog);
  press(Qt::Key_F5);
  EXPECT_EQ(readFile(log), done) << qPrintable(dialog.getOutput()->toPlainText()) << qPrintable(dialog.statusText());
  DialogAnswers::reset();
}

// Step into a function of another script pauses there; the editor, which shows only its own
// text, puts that script's lines around the pause in the console.
TEST_F(EditorDebugging, SteppingIntoAnotherScriptShowsItsLinesInTheConsole)
{
  ASSERT_TRUE(
      writeFile(_dir.filePath(QStringLiteral("helper.py")), "def run():\n    value = 41\n    return value + 1\n"));
  open("import helper\nprint(helper.run())\n");
  QString console;
  QString status;
  const QList<int> lines = debug(Qt::Key_F11, Qt::NoModifier,
                                 {[&] { press(Qt::Key_F10); }, [&] { press(Qt::Key_F11); },
                                  [&] {
                                    console = dialog.getConsoleOutput()->toPlainText();
                                    status = dialog.statusText();
                                    press(Qt::Key_F5);
                                  }});
  EXPECT_EQ(lines, (QList<int>{0, 1, -1}));
  EXPECT_TRUE(
      console.endsWith(QStringLiteral("     1  def run():\n->   2      value = 41\n     3      return value + 1")))
      << qPrintable(console);
  EXPECT_EQ(status, QStringLiteral("Paused in helper.py, line 2."));
  EXPECT_EQ(dialog.getOutput()->toPlainText(), QStringLiteral("42\n"));
}
