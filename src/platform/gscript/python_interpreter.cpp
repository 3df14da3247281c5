#include "gscript/python_interpreter.h"

#include <pybind11/embed.h>

#include <QFile>
#include <QFileInfo>
#include <QVariant>

#include "core/error_message_container.h"
#include "core/prog_error.h"
#include "gapp/command.h"
#include "gapp/main_window.h"
#include "gscript/execute.h"
#include "gscript/python_values.h"
#include "gscript/safe_points.h"

namespace py = pybind11;

namespace Vel::GScript {
namespace {

enum class State
{
  NotStarted,
  Running,
  Finished
};
State state = State::NotStarted;

// The python3 program of the installation whose library we embed, for what starts Python in a
// new process (multiprocessing's spawn, subprocess with sys.executable): "bin/python3" when it
// is that version, "bin/python3.X" otherwise. Never the first python3 on PATH, which may be
// another version.
QByteArray matchingExecutable()
{
  const QString home = QStringLiteral(ZUT_PYTHON_HOME);
  const QString versioned = QStringLiteral("%1/bin/python%2.%3").arg(home).arg(PY_MAJOR_VERSION).arg(PY_MINOR_VERSION);
  const QString plain = QStringLiteral("%1/bin/python%2").arg(home).arg(PY_MAJOR_VERSION);
  const QString target = QFileInfo(plain).canonicalFilePath();
  const bool same = !target.isEmpty() && target == QFileInfo(versioned).canonicalFilePath();
  return QFile::encodeName(same ? plain : versioned);
}

}  // namespace

void InterpreterStack::pop(const Execute* level)
{
  if (_levels.empty() || _levels.back() != level)
    throw ProgError(QStringLiteral("pop"), QStringLiteral("python_interpreter"),
                    QStringLiteral("Interpreter stack out of order"));
  _levels.pop_back();
}

void PythonInterpreter::initialize()
{
  if (state == State::Running)
    return;
  if (state == State::Finished)
    throw ProgError(QStringLiteral("initialize"), QStringLiteral("python_interpreter"),
                    QStringLiteral("Python interpreter already finalized"));

  ErrorMessageContainer::registerError(ERR_SCRIPT_FAILED, QStringLiteral("Python script failed"));
  ErrorMessageContainer::registerError(ERR_SCRIPT_ABORTED, QStringLiteral("Python script aborted"));
  // The abort buttons and the break dialog stop the running script at its next safe point.
  GApp::MainWindow::setAbortHandler([] { SafePoints::requestAbort(); });

  PyConfig config;
  PyConfig_InitPythonConfig(&config);
  config.parse_argv = 0;
  // Outside script runs Ctrl+C ends the application as any other; each run hands SIGINT to
  // Python for its duration (SafePoints::Run).
  config.install_signal_handlers = 0;
  // The standard library of the Python we were built against, whatever PYTHONHOME says.
  PyConfig_SetBytesString(&config, &config.home, ZUT_PYTHON_HOME);
  const QByteArray executable = matchingExecutable();
  PyConfig_SetBytesString(&config, &config.executable, executable.constData());
  py::initialize_interpreter(&config, 0, nullptr, false);
  state = State::Running;
  // The package installs the import hook through which scripts import each other.
  py::module_::import("zut");
}

bool PythonInterpreter::isInitialized()
{
  return state == State::Running;
}

void PythonInterpreter::finalize()
{
  if (state != State::Running)
    return;
  if (!getInterpreterStack().empty())
    throw ProgError(QStringLiteral("finalize"), QStringLiteral("python_interpreter"),
                    QStringLiteral("Python interpreter finalized while a script runs"));
  SafePoints::stopTimer();
  py::finalize_interpreter();
  state = State::Finished;
}

InterpreterStack& PythonInterpreter::getInterpreterStack()
{
  static InterpreterStack stack;
  return stack;
}

bool PythonInterpreter::parseLiteral(const QString& text, QVariant& value)
{
  initialize();
  try {
    const py::object parsed = py::module_::import("ast").attr("literal_eval")(text.toStdString());
    value = toVariant(parsed);
    return true;
  } catch (const py::error_already_set&) {
    return false;
  } catch (const py::builtin_exception& refused) {
    throw GApp::CommandError(QString::fromLatin1(GApp::ERR_INVALID_ARGUMENT),
                             ErrorLog(QString::fromUtf8(refused.what())));
  }
}

QString PythonInterpreter::repr(const QVariant& value)
{
  initialize();
  return QString::fromStdString(py::repr(fromVariant(value)).cast<std::string>());
}

void PythonInterpreter::call(const QVariant& callable, const QList<QVariant>& arguments)
{
  const PythonCallable function = callable.value<PythonCallable>();
  if (!function)
    return;
  py::tuple values(arguments.size());
  for (int index = 0; index < arguments.size(); ++index)
    values[size_t(index)] = fromVariant(arguments[index]);
  py::reinterpret_borrow<py::object>(static_cast<PyObject*>(function.get()))(*values);
}

PythonCallable::PythonCallable(void* object)
    : _object(object, [](void* held) {
        // The last holder may go when no script runs, or after the interpreter ended.
        if (!Py_IsInitialized())
          return;
        const PyGILState_STATE state = PyGILState_Ensure();
        Py_DECREF(static_cast<PyObject*>(held));
        PyGILState_Release(state);
      })
{
  Py_INCREF(static_cast<PyObject*>(object));
}

int PythonCallable::typeId()
{
  static const int id = qRegisterMetaType<PythonCallable>("Vel::GScript::PythonCallable");
  return id;
}

}  // namespace Vel::GScript
