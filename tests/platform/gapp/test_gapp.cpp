#include <QMenu>

#include <gtest/gtest.h>
#include <map>
#include <memory>

#include "core/prog_error.h"
#include "gapp/app_status_manager.h"
#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gapp/main_window.h"

using namespace Vel;
using namespace Vel::GApp;

namespace {

class RecordingCommand : public Command
{
public:
  explicit RecordingCommand(const QString& name, bool fail = false) : Command(name), _fail(fail)
  {
    getMetaInfo().setArgumentTypes({{QStringLiteral("value"), CommandMetaInfo::TYPE_ANY, QString()}});
  }
  void execute(const CommandParameters& parameters) override
  {
    ++runs;
    seen = parameters.get(QStringLiteral("value")).getValue();
    if (_fail) {
      ErrorLog log;
      log.addLine(QStringLiteral("detail"));
      throw CommandError(QStringLiteral("TestErr-0001"), log);
    }
    if (seen.isValid())
      setResult(seen);
  }
  bool prepareInteractive(CommandParameters& parameters) override
  {
    if (cancel)
      return false;
    parameters.set(QStringLiteral("value"), QVariant(QStringLiteral("asked")));
    return true;
  }

  int runs = 0;
  bool cancel = false;
  QVariant seen;

private:
  bool _fail;
};

class ExitRecorder : public ExitNotifier
{
public:
  bool confirmExit(bool) override { return confirm; }
  bool canExit() override { return can; }
  void prepareExit() override { ++prepared; }
  bool confirm = true;
  bool can = true;
  int prepared = 0;
};

}  // namespace

struct ConversionCase
{
  QVariant value;
  int target;
  bool ok;
  QVariant expected;
};

class TraitConversion : public ::testing::TestWithParam<ConversionCase>
{};

TEST_P(TraitConversion, ConvertsOnlyWithoutLosingMeaning)
{
  const ConversionCase& c = GetParam();
  QVariant out;
  EXPECT_EQ(Trait(c.value).convertTo(StageIdentifier::NO_STAGE, c.target, out), c.ok);
  if (c.ok) {
    EXPECT_EQ(out, c.expected);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Values, TraitConversion,
    ::testing::Values(ConversionCase{true, QMetaType::Bool, true, true},
                      ConversionCase{qlonglong(1), QMetaType::Bool, false, {}},
                      ConversionCase{qlonglong(3), QMetaType::Double, true, 3.0},
                      ConversionCase{3.0, QMetaType::Int, true, 3}, ConversionCase{3.5, QMetaType::Int, false, {}},
                      ConversionCase{qlonglong(1) << 40, QMetaType::Int, false, {}},
                      ConversionCase{QStringLiteral("3"), QMetaType::Double, false, {}},
                      ConversionCase{QStringLiteral("a.py"), QMetaType::QString, true, QStringLiteral("a.py")},
                      ConversionCase{qlonglong(1), QMetaType::QString, false, {}},
                      ConversionCase{QVariantList{QStringLiteral("a")}, QMetaType::QStringList, true,
                                     QStringList{QStringLiteral("a")}},
                      ConversionCase{QVariantList{1}, QMetaType::QStringList, false, {}},
                      ConversionCase{QVariantMap{{QStringLiteral("a"), 1}}, QMetaType::QVariantMap, true,
                                     QVariantMap{{QStringLiteral("a"), 1}}},
                      ConversionCase{QVariantList{}, QMetaType::QVariantMap, false, {}},
                      ConversionCase{QVariant(), QMetaType::QString, false, {}}));

TEST(Trait, TextNamesAFileAndBack)
{
  QVariant file;
  ASSERT_TRUE(Trait(QStringLiteral("dir/a.py")).convertTo(StageIdentifier::NO_STAGE, Trait::fileTypeId(), file));
  EXPECT_EQ(file.value<Parse::File>().getName(), QStringLiteral("dir/a.py"));
  QVariant text;
  ASSERT_TRUE(Trait(file).convertTo(StageIdentifier::NO_STAGE, QMetaType::QString, text));
  EXPECT_EQ(text, QVariant(QStringLiteral("dir/a.py")));
  EXPECT_EQ(CommandParameters::generateReadableTypeName(Trait::fileTypeId()), QStringLiteral("file"));
}

TEST(CommandContainer, OrdersByNameRemembersRegistrationAndOwns)
{
  CommandContainer& container = CommandContainer::getInstance();
  auto* b = new RecordingCommand(QStringLiteral("test.b"));
  auto* a = new RecordingCommand(QStringLiteral("test.a.one"));
  EXPECT_EQ(container.getCommand(QStringLiteral("test.b")), b);
  EXPECT_TRUE(container.hasCommandsBelow(QStringLiteral("test")));
  EXPECT_TRUE(container.hasCommandsBelow(QStringLiteral("test.a")));
  EXPECT_FALSE(container.hasCommandsBelow(QStringLiteral("test.a.one")));
  EXPECT_FALSE(container.hasCommandsBelow(QStringLiteral("tes")));

  std::vector<QString> by_name;
  for (const auto& entry : container)
    if (entry.first.startsWith(QStringLiteral("test.")))
      by_name.push_back(entry.first);
  EXPECT_EQ(by_name, (std::vector<QString>{QStringLiteral("test.a.one"), QStringLiteral("test.b")}));
  std::vector<Command*> in_order;
  for (Command* command : container.getCommandsInRegistrationOrder())
    if (command == a || command == b)
      in_order.push_back(command);
  EXPECT_EQ(in_order, (std::vector<Command*>{b, a}));

  const uint64_t generation = container.getGeneration();
  container.registerCommand(a);  // the same object again: nothing happens
  EXPECT_THROW(RecordingCommand(QStringLiteral("test.b")), ProgError);
  EXPECT_EQ(container.getCommand(QStringLiteral("test.b")), b) << "the failed duplicate withdrew nothing";
  EXPECT_EQ(container.getGeneration(), generation) << "nothing changed, kept look-ups stay good";

  container.removeCommand(QStringLiteral("test.b"));
  EXPECT_NE(container.getGeneration(), generation) << "a kept pointer to test.b must be looked up again";
  const uint64_t removed = container.getGeneration();
  auto* c = new RecordingCommand(QStringLiteral("test.c"));
  EXPECT_NE(container.getGeneration(), removed) << "a name that failed before may name a command now";
  delete c;
  delete a;
  EXPECT_EQ(container.getCommand(QStringLiteral("test.b")), nullptr);
  EXPECT_EQ(container.getCommand(QStringLiteral("test.a.one")), nullptr);
}

TEST(Command, RunClearsTheResultAndInteractiveRunsMayAskOrBeCancelled)
{
  RecordingCommand command(QStringLiteral("test.run"));
  CommandParameters parameters;
  parameters.set(QStringLiteral("value"), QVariant(7));
  EXPECT_EQ(command.run(parameters, false), QVariant(7));
  EXPECT_FALSE(command.run(CommandParameters(), false).isValid()) << "a stale result must not leak";
  EXPECT_EQ(command.run(CommandParameters(), true), QVariant(QStringLiteral("asked")));
  command.cancel = true;
  const int runs = command.runs;
  EXPECT_FALSE(command.run(CommandParameters(), true).isValid());
  EXPECT_EQ(command.runs, runs);
}

TEST(Command, ArgumentsItDoesNotDeclareAreRefusedByName)
{
  RecordingCommand command(QStringLiteral("test.strict"));
  CommandParameters parameters;
  parameters.set(QStringLiteral("valeu"), QVariant(7));
  for (bool interactive : {false, true}) {
    try {
      command.run(parameters, interactive);
      ADD_FAILURE() << "an unknown argument was accepted";
    } catch (const CommandError& error) {
      EXPECT_EQ(error.getText(), QStringLiteral("GAppErr-0002: Invalid command argument\n"
                                                "test.strict has no argument 'valeu'; its arguments are value"));
    }
  }
  EXPECT_EQ(command.runs, 0);
  ToolBarGroupCommand group(QStringLiteral("test.group"));
  EXPECT_EQ(group.checkArgumentNames(parameters), QStringLiteral("test.group has no argument 'valeu'; it takes none"));
}

TEST(Command, ConfigurationLevelsAreNumbersOrNames)
{
  const std::vector<std::pair<QVariant, int>> good = {{QVariant(0), 0},
                                                      {QVariant(qlonglong(2)), 2},
                                                      {QVariant(1.0), 1},
                                                      {QVariant(QStringLiteral("system")), 0},
                                                      {QVariant(QStringLiteral("public")), 1},
                                                      {QVariant(QStringLiteral("user")), 2}};
  for (const auto& [value, expected] : good) {
    int level = -1;
    EXPECT_TRUE(CommandMetaInfo::readConfigLevel(value, level)) << qPrintable(value.toString());
    EXPECT_EQ(level, expected);
  }
  for (const QVariant& bad : {QVariant(3), QVariant(-1), QVariant(1.5), QVariant(QStringLiteral("User")),
                              QVariant(QStringLiteral("1")), QVariant()}) {
    int level = -1;
    EXPECT_FALSE(CommandMetaInfo::readConfigLevel(bad, level)) << qPrintable(bad.toString());
    EXPECT_EQ(level, -1);
  }
}

TEST(CommandError, TextHasCodeMessageAndLog)
{
  const CommandError plain(QStringLiteral("command argument 'x' is missing"));
  EXPECT_EQ(plain.getCode(), QString::fromLatin1(ERR_COMMAND_FAILED));
  EXPECT_EQ(plain.getText(), QStringLiteral("GAppErr-0001: Command failed\ncommand argument 'x' is missing"));
}

TEST(MainWindow, ExecuteMenuReportsFailuresInsteadOfThrowing)
{
  std::vector<std::pair<QString, QString>> shown;
  GApp::setErrorDialogHandler([&](const QString& code, const QString& text) { shown.emplace_back(code, text); });
  RecordingCommand good(QStringLiteral("test.menu.good"));
  RecordingCommand bad(QStringLiteral("test.menu.bad"), true);
  EXPECT_TRUE(MainWindow::executeMenu(&good));
  EXPECT_EQ(good.seen, QVariant(QStringLiteral("asked")));
  EXPECT_FALSE(MainWindow::executeMenu(&bad));
  GApp::setErrorDialogHandler(nullptr);
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].first, QStringLiteral("TestErr-0001"));
  EXPECT_EQ(shown[0].second, QStringLiteral("detail"));
}

// With a loader, the windows come up once, when first needed; a loader that fails leaves them
// down, the question gets its fallback answer, and the next need tries again. Before they are up,
// whether a person is there is what the environment says the windows would open on.
TEST(Gui, ComesUpOnceWhenFirstNeededAndKnowsWhetherAPersonIsThere)
{
  const char* const names[] = {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"};
  std::map<const char*, QByteArray> saved;
  for (const char* name : names)
    saved[name] = qgetenv(name);
  const auto set = [&](const char* platform, const char* display) {
    for (const char* name : names)
      qunsetenv(name);
    if (*platform)
      qputenv("QT_QPA_PLATFORM", platform);
    if (*display)
      qputenv("DISPLAY", display);
  };
  int loads = 0;
  bool fails = true;
  GApp::Gui::setLoader([&] {
    ++loads;
    if (fails)
      throw ProgError(QStringLiteral("load"), QStringLiteral("test"), QStringLiteral("no windows here"));
  });
  const struct
  {
    const char* platform;
    const char* display;
    bool interactive;
  } cases[] = {{"offscreen", ":0", false},         {"minimal", "", false}, {"xcb", "", true},
               {"wayland:nodecoration", "", true}, {"", ":5", true},       {"", "", false}};
  for (const auto& c : cases) {
    set(c.platform, c.display);
    EXPECT_EQ(GApp::isInteractive(), c.interactive) << c.platform << " " << c.display;
  }
  EXPECT_EQ(loads, 0);
  EXPECT_FALSE(GApp::Gui::isUp());

  set("xcb", "");
  EXPECT_TRUE(GApp::askYesNo(QStringLiteral("Exit"), QStringLiteral("Really?"), true));
  EXPECT_THROW(GApp::Gui::ensureUp(), ProgError);
  EXPECT_FALSE(GApp::Gui::isUp());
  fails = false;
  GApp::Gui::ensureUp();
  GApp::Gui::ensureUp();
  EXPECT_EQ(loads, 3);
  EXPECT_TRUE(GApp::Gui::isUp());
  // Up, the application's own platform decides: the tests' is offscreen.
  EXPECT_FALSE(GApp::isInteractive());

  GApp::Gui::setLoader(nullptr);
  for (const char* name : names)
    saved[name].isNull() ? qunsetenv(name) : qputenv(name, saved[name]);
  EXPECT_TRUE(GApp::Gui::isUp());
}

TEST(AppStatusManager, ExitNeedsEveryNotifierAndPreparesOnlyThen)
{
  ExitRecorder first, second;
  AppStatusManager::registerExitNotifier(&first);
  AppStatusManager::registerExitNotifier(&second);
  AppStatusManager::registerExitNotifier(&first);
  EXPECT_EQ(AppStatusManager::getExitNotifiers().size(), 2u);

  second.can = false;
  EXPECT_FALSE(AppStatusManager::requestExit(true));
  EXPECT_EQ(first.prepared + second.prepared, 0);
  second.can = true;
  EXPECT_TRUE(AppStatusManager::requestExit(true));
  EXPECT_EQ(first.prepared, 1);
  EXPECT_EQ(second.prepared, 1);
  AppStatusManager::unregisterExitNotifier(&first);
  AppStatusManager::unregisterExitNotifier(&second);
  EXPECT_TRUE(AppStatusManager::getExitNotifiers().empty());
}

TEST(AppStatusManager, ActiveMenuCommandsNest)
{
  RecordingCommand outer(QStringLiteral("test.outer")), inner(QStringLiteral("test.inner"));
  AppStatusManager::pushActiveMenuCommand(&outer);
  AppStatusManager::pushActiveMenuCommand(&inner);
  EXPECT_EQ(AppStatusManager::getActiveMenuCommand(), &inner);
  AppStatusManager::popActiveMenuCommand();
  EXPECT_EQ(AppStatusManager::getActiveMenuCommand(), &outer);
  AppStatusManager::popActiveMenuCommand();
  EXPECT_EQ(AppStatusManager::getActiveMenuCommand(), nullptr);
  EXPECT_THROW(AppStatusManager::popActiveMenuCommand(), ProgError);
}
