#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

#include "core/vel_export.h"

namespace Vel::GScript {

class Execute;

// The runs of Python in progress, outermost first. A script that calls a command that runs
// another script adds a level; the recursion guard of script commands reads the depth.
class VEL_EXPORT InterpreterStack
{
public:
  size_t size() const { return _levels.size(); }
  bool empty() const { return _levels.empty(); }
  const Execute* top() const { return _levels.empty() ? nullptr : _levels.back(); }

  void push(const Execute* level) { _levels.push_back(level); }
  // Throws ProgError when `level` is not the innermost run.
  void pop(const Execute* level);

private:
  std::vector<const Execute*> _levels;
};

// The one embedded CPython interpreter of the process. Started on first use, on the GUI
// thread, which keeps the interpreter lock for the life of the process.
class VEL_EXPORT PythonInterpreter
{
public:
  static void initialize();
  static bool isInitialized();
  // Ends the interpreter; the host calls it last, after every command that may hold Python
  // objects is gone. The interpreter cannot be started again afterwards.
  static void finalize();

  static InterpreterStack& getInterpreterStack();

  // Reads a Python literal ("3", "True", "[1, 2]", "{'a': 1}") into a value; false when the
  // text is no literal. A literal that no command can take (a set, bytes, an integer beyond 64
  // bits) is the caller's fault: GApp::CommandError with GApp::ERR_INVALID_ARGUMENT.
  static bool parseLiteral(const QString& text, class QVariant& value);
  // The value as Python's repr() shows it ("None", "[1, 'a']").
  static QString repr(const class QVariant& value);

  // Calls a Python callable that a script handed over (a PythonCallable) with the arguments as
  // Python values. The callable's exception is thrown on as it is, so that the script waiting
  // further out gets it back with its traceback.
  static void call(const class QVariant& callable, const QList<QVariant>& arguments);
};

// A Python object held by the application (a dialog's change handler, value limits as a script
// gave them); the reference is dropped under the interpreter lock.
class VEL_EXPORT PythonCallable
{
public:
  PythonCallable() = default;
  explicit PythonCallable(void* object);  // a PyObject*, a new reference is taken
  void* get() const { return _object.get(); }
  explicit operator bool() const { return bool(_object); }

  static int typeId();

private:
  std::shared_ptr<void> _object;
};

}  // namespace Vel::GScript

Q_DECLARE_METATYPE(Vel::GScript::PythonCallable)
