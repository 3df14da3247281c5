#include "gscript/debugger.h"

#include <pybind11/embed.h>

#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QStringList>

#include <algorithm>
#include <unordered_map>

#include "core/error_log.h"
#include "gscript/python_interpreter.h"
#include "gscript/script_database.h"

namespace py = pybind11;

namespace Vel::GScript {

namespace {

Debugger* active_debugger = nullptr;

// The folders of code that is no script: the standard library and installed packages.
const char* const LIBRARY_FOLDERS = R"PY(
def folders():
    import os, site, sys, sysconfig
    found = set()
    for key in ('stdlib', 'platstdlib', 'purelib', 'platlib'):
        path = sysconfig.get_paths().get(key)
        if path:
            found.add(path)
    try:
        found.update(site.getsitepackages())
    except AttributeError:
        pass
    found.add(os.path.dirname(os.__file__))
    return sorted(os.path.realpath(path).rstrip('/') + '/' for path in found)
)PY";

QString pyText(PyObject* object)
{
  if (!object || !PyUnicode_Check(object))
    return QString();
  Py_ssize_t size = 0;
  const char* text = PyUnicode_AsUTF8AndSize(object, &size);
  if (!text) {
    PyErr_Clear();
    return QString();
  }
  return QString::fromUtf8(text, int(size));
}

// "Type: message", as the last line of a traceback says it.
QString exceptionText(const py::error_already_set& error)
{
  try {
    const py::object lines =
        py::module_::import("traceback").attr("format_exception_only")(error.type(), error.value());
    // A syntax error shows its line and a caret first: the last line says it.
    const QString text = QString::fromStdString(py::str("").attr("join")(lines).cast<std::string>()).trimmed();
    return text.mid(text.lastIndexOf(QLatin1Char('\n')) + 1);
  } catch (const py::error_already_set&) {
    return QString::fromUtf8(error.what());
  }
}

QString safeRepr(PyObject* value)
{
  PyObject* text = PyObject_Repr(value);
  if (!text) {
    py::error_already_set error;
    return QStringLiteral("<repr failed: %1>").arg(exceptionText(error));
  }
  const QString result = pyText(text);
  Py_DECREF(text);
  return result;
}

// The file a breakpoint and a code object are compared by: the real path of a file that
// exists, the name itself for database scripts and text without a file.
QString fileKey(const QString& name)
{
  if (name.startsWith(QLatin1Char('<')))
    return name;
  const QFileInfo info(name);
  if (info.isFile())
    return info.canonicalFilePath();
  return name;
}

}  // namespace

Debugger::Frontend::~Frontend() = default;

class Debugger::Private
{
public:
  enum class Mode
  {
    Continue,
    StepInto,
    StepOver,  // pauses in `target`; when it returns, in its script caller
    StepOut,   // pauses in the script caller of `target` once it returned
    Quit
  };

  // What the tracer knows about one code object, found when it first runs.
  struct CodeInfo
  {
    bool script = false;
    QString file;
    QString key;             // fileKey(file), set when the file has breakpoints
    std::vector<int> lines;  // the breakpoint lines that are lines of this code
  };

  struct Entry : Debugger::Breakpoint
  {
    QString key;
    bool internal = false;  // the target of runTo
  };

  Private(Debugger& owner, Frontend& frontend) : q(owner), frontend(frontend) {}
  ~Private()
  {
    clearCodes();
    setTarget(nullptr);
  }

  Debugger& q;
  Frontend& frontend;
  bool attached = false;
  Mode mode = Mode::Continue;
  PyObject* target = nullptr;  // a frame, strong reference
  std::vector<Entry> entries;
  int next_number = 1;
  std::unordered_map<PyObject*, CodeInfo> codes;  // each key holds a reference
  int breakpoint_frames = 0;                      // live frames of code that holds a breakpoint
  bool calls_hooked = false;
  bool lines_hooked = false;
  bool stopped = false;
  QStringList library_folders;
  QMap<QString, QStringList> sources;
  mutable QMap<QString, QStringList> file_sources;

  // While paused: the frames (strong references) and their lines, outermost first.
  bool paused = false;
  std::vector<PyObject*> frames;
  std::vector<int> frame_lines;

  // ---- hooks: sys.settrace-level tracing (PyEval_SetProfile for calls, PyEval_SetTrace for lines)

  static int callHook(PyObject*, PyFrameObject* frame, int what, PyObject*)
  {
    Private* d = active_debugger ? active_debugger->_d.get() : nullptr;
    if (!d)
      return 0;
    if (what == PyTrace_CALL)
      return d->onCall(frame);
    if (what == PyTrace_RETURN)
      return d->onReturn(frame);
    return 0;
  }

  static int lineHook(PyObject*, PyFrameObject* frame, int what, PyObject*)
  {
    if (what != PyTrace_LINE || !active_debugger)
      return 0;
    return active_debugger->_d->onLine(frame);
  }

  void updateHooks()
  {
    const bool stepping = mode == Mode::StepInto || mode == Mode::StepOver || mode == Mode::StepOut;
    const bool live = attached && !paused && mode != Mode::Quit;
    const bool lines = live && (stepping || breakpoint_frames > 0);
    const bool calls = live && (stepping || !entries.empty());
    if (calls != calls_hooked) {
      PyEval_SetProfile(calls ? &Private::callHook : nullptr, nullptr);
      calls_hooked = calls;
    }
    if (lines != lines_hooked) {
      PyEval_SetTrace(lines ? &Private::lineHook : nullptr, nullptr);
      lines_hooked = lines;
    }
  }

  void removeHooks()
  {
    if (calls_hooked)
      PyEval_SetProfile(nullptr, nullptr);
    if (lines_hooked)
      PyEval_SetTrace(nullptr, nullptr);
    calls_hooked = lines_hooked = false;
  }

  // ---- what the hooks ask

  bool isLibrary(const QString& file) const
  {
    for (const QString& folder : library_folders)
      if (file.startsWith(folder))
        return true;
    return false;
  }

  bool isScript(PyFrameObject* frame, const QString& file) const
  {
    PyObject* globals = PyFrame_GetGlobals(frame);
    PyObject* name = globals ? PyDict_GetItemString(globals, "__name__") : nullptr;
    const QString module = pyText(name);
    Py_XDECREF(globals);
    // The zut package's own Python has no file of its own.
    if (module == QLatin1String("zut") || module.startsWith(QLatin1String("zut.")))
      return false;
    if (file.startsWith(QLatin1Char('<')))
      return module == QLatin1String("__main__") || module == QLatin1String("__zut_script__");
    return !isLibrary(QFileInfo(file).isAbsolute() ? file : QFileInfo(file).absoluteFilePath());
  }

  CodeInfo& codeInfo(PyFrameObject* frame)
  {
    PyObject* code = reinterpret_cast<PyObject*>(PyFrame_GetCode(frame));
    const auto found = codes.find(code);
    if (found != codes.end()) {
      Py_DECREF(code);
      return found->second;
    }
    CodeInfo info;
    info.file = pyText(reinterpret_cast<PyCodeObject*>(code)->co_filename);
    info.script = isScript(frame, info.file);
    if (info.script && !entries.empty()) {
      const QString key = fileKey(info.file);
      std::vector<int> wanted;
      for (const Entry& entry : entries)
        if (entry.key == key)
          wanted.push_back(entry.line);
      if (!wanted.empty()) {
        info.key = key;
        info.lines = codeLines(code, wanted);
      }
    }
    return codes.emplace(code, std::move(info)).first->second;
  }

  // Which of `wanted` are lines of the code itself (not of functions defined in it).
  static std::vector<int> codeLines(PyObject* code, const std::vector<int>& wanted)
  {
    std::vector<int> lines;
    try {
      for (const py::handle entry : py::reinterpret_borrow<py::object>(code).attr("co_lines")()) {
        const py::object line = py::reinterpret_borrow<py::tuple>(entry)[2];
        if (line.is_none())
          continue;
        const int number = line.cast<int>();
        if (std::find(wanted.begin(), wanted.end(), number) != wanted.end() &&
            std::find(lines.begin(), lines.end(), number) == lines.end())
          lines.push_back(number);
      }
    } catch (py::error_already_set&) {
      // a code object without lines: nothing to pause in
    }
    return lines;
  }

  void clearCodes()
  {
    for (auto& entry : codes)
      Py_DECREF(entry.first);
    codes.clear();
  }

  void setTarget(PyObject* frame)
  {
    Py_XINCREF(frame);
    Py_XSETREF(target, frame);
  }

  // The nearest script frame further out than `frame`; a new reference, or null.
  PyObject* scriptCaller(PyFrameObject* frame)
  {
    PyFrameObject* back = PyFrame_GetBack(frame);
    while (back && !codeInfo(back).script) {
      PyFrameObject* next = PyFrame_GetBack(back);
      Py_DECREF(back);
      back = next;
    }
    return reinterpret_cast<PyObject*>(back);
  }

  // Counts again the frames on the stack that hold breakpoints, after the breakpoints changed.
  void recount()
  {
    clearCodes();
    breakpoint_frames = 0;
    if (entries.empty())
      return;
    PyFrameObject* frame = PyEval_GetFrame();
    Py_XINCREF(frame);
    while (frame) {
      if (!codeInfo(frame).lines.empty())
        ++breakpoint_frames;
      PyFrameObject* back = PyFrame_GetBack(frame);
      Py_DECREF(frame);
      frame = back;
    }
  }

  int onCall(PyFrameObject* frame)
  {
    const CodeInfo& info = codeInfo(frame);
    if (info.script && !info.lines.empty() && ++breakpoint_frames == 1)
      updateHooks();
    return 0;
  }

  int onReturn(PyFrameObject* frame)
  {
    const CodeInfo& info = codeInfo(frame);
    if (!info.script)
      return 0;
    if (!info.lines.empty() && breakpoint_frames > 0 && --breakpoint_frames == 0)
      updateHooks();
    if ((mode == Mode::StepOver || mode == Mode::StepOut) && reinterpret_cast<PyObject*>(frame) == target) {
      // Went out of the frame being stepped: on in the script that called it, or wherever a
      // script goes on when none did (a command called it).
      PyObject* caller = scriptCaller(frame);
      setTarget(caller);
      mode = caller ? Mode::StepOver : Mode::StepInto;
      Py_XDECREF(caller);
      updateHooks();
    }
    return 0;
  }

  int onLine(PyFrameObject* frame)
  {
    const CodeInfo& info = codeInfo(frame);
    if (!info.script)
      return 0;
    const int line = PyFrame_GetLineNumber(frame);
    Debugger::Stop stop;
    bool pause = mode == Mode::StepInto || (mode == Mode::StepOver && reinterpret_cast<PyObject*>(frame) == target);
    if (std::find(info.lines.begin(), info.lines.end(), line) != info.lines.end()) {
      const QString key = info.key;
      for (size_t i = 0; i < entries.size(); ++i) {
        Entry& entry = entries[i];
        if (entry.key != key || entry.line != line)
          continue;
        if (entry.internal) {
          pause = true;
          continue;
        }
        QString failure;
        if (!conditionHolds(entry.condition, frame, failure))
          continue;
        ++entry.hits;
        pause = true;
        if (stop.reason != Reason::Breakpoint) {
          stop.reason = Reason::Breakpoint;
          stop.breakpoint = entry.number;
          stop.message = failure;
        }
      }
    }
    if (!pause)
      return 0;
    // A temporary breakpoint and the target of a run to a line are done once reached.
    const auto done = [&](const Entry& entry) {
      return entry.internal || (entry.temporary && entry.number == stop.breakpoint);
    };
    entries.erase(std::remove_if(entries.begin(), entries.end(), done), entries.end());
    return pauseIn(frame, stop);
  }

  // True when a breakpoint's condition holds, and when it cannot be evaluated: a pause is how
  // the person learns that (`failure`).
  static bool conditionHolds(const QString& condition, PyFrameObject* frame, QString& failure)
  {
    if (condition.isEmpty())
      return true;
    try {
      const py::object globals = py::reinterpret_steal<py::object>(PyFrame_GetGlobals(frame));
      const py::object locals = py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(frame)).attr("f_locals");
      const py::object value = py::eval(condition.toStdString(), globals, locals);
      return PyObject_IsTrue(value.ptr()) == 1;
    } catch (py::error_already_set& error) {
      failure = QStringLiteral("the condition '%1' failed: %2").arg(condition, exceptionText(error));
      return true;
    }
  }

  int pauseIn(PyFrameObject* frame, const Debugger::Stop& stop)
  {
    mode = Mode::Continue;
    setTarget(nullptr);
    PyFrameObject* current = frame;
    Py_INCREF(current);
    while (current) {
      if (codeInfo(current).script) {
        Py_INCREF(current);
        frames.insert(frames.begin(), reinterpret_cast<PyObject*>(current));
        frame_lines.insert(frame_lines.begin(), PyFrame_GetLineNumber(current));
      }
      PyFrameObject* back = PyFrame_GetBack(current);
      Py_DECREF(current);
      current = back;
    }
    present(stop);
    if (mode == Mode::Quit) {
      stopped = true;
      updateHooks();
      PyErr_SetString(quitType(), "the debugger stopped the script");
      return -1;
    }
    if (mode == Mode::StepOver || mode == Mode::StepOut)
      setTarget(reinterpret_cast<PyObject*>(frame));
    recount();
    updateHooks();
    return 0;
  }

  // Pauses for the front end, untraced.
  void present(const Debugger::Stop& stop)
  {
    paused = true;
    updateHooks();
    frontend.paused(q, stop);
    paused = false;
    for (PyObject* frame : frames)
      Py_DECREF(frame);
    frames.clear();
    frame_lines.clear();
  }

  static PyObject* quitType()
  {
    // Made once, for the life of the interpreter.
    static PyObject* type = PyErr_NewExceptionWithDoc(
        "zut.DebuggerQuit", "The debugger stopped the script.", PyExc_KeyboardInterrupt, nullptr);
    return type;
  }

  PyObject* pausedFrame(int index) const
  {
    if (!paused || index < 0 || index >= int(frames.size()))
      return nullptr;
    return frames[size_t(index)];
  }

  QList<QPair<QString, QString>> variables(PyObject* mapping) const
  {
    QList<QPair<QString, QString>> list;
    if (!mapping || !PyDict_Check(mapping))
      return list;
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    while (PyDict_Next(mapping, &position, &key, &value)) {
      const QString name = pyText(key);
      if (name.isEmpty() || name == QLatin1String("__builtins__"))
        continue;
      list.append({name, safeRepr(value)});
    }
    std::sort(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    return list;
  }

  // The lines of a script: what a run compiled, a file on disk, or a script of the database.
  const QStringList* lines(const QString& file) const
  {
    const auto compiled = sources.find(file);
    if (compiled != sources.end())
      return &compiled.value();
    const auto known = file_sources.find(file);
    if (known != file_sources.end())
      return &known.value();
    QByteArray bytes;
    QFile disk(file);
    if (!file.startsWith(QLatin1Char('<')) && disk.open(QIODevice::ReadOnly)) {
      bytes = disk.readAll();
    } else {
      ScriptDatabase database(nullptr);
      ErrorLog log;
      database.initialize(false, &log);
      std::unique_ptr<Script> script(database.createLoadedScript(file, log));
      if (!script)
        return nullptr;
      bytes = script->getSource();
    }
    return &(file_sources[file] = decode(bytes));
  }

  static QStringList decode(const QByteArray& bytes)
  {
    QString text;
    try {
      text = QString::fromStdString(py::module_::import("importlib.util")
                                        .attr("decode_source")(py::bytes(bytes.constData(), size_t(bytes.size())))
                                        .cast<std::string>());
    } catch (py::error_already_set&) {
      text = QString::fromUtf8(bytes);
    }
    return text.split(QLatin1Char('\n'));
  }

  bool checkLine(const QString& file, int line, QString* error) const
  {
    const auto fail = [&](const QString& text) {
      if (error)
        *error = text;
      return false;
    };
    if (file.isEmpty())
      return fail(QStringLiteral("no file given"));
    const QStringList* text = lines(file);
    if (!text)
      return fail(QStringLiteral("no script or file named '%1'").arg(file));
    if (line < 1 || line > text->size())
      return fail(QStringLiteral("%1 has no line %2").arg(file).arg(line));
    const QString code = text->at(line - 1).trimmed();
    if (code.isEmpty() || code.startsWith(QLatin1Char('#')))
      return fail(QStringLiteral("line %1 of %2 has no code").arg(line).arg(file));
    return true;
  }

  void breakpointsChanged()
  {
    if (paused || PyEval_GetFrame())
      recount();
    else
      clearCodes();
    updateHooks();
  }
};

Debugger::Debugger(Frontend& frontend) : _d(std::make_unique<Private>(*this, frontend))
{
  PythonInterpreter::initialize();
  try {
    py::dict scope;
    scope["__builtins__"] = py::module_::import("builtins");
    py::exec(LIBRARY_FOLDERS, scope);
    for (const py::handle folder : scope["folders"]())
      _d->library_folders << QString::fromStdString(folder.cast<std::string>());
  } catch (py::error_already_set& error) {
    error.discard_as_unraisable("finding the standard library for the debugger");
  }
}

Debugger::~Debugger()
{
  detach();
}

void Debugger::attach(bool pause_at_start)
{
  if (active_debugger && active_debugger != this)
    active_debugger->detach();
  active_debugger = this;
  _d->attached = true;
  _d->stopped = false;
  _d->mode = pause_at_start ? Private::Mode::StepInto : Private::Mode::Continue;
  _d->breakpoint_frames = 0;
  _d->clearCodes();
  _d->updateHooks();
}

void Debugger::detach()
{
  if (active_debugger != this)
    return;
  _d->removeHooks();
  _d->attached = false;
  _d->mode = Private::Mode::Continue;
  _d->setTarget(nullptr);
  _d->clearCodes();
  active_debugger = nullptr;
}

Debugger* Debugger::active()
{
  return active_debugger;
}

int Debugger::setBreakpoint(const QString& file, int line, const QString& condition, bool temporary, QString* error)
{
  if (!_d->checkLine(file, line, error))
    return 0;
  if (!condition.isEmpty()) {
    try {
      py::module_::import("builtins").attr("compile")(condition.toStdString(), "<condition>", "eval");
    } catch (py::error_already_set& failure) {
      if (error)
        *error = QStringLiteral("the condition does not compile: %1").arg(exceptionText(failure));
      return 0;
    }
  }
  Private::Entry entry;
  entry.number = _d->next_number++;
  entry.file = file;
  entry.key = fileKey(file);
  entry.line = line;
  entry.condition = condition;
  entry.temporary = temporary;
  _d->entries.push_back(entry);
  _d->breakpointsChanged();
  return entry.number;
}

int Debugger::clearBreakpoint(const QString& file, int line)
{
  const QString key = fileKey(file);
  auto& entries = _d->entries;
  const auto found = std::find_if(entries.begin(), entries.end(), [&](const Private::Entry& entry) {
    return !entry.internal && entry.key == key && entry.line == line;
  });
  if (found == entries.end())
    return 0;
  const int number = found->number;
  entries.erase(found);
  _d->breakpointsChanged();
  return number;
}

bool Debugger::toggleBreakpoint(const QString& file, int line, QString* error)
{
  if (clearBreakpoint(file, line))
    return false;
  return setBreakpoint(file, line, QString(), false, error) != 0;
}

std::vector<Debugger::Breakpoint> Debugger::breakpoints() const
{
  std::vector<Breakpoint> list;
  for (const Private::Entry& entry : _d->entries)
    if (!entry.internal)
      list.push_back(entry);
  return list;
}

void Debugger::stepInto()
{
  _d->mode = Private::Mode::StepInto;
}

void Debugger::stepOver()
{
  _d->mode = Private::Mode::StepOver;
}

void Debugger::stepOut()
{
  _d->mode = Private::Mode::StepOut;
}

bool Debugger::runTo(const QString& file, int line, QString* error)
{
  if (!_d->checkLine(file, line, error))
    return false;
  Private::Entry entry;
  entry.file = file;
  entry.key = fileKey(file);
  entry.line = line;
  entry.internal = true;
  _d->entries.push_back(entry);
  _d->mode = Private::Mode::Continue;
  _d->breakpointsChanged();
  return true;
}

void Debugger::resume()
{
  _d->mode = Private::Mode::Continue;
}

void Debugger::stop()
{
  _d->mode = Private::Mode::Quit;
}

QList<Debugger::Frame> Debugger::stack() const
{
  QList<Frame> list;
  if (!_d->paused)
    return list;
  for (size_t i = 0; i < _d->frames.size(); ++i) {
    PyCodeObject* code = PyFrame_GetCode(reinterpret_cast<PyFrameObject*>(_d->frames[i]));
    list.append({pyText(code->co_filename), _d->frame_lines[i], pyText(code->co_name)});
    Py_DECREF(code);
  }
  return list;
}

bool Debugger::evaluate(const QString& expression, int frame_index, QString& result)
{
  PyObject* frame = _d->pausedFrame(frame_index);
  if (!frame) {
    result = QStringLiteral("the script is not paused there");
    return false;
  }
  try {
    const py::object globals =
        py::reinterpret_steal<py::object>(PyFrame_GetGlobals(reinterpret_cast<PyFrameObject*>(frame)));
    const py::object locals = py::reinterpret_borrow<py::object>(frame).attr("f_locals");
    const py::object code =
        py::module_::import("builtins").attr("compile")(expression.toStdString(), "<debugger>", "eval");
    PyObject* value = PyEval_EvalCode(code.ptr(), globals.ptr(), locals.ptr());
    if (!value)
      throw py::error_already_set();
    result = safeRepr(value);
    Py_DECREF(value);
    return true;
  } catch (py::error_already_set& error) {
    result = exceptionText(error);
    return false;
  }
}

QList<QPair<QString, QString>> Debugger::locals(int frame_index) const
{
  PyObject* frame = _d->pausedFrame(frame_index);
  if (!frame)
    return {};
  PyObject* mapping = PyObject_GetAttrString(frame, "f_locals");
  if (!mapping) {
    PyErr_Clear();
    return {};
  }
  auto list = _d->variables(mapping);
  Py_DECREF(mapping);
  return list;
}

QList<QPair<QString, QString>> Debugger::globals(int frame_index) const
{
  PyObject* frame = _d->pausedFrame(frame_index);
  if (!frame)
    return {};
  PyObject* mapping = PyFrame_GetGlobals(reinterpret_cast<PyFrameObject*>(frame));
  auto list = _d->variables(mapping);
  Py_XDECREF(mapping);
  return list;
}

QString Debugger::sourceLine(const QString& file, int line) const
{
  const QStringList* lines = _d->lines(file);
  if (!lines || line < 1 || line > lines->size())
    return QString();
  return lines->at(line - 1);
}

bool Debugger::stopped() const
{
  return _d->stopped;
}

void Debugger::sourceCompiled(const QString& file, const QByteArray& source)
{
  _d->sources[file] = Private::decode(source);
  _d->file_sources.remove(file);
}

void Debugger::uncaughtException(void* type, void* value, void* traceback)
{
  if (!_d->attached || _d->stopped || !traceback || traceback == Py_None)
    return;
  PyObject* tb = static_cast<PyObject*>(traceback);
  _d->mode = Private::Mode::Continue;
  _d->setTarget(nullptr);
  // The run is over: frames are those of the traceback, with the lines it gives.
  while (tb && tb != Py_None && PyTraceBack_Check(tb)) {
    auto* entry = reinterpret_cast<PyTracebackObject*>(tb);
    PyFrameObject* frame = entry->tb_frame;
    if (frame && _d->codeInfo(frame).script) {
      // Computed on demand: the field may not be set yet.
      PyObject* line = PyObject_GetAttrString(tb, "tb_lineno");
      const int number = line ? int(PyLong_AsLong(line)) : 0;
      Py_XDECREF(line);
      PyErr_Clear();
      Py_INCREF(frame);
      _d->frames.push_back(reinterpret_cast<PyObject*>(frame));
      _d->frame_lines.push_back(number);
    }
    tb = reinterpret_cast<PyObject*>(entry->tb_next);
  }
  if (_d->frames.empty())
    return;
  Stop stop;
  stop.reason = Reason::Exception;
  try {
    const py::object lines = py::module_::import("traceback")
                                 .attr("format_exception_only")(py::handle(static_cast<PyObject*>(type)),
                                                                py::handle(static_cast<PyObject*>(value)));
    stop.message = QString::fromStdString(py::str("").attr("join")(lines).cast<std::string>()).trimmed();
  } catch (py::error_already_set&) {
    stop.message = safeRepr(static_cast<PyObject*>(value));
  }
  _d->present(stop);
  // Whatever was chosen, the run has ended; the next one starts without a step pending.
  _d->mode = Private::Mode::Continue;
  _d->breakpoint_frames = 0;
  _d->clearCodes();
  _d->updateHooks();
}

}  // namespace Vel::GScript
