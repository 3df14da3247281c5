#include <QDir>
#include <QLibrary>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "cfg/cfg.h"
#include "core/error_message_container.h"
#include "core/prog_error.h"
#include "gapp/app_status_manager.h"
#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gapp/module_loader.h"
#include "test_util.h"

using namespace Vel;
using namespace Vel::GApp;

// The real plug-in, loaded by name the way the program loads it; this test is not linked
// with the module.
TEST(ModuleLoading, HostLoadsTheBuiltModuleAndDrivesItsLifecycle)
{
  QTemporaryDir dir;
  Cfg cfg(dir.filePath(QStringLiteral("config.json")));
  ModuleLoader loader(ModuleLoader::modulePath(QStringLiteral("MSysScript")));
  QString error;
  ASSERT_TRUE(loader.load(&error)) << qPrintable(error);

  loader.initLibrary(cfg.root());
  loader.initDefaults();
  EXPECT_NE(CommandContainer::getInstance().getCommand(QStringLiteral("sys.execute_python_code")), nullptr);
  EXPECT_EQ(cfg.root()->getUInt(QStringLiteral("MSysScript/TabWidth")), 4u);
  EXPECT_EQ(ErrorMessageContainer::getMessage(QStringLiteral("MSysScriptErr-0013")),
            QStringLiteral("Maximum recursion depth exceeded"));
  // The editor's exit handling belongs to the GUI half, a library of its own.
  EXPECT_TRUE(AppStatusManager::getExitNotifiers().empty());
  QLibrary gui(ModuleLoader::modulePath(QStringLiteral("MSysScriptGui")));
  const auto init_gui = reinterpret_cast<void (*)()>(gui.resolve("InitGui"));
  const auto close_gui = reinterpret_cast<void (*)()>(gui.resolve("CloseGui"));
  ASSERT_TRUE(init_gui && close_gui) << qPrintable(gui.errorString());
  init_gui();
  EXPECT_EQ(AppStatusManager::getExitNotifiers().size(), 1u);

  EXPECT_TRUE(loader.initScriptDatabase());
  EXPECT_TRUE(loader.updateRegisteredCommands());

  // The module's delay, as the host runs it between commands.
  const std::unique_ptr<CommandParameters> delay = loader.createParameterDelay(0.01);
  ASSERT_NE(delay, nullptr);
  EXPECT_EQ(delay->get(QStringLiteral("time")).getValue(), QVariant(0.01));
  EXPECT_NO_THROW(CommandContainer::getInstance().getCommand(QStringLiteral("sys.delay_script"))->run(*delay, false));

  // A program error inside an exported function is not thrown across it: it is reported.
  init_gui();
  ProgError reported{QString(), QString(), QString()};
  ASSERT_TRUE(takeReportedProgError(reported));
  EXPECT_EQ(reported.getMessage(), QStringLiteral("Singleton, only one instance allowed"));

  EXPECT_TRUE(AppStatusManager::requestExit(true));
  close_gui();
  loader.closeDefaults();
  EXPECT_TRUE(AppStatusManager::getExitNotifiers().empty());
  CommandContainer::getInstance().deleteAll();
  loader.closeLibrary();
}

TEST(ModuleLoading, ALibraryThatIsNoModuleIsRefused)
{
  QString error;
  ModuleLoader missing(QStringLiteral("/nonexistent/libVelNothing.so"));
  EXPECT_FALSE(missing.load(&error));
  EXPECT_FALSE(error.isEmpty());

  // A real shared library without the lifecycle functions.
  ModuleLoader not_a_module(QDir::cleanPath(ModuleLoader::modulePath(QStringLiteral("MSysScript")) +
                                            QStringLiteral("/../../libvel_core.so")));
  EXPECT_FALSE(not_a_module.load(&error));
  EXPECT_TRUE(error.contains(QStringLiteral("is not a module"))) << qPrintable(error);
}
