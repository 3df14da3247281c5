// The built-in package `zut`: scripts reach every registered command through zut.script (without
// its interactive dialog) and zut.interactive (with it).

#include <pybind11/embed.h>

#include <QVarLengthArray>

#include <cmath>

#include "core/prog_error.h"
#include "core/script_type.h"
#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gapp/progress.h"
#include "gscript/embedded_python.h"
#include "gscript/gui_handler.h"
#include "gscript/import_handler.h"
#include "gscript/python_values.h"
#include "gscript/safe_points.h"

namespace py = pybind11;

namespace Vel::GScript {
namespace {

// A dotted part of the command names ("sys", "sys.execute_script"); attribute access goes one
// level down, a call runs the command of that name. A script calls the same names over and over,
// so what a name was found to be is kept until the set of commands changes.
struct CommandNamespace
{
  CommandNamespace(std::string prefix_, bool interactive_)
      : prefix(std::move(prefix_)), qualified(QString::fromStdString(prefix)), interactive(interactive_)
  {
  }

  std::string prefix;
  QString qualified;
  bool interactive = false;

  std::string root() const { return interactive ? "zut.interactive" : "zut.script"; }
  std::string path() const { return prefix.empty() ? root() : root() + "." + prefix; }

  // Null when no command has this name. The pointer is only ever used in the generation it was
  // found in: withdrawing a command changes the generation, so a withdrawn one is looked up
  // again (and not found) instead of being touched.
  GApp::Command* command()
  {
    const GApp::CommandContainer& container = GApp::CommandContainer::getInstance();
    if (_command_generation != container.getGeneration()) {
      _command = container.getCommand(qualified);
      _command_generation = container.getGeneration();
    }
    return _command;
  }

  // The objects one level down already handed out, by attribute name; emptied once commands
  // came or went, since a name may have lost its last command.
  py::dict& children()
  {
    const uint64_t generation = GApp::CommandContainer::getInstance().getGeneration();
    if (_children_generation != generation) {
      _children.clear();
      _children_generation = generation;
    }
    return _children;
  }

private:
  GApp::Command* _command = nullptr;
  uint64_t _command_generation = UINT64_MAX;
  py::dict _children;
  uint64_t _children_generation = UINT64_MAX;
};

py::object attribute(CommandNamespace& self, const py::str& name_object)
{
  const std::string name = name_object.cast<std::string>();
  // Dunder look-ups (copy, pickle, introspection) are no command names.
  if (name.size() > 1 && name[0] == '_' && name[1] == '_')
    throw py::attribute_error(name);
  const std::string full = self.prefix.empty() ? name : self.prefix + "." + name;
  CommandNamespace child(full, self.interactive);
  const GApp::CommandContainer& container = GApp::CommandContainer::getInstance();
  if (!child.command() && !container.hasCommandsBelow(child.qualified))
    throw py::attribute_error(self.root() + " has no command '" + full + "'");
  py::object object = py::cast(std::move(child));
  self.children()[name_object] = object;
  return object;
}

[[noreturn]] void raise(const char* class_name, const py::tuple& arguments)
{
  const py::object cls = py::module_::import("zut").attr(class_name);
  const py::object instance = cls(*arguments);
  PyErr_SetObject(cls.ptr(), instance.ptr());
  throw py::error_already_set();
}

// An aborted command, or a script run that was aborted inside it, stops the calling script
// too: every level of nested runs unwinds. The reason (the last line of an inner traceback,
// "KeyboardInterrupt: test timeout ...") goes along.
[[noreturn]] void raiseInterrupt(const ErrorLog& log)
{
  const QStringList lines = log.getText().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  QString reason = lines.isEmpty() ? QString() : lines.last();
  if (reason.startsWith(QLatin1String("KeyboardInterrupt"))) {
    reason = reason.mid(int(qstrlen("KeyboardInterrupt")));
    if (reason.startsWith(QLatin1String(": ")))
      reason = reason.mid(2);
  }
  if (reason.isEmpty())
    PyErr_SetNone(PyExc_KeyboardInterrupt);
  else
    PyErr_SetString(PyExc_KeyboardInterrupt, reason.toUtf8().constData());
  throw py::error_already_set();
}

}  // namespace

void raiseCommandError(const GApp::CommandError& error)
{
  if (error.getCode() == QLatin1String(ERR_SCRIPT_ABORTED))
    raiseInterrupt(error.getLog());
  raise("CommandError", py::make_tuple(error.getCode().toStdString(), error.getMessage().toStdString(),
                                       error.getLog().getText().toStdString()));
}

void raiseScriptTypeError(const ScriptTypeException& error)
{
  raise("ScriptTypeError", py::make_tuple(error.getMessage().toStdString()));
}

namespace {

// zut.progress(done, total, text=""): the script's own progress, shown by progress displays.
void progress(double done, double total, const std::string& text)
{
  if (!std::isfinite(done) || !std::isfinite(total) || total <= 0 || done < 0 || done > total)
    throw py::value_error("zut.progress() needs 0 <= done <= total and a finite total above 0");
  GApp::Progress::getInstance().report(done, total, QString::fromStdString(text));
}

// zut.answer_dialogs(answers): the user-defined dialogs that follow are answered from the list,
// one dictionary per dialog ("title", "values", "button"), as a recording replays a person.
void answerDialogs(const py::handle& answers)
{
  if (!py::isinstance<py::list>(answers) && !py::isinstance<py::tuple>(answers))
    throw py::type_error("zut.answer_dialogs() takes a list of dictionaries, one per dialog");
  const DialogAnswersHandler& handler = getDialogAnswersHandler();
  if (!handler)
    throw std::runtime_error("zut.answer_dialogs(): no user-defined dialogs here to answer");
  try {
    handler(toVariant(answers).toList());
  } catch (const GApp::CommandError& error) {
    raiseCommandError(error);
  }
}

QString toQString(PyObject* text)
{
  Py_ssize_t size = 0;
  const char* utf8 = PyUnicode_AsUTF8AndSize(text, &size);
  if (!utf8)
    throw py::error_already_set();
  return QString::fromUtf8(utf8, qsizetype(size));
}

py::object call(CommandNamespace& self, PyObject* args, PyObject* kwargs)
{
  GApp::Command* command = self.command();
  if (!command)
    throw py::attribute_error(self.root() + " has no command '" + self.prefix + "'");
  if (PyTuple_GET_SIZE(args) != 0)
    throw py::type_error(self.path() + "() takes keyword arguments only");

  // Unknown keywords are a TypeError, as for any Python function, before any value is converted.
  // The names go in first and the values replace them after the check.
  GApp::CommandParameters parameters;
  QVarLengthArray<std::pair<QString, PyObject*>, 8> given;
  Py_ssize_t position = 0;
  PyObject* key = nullptr;
  PyObject* value = nullptr;
  while (kwargs && PyDict_Next(kwargs, &position, &key, &value)) {
    given.append({toQString(key), value});
    parameters.set(given.back().first, QVariant());
  }
  const QString unknown = command->checkArgumentNames(parameters);
  if (!unknown.isEmpty())
    throw py::type_error(unknown.toStdString());
  for (const auto& [name, argument] : given) {
    // None stands for "not given", as the signature's defaults say.
    if (argument == Py_None)
      parameters.remove(name);
    else
      parameters.set(name, toVariant(argument));
  }

  try {
    return fromVariant(command->run(parameters, self.interactive));
  } catch (const GApp::CommandError& error) {
    raiseCommandError(error);
  } catch (const ScriptTypeException& error) {
    raiseScriptTypeError(error);
  } catch (const ProgError& error) {
    throw std::runtime_error(std::string("internal error: ") + error.what());
  }
}

// A C++ exception leaving a slot becomes the Python exception pybind11 would have made of it.
template <class Function>
PyObject* translated(Function&& function) noexcept
{
  try {
    return function();
  } catch (...) {
    if (py::detail::apply_exception_translators(py::detail::get_local_internals().registered_exception_translators))
      return nullptr;
    if (py::detail::apply_exception_translators(py::detail::get_internals().registered_exception_translators))
      return nullptr;
    PyErr_SetString(PyExc_SystemError, "Exception escaped from default exception translator!");
    return nullptr;
  }
}

CommandNamespace& namespaceOf(PyObject* self)
{
  auto* instance = reinterpret_cast<py::detail::instance*>(self);
  if (void* value = instance->get_value_and_holder().value_ptr())
    return *static_cast<CommandNamespace*>(value);
  return py::handle(self).cast<CommandNamespace&>();  // an object never constructed: pybind11's error
}

// The type's slots, in place of __getattr__ and __call__ methods: Python would first raise and
// format an AttributeError for every command name before calling __getattr__, and a method
// call goes through pybind11's overload dispatch.
PyObject* getAttributeSlot(PyObject* self, PyObject* name)
{
  // What the type itself has (methods, properties, __class__) is found as on any object; the
  // instances have no __dict__, so anything else can only be a command name.
  if (!PyUnicode_Check(name) || _PyType_Lookup(Py_TYPE(self), name))
    return PyObject_GenericGetAttr(self, name);
  return translated([&]() -> PyObject* {
    CommandNamespace& ns = namespaceOf(self);
    if (PyObject* child = PyDict_GetItemWithError(ns.children().ptr(), name))
      return Py_NewRef(child);
    if (PyErr_Occurred())
      throw py::error_already_set();
    return attribute(ns, py::reinterpret_borrow<py::str>(name)).release().ptr();
  });
}

PyObject* callSlot(PyObject* self, PyObject* args, PyObject* kwargs)
{
  return translated([&] { return call(namespaceOf(self), args, kwargs).release().ptr(); });
}

// Python's view of the argument table: keyword-only, the optional ones defaulting to None. In an
// interactive call every argument is optional: the command asks for what is missing.
py::object signature(CommandNamespace& self)
{
  const GApp::Command* command = self.command();
  if (!command)
    return py::none();
  py::list arguments;
  for (const auto& argument : command->getMetaInfo().getArgumentTypes())
    arguments.append(py::make_tuple(argument.name.toStdString(), argument.required && !self.interactive));
  return py::module_::import("zut").attr("_command_signature")(arguments);
}

py::list names(const CommandNamespace& self)
{
  // The next level of names below this one, for dir() and completion.
  const GApp::CommandContainer& container = GApp::CommandContainer::getInstance();
  const QString below = self.prefix.empty() ? QString() : QString::fromStdString(self.prefix) + QLatin1Char('.');
  QStringList result;
  for (auto it = container.lowerBound(below); it != container.end() && it->first.startsWith(below); ++it) {
    const QString next = it->first.mid(below.size()).section(QLatin1Char('.'), 0, 0);
    if (result.isEmpty() || result.last() != next)
      result << next;
  }
  py::list list;
  for (const QString& name : result)
    list.append(name.toStdString());
  return list;
}

// What help() shows: a command's call, title and arguments; the names below a namespace.
std::string doc(CommandNamespace& self)
{
  std::string text;
  if (const GApp::Command* command = self.command())
    text = self.prefix.substr(self.prefix.rfind('.') + 1) + py::str(signature(self)).cast<std::string>() + "\n\n" +
           command->describe().toStdString();
  const py::list below = names(self);
  if (!below.empty()) {
    if (!text.empty())
      text += "\n";
    text += "Commands below " + self.path() + ": " + py::str(", ").attr("join")(below).cast<std::string>() + "\n";
  }
  return text;
}

py::list importNames()
{
  py::list names;
  for (const ImportHandlerSource* source : ImportHandlerSource::getSources())
    for (const QString& name : source->getNames())
      names.append(name.toStdString());
  return names;
}

py::bytes importSource(const std::string& name)
{
  for (const ImportHandlerSource* source : ImportHandlerSource::getSources()) {
    const QByteArray bytes = source->getSource(QString::fromStdString(name));
    if (!bytes.isEmpty())
      return py::bytes(bytes.constData(), size_t(bytes.size()));
  }
  throw py::import_error("no source for '" + name + "'");
}

}  // namespace
}  // namespace Vel::GScript

PYBIND11_EMBEDDED_MODULE(zut, m)
{
  using Vel::GScript::CommandNamespace;
  m.doc() = "The application's commands and types.";
  Vel::GScript::runEmbeddedPython("exceptions", m.attr("__dict__"));
  py::class_<CommandNamespace>(m, "CommandNamespace", py::custom_type_setup([](PyHeapTypeObject* type) {
                                 type->ht_type.tp_getattro = &Vel::GScript::getAttributeSlot;
                                 type->ht_type.tp_call = &Vel::GScript::callSlot;
                               }))
      .def("__dir__", &Vel::GScript::names)
      .def_property_readonly("__doc__", &Vel::GScript::doc)
      .def_property_readonly("__signature__", &Vel::GScript::signature)
      .def("__repr__", [](const CommandNamespace& self) { return "<" + self.path() + ">"; });
  Vel::GScript::registerColorType(m);
  Vel::GScript::registerScriptObjects(m);
  m.attr("script") = CommandNamespace(std::string(), false);
  m.attr("interactive") = CommandNamespace(std::string(), true);
  m.def("progress", &Vel::GScript::progress, py::arg("done"), py::arg("total"), py::arg("text") = "",
        "Reports the script's progress: done of total, and what is being done.");
  m.def("answer_dialogs", &Vel::GScript::answerDialogs, py::arg("answers"),
        "Answers the user-defined dialogs that follow from a list of dictionaries, one per dialog in the "
        "order they appear: 'title' (optional, must match), 'values' by element name, 'button' (default: "
        "the accepting one).");
  m.def("_import_names", &Vel::GScript::importNames);
  m.def("_import_source", &Vel::GScript::importSource);
  Vel::GScript::runEmbeddedPython("import_hook", m.attr("__dict__"));
  Vel::GScript::runEmbeddedPython("script_elements", m.attr("__dict__"));
}
