#include "gscript/execute.h"

#include <pybind11/embed.h>

#include "gscript/python_interpreter.h"
#include "gscript/python_values.h"
#include "gscript/safe_points.h"

namespace py = pybind11;

namespace Vel::GScript {

const char* const ERR_SCRIPT_FAILED = "GScriptErr-0001";

namespace {

// Keeps the interpreter stack strictly nested whichever way the run ends.
class StackLevel
{
public:
  explicit StackLevel(const Execute* level) : _level(level) { PythonInterpreter::getInterpreterStack().push(level); }
  ~StackLevel() { PythonInterpreter::getInterpreterStack().pop(_level); }

private:
  const Execute* _level;
};

// Swaps sys.stdout and sys.stderr for a collecting buffer, and back, flushing the real streams
// so that the script's output and the host's stay in order.
class OutputRedirection
{
public:
  OutputRedirection(bool collect_stdout, bool collect_stderr)
      : _sys(py::module_::import("sys")), _stdout(_sys.attr("stdout")), _stderr(_sys.attr("stderr"))
  {
    if (collect_stdout || collect_stderr)
      _buffer = py::module_::import("io").attr("StringIO")();
    if (collect_stdout)
      _sys.attr("stdout") = _buffer;
    if (collect_stderr)
      _sys.attr("stderr") = _buffer;
  }
  ~OutputRedirection()
  {
    _sys.attr("stdout") = _stdout;
    _sys.attr("stderr") = _stderr;
    flush(_stdout);
    flush(_stderr);
  }
  QString collected() const
  {
    return _buffer ? QString::fromStdString(_buffer.attr("getvalue")().cast<std::string>()) : QString();
  }

private:
  static void flush(const py::object& stream)
  {
    if (stream.is_none() || !py::hasattr(stream, "flush"))
      return;
    try {
      stream.attr("flush")();
    } catch (const py::error_already_set&) {
      // a closed or broken stream: nothing to bring in order
    }
  }

  py::module_ _sys;
  py::object _stdout;
  py::object _stderr;
  py::object _buffer;
};

void addLines(ErrorLog& log, const QString& text)
{
  QString trimmed = text;
  while (trimmed.endsWith(QLatin1Char('\n')))
    trimmed.chop(1);
  for (const QString& line : trimmed.split(QLatin1Char('\n')))
    log.addLine(line);
}

// Turns the exception that ended a run into the run's outcome.
bool handleException(py::error_already_set& error, QString& error_code, ErrorLog& log)
{
  if (error.matches(PyExc_SystemExit)) {
    const py::object status = error.value().attr("code");
    if (status.is_none() || (PyLong_Check(status.ptr()) && status.cast<long long>() == 0))
      return true;
    error_code = QString::fromLatin1(ERR_SCRIPT_FAILED);
    log.addLine(QStringLiteral("SystemExit: %1").arg(QString::fromStdString(py::str(status).cast<std::string>())));
    return false;
  }

  const py::module_ zut = py::module_::import("zut");
  const py::object command_error = zut.attr("CommandError");
  error_code = QString::fromLatin1(error.matches(PyExc_KeyboardInterrupt) ? ERR_SCRIPT_ABORTED : ERR_SCRIPT_FAILED);
  if (PyObject_IsInstance(error.value().ptr(), command_error.ptr()) == 1)
    error_code = QString::fromStdString(error.value().attr("code").cast<std::string>());

  // A syntax error has no frames: no traceback object.
  const py::object trace = error.trace() ? error.trace() : py::none();
  const py::object lines =
      py::module_::import("traceback").attr("format_exception")(error.type(), error.value(), trace);
  addLines(log, QString::fromStdString(py::str("").attr("join")(lines).cast<std::string>()));
  return false;
}

}  // namespace

Execute::Execute(const QString& code) : _code(code) {}

bool Execute::execute(int /*gui_mode*/, int flags, QString& error_code, ErrorLog& log)
{
  PythonInterpreter::initialize();
  StackLevel level(this);
  SafePoints::Run safe_points;
  _collected.clear();

  bool success = true;
  {
    OutputRedirection redirection(_collect_stdout, _collect_stderr);
    py::dict globals;
    try {
      globals["__builtins__"] = py::module_::import("builtins");
      globals["__name__"] = (flags & FLAG_MAIN) ? "__main__" : "__zut_script__";
      if (!_file_name.isEmpty())
        globals["__file__"] = _file_name.toStdString();
      py::dict parameters;
      for (auto it = _parameters.begin(); it != _parameters.end(); ++it)
        parameters[py::str(it.key().toStdString())] = fromVariant(it.value());
      globals["PARAMETERS"] = parameters;

      const QString& name = _code_name.isEmpty() ? _file_name : _code_name;
      const std::string file_name = name.isEmpty() ? std::string("<string>") : name.toStdString();
      const py::object compiled =
          py::module_::import("builtins").attr("compile")(_code.toStdString(), file_name, "exec", 0, true);
      PyObject* result = PyEval_EvalCode(compiled.ptr(), globals.ptr(), globals.ptr());
      if (!result)
        throw py::error_already_set();
      Py_DECREF(result);
    } catch (py::error_already_set& error) {
      success = handleException(error, error_code, log);
    }
    _collected = redirection.collected();
    // Functions defined by the script hold its namespace: break the cycle now.
    globals.clear();
  }
  return success;
}

}  // namespace Vel::GScript
