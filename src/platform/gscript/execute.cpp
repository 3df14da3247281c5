#include "gscript/execute.h"

#include <optional>

#include <pybind11/embed.h>

#include <QFileInfo>

#include "gscript/debugger.h"
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
  QString collected() const { return textOf(_buffer.ptr()); }
  PyObject* buffer() const { return _buffer.ptr(); }

  // Empty when the script closed the buffer (sys.stdout.close()): what it held is gone.
  static QString textOf(PyObject* buffer)
  {
    if (!buffer)
      return QString();
    try {
      return QString::fromStdString(py::handle(buffer).attr("getvalue")().cast<std::string>());
    } catch (const py::error_already_set&) {
      return QString();
    }
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

// Makes a run a module of its own for as long as it lives. A main run is the interpreter's
// __main__ meanwhile and, with a file, has sys.argv and the file's folder first on sys.path;
// what was there before is put back, so that nested runs nest. The module's dictionary is the
// run's globals and outlives the run as long as anything uses it.
class RunModule
{
public:
  RunModule(bool main, const QString& file_name, const QStringList& arguments)
      : _sys(py::module_::import("sys")), _modules(_sys.attr("modules"))
  {
    _module = py::reinterpret_steal<py::object>(PyModule_New(main ? "__main__" : "__zut_script__"));
    if (!_module)
      throw py::error_already_set();
    _globals = _module.attr("__dict__");
    _globals["__builtins__"] = py::module_::import("builtins");
    if (!file_name.isEmpty()) {
      _globals["__file__"] = file_name.toStdString();
      _globals["__cached__"] = py::none();
    }
    if (!main)
      return;
    try {
      _previous_main = _modules.attr("get")("__main__");
      _modules["__main__"] = _module;
      _main_installed = true;
      if (file_name.isEmpty())
        return;
      py::list argv;
      argv.append(file_name.toStdString());
      for (const QString& argument : arguments)
        argv.append(argument.toStdString());
      _previous_argv = py::getattr(_sys, "argv", py::none());
      _sys.attr("argv") = argv;
      _argv_installed = true;
      // As python3 does: the folder of the script with links resolved.
      const QFileInfo file(file_name);
      const QString folder = file.canonicalPath().isEmpty() ? file.absolutePath() : file.canonicalPath();
      _folder = py::str(folder.toStdString());
      _sys.attr("path").attr("insert")(0, _folder);
    } catch (...) {
      restore();
      throw;
    }
  }
  ~RunModule()
  {
    try {
      restore();
    } catch (py::error_already_set& error) {
      error.discard_as_unraisable("restoring the interpreter after a script");
    }
  }
  py::dict& globals() { return _globals; }

private:
  void restore()
  {
    if (_folder) {
      const py::object path = _sys.attr("path");
      if (PyList_Check(path.ptr()) && PyList_GET_SIZE(path.ptr()) > 0 && PyList_GET_ITEM(path.ptr(), 0) == _folder.ptr())
        PyList_SetSlice(path.ptr(), 0, 1, nullptr);
      else if (path.attr("__contains__")(_folder).cast<bool>())
        path.attr("remove")(_folder);
      _folder = py::object();
    }
    if (_argv_installed) {
      _argv_installed = false;
      if (_previous_argv.is_none())
        py::delattr(_sys, "argv");
      else
        _sys.attr("argv") = _previous_argv;
    }
    if (_main_installed) {
      _main_installed = false;
      if (_previous_main.is_none())
        _modules.attr("pop")("__main__", py::none());
      else
        _modules["__main__"] = _previous_main;
    }
  }

  py::module_ _sys;
  py::object _modules;
  py::object _module;
  py::dict _globals;
  py::object _previous_main;
  py::object _previous_argv;
  py::object _folder;
  bool _main_installed = false;
  bool _argv_installed = false;
};

// Finds where CPython's reading of a file would fail: returns (line, reason), line 0 when the
// bytes decode. The message for an undeclared encoding is the one python3 gives.
const char* const SOURCE_CHECK = R"PY(
def check(source, file_name):
    import io, tokenize
    first_lines = source.splitlines()[:2]
    declared = next((number for number, line in enumerate(first_lines, 1)
                     if tokenize.cookie_re.match(line.decode('latin-1'))), 0)
    try:
        encoding = tokenize.detect_encoding(io.BytesIO(source).readline)[0]
    except SyntaxError as error:
        if declared:
            return declared, str(error)
        encoding = 'utf-8'
    try:
        source.decode(encoding)
    except UnicodeDecodeError as error:
        line = source.count(b'\n', 0, error.start) + 1
        if not declared:
            return line, ('Non-UTF-8 code starting with %s in file %s on line %d, but no encoding declared; '
                          'see https://peps.python.org/pep-0263/ for details'
                          % (repr(source[error.start:error.start + 1])[1:], file_name, line))
        return line, ("%r codec can't decode byte 0x%02x on line %d (the encoding is declared on line %d)"
                      % (encoding, source[error.start], line, declared))
    return 0, ''
)PY";

// What compile(source, file_name, "exec", dont_inherit=True) does, without the builtin: the
// builtin first asks whether the source is a syntax tree, and that question alone sets up the
// ast module's hundred-odd types, which costs a short run more than all of its compiling.
// Text is UTF-8 whatever it declares; bytes are read in the encoding they declare.
py::object compileModule(const QByteArray& source, bool text, const std::string& file_name)
{
  if (qstrlen(source.constData()) != size_t(source.size())) {
    PyErr_SetString(PyExc_ValueError, "source code string cannot contain null bytes");
    throw py::error_already_set();
  }
  PyCompilerFlags flags = _PyCompilerFlags_INIT;
  flags.cf_flags = PyCF_SOURCE_IS_UTF8 | (text ? PyCF_IGNORE_COOKIE : 0);
  const py::object name = py::reinterpret_steal<py::object>(PyUnicode_DecodeFSDefault(file_name.c_str()));
  if (!name)
    throw py::error_already_set();
  PyObject* code = Py_CompileStringObject(source.constData(), name.ptr(), Py_file_input, &flags, -1);
  if (!code)
    throw py::error_already_set();
  return py::reinterpret_steal<py::object>(code);
}

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
  try {
    const py::object lines =
        py::module_::import("traceback").attr("format_exception")(error.type(), error.value(), trace);
    addLines(log, QString::fromStdString(py::str("").attr("join")(lines).cast<std::string>()));
  } catch (const py::error_already_set&) {
    // A second Ctrl+C while the traceback is written: the run's own failure still counts.
    addLines(log, QString::fromUtf8(error.what()));
  }
  return false;
}

// Puts a text into linecache under its file name for as long as it lives. Without a time stamp
// linecache never checks the file, so tracebacks quote this text.
class QuotedText
{
public:
  QuotedText(bool active, const std::string& file_name, const QString& text)
  {
    if (!active || text.isEmpty())
      return;
    // Split as the compiler counts lines: at line feeds only, not at form feeds and the like.
    const py::list lines = py::module_::import("io").attr("StringIO")(text.toStdString()).attr("readlines")();
    _cache = py::module_::import("linecache").attr("cache");
    _name = py::str(file_name);
    _cache[_name] = py::make_tuple(text.size(), py::none(), lines, _name);
  }
  ~QuotedText()
  {
    if (!_cache)
      return;
    const SafePoints::Hold hold;
    if (PyDict_Check(_cache.ptr()) && PyDict_DelItem(_cache.ptr(), _name.ptr()) != 0)
      PyErr_Clear();
  }
  QuotedText(const QuotedText&) = delete;
  QuotedText& operator=(const QuotedText&) = delete;

private:
  py::object _cache;
  py::object _name;
};

}  // namespace

Execute::Execute(const QString& code) : _code(code) {}

QString Execute::getCollectedOutputSoFar() const
{
  return _collecting ? OutputRedirection::textOf(static_cast<PyObject*>(_collecting)) : _collected;
}

Execute Execute::fromSource(const QByteArray& source)
{
  Execute run{QString()};
  run._source = source;
  run._from_source = true;
  return run;
}

bool Execute::checkSourceEncoding(const QByteArray& source, const QString& file_name, ErrorLog& log)
{
  PythonInterpreter::initialize();
  try {
    // Made once; kept for the life of the interpreter, which is the life of the process.
    static py::object* check = nullptr;
    if (!check) {
      py::dict scope;
      scope["__builtins__"] = py::module_::import("builtins");
      py::exec(SOURCE_CHECK, scope);
      check = new py::object(scope["check"]);
    }
    const py::tuple found = (*check)(py::bytes(source.constData(), size_t(source.size())), file_name.toStdString());
    const int line = found[0].cast<int>();
    if (line == 0)
      return true;
    log.addLine(QStringLiteral("  File \"%1\", line %2").arg(file_name).arg(line));
    log.addLine(QStringLiteral("SyntaxError: %1").arg(QString::fromStdString(found[1].cast<std::string>())));
  } catch (const py::error_already_set& error) {
    log.addLine(QStringLiteral("%1: %2").arg(file_name, QString::fromUtf8(error.what())));
  }
  return false;
}

bool Execute::execute(int /*gui_mode*/, int flags, QString& error_code, ErrorLog& log)
{
  PythonInterpreter::initialize();
  StackLevel level(this);
  SafePoints::Run safe_points;
  _collected.clear();

  bool success = true;
  {
    OutputRedirection redirection(_collect_stdout, _collect_stderr);
    std::optional<QuotedText> quoted;  // until the traceback is written
    _collecting = redirection.buffer();
    try {
      RunModule module((flags & FLAG_MAIN) != 0, _file_name, _arguments);
      py::dict& globals = module.globals();
      py::dict parameters;
      for (auto it = _parameters.begin(); it != _parameters.end(); ++it)
        parameters[py::str(it.key().toStdString())] = fromVariant(it.value());
      globals["PARAMETERS"] = parameters;

      const QString& name = _code_name.isEmpty() ? _file_name : _code_name;
      const std::string file_name = name.isEmpty() ? std::string("<string>") : name.toStdString();
      quoted.emplace(_quote_own_text && !_from_source, file_name, _code);
      if (Debugger* debugger = Debugger::active())
        debugger->sourceCompiled(QString::fromStdString(file_name), _from_source ? _source : _code.toUtf8());
      const py::object compiled =
          _from_source ? compileModule(_source, false, file_name) : compileModule(_code.toUtf8(), true, file_name);
      PyObject* result = PyEval_EvalCode(compiled.ptr(), globals.ptr(), globals.ptr());
      if (!result)
        throw py::error_already_set();
      Py_DECREF(result);
    } catch (py::error_already_set& error) {
      const SafePoints::Hold hold;
      // The outermost run is the one a person debugs; an inner run's failure is its caller's
      // to catch.
      Debugger* debugger = Debugger::active();
      if (debugger && PythonInterpreter::getInterpreterStack().size() == 1 && !error.matches(PyExc_SystemExit) &&
          !error.matches(PyExc_KeyboardInterrupt))
        debugger->uncaughtException(error.type().ptr(), error.value().ptr(), error.trace().ptr());
      success = handleException(error, error_code, log);
    }
    _collected = redirection.collected();
    _collecting = nullptr;
  }
  return success;
}

}  // namespace Vel::GScript
