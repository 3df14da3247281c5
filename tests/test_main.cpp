#include <QApplication>

#include <gtest/gtest.h>

#include "core/vel_export.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gscript/python_interpreter.h"

#ifdef ZUT_TEST_SANITIZE
// The embedded interpreter keeps some allocations for the life of the process on purpose.
// Full stacks on allocation, so that the suppressions can name where the memory came from.
#define ZUT_TEST_ASAN_OPTIONS "fast_unwind_on_malloc=0"
#define ZUT_TEST_LSAN_OPTIONS "suppressions=" ZUT_TEST_LSAN_SUPPRESSIONS ":print_suppressions=0"
extern "C" VEL_EXPORT const char* __asan_default_options()
{
  return ZUT_TEST_ASAN_OPTIONS;
}
extern "C" VEL_EXPORT const char* __lsan_default_options()
{
  return ZUT_TEST_LSAN_OPTIONS;
}
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
  qputenv("ASAN_OPTIONS", ZUT_TEST_ASAN_OPTIONS);
  // Python objects from malloc, not from the interpreter's arenas: the sanitizers then see a
  // Python object that we leak or use after freeing it.
  qputenv("PYTHONMALLOC", "malloc");
  qputenv("LSAN_OPTIONS", ZUT_TEST_LSAN_OPTIONS);
#endif
  Vel::GApp::prepareGuiEnvironment();
  QApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  const int status = RUN_ALL_TESTS();
  Vel::GApp::CommandContainer::getInstance().deleteAll();
  Vel::GScript::PythonInterpreter::finalize();
  return status;
}
