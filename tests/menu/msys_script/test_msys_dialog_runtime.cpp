#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include "dialog_test_element.h"
#include "test_util.h"
#include "gapp/command.h"
#include "gapp/main_window.h"
#include "gtools/dialog_widget_supplier.h"
#include "gscript/python_interpreter.h"
#include "gscript/safe_points.h"
#include "menu/msys_script/msys_cmd_dialog.h"
#include "menu/msys_script/msys_dialog_answers.h"
#include "menu/msys_script/msys_dialog_controls.h"
#include "menu/msys_script/msys_dialog_handles.h"
#include "menu/msys_script/msys_dialog_templates.h"
#include "menu/msys_script/msys_dialog_input_widgets.h"
#include "menu/msys_script/msys_dlg_user_defined.h"

using namespace Vel;
using namespace Vel::MSysScript;

namespace {

QString definition(const char* control = "OkCancel", const char* header = "")
{
  return QStringLiteral("<dialog><title>Bore check</title><control id=\"%1\"/>%2"
                        "<content rows=\"2\" columns=\"1\">"
                        "<widget type=\"input::string\" row=\"0\" column=\"0\"><name>part</name><value>A</value></widget>"
                        "<widget type=\"input::number\" row=\"1\" column=\"0\"><name>diameter</name><value>12.5</value>"
                        "<minimum>0</minimum><maximum>100</maximum>"
                        "</widget></content></dialog>")
      .arg(QString::fromLatin1(control), QString::fromLatin1(header));
}

// What a person does once the dialog waits: real input on the shown dialog.
class Person
{
public:
  explicit Person(std::function<void(UserDefinedDialog*)> act)
  {
    UserDefinedDialog::setResponder([act](UserDefinedDialog* dialog) {
      QTimer::singleShot(0, dialog, [act, dialog] { act(dialog); });
      return true;
    });
  }
  ~Person() { UserDefinedDialog::setResponder(nullptr); }
};

QPushButton* controlButton(UserDefinedDialog* dialog, const char* word)
{
  return static_cast<ButtonDialogControl*>(dialog->getControl())->getButton(QString::fromLatin1(word));
}

// A closed dialog's result as plain values: {"result": ..., "values": {name: value}}.
QVariantMap run(GApp::Command& command, const GApp::CommandParameters& parameters)
{
  const ScriptObjectPtr result = command.run(parameters, false).value<ScriptObjectPtr>();
  if (!result)
    return {};
  bool found = false;
  QVariantMap values;
  for (const QString& name : result->getAttributeNames())
    if (name != QLatin1String("result"))
      values.insert(name, result->getAttribute(name, &found));
  return {{QStringLiteral("result"), result->getAttribute(QStringLiteral("result"), &found)},
          {QStringLiteral("values"), values}};
}

GApp::CommandParameters contentArgument(const QString& content)
{
  GApp::CommandParameters parameters;
  parameters.set(QStringLiteral("content"), content);
  return parameters;
}

GApp::CommandParameters handleArgument(const QVariant& handle)
{
  GApp::CommandParameters parameters;
  parameters.set(QStringLiteral("dialog"), handle);
  return parameters;
}

class DialogRuntime : public ::testing::Test
{
protected:
  void SetUp() override { TestElement::registryWithTestElement(); }
};

TEST_F(DialogRuntime, ExecuteReturnsWhatThePersonAnswered)
{
  ExecuteDialogCommand execute;
  struct Case
  {
    const char* control;
    const char* button;
    bool result;
  };
  for (const Case& c : {Case{"OkCancel", "ok", true}, Case{"OkCancel", "cancel", false}, Case{"YesNo", "no", false},
                        Case{"Close", "close", true}}) {
    Person person([&](UserDefinedDialog* dialog) {
      auto* edit = static_cast<StringWidget*>(dialog->findWidget(QStringLiteral("part")))->edit();
      edit->selectAll();
      QTest::keyClicks(edit, QStringLiteral("Housing 7"));
      QTest::mouseClick(controlButton(dialog, c.button), Qt::LeftButton);
    });
    const int open = UserDefinedDialog::getOpenCount();
    const QVariantMap answer = run(execute, contentArgument(definition(c.control)));
    EXPECT_EQ(answer.value(QStringLiteral("result")), QVariant(c.result)) << c.button;
    const QVariantMap values = answer.value(QStringLiteral("values")).toMap();
    EXPECT_EQ(values.value(QStringLiteral("part")), QVariant(QStringLiteral("Housing 7")));
    EXPECT_EQ(values.value(QStringLiteral("diameter")), QVariant(12.5));
    // Closed dialogs leave the map.
    EXPECT_EQ(UserDefinedDialog::getOpenCount(), open);
  }
}

TEST_F(DialogRuntime, WithoutAPersonOrAnAnswerADialogFailsAtOnceNamingItsTitle)
{
  ExecuteDialogCommand execute;
  const int open = UserDefinedDialog::getOpenCount();
  try {
    run(execute, contentArgument(definition()));
    FAIL() << "waited without a person";
  } catch (const GApp::CommandError& error) {
    EXPECT_EQ(error.getCode(), QStringLiteral("MSysScriptErr-0004"));
    EXPECT_TRUE(error.getLog().getText().contains(QStringLiteral("\"Bore check\""))) << qPrintable(error.getLog().getText());
  }
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(UserDefinedDialog::getOpenCount(), open);
}

TEST_F(DialogRuntime, DrivenDialogReportsPersonsChangesButNotTheScriptsOwn)
{
  CreateDialogCommand create;
  const QVariant handle = create.run(contentArgument(definition("Wizard", "<position>top_right</position>")), false);
  UserDefinedDialog* dialog = UserDefinedDialog::find(dialogIdOf(handle));
  ASSERT_TRUE(dialog);
  EXPECT_FALSE(dialog->isVisible());

  std::vector<std::pair<QString, QString>> changes;
  QObject::connect(dialog, &UserDefinedDialog::signalChanged, [&](DialogWidget* element, const QString& event) {
    changes.emplace_back(element ? element->getName() : QString(), event);
  });
  DialogWidget* part = dialog->findWidget(QStringLiteral("part"));
  dialog->setFromScript(part, QStringLiteral("value"), QStringLiteral("set by the script"));

  OpenDialogCommand open;
  open.run(handleArgument(handle), false);
  EXPECT_TRUE(dialog->isVisible());
  // Placed at the top right of the screen, as the definition asks.
  const QRect area = dialog->screen()->availableGeometry();
  EXPECT_EQ(dialog->frameGeometry().topRight(), area.topRight());
  if (!qEnvironmentVariableIsEmpty("ZUT_TEST_SCREENSHOTS"))
    dialog->grab().save(qEnvironmentVariable("ZUT_TEST_SCREENSHOTS") + QStringLiteral("/dialog_wizard.png"));

  QTest::keyClick(static_cast<StringWidget*>(part)->edit(), Qt::Key_X);
  QTest::mouseClick(controlButton(dialog, "next"), Qt::LeftButton);
  dialog->getTimer()->start(1);
  QTRY_VERIFY(std::count(changes.begin(), changes.end(), std::pair{QString(), QStringLiteral("timer")}) > 0);
  dialog->getTimer()->stop();
  ASSERT_GE(changes.size(), 4u);
  EXPECT_EQ(changes[0], (std::pair{QString(), QStringLiteral("initialize")}));
  EXPECT_EQ(changes[1], (std::pair{QStringLiteral("part"), QString()}));
  EXPECT_EQ(changes[2], (std::pair{QString(), QStringLiteral("next")}));

  CloseDialogCommand close;
  GApp::CommandParameters closing = handleArgument(handle);
  closing.set(QStringLiteral("result"), 42);
  close.run(closing, false);
  EXPECT_EQ(dialog->getResult(), QVariant(42));
  EXPECT_FALSE(UserDefinedDialog::find(dialogIdOf(handle)));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

  // Every command on a dialog that is gone fails alike, and changes nothing.
  ShowDialogCommand show;
  GApp::Command* commands[] = {&show, &open, &close};
  for (GApp::Command* command : commands) {
    const int before = UserDefinedDialog::getOpenCount();
    try {
      command->run(handleArgument(handle), false);
      FAIL() << command->getName().toStdString();
    } catch (const GApp::CommandError& error) {
      EXPECT_EQ(error.getLog().getText(), QStringLiteral("A dialog with this ID does not exist."));
    }
    EXPECT_EQ(UserDefinedDialog::getOpenCount(), before);
  }
}

TEST_F(DialogRuntime, ShowWaitsUntilAHandlerClosesWithAResultAndSubDialogsBlockTheClose)
{
  CreateDialogCommand create;
  const QVariant handle = create.run(contentArgument(definition()), false);
  UserDefinedDialog* dialog = UserDefinedDialog::find(dialogIdOf(handle));
  QString refusal;
  Person person([&](UserDefinedDialog* shown) {
    QDialog sub(shown);
    sub.show();
    CloseDialogCommand close;
    try {
      close.run(handleArgument(handle), false);
    } catch (const GApp::CommandError& error) {
      refusal = error.getLog().getText();
    }
    sub.hide();
    GApp::CommandParameters closing = handleArgument(handle);
    closing.set(QStringLiteral("result"), QStringLiteral("done"));
    close.run(closing, false);
  });
  ShowDialogCommand show;
  const QVariantMap answer = run(show, handleArgument(handle));
  EXPECT_EQ(answer.value(QStringLiteral("result")), QVariant(QStringLiteral("done")));
  EXPECT_EQ(refusal, QStringLiteral("Presently, you cannot close the dialog. Either sub-dialogs are still open or "
                                    "other menu functions are active."));
  EXPECT_FALSE(UserDefinedDialog::find(dialogIdOf(handle)));
  (void)dialog;
}

// A dialog that waits stops the way the script around it would: an abort, the break dialog or
// the test timeout end it, and it cannot be waited for twice meanwhile.
TEST_F(DialogRuntime, AnAbortEndsAWaitingDialogThatCannotBeShownTwice)
{
  GScript::PythonInterpreter::initialize();
  const GScript::SafePoints::Run script_running;
  CreateDialogCommand create;
  const QVariant handle = create.run(contentArgument(definition()), false);
  QString twice;
  ShowDialogCommand show;
  Person person([&](UserDefinedDialog*) {
    try {
      show.run(handleArgument(handle), false);
    } catch (const GApp::CommandError& error) {
      twice = error.getLog().getText();
    }
    QTimer::singleShot(30, [] { GScript::SafePoints::requestAbort(); });
  });
  try {
    run(show, handleArgument(handle));
    FAIL() << "not aborted";
  } catch (const GApp::CommandError& error) {
    EXPECT_EQ(error.getCode(), QLatin1String(GScript::ERR_SCRIPT_ABORTED));
    EXPECT_EQ(error.getLog().getText(), QStringLiteral("KeyboardInterrupt"));
  }
  EXPECT_EQ(twice, QStringLiteral("The dialog \"Bore check\" is already shown."));
  EXPECT_FALSE(UserDefinedDialog::find(dialogIdOf(handle)));
}

// A kiosk station shows such dialogs inside its main window; elsewhere they are windows.
TEST_F(DialogRuntime, KioskDialogsAreShownInsideTheMainWindow)
{
  struct KioskSupplier : GTools::DialogWidgetSupplierInterface
  {
    QWidget* window;
    QWidget* getDialogParent() const override { return window; }
    bool canEmbed() const override { return true; }
  };
  QWidget main_window;
  main_window.resize(800, 600);
  main_window.show();
  KioskSupplier kiosk;
  kiosk.window = &main_window;
  GTools::DialogWidgetSupplierInterface* standard = GTools::DialogWidgetSupplierInterface::getInstance();
  GTools::DialogWidgetSupplierInterface::setInstance(&kiosk);
  for (const bool kiosk_mode : {true, false}) {
    VelInit::setKioskMode(kiosk_mode);
    CreateDialogCommand create;
    const QVariant handle = create.run(
        contentArgument(definition("Close", "<position>bottom_right</position><embedding>embedded_in_kiosk</embedding>")),
        false);
    UserDefinedDialog* dialog = UserDefinedDialog::find(dialogIdOf(handle));
    OpenDialogCommand open;
    open.run(handleArgument(handle), false);
    EXPECT_EQ(dialog->isWindow(), !kiosk_mode);
    if (kiosk_mode) {
      EXPECT_EQ(dialog->parentWidget(), &main_window);
      EXPECT_EQ(dialog->geometry().bottomRight(), main_window.rect().bottomRight());
    }
    dialog->closeWithResult(std::nullopt);
  }
  VelInit::setKioskMode(false);
  GTools::DialogWidgetSupplierInterface::setInstance(standard);
}

TEST_F(DialogRuntime, ADefinitionThatDoesNotReadFailsWithTheReadersFaultAndLeavesTheMapAlone)
{
  CreateDialogCommand create;
  const int open = UserDefinedDialog::getOpenCount();
  try {
    create.run(contentArgument(QStringLiteral("<dialog>\n<title>T</title>\n</dialog>")), false);
    FAIL() << "created";
  } catch (const Xml::ParseException& error) {
    EXPECT_EQ(error.getCode(), QStringLiteral("MSysScriptErr-0004"));
    EXPECT_EQ(error.getLine(), 1);
  }
  EXPECT_EQ(UserDefinedDialog::getOpenCount(), open);
}

// ---------------------------------------------------------------------------------------------

QString answersFile(const QTemporaryDir& dir, const QByteArray& json)
{
  const QString path = dir.filePath(QStringLiteral("answers.json"));
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(json);
  return path;
}

struct AnswerCase
{
  const char* json;
  const char* fault;  // empty: the answer is taken
  bool result;
  const char* part;
  double diameter;
};

class DialogAnswerCases : public DialogRuntime, public ::testing::WithParamInterface<AnswerCase>
{
protected:
  void TearDown() override { DialogAnswers::reset(); }
};

TEST_P(DialogAnswerCases, AreAppliedAsAPersonWouldOrFailNamingWhatDoesNotFit)
{
  const AnswerCase& c = GetParam();
  QTemporaryDir dir;
  DialogAnswers::load(answersFile(dir, QByteArray("[") + c.json + "]"));
  ExecuteDialogCommand execute;
  try {
    const QVariantMap answer = run(execute, contentArgument(definition()));
    EXPECT_EQ(QString::fromLatin1(c.fault), QString()) << "taken";
    EXPECT_EQ(answer.value(QStringLiteral("result")), QVariant(c.result));
    const QVariantMap values = answer.value(QStringLiteral("values")).toMap();
    EXPECT_EQ(values.value(QStringLiteral("part")), QVariant(QString::fromLatin1(c.part)));
    EXPECT_EQ(values.value(QStringLiteral("diameter")).toDouble(), c.diameter);
  } catch (const GApp::CommandError& error) {
    EXPECT_EQ(error.getCode(), QStringLiteral("MSysScriptErr-0004"));
    EXPECT_EQ(error.getLog().getText(),
              QStringLiteral("The answer for the dialog \"Bore check\" does not fit: ") + QString::fromUtf8(c.fault))
        << qPrintable(error.getLog().getText());
  }
  EXPECT_TRUE(DialogAnswers::getUnused().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Answers, DialogAnswerCases,
    ::testing::Values(
        AnswerCase{"{}", "", true, "A", 12.5},
        AnswerCase{R"({"title": "Bore check", "values": {"part": "B", "diameter": 20}, "button": "cancel"})", "", false,
                   "B", 20},
        AnswerCase{R"({"values": {"diameter": 7}, "button": "ok"})", "", true, "A", 7},
        AnswerCase{R"({"title": "Other"})", "it is meant for the dialog \"Other\".", false, "", 0},
        AnswerCase{R"({"values": {"diameter": 1000}})", "the value 1000 of element \"diameter\" is outside 0 to 100.",
                   false, "", 0},
        AnswerCase{R"({"values": {"depth": 1}})", "there is no element \"depth\".", false, "", 0},
        AnswerCase{R"({"values": {"part": 5}})",
                   "the value 5 of element \"part\" is refused: The value has not the expected type.", false, "", 0},
        AnswerCase{R"({"button": "maybe"})", "the dialog has no button \"maybe\" (it has: ok, cancel).", false, "",
                   0}));

TEST_F(DialogRuntime, AnswersGoToTheDialogsInTurnThroughTheHandlerAndWhatIsLeftIsReported)
{
  QTemporaryDir dir;
  DialogAnswers::load(answersFile(
      dir, R"([{"values": {"part": "first"}}, {"values": {"part": "second", "diameter": 3}}, {"title": "Third"}])"));
  ExecuteDialogCommand execute;
  for (const char* part : {"first", "second"}) {
    CreateDialogCommand create;
    const QVariant handle = create.run(contentArgument(definition()), false);
    UserDefinedDialog* dialog = UserDefinedDialog::find(dialogIdOf(handle));
    QStringList changed;
    QObject::connect(dialog, &UserDefinedDialog::signalChanged, [&](DialogWidget* element, const QString& event) {
      changed << (element ? element->getName() : event);
    });
    ShowDialogCommand show;
    const QVariantMap answer = run(show, handleArgument(handle));
    EXPECT_EQ(answer.value(QStringLiteral("values")).toMap().value(QStringLiteral("part")),
              QVariant(QString::fromLatin1(part)));
    EXPECT_EQ(changed.join(QLatin1Char(' ')),
              std::string(part) == "first" ? QStringLiteral("initialize part") : QStringLiteral("initialize diameter part"));
  }
  EXPECT_EQ(DialogAnswers::getUnused(), QStringList{QStringLiteral("Answer 3 (Third) was not used: no dialog asked for it.")});

  // Broken files are refused with their name; the answers before stay.
  for (const char* broken : {"{", "{\"values\": {}}", "[1]", "[{\"values\": []}]"}) {
    try {
      DialogAnswers::load(answersFile(dir, broken));
      FAIL() << broken;
    } catch (const GApp::CommandError& error) {
      EXPECT_TRUE(error.getLog().getText().contains(QStringLiteral("answers.json"))) << qPrintable(error.getLog().getText());
    }
    EXPECT_EQ(DialogAnswers::getUnused().size(), 1);
  }
  DialogAnswers::reset();
}

TEST_F(DialogRuntime, RecordedAnswersReplayTheSameDialog)
{
  QTemporaryDir dir;
  const QString recorded = dir.filePath(QStringLiteral("recorded.json"));
  DialogAnswers::record(recorded);
  ExecuteDialogCommand execute;
  QVariantMap by_person;
  {
    Person person([](UserDefinedDialog* dialog) {
      auto* edit = static_cast<StringWidget*>(dialog->findWidget(QStringLiteral("part")))->edit();
      edit->selectAll();
      QTest::keyClicks(edit, QStringLiteral("typed"));
      QTest::mouseClick(controlButton(dialog, "cancel"), Qt::LeftButton);
    });
    by_person = run(execute, contentArgument(definition()));
  }
  DialogAnswers::reset();
  DialogAnswers::load(recorded);
  EXPECT_EQ(run(execute, contentArgument(definition())), by_person);
  DialogAnswers::reset();
}

}  // namespace

namespace {

// The templates a user starts from: the module's own read as any definition does and pass the
// checks; the user's own hide those of the same name; configured names are not listed.
TEST(DialogTemplates, AreListedByOriginReadAndHidden)
{
  TestElement::registryWithTestElement();
  DialogTemplateDatabase::registerResource();
  QTemporaryDir home;
  const QByteArray saved = qgetenv("XDG_DATA_HOME");
  qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());

  QStringList names;
  for (const DialogTemplate& entry : DialogTemplateDatabase::list()) {
    names << entry.name;
    EXPECT_EQ(entry.origin, QStringLiteral("module"));
    EXPECT_TRUE(DialogDefinition::check(DialogTemplateDatabase::read(entry.name)).empty()) << qPrintable(entry.name);
  }
  EXPECT_EQ(names, (QStringList{"progress_with_abort", "value_query", "yes_no_question"}));

  QDir().mkpath(DialogTemplateDatabase::userFolder());
  writeFile(DialogTemplateDatabase::userFolder() + QStringLiteral("/value_query.dialog_template"), "<dialog/>");
  const auto mine = DialogTemplateDatabase::list();
  EXPECT_EQ(std::count_if(mine.begin(), mine.end(), [](const DialogTemplate& t) { return t.origin == "user"; }), 1);
  EXPECT_EQ(DialogTemplateDatabase::read(QStringLiteral("value_query")), QStringLiteral("<dialog/>"));

  try {
    DialogTemplateDatabase::read(QStringLiteral("nothing"));
    FAIL() << "read a template that is not there";
  } catch (const GApp::CommandError& error) {
    EXPECT_EQ(error.getCode(), QStringLiteral("MSysScriptErr-0018"));
    EXPECT_EQ(error.getLog().getText(), QStringLiteral("There is no dialog template \"nothing\"."));
  }
  QFile::setPermissions(DialogTemplateDatabase::userFolder(), QFile::WriteOwner);
  if (!QFileInfo(DialogTemplateDatabase::userFolder()).isReadable()) {  // root reads everything
    EXPECT_THROW(DialogTemplateDatabase::list(), GApp::CommandError);
  }
  QFile::setPermissions(DialogTemplateDatabase::userFolder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  qputenv("XDG_DATA_HOME", saved);
}

}  // namespace
