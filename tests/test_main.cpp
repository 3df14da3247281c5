#include <gtest/gtest.h>

#include <QApplication>

#include "gapp/command_container.h"
#include "gscript/python_interpreter.h"
#include "gtools/error_dialog.h"

#ifdef ZUT_TEST_SANITIZE
// The embedded interpreter keeps some allocations for the life of the process on purpose.
extern "C" const char* __lsan_default_options() { return "suppressions=" ZUT_TEST_LSAN_SUPPRESSIONS ":print_suppressions=0"; }
#endif

int main(int argc, char** argv)
{
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Tests use the pieces of this build; programs they start inherit the same.
  qputenv("ZUT_TRANSLATIONS", ZUT_TEST_TRANSLATIONS);
  qputenv("ZUT_MODULE_PATH", ZUT_TEST_MODULE_PATH);
  qputenv("ZUT_BIN", ZUT_TEST_BIN);
  qputenv("ZUT_SOURCE_DIR", ZUT_TEST_SOURCE_DIR);
#ifdef ZUT_TEST_SANITIZE
  qputenv("LSAN_OPTIONS", "suppressions=" ZUT_TEST_LSAN_SUPPRESSIONS ":print_suppressions=0");
#endif
  Vel::GTools::prepareGuiEnvironment();
  QApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  const int status = RUN_ALL_TESTS();
  Vel::GApp::CommandContainer::getInstance().deleteAll();
  Vel::GScript::PythonInterpreter::finalize();
  return status;
}
