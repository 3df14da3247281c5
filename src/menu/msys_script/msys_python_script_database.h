#pragma once

#include <QString>

#include <vector>

namespace Vel::GScript {
class ScriptDatabase;
}

namespace Vel::MSysScript {

// The module's one way into the host's script database: the object exists while at least one
// lock is held, and is made and initialised anew for every outermost lock. Also keeps the
// stack of database scripts that run inside each other. GUI thread only.
class PythonScriptDatabase
{
public:
  using RunningScripts = std::vector<QString>;

  // Locks the database, making it on the first lock (a failed initialisation is shown with
  // "MSysScriptErr-0001" and the database is returned all the same). Null only when the
  // database object could not be made.
  static GScript::ScriptDatabase* getDatabase(bool flag = false);
  static void releaseDatabase();
  static bool isAvailable();
  static int getLockCount();

  static void scriptStarted(const QString& name);
  static void scriptTerminated(const QString& name);
  // Outermost first.
  static RunningScripts::const_iterator begin();
  static RunningScripts::const_iterator end();
  // Whether a database script of that file name is running (exact, case-sensitive).
  static bool isRunning(const QString& name);
};

// Holds a lock for its lifetime.
class DatabaseLock
{
public:
  explicit DatabaseLock(bool flag = false) : _database(PythonScriptDatabase::getDatabase(flag)) {}
  ~DatabaseLock() { PythonScriptDatabase::releaseDatabase(); }
  DatabaseLock(const DatabaseLock&) = delete;
  DatabaseLock& operator=(const DatabaseLock&) = delete;

  GScript::ScriptDatabase* get() const { return _database; }
  GScript::ScriptDatabase* operator->() const { return _database; }
  explicit operator bool() const { return _database != nullptr; }

private:
  GScript::ScriptDatabase* _database;
};

}  // namespace Vel::MSysScript
