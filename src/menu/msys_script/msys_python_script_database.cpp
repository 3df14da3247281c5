#include "menu/msys_script/msys_python_script_database.h"

#include <new>

#include "core/prog_error.h"
#include "gapp/interaction.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_script_creator.h"

namespace Vel::MSysScript {
namespace {

GScript::ScriptDatabase* database = nullptr;
int lock_counter = 0;
PythonScriptDatabase::RunningScripts running_scripts;

[[noreturn]] void fail(const char* function, const char* message)
{
  throw ProgError(QString::fromLatin1(function), QStringLiteral("msys_python_script_database"),
                  QString::fromLatin1(message));
}

}  // namespace

GScript::ScriptDatabase* PythonScriptDatabase::getDatabase(bool flag)
{
  if (lock_counter == 0) {
    if (database)
      fail("getDatabase", "Database lock counter corrupted");
    database = new (std::nothrow) GScript::ScriptDatabase(new PythonScriptCreator);
    if (database) {
      ErrorLog log;
      if (!database->initialize(flag, &log))
        GApp::ErrorDialog(QString::fromLatin1(ERR_LOAD_DATABASE), log.getText());
    }
  }
  ++lock_counter;
  return database;
}

void PythonScriptDatabase::releaseDatabase()
{
  if (lock_counter == 0)
    fail("releaseDatabase", "Database has never been locked");
  --lock_counter;
  if (lock_counter == 0) {
    if (!database)
      fail("releaseDatabase", "Database lock counter corrupted");
    delete database;
    database = nullptr;
  }
}

bool PythonScriptDatabase::isAvailable()
{
  return database != nullptr;
}

int PythonScriptDatabase::getLockCount()
{
  return lock_counter;
}

void PythonScriptDatabase::scriptStarted(const QString& name)
{
  running_scripts.push_back(name);
}

void PythonScriptDatabase::scriptTerminated(const QString& name)
{
  if (running_scripts.empty())
    fail("scriptTerminated", "Running script stack is empty");
  if (running_scripts.back() != name)
    fail("scriptTerminated", "Terminated script is not the last script in the running scripts hierarchy");
  running_scripts.pop_back();
}

PythonScriptDatabase::RunningScripts::const_iterator PythonScriptDatabase::begin()
{
  return running_scripts.cbegin();
}

PythonScriptDatabase::RunningScripts::const_iterator PythonScriptDatabase::end()
{
  return running_scripts.cend();
}

bool PythonScriptDatabase::isRunning(const QString& name)
{
  DatabaseLock lock;
  for (auto it = begin(); it != end(); ++it)
    if (*it == name)
      return true;
  return false;
}

}  // namespace Vel::MSysScript
