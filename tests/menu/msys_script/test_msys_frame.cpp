#include <QCoreApplication>
#include <QMenu>

#include <gtest/gtest.h>
#include <limits>

#include "core/error_message_container.h"
#include "gapp/app_status_manager.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gapp/main_window.h"
#include "gscript/gui_handler.h"
#include "menu/msys_script/msys_cmd_test_timeout.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dialog_widgets.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_exit_notifier.h"
#include "menu/msys_script/msys_library.h"
#include "menu/msys_script/msys_script_menu_provider.h"
#include "msys_fixture.h"

using namespace Vel;
using namespace Vel::MSysScript;
using Meta = GApp::CommandMetaInfo;

namespace {

class ModuleTest : public ::testing::Test
{
protected:
  void SetUp() override { startedModule(); }
};

struct ArgumentRow
{
  const char* name;
  int type;
  const char* description;
};

struct CommandRow
{
  const char* name;
  const char* title;
  std::vector<ArgumentRow> arguments;
};

const char* const STDOUT_TEXT = "collect and return stdout output";
const char* const STDERR_TEXT = "collect and return stderr output";

const std::vector<CommandRow>& expectedCommands()
{
  static const std::vector<CommandRow> rows = {
      {"sys.delay_script", "Delay script execution", {{"time", Meta::TYPE_DOUBLE, "time to wait in seconds"}}},
      {"sys.show_script_editor", "Edit Script", {{"file", Meta::TYPE_STRING, nullptr}}},
      {"sys.execute_script",
       "Execute Script",
       {{"file", Meta::TYPE_FILE, "file name"},
        {"parameters", Meta::TYPE_PARAMETER_MAP, "parameters"},
        {"collect_stdout", Meta::TYPE_BOOLEAN, STDOUT_TEXT},
        {"collect_stderr", Meta::TYPE_BOOLEAN, STDERR_TEXT},
        {"arguments", Meta::TYPE_LIST, "arguments of the script, after its name in sys.argv"}}},
      {"sys.execute_python_code",
       "execute python code",
       {{"code", Meta::TYPE_STRING, "code"},
        {"parameters", Meta::TYPE_PARAMETER_MAP, "parameters"},
        {"collect_stdout", Meta::TYPE_BOOLEAN, STDOUT_TEXT},
        {"collect_stderr", Meta::TYPE_BOOLEAN, STDERR_TEXT}}},
      {"sys.import_script",
       "Import Script",
       {{"files", Meta::TYPE_LIST, "file names of scripts to import"},
        {"names", Meta::TYPE_LIST, "names of scripts resulting from the import"},
        {"config_level", Meta::TYPE_CONFIG_LEVEL, "config level where the scripts are stored"},
        {"display_names", Meta::TYPE_LIST, "display names of the imported scripts"},
        {"replace_existing_scripts", Meta::TYPE_BOOLEAN, "whether existing scripts should be overwritten"}}},
      {"sys.export_script", "Export Script", {{"file", Meta::TYPE_FILE, "file name of the created script archive"}}},
      {"sys.import_script_archive",
       "Import Script Archive",
       {{"file", Meta::TYPE_FILE, "file name of the imported script archive"}}},
      {"sys.export_script_archive",
       "Export Script Archive",
       {{"file", Meta::TYPE_FILE, "file name of the created script archive"},
        {"names", Meta::TYPE_LIST, "names of scripts to export"}}},
      {"sys.set_test_timeout", "set timeout for script tests", {{"timeout", Meta::TYPE_DOUBLE, "timeout in seconds"}}},
      {"sys.create_user_defined_dialog", "Create User-Defined Dialog", {{"content", Meta::TYPE_STRING, nullptr}}},
      {"sys.execute_user_defined_dialog", "Executing user-defined dialog", {{"content", Meta::TYPE_STRING, nullptr}}},
      {"sys.show_user_defined_dialog", "Show User-Defined Dialog", {{"dialog", Meta::TYPE_OBJECT, nullptr}}},
      {"sys.open_user_defined_dialog", "Open User-Defined Dialog", {{"dialog", Meta::TYPE_OBJECT, nullptr}}},
      {"sys.close_user_defined_dialog",
       "Close User-Defined Dialog",
       {{"dialog", Meta::TYPE_OBJECT, nullptr}, {"result", Meta::TYPE_ANY, nullptr}}},
  };
  return rows;
}

}  // namespace

TEST_F(ModuleTest, RegistersTheFourteenCommandsInOrderWithTitlesAndArguments)
{
  std::vector<GApp::Command*> module_commands;
  for (GApp::Command* command : GApp::CommandContainer::getInstance().getCommandsInRegistrationOrder())
    if (command->getName().startsWith(QStringLiteral("sys.")))
      module_commands.push_back(command);
  const auto& rows = expectedCommands();
  ASSERT_EQ(module_commands.size(), rows.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(rows[i].name);
    EXPECT_EQ(module_commands[i]->getName(), QString::fromLatin1(rows[i].name));
    EXPECT_EQ(module_commands[i]->getTitle(), QString::fromLatin1(rows[i].title));
    const Meta::ArgumentTypes arguments = module_commands[i]->getMetaInfo().getArgumentTypes();
    ASSERT_EQ(size_t(arguments.size()), rows[i].arguments.size());
    for (size_t a = 0; a < rows[i].arguments.size(); ++a) {
      EXPECT_EQ(arguments[a].name, QString::fromLatin1(rows[i].arguments[a].name));
      EXPECT_EQ(arguments[a].type, rows[i].arguments[a].type);
      if (rows[i].arguments[a].description) {
        EXPECT_EQ(arguments[a].description, QString::fromLatin1(rows[i].arguments[a].description));
      }
    }
  }
}

TEST_F(ModuleTest, LeavesCommandsOfOtherModulesUnregistered)
{
  for (const char* name :
       {"sys.execute_shell_command", "sys.get_value", "sys.show_command_history", "test.script_test",
        "show_break_dialog", "show_info_dialog", "get_info_dialog_result", "close_info_dialog", "show_test_dialog",
        "get_test_dialog_result", "wait_for_test_dialog", "close_test_dialog", "show_input_dialog"})
    EXPECT_EQ(GApp::CommandContainer::getInstance().getCommand(QString::fromLatin1(name)), nullptr) << name;
}

TEST_F(ModuleTest, EditorAndExecuteHaveMenuTitlesOfTheirOwn)
{
  auto& container = GApp::CommandContainer::getInstance();
  EXPECT_EQ(container.getCommand(QStringLiteral("sys.show_script_editor"))->getMenuTitle(),
            QStringLiteral("Edit Script"));
  EXPECT_EQ(container.getCommand(QStringLiteral("sys.execute_script"))->getMenuTitle(),
            QStringLiteral("Execute Script"));
}

TEST_F(ModuleTest, RegistersTheNineteenErrorCodesInTranslationIdOrder)
{
  const std::vector<std::pair<const char*, const char*>> expected = {
      {"MSysScriptErr-0001", "Error loading script database"},
      {"MSysScriptErr-0002", "Error loading script"},
      {"MSysScriptErr-0003", "Error saving script"},
      {"MSysScriptErr-0004", "Error executing script"},
      {"MSysScriptErr-0005", "Error recording script"},
      {"MSysScriptErr-0006", "Error importing script"},
      {"MSysScriptErr-0007", "Error exporting script"},
      {"MSysScriptErr-0015", "Error importing script archive"},
      {"MSysScriptErr-0016", "Error exporting script archive"},
      {"MSysScriptErr-0008", "Exiting not possible"},
      {"MSysScriptErr-0009", "Parsing script failed"},
      {"MSysScriptErr-0010", "Parsing parameters failed"},
      {"MSysScriptErr-0011", "Resolving item failed"},
      {"MSysScriptErr-0012", "Script generation failed"},
      {"MSysScriptErr-0013", "Maximum recursion depth exceeded"},
      {"MSysScriptErr-0014", "Script cannot be locked"},
      {"MSysScriptErr-0017", "Cannot load the image."},
      {"MSysScriptErr-0018", "Cannot access the dialog template database."},
      {"MSysScriptErr-0019", "Cannot save the file."},
  };
  QStringList module_codes;
  for (const QString& code : ErrorMessageContainer::getCodes())
    if (code.startsWith(QStringLiteral("MSysScriptErr-")))
      module_codes << code;
  ASSERT_EQ(size_t(module_codes.size()), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(module_codes[int(i)], QString::fromLatin1(expected[i].first));
    EXPECT_EQ(ErrorMessageContainer::getMessage(QString::fromLatin1(expected[i].first)),
              QString::fromLatin1(expected[i].second));
  }
  EXPECT_STREQ(ERR_RECURSION_DEPTH, "MSysScriptErr-0013");
  EXPECT_STREQ(ERR_IMPORT_ARCHIVE, "MSysScriptErr-0015");
}

struct ConfigRow
{
  const char* key;
  CfgType type;
  const char* description;
  QVariant minimum;
  QVariant maximum;
  QVariant default_value;
};

TEST(ModuleConfiguration, FreshConfigurationHasTheDeclaredItemsAndDefaultsInOrder)
{
  const double max_double = std::numeric_limits<double>::max();
  const qlonglong max_int = std::numeric_limits<int>::max();
  const QVariant none;
  const std::vector<ConfigRow> rows = {
      {"MSysScript", CfgType::Node, "", none, none, none},
      {"MSysScript/TabWidth", CfgType::UInt, "", qlonglong(1), qlonglong(32), qlonglong(4)},
      {"MSysScript/ShowTabs", CfgType::Bool, "", none, none, false},
      {"MSysScript/EditorDialog", CfgType::Node, "node: editor dialog", none, none, none},
      {"MSysScript/EditorDialog/Size", CfgType::IntArray, "node: current editor size", qlonglong(0), max_int,
       QVariantList{qlonglong(500), qlonglong(0)}},
      {"MSysScript/EditorDialog/Splitter", CfgType::Double, "editor dialog: current splitter position", 0.0, 1.0, 0.75},
      {"MSysScript/SourceEditor", CfgType::Node, "Source Editor", none, none, none},
      {"MSysScript/HideWhenRecording", CfgType::Bool, "hide editor when recording", none, none, true},
      {"MSysScript/SourceEditor/Splitter", CfgType::Double, "editor: current splitter position", 0.0, 1.0, 0.75},
      {"MSysScript/Export", CfgType::Node, "node: export", none, none, none},
      {"MSysScript/Export/ExportedNames", CfgType::StringVector, "export: exported names", none, none, QStringList()},
      {"MSysScript/BreakDialog", CfgType::Node, "node: break dialog", none, none, none},
      {"MSysScript/BreakDialog/Timeout", CfgType::UnitValue, "Timeout", 1.0, max_double, 10.0},
      {"MSysScript/DialogEditor", CfgType::Node, "Dialog editor", none, none, none},
      {"MSysScript/DialogEditor/Width", CfgType::Int, "Dialog editor width", qlonglong(-1), max_int, qlonglong(-1)},
      {"MSysScript/DialogEditor/Height", CfgType::Int, "Dialog editor height", qlonglong(-1), max_int, qlonglong(-1)},
      {"MSysScript/DialogEditor/SplitterPosition", CfgType::DoubleArray, "Dialog editor splitter position", 0.0, 1.0,
       QVariantList{0.0, 0.0, 0.0}},
      {"MSysScript/NumberWidget", CfgType::Node, "Number widget", none, none, none},
      {"MSysScript/NumberWidget/Default", CfgType::Double, "Number widget: Default", -max_double, max_double, 0.0},
      {"MSysScript/NumberWidget/Minimum", CfgType::Double, "Number widget: Minimum", -max_double, max_double, 0.0},
      {"MSysScript/NumberWidget/Maximum", CfgType::Double, "Number widget: Maximum", -max_double, max_double, 1000.0},
      {"MSysScript/NumberWidget/Precision", CfgType::Int, "Number widget: Precision", qlonglong(0), qlonglong(100),
       qlonglong(2)},
      {"MSysScript/IntegerWidget", CfgType::Node, "Integer widget", none, none, none},
      {"MSysScript/IntegerWidget/Default", CfgType::Double, "Integer widget: Default", -max_double, max_double, 0.0},
      {"MSysScript/IntegerWidget/Minimum", CfgType::Double, "Integer widget: Minimum", -max_double, max_double, 0.0},
      {"MSysScript/IntegerWidget/Maximum", CfgType::Double, "Integer widget: Maximum", -max_double, max_double, 1000.0},
      {"MSysScript/SliderWidget", CfgType::Node, "Slider widget", none, none, none},
      {"MSysScript/SliderWidget/Default", CfgType::Double, "Slider widget: Default", -max_double, max_double, 0.0},
      {"MSysScript/SliderWidget/Minimum", CfgType::Double, "Slider widget: Minimum", -max_double, max_double, 0.0},
      {"MSysScript/SliderWidget/Maximum", CfgType::Double, "Slider widget: Maximum", -max_double, max_double, 100.0},
      {"MSysScript/SliderWidget/Precision", CfgType::Int, "Slider widget: Precision", qlonglong(0), qlonglong(100),
       qlonglong(2)},
      {"MSysScript/SliderWidget/Step", CfgType::Double, "Slider widget: Step", -max_double, max_double, 1.0},
      {"MSysScript/SliderWidget/TickInterval", CfgType::Double, "Slider widget: Tick interval", -max_double, max_double,
       10.0},
      {"MSysScript/ScriptDialogSelectTemplate", CfgType::Node, "Select script dialog template", none, none, none},
      {"MSysScript/ScriptDialogSelectTemplate/CommandMode", CfgType::Choice, "Script dialog command mode", none, none,
       0},
      {"MSysScript/UpdateScriptDialog", CfgType::Node, "Update script dialog", none, none, none},
      {"MSysScript/UpdateScriptDialog/Width", CfgType::Int, "Update script dialog: Width", qlonglong(-1), max_int,
       qlonglong(640)},
      {"MSysScript/UpdateScriptDialog/Height", CfgType::Int, "Update script dialog: Height", qlonglong(-1), max_int,
       qlonglong(480)},
      {"MSysScript/UpdateScriptDialog/Splitter", CfgType::Double, "Update script dialog: Splitter position", 0.0, 1.0,
       0.5},
      {"MSysScript/UpdateScriptDialog/Backup", CfgType::Bool, "Update script dialog: Backup original script", none,
       none, true},
      {"MSysScript/ScriptDialogTemplateDatabase", CfgType::Node, "script dialog template database", none, none, none},
      {"MSysScript/ScriptDialogTemplateDatabase/InvisibleTemplates", CfgType::StringVector, "", none, none,
       QStringList()},
      {"MSysScript/ListEditorDialog", CfgType::Node, "List editor dialog", none, none, none},
      {"MSysScript/ListEditorDialog/Width", CfgType::Int, "List editor dialog: Width", qlonglong(-1), max_int,
       qlonglong(-1)},
      {"MSysScript/ListEditorDialog/Height", CfgType::Int, "List editor dialog: Height", qlonglong(-1), max_int,
       qlonglong(-1)},
  };

  Cfg cfg(QStringLiteral("/nonexistent/config.json"));
  declareConfiguration(cfg.root());
  declareTemplateConfiguration(cfg.root());
  const auto items = cfg.items();
  ASSERT_EQ(items.size(), rows.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(rows[i].key);
    EXPECT_EQ(items[i]->key, QString::fromLatin1(rows[i].key));
    EXPECT_EQ(items[i]->type, rows[i].type);
    EXPECT_EQ(items[i]->flags, 2);
    EXPECT_EQ(items[i]->description, QString::fromLatin1(rows[i].description));
    if (rows[i].minimum.isValid()) {
      EXPECT_EQ(items[i]->minimum, rows[i].minimum);
      EXPECT_EQ(items[i]->maximum, rows[i].maximum);
    }
    if (rows[i].type != CfgType::Node) {
      EXPECT_EQ(items[i]->value, rows[i].default_value);
    }
  }
  EXPECT_EQ(cfg.item(QString::fromLatin1(CFG_BREAK_DIALOG_TIMEOUT))->unit, uTime);
  EXPECT_EQ(cfg.item(QString::fromLatin1(CFG_SELECT_TEMPLATE_COMMAND_MODE))->choices,
            (QStringList{QStringLiteral("Execute"), QStringLiteral("Create/Show"), QStringLiteral("Open/Close")}));
  EXPECT_EQ(cfg.pages().value(0).first, QStringLiteral("templates/ManageScriptDialogTemplates"));
  EXPECT_EQ(cfg.pages().value(0).second, QStringLiteral("Script dialogs"));
  // Stored widths of -1 are valid values, not just defaults.
  EXPECT_TRUE(cfg.setValue(QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_WIDTH), -1));
}

TEST_F(ModuleTest, SpecialMenuProviderIsASingleton)
{
  ASSERT_NE(ScriptSpecialMenuProvider::getInstance(), nullptr);
  try {
    ScriptSpecialMenuProvider::initialize();
    FAIL() << "second instance allowed";
  } catch (const ProgError& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Singleton, only one instance allowed"));
  }
  QMenu menu;
  GApp::MainWindow::fillSpecialMenu(QString::fromLatin1(ScriptSpecialMenuProvider::MENU_ID), &menu);
  QStringList titles;
  for (QAction* action : menu.actions())
    if (!action->isSeparator())
      titles << action->objectName();
  EXPECT_EQ(titles.value(0), QStringLiteral("sys.show_script_editor"));
  EXPECT_EQ(titles.size(), 6);

  MSysScript::CloseGui();
  EXPECT_EQ(ScriptSpecialMenuProvider::getInstance(), nullptr);
  EXPECT_TRUE(GApp::AppStatusManager::getExitNotifiers().empty());
  try {
    ScriptSpecialMenuProvider::deinitialize();
    FAIL() << "deinitialized twice";
  } catch (const ProgError& error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Instance not initialized"));
  }
  MSysScript::InitGui();
  ProgError reported{QString(), QString(), QString()};
  EXPECT_FALSE(takeReportedProgError(reported));
  EXPECT_NE(ScriptSpecialMenuProvider::getInstance(), nullptr);
  EXPECT_NE(QCoreApplication::instance()->findChild<QObject*>(QStringLiteral("SquishProxy")), nullptr);
}

TEST_F(ModuleTest, ExitNotifierAsksOnlyInKioskModeAndNotWhenSilent)
{
  int asked = 0;
  GApp::setQuestionHandler([&](const QString& title, const QString& question) {
    ++asked;
    EXPECT_EQ(title, QStringLiteral("Exit"));
    EXPECT_EQ(question, QStringLiteral("Do you want to exit the application?"));
    return false;
  });
  ExitNotifier& notifier = ExitNotifier::getInstance();
  VelInit::setKioskMode(false);
  EXPECT_TRUE(notifier.confirmExit(false));
  VelInit::setKioskMode(true);
  EXPECT_TRUE(notifier.confirmExit(true));
  EXPECT_EQ(asked, 0);
  GScript::GUIHandler::getInstance()->requestEscape();
  EXPECT_FALSE(notifier.confirmExit(false));
  EXPECT_EQ(asked, 1);
  EXPECT_FALSE(GScript::GUIHandler::getInstance()->isEscapeRequested());
  VelInit::setKioskMode(false);
  GApp::setQuestionHandler(nullptr);
  EXPECT_TRUE(notifier.canExit());
}

// The dialog registry is the last of the GUI half's start-up steps: when an earlier one fails, it
// is not filled. Needs a process in which the GUI half was never initialised.
TEST(ModuleDefaults, DialogRegistryIsInitialisedLast)
{
  if (ScriptSpecialMenuProvider::getInstance() ||
      DialogRegistry::getRegistry()->getWidgetCreator(QStringLiteral("input::number")))
    GTEST_SKIP() << "the module's defaults were initialised earlier in this process";
  ScriptSpecialMenuProvider::initialize();
  MSysScript::InitGui();
  ProgError reported{QString(), QString(), QString()};
  ASSERT_TRUE(takeReportedProgError(reported));
  EXPECT_EQ(reported.getMessage(), QStringLiteral("Singleton, only one instance allowed"));
  EXPECT_EQ(DialogRegistry::getRegistry()->getWidgetCreator(QStringLiteral("input::number")), nullptr);
  ScriptSpecialMenuProvider::deinitialize();
  MSysScript::InitGui();
  EXPECT_FALSE(takeReportedProgError(reported));
  EXPECT_NE(DialogRegistry::getRegistry()->getWidgetCreator(QStringLiteral("input::number")), nullptr);
  MSysScript::CloseGui();
}
