#include "zut_commands.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <optional>

#include "cfg/cfg.h"
#include "core/color.h"
#include "core/prog_error.h"
#include "core/script_type.h"
#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gapp/module_loader.h"
#include "gapp/trait.h"
#include "gscript/python_interpreter.h"
#include "gscript/safe_points.h"
#include "gscript/script_database.h"
#include "zut_debug.h"
#include "zut_host.h"
#include "zut_signals.h"

namespace {

void print(std::FILE* stream, const QString& text)
{
  const QByteArray bytes = text.toLocal8Bit();
  std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
  std::fflush(stream);
}

void printJson(const QJsonValue& value)
{
  const QJsonDocument document = value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
  printOut(QString::fromUtf8(document.toJson(QJsonDocument::Indented)));
}

QJsonValue toJson(const QVariant& value)
{
  if (value.typeId() == Vel::Trait::fileTypeId())
    return value.value<Vel::Parse::File>().getName();
  if (value.typeId() == qMetaTypeId<Vel::Color>())
    return value.value<Vel::Color>().toString();
  if (value.typeId() == Vel::scriptObjectTypeId())
    return value.value<Vel::ScriptObjectPtr>()->getRepr();
  if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList) {
    QJsonArray array;
    for (const QVariant& element : value.toList())
      array.append(toJson(element));
    return array;
  }
  if (value.typeId() == QMetaType::QVariantMap) {
    QJsonObject object;
    const QVariantMap map = value.toMap();
    for (auto it = map.begin(); it != map.end(); ++it)
      object.insert(it.key(), toJson(it.value()));
    return object;
  }
  return QJsonValue::fromVariant(value);
}

// "NAME=VALUE": the value as a Python literal, or as text when it is none. False when the
// argument is no assignment; a literal that no command takes throws CommandError, which the
// program reports as a failed command.
bool parseAssignment(const QString& argument, QString& name, QVariant& value)
{
  const int equals = int(argument.indexOf(QLatin1Char('=')));
  if (equals <= 0)
    return false;
  name = argument.left(equals);
  const QString text = argument.mid(equals + 1);
  try {
    if (!Vel::GScript::PythonInterpreter::parseLiteral(text, value))
      value = text;
  } catch (const Vel::GApp::CommandError& error) {
    throw Vel::GApp::CommandError(error.getCode(),
                                  Vel::ErrorLog(QStringLiteral("%1: %2").arg(argument, error.getLog().getText())));
  }
  return true;
}

int usage(const char* sub_command, const QString& problem)
{
  printErr(QStringLiteral("zut %1: %2\nTry 'zut %1 --help'.\n").arg(QString::fromLatin1(sub_command), problem));
  return EXIT_USAGE;
}

// Runs a command as a script would and prints its result; a failure prints the code, the
// message and the log.
int runCommand(const QString& name, const Vel::GApp::CommandParameters& parameters, bool print_result, bool json)
{
  Vel::GApp::Command* command = Vel::GApp::CommandContainer::getInstance().getCommand(name);
  if (!command) {
    printErr(QStringLiteral("zut: no command named '%1' (see 'zut commands')\n").arg(name));
    return EXIT_USAGE;
  }
  try {
    const QVariant result = command->run(parameters, false);
    if (json) {
      printJson(QJsonObject{{QStringLiteral("command"), name}, {QStringLiteral("result"), toJson(result)}});
    } else if (print_result && result.isValid()) {
      QString text =
          result.typeId() == QMetaType::QString ? result.toString() : Vel::GScript::PythonInterpreter::repr(result);
      if (!text.endsWith(QLatin1Char('\n')))
        text += QLatin1Char('\n');
      printOut(text);
    }
    return EXIT_OK;
  } catch (const Vel::GApp::CommandError& error) {
    if (json)
      printJson(QJsonObject{{QStringLiteral("command"), name},
                            {QStringLiteral("error"), QJsonObject{{QStringLiteral("code"), error.getCode()},
                                                                  {QStringLiteral("message"), error.getMessage()},
                                                                  {QStringLiteral("log"), error.getLog().getText()}}}});
    printErr(error.getText() + QLatin1Char('\n'));
    return error.getCode() == QLatin1String(Vel::GScript::ERR_SCRIPT_ABORTED) ? EXIT_INTERRUPTED : EXIT_FAILED;
  } catch (const Vel::ProgError& error) {
    printErr(QStringLiteral("zut: internal error: %1\n").arg(QString::fromUtf8(error.what())));
    return EXIT_FAILED;
  }
}

// A function the module exports for tools. Its text result is released by the module, which
// allocated it; a null result means the module failed.
template <class Function>
class ModuleTool
{
public:
  ModuleTool(ZutHost& host, const char* name)
      : _call(reinterpret_cast<Function>(host.resolve(name))),
        _free(reinterpret_cast<void (*)(char*)>(host.resolve("FreeAnalysis")))
  {}
  explicit operator bool() const { return _call && _free; }

  template <class... Arguments>
  std::optional<QString> operator()(Arguments... arguments) const
  {
    char* result = _call(arguments...);
    if (!result)
      return std::nullopt;
    const QString text = QString::fromUtf8(result);
    _free(result);
    return text;
  }

private:
  Function _call;
  void (*_free)(char*);
};

// Loads answers for the dialogs that wait where no person is (from --answers or
// ZUT_DIALOG_ANSWERS) and where to record a person's (--record-answers).
bool prepareDialogAnswers(ZutHost& host, const char* sub_command, QString answers, const QString& record)
{
  if (answers.isEmpty())
    answers = qEnvironmentVariable("ZUT_DIALOG_ANSWERS");
  if (answers.isEmpty() && record.isEmpty())
    return true;
  const ModuleTool<char* (*)(const char*, const char*)> prepare(host, "PrepareDialogAnswers");
  const std::optional<QString> fault =
      prepare ? prepare(answers.toLocal8Bit().constData(), record.toLocal8Bit().constData()) : std::nullopt;
  if (!fault) {
    printErr(QStringLiteral("zut %1: the scripting module cannot take dialog answers\n").arg(QString::fromLatin1(sub_command)));
    return false;
  }
  if (fault->isEmpty())
    return true;
  printErr(*fault + QLatin1Char('\n'));
  return false;
}

// Answers that no dialog asked for are likely a mistake in the file or the script: said, not fatal.
void reportUnusedAnswers(ZutHost& host)
{
  // Answers are taken only with the windows up.
  if (!host.isGuiUp())
    return;
  const ModuleTool<char* (*)()> unused(host, "UnusedDialogAnswers");
  const std::optional<QString> lines = unused ? unused() : std::nullopt;
  if (!lines)
    return;
  for (const QString& line : lines->split(QLatin1Char('\n'), Qt::SkipEmptyParts))
    printErr(QStringLiteral("zut: warning: %1\n").arg(line));
}

// Dialogs a script opened without waiting for them stay until a person closes them; where
// nobody can, they are closed, and that is said. Without windows there are none.
void finishOpenDialogs(ZutHost& host)
{
  if (const auto finish = reinterpret_cast<void (*)(int)>(host.guiFunction("ZutGuiFinishOpenDialogs")))
    finish(Vel::GApp::isInteractive() ? 1 : 0);
}

// zut run FILE.py [-p NAME=VALUE]... [ARGS...] [-- ARGS...]: the options are zut's up to "--",
// every other argument after the file is the script's (sys.argv[1:]). zut debug runs it so too.
int runScriptFile(ZutHost& host, const char* sub_command, const QStringList& arguments, bool debug)
{
  QString file;
  QString answers;
  QString record;
  QStringList script_arguments;
  QVariantMap parameters;
  bool options = true;
  for (int i = 0; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    if (options && argument == QLatin1String(OPTIONS_END)) {
      options = false;
    } else if (options && (argument == QLatin1String("-p") || argument == QLatin1String("--parameter"))) {
      if (++i >= arguments.size())
        return usage(sub_command, QStringLiteral("%1 needs NAME=VALUE").arg(argument));
      QString name;
      QVariant value;
      if (!parseAssignment(arguments[i], name, value))
        return usage(sub_command, QStringLiteral("'%1' is not NAME=VALUE").arg(arguments[i]));
      parameters.insert(name, value);
    } else if (options && (argument == QLatin1String("--answers") || argument == QLatin1String("--record-answers"))) {
      if (++i >= arguments.size())
        return usage(sub_command, QStringLiteral("%1 needs a FILE.json").arg(argument));
      (argument == QLatin1String("--answers") ? answers : record) = arguments[i];
    } else if (file.isEmpty()) {
      file = argument;
    } else {
      script_arguments << argument;
    }
  }
  if (file.isEmpty())
    return usage(sub_command, QStringLiteral("no script file given"));
  if (!prepareDialogAnswers(host, sub_command, answers, record))
    return EXIT_FAILED;
  Vel::GApp::CommandParameters command_parameters;
  command_parameters.set(QStringLiteral("file"), QVariant::fromValue(Vel::Parse::File(file)));
  if (!parameters.isEmpty())
    command_parameters.set(QStringLiteral("parameters"), QVariant(parameters));
  if (!script_arguments.isEmpty())
    command_parameters.set(QStringLiteral("arguments"), QVariant(script_arguments));
  const auto run = [&] { return runCommand(QStringLiteral("sys.execute_script"), command_parameters, false, false); };
  const int status = debug ? runUnderDebugger(run) : run();
  reportUnusedAnswers(host);
  finishOpenDialogs(host);
  return status;
}

int runScript(ZutHost& host, const QStringList& arguments, bool)
{
  return runScriptFile(host, "run", arguments, false);
}

int debugScript(ZutHost& host, const QStringList& arguments, bool)
{
  return runScriptFile(host, "debug", arguments, true);
}

int execCode(ZutHost&, const QStringList& arguments, bool)
{
  if (arguments.size() != 1)
    return usage("exec", QStringLiteral("exactly one CODE argument is expected"));
  Vel::GApp::CommandParameters parameters;
  parameters.set(QStringLiteral("code"), QVariant(arguments.first()));
  return runCommand(QStringLiteral("sys.execute_python_code"), parameters, false, false);
}

int callCommand(ZutHost&, const QStringList& arguments, bool json)
{
  if (arguments.isEmpty())
    return usage("call", QStringLiteral("no command given"));
  if (arguments.contains(QLatin1String("--help")) || arguments.contains(QLatin1String("-h"))) {
    const Vel::GApp::Command* command = Vel::GApp::CommandContainer::getInstance().getCommand(arguments.first());
    if (!command)
      return usage("call", QStringLiteral("no command named '%1' (see 'zut commands')").arg(arguments.first()));
    printOut(QStringLiteral("Usage: zut call %1 [ARG=VALUE]...\n\n%2").arg(command->getName(), command->describe()));
    return EXIT_OK;
  }
  Vel::GApp::CommandParameters parameters;
  for (int i = 1; i < arguments.size(); ++i) {
    QString name;
    QVariant value;
    if (!parseAssignment(arguments[i], name, value))
      return usage("call", QStringLiteral("'%1' is not ARG=VALUE").arg(arguments[i]));
    parameters.set(name, value);
  }
  return runCommand(arguments.first(), parameters, true, json);
}

int listCommands(ZutHost&, const QStringList& arguments, bool json)
{
  if (!arguments.isEmpty())
    return usage("commands", QStringLiteral("unexpected argument '%1'").arg(arguments.first()));
  const auto& container = Vel::GApp::CommandContainer::getInstance();
  if (json) {
    QJsonArray list;
    for (const auto& entry : container) {
      QJsonArray arguments_json;
      for (const auto& argument : entry.second->getMetaInfo().getArgumentTypes())
        arguments_json.append(
            QJsonObject{{QStringLiteral("name"), argument.name},
                        {QStringLiteral("type"), Vel::GApp::CommandMetaInfo::typeCodeName(argument.type)},
                        {QStringLiteral("description"), argument.description}});
      list.append(QJsonObject{{QStringLiteral("name"), entry.first},
                              {QStringLiteral("title"), entry.second->getTitle()},
                              {QStringLiteral("kind"), entry.second->getCommandType()},
                              {QStringLiteral("arguments"), arguments_json}});
    }
    printJson(list);
    return EXIT_OK;
  }
  int width = 0;
  for (const auto& entry : container)
    width = std::max(width, int(entry.first.size()));
  QString text;
  for (const auto& entry : container)
    text += QStringLiteral("%1  %2  [%3]\n")
                .arg(entry.first.leftJustified(width), entry.second->getTitle(), entry.second->getCommandType());
  printOut(text);
  return EXIT_OK;
}

int config(ZutHost& host, const QStringList& arguments, bool json)
{
  Vel::Cfg& cfg = host.cfg();
  if (arguments.size() > 2)
    return usage("config", QStringLiteral("at most KEY and VALUE are expected"));
  if (arguments.size() == 2) {
    QString error;
    if (!cfg.setValueFromText(arguments[0], arguments[1], &error)) {
      printErr(QStringLiteral("zut config: %1: %2\n").arg(arguments[0], error));
      return EXIT_FAILED;
    }
    if (!cfg.save(&error)) {
      printErr(QStringLiteral("zut config: %1\n").arg(error));
      return EXIT_FAILED;
    }
  }

  std::vector<const Vel::CfgItem*> items;
  if (arguments.isEmpty()) {
    for (const Vel::CfgItem* item : cfg.items())
      if (item->type != Vel::CfgType::Node)
        items.push_back(item);
  } else {
    const Vel::CfgItem* item = cfg.item(arguments[0]);
    if (!item || item->type == Vel::CfgType::Node) {
      printErr(QStringLiteral("zut config: unknown configuration key '%1'\n").arg(arguments[0]));
      return EXIT_FAILED;
    }
    items.push_back(item);
  }

  if (json) {
    QJsonArray list;
    for (const Vel::CfgItem* item : items)
      list.append(QJsonObject{{QStringLiteral("key"), item->key},
                              {QStringLiteral("type"), Vel::CfgItem::typeName(item->type)},
                              {QStringLiteral("value"), toJson(item->value)},
                              {QStringLiteral("default"), toJson(item->default_value)},
                              {QStringLiteral("description"), item->description}});
    printJson(arguments.isEmpty() ? QJsonValue(list) : list.first());
    return EXIT_OK;
  }
  QString text;
  if (arguments.isEmpty()) {
    for (const Vel::CfgItem* item : items)
      text += QStringLiteral("%1 = %2\n").arg(item->key, Vel::Cfg::valueText(*item, item->value));
  } else {
    text = Vel::Cfg::valueText(*items.front(), items.front()->value) + QLatin1Char('\n');
  }
  printOut(text);
  return EXIT_OK;
}

int listScripts(ZutHost&, const QStringList& arguments, bool json)
{
  if (!arguments.isEmpty())
    return usage("scripts", QStringLiteral("unexpected argument '%1'").arg(arguments.first()));
  static const char* const LEVELS[] = {"system", "public", "user"};
  Vel::GScript::ScriptDatabase database(nullptr);
  Vel::ErrorLog log;
  database.initialize(false, &log);
  if (!log.isEmpty())
    printErr(QStringLiteral("zut scripts: %1\n").arg(log.getText()));
  const auto scripts = database.getAllScripts();
  if (json) {
    QJsonArray list;
    for (const Vel::GScript::Script* script : scripts)
      list.append(QJsonObject{{QStringLiteral("level"), QString::fromLatin1(LEVELS[script->getConfigLevel()])},
                              {QStringLiteral("qualified_name"), script->getQualifiedName()},
                              {QStringLiteral("command"), script->getCommandName()},
                              {QStringLiteral("display_name"), script->getDisplayName()},
                              {QStringLiteral("show_in_menu"), script->getShowInMenu()},
                              {QStringLiteral("path"), script->getPath()}});
    printJson(list);
    return EXIT_OK;
  }
  int width = 0;
  for (const Vel::GScript::Script* script : scripts)
    width = std::max(width, int(script->getQualifiedName().size()));
  QString text;
  for (const Vel::GScript::Script* script : scripts)
    text += QStringLiteral("%1  %2  %3\n")
                .arg(QString::fromLatin1(LEVELS[script->getConfigLevel()]).leftJustified(6),
                     script->getQualifiedName().leftJustified(width), script->getCommandName());
  printOut(text);
  return EXIT_OK;
}

bool readSource(const char* sub_command, const QString& path, QByteArray& text)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    printErr(QStringLiteral("zut %1: %2: %3\n").arg(QString::fromLatin1(sub_command), path, file.errorString()));
    return false;
  }
  text = file.readAll();
  return true;
}


// The module's own parser and highlighter, through the functions it exports for tools.
int analyze(ZutHost& host, const char* what, const QStringList& arguments, bool json)
{
  if (arguments.size() != 1)
    return usage(what, QStringLiteral("exactly one FILE.py is expected"));
  const ModuleTool<char* (*)(const char*, const char*, int)> analyze_text(host, "AnalyzePythonText");
  if (!analyze_text) {
    printErr(
        QStringLiteral("zut %1: the scripting module cannot analyse Python text\n").arg(QString::fromLatin1(what)));
    return EXIT_FAILED;
  }
  QByteArray text;
  if (!readSource(what, arguments.first(), text))
    return EXIT_FAILED;
  const std::optional<QString> result = analyze_text(what, text.constData(), json ? 1 : 0);
  if (!result)
    return EXIT_FAILED;
  printOut(*result);
  return EXIT_OK;
}

int blocks(ZutHost& host, const QStringList& arguments, bool json)
{
  return analyze(host, "blocks", arguments, json);
}

int highlight(ZutHost& host, const QStringList& arguments, bool json)
{
  return analyze(host, "highlight", arguments, json);
}

int editor(ZutHost& host, const QStringList& arguments, bool)
{
  QString file;
  QString screenshot;
  for (int i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == QLatin1String("--screenshot")) {
      if (++i >= arguments.size())
        return usage("editor", QStringLiteral("--screenshot needs a PNG file name"));
      screenshot = arguments[i];
    } else if (file.isEmpty()) {
      file = arguments[i];
    } else {
      return usage("editor", QStringLiteral("unexpected argument '%1'").arg(arguments[i]));
    }
  }
  if (screenshot.isEmpty() && !Vel::GApp::isInteractive())
    return usage("editor", QStringLiteral("there is no display (DISPLAY is not set)"));
  Vel::GApp::CommandParameters parameters;
  if (!file.isEmpty())
    parameters.set(QStringLiteral("file"), QVariant(QFileInfo(file).absoluteFilePath()));
  const int status = runCommand(QStringLiteral("sys.show_script_editor"), parameters, false, false);
  if (status != EXIT_OK)
    return status;
  if (!screenshot.isEmpty()) {
    const auto grab = reinterpret_cast<int (*)(const char*)>(host.guiFunction("ZutGuiGrabMainWindow"));
    if (!grab || grab(screenshot.toLocal8Bit().constData()) != 0) {
      printErr(QStringLiteral("zut editor: cannot write %1\n").arg(screenshot));
      return EXIT_FAILED;
    }
    return EXIT_OK;
  }
  const QuitOnSignals quit_on_signals;
  const int end = QCoreApplication::exec();
  // Ended by a signal: its status; the exit sequence that follows keeps what was not saved.
  return end == 0 ? EXIT_OK : end > 128 ? end : EXIT_FAILED;
}

// The module's own reader checks each definition; faults as FILE:LINE: message.
int lint(ZutHost& host, const QStringList& arguments, bool json)
{
  bool normalize = false;
  QStringList files;
  for (const QString& argument : arguments) {
    if (argument == QLatin1String("--normalize"))
      normalize = true;
    else
      files << argument;
  }
  if (files.isEmpty())
    return usage("lint", QStringLiteral("at least one FILE.xml is expected"));
  if (normalize && files.size() != 1)
    return usage("lint", QStringLiteral("--normalize takes exactly one FILE.xml"));
  const ModuleTool<char* (*)(const char*, int, int*)> check(host, "CheckDialogDefinition");
  if (!check) {
    printErr(QStringLiteral("zut lint: the scripting module cannot read dialog definitions\n"));
    return EXIT_FAILED;
  }

  bool any_fault = false;
  QString text;
  QJsonArray faults;
  for (const QString& file : files) {
    QByteArray source;
    if (!readSource("lint", file, source)) {
      any_fault = true;
      continue;
    }
    int faulty = 0;
    const std::optional<QString> result = check(source.constData(), normalize ? 1 : 0, &faulty);
    if (!result) {
      printErr(QStringLiteral("zut lint: %1: the scripting module failed to read it\n").arg(file));
      return EXIT_FAILED;
    }
    const QString& output = *result;
    if (!faulty) {
      text += output;
      continue;
    }
    any_fault = true;
    for (const QString& line : output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
      const int tab = line.indexOf(QLatin1Char('\t'));
      const int number = line.left(tab).toInt();
      const QString message = line.mid(tab + 1);
      faults.append(QJsonObject{
          {QStringLiteral("file"), file}, {QStringLiteral("line"), number}, {QStringLiteral("message"), message}});
      text += number < 0 ? QStringLiteral("%1: %2\n").arg(file, message)
                         : QStringLiteral("%1:%2: %3\n").arg(file).arg(number).arg(message);
    }
  }
  if (json && !normalize)
    printOut(QString::fromUtf8(QJsonDocument(faults).toJson()));
  else if (any_fault)
    printErr(text);
  else
    printOut(text);
  return any_fault ? EXIT_FAILED : EXIT_OK;
}

// Executes a dialog definition: shown to a person, answered from a file, or pictured and listed.
int dialog(ZutHost& host, const QStringList& arguments, bool json)
{
  QString file;
  QString answers;
  QString record;
  QString screenshot;
  QString template_name;
  bool dump = false;
  bool templates_wanted = false;
  for (int i = 0; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    const auto value = [&](QString& target) {
      if (++i >= arguments.size())
        return false;
      target = arguments[i];
      return true;
    };
    if (argument == QLatin1String("--answers")) {
      if (!value(answers))
        return usage("dialog", QStringLiteral("--answers needs a FILE.json"));
    } else if (argument == QLatin1String("--record-answers")) {
      if (!value(record))
        return usage("dialog", QStringLiteral("--record-answers needs a FILE.json"));
    } else if (argument == QLatin1String("--screenshot")) {
      if (!value(screenshot))
        return usage("dialog", QStringLiteral("--screenshot needs a FILE.png"));
    } else if (argument == QLatin1String("--dump")) {
      dump = true;
    } else if (argument == QLatin1String("--templates")) {
      templates_wanted = true;
    } else if (argument == QLatin1String("--template")) {
      if (!value(template_name))
        return usage("dialog", QStringLiteral("--template needs a NAME (see --templates)"));
    } else if (file.isEmpty() && !argument.startsWith(QLatin1Char('-'))) {
      file = argument;
    } else {
      return usage("dialog", QStringLiteral("unexpected argument '%1'").arg(argument));
    }
  }
  const ModuleTool<char* (*)(const char*, int*)> templates(host, "DialogTemplates");
  if (templates_wanted) {
    int faulty = 0;
    const std::optional<QString> list = templates ? templates(nullptr, &faulty) : std::nullopt;
    if (!list || faulty) {
      printErr(list ? *list + QLatin1Char('\n') : QStringLiteral("zut dialog: the scripting module has no templates\n"));
      return EXIT_FAILED;
    }
    QJsonArray entries;
    QString text;
    for (const QString& line : list->split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
      const QStringList fields = line.split(QLatin1Char('\t'));
      entries.append(QJsonObject{{QStringLiteral("name"), fields.value(0)},
                                 {QStringLiteral("origin"), fields.value(1)},
                                 {QStringLiteral("path"), fields.value(2)}});
      text += QStringLiteral("%1  %2\n").arg(fields.value(0), fields.value(1));
    }
    if (json)
      printJson(entries);
    else
      printOut(text);
    return EXIT_OK;
  }
  if (file.isEmpty() == template_name.isEmpty())
    return usage("dialog", QStringLiteral("one FILE.xml or --template NAME is expected"));
  QByteArray content;
  if (!template_name.isEmpty()) {
    int faulty = 0;
    const std::optional<QString> text =
        templates ? templates(template_name.toUtf8().constData(), &faulty) : std::nullopt;
    if (!text || faulty) {
      printErr(text ? *text + QLatin1Char('\n') : QStringLiteral("zut dialog: the scripting module has no templates\n"));
      return EXIT_FAILED;
    }
    content = text->toUtf8();
    file = template_name;
  } else if (!readSource("dialog", file, content)) {
    return EXIT_FAILED;
  }

  if (dump || !screenshot.isEmpty()) {
    const ModuleTool<char* (*)(const char*, const char*, int, int*)> describe(host, "DescribeDialog");
    int faulty = 0;
    const std::optional<QString> result =
        describe ? describe(content.constData(), screenshot.toLocal8Bit().constData(), json ? 1 : 0, &faulty)
                 : std::nullopt;
    if (!result) {
      printErr(QStringLiteral("zut dialog: the scripting module cannot build dialogs\n"));
      return EXIT_FAILED;
    }
    if (faulty) {
      printErr(QStringLiteral("%1:%2\n").arg(file, *result));
      return EXIT_FAILED;
    }
    if (dump)
      printOut(*result);
    return EXIT_OK;
  }

  if (!prepareDialogAnswers(host, "dialog", answers, record))
    return EXIT_FAILED;
  Vel::GApp::Command* command =
      Vel::GApp::CommandContainer::getInstance().getCommand(QStringLiteral("sys.execute_user_defined_dialog"));
  try {
    Vel::GApp::CommandParameters parameters;
    parameters.set(QStringLiteral("content"), QString::fromUtf8(content));
    const Vel::ScriptObjectPtr answer = command->run(parameters, false).value<Vel::ScriptObjectPtr>();
    reportUnusedAnswers(host);
    bool found = false;
    QVariantMap values;
    for (const QString& name : answer->getAttributeNames())
      if (name != QLatin1String("result"))
        values.insert(name, answer->getAttribute(name, &found));
    const QVariant result = answer->getAttribute(QStringLiteral("result"), &found);
    if (json) {
      printJson(QJsonObject{{QStringLiteral("result"), toJson(result)}, {QStringLiteral("values"), toJson(values)}});
    } else {
      QString text = QStringLiteral("result = %1\n").arg(Vel::GScript::PythonInterpreter::repr(result));
      for (auto value = values.begin(); value != values.end(); ++value)
        text += QStringLiteral("%1 = %2\n").arg(value.key(), Vel::GScript::PythonInterpreter::repr(value.value()));
      printOut(text);
    }
    return EXIT_OK;
  } catch (const Vel::GApp::CommandError& error) {
    reportUnusedAnswers(host);
    printErr(QStringLiteral("%1: %2\n").arg(file, error.getText()));
    return EXIT_FAILED;
  }
}

void printOutUtf8(const char* line)
{
  printOut(QString::fromUtf8(line));
}
void printErrUtf8(const char* line)
{
  printErr(QString::fromUtf8(line));
}

// The module's updater over the named files or the whole script database.
int updateScripts(ZutHost& host, const QStringList& arguments, bool)
{
  bool dry_run = false;
  QList<QByteArray> files;
  for (const QString& argument : arguments) {
    if (argument == QLatin1String("--dry-run"))
      dry_run = true;
    else if (argument.startsWith(QLatin1Char('-')))
      return usage("update-scripts", QStringLiteral("unknown option '%1'").arg(argument));
    else
      files << argument.toLocal8Bit();
  }
  using Update = int (*)(const char* const*, int, int, void (*)(const char*), void (*)(const char*));
  const auto update = reinterpret_cast<Update>(host.module()->resolve("UpdateScripts"));
  if (!update) {
    printErr(QStringLiteral("zut update-scripts: the scripting module cannot update scripts\n"));
    return EXIT_FAILED;
  }
  std::vector<const char*> names;
  for (const QByteArray& file : files)
    names.push_back(file.constData());
  const int status = update(names.data(), int(names.size()), dry_run ? 1 : 0, printOutUtf8, printErrUtf8);
  return status == 0 ? EXIT_OK : EXIT_FAILED;
}

const SubCommand SUB_COMMANDS[] = {
    {"run", "FILE.py [-p NAME=VALUE]... [--answers A.json] [--record-answers A.json] [ARGS...] [-- ARGS...]",
     "Runs a Python script file through the command sys.execute_script, as python3 runs it: as the\n"
     "module __main__, with sys.argv the file and the ARGS, and the file's folder first on\n"
     "sys.path. Each -p passes a parameter, visible to the script in the dictionary PARAMETERS;\n"
     "VALUE is read as a Python literal, or taken as text when it is none. Arguments after \"--\"\n"
     "go to the script even when they look like options. --answers (or ZUT_DIALOG_ANSWERS) answers\n"
     "the script's dialogs from a file where no person can; --record-answers writes a person's\n"
     "answers to a file, ready to replay.",
     true, runScript, false, true},
    {"debug", "FILE.py [-p NAME=VALUE]... [--answers A.json] [ARGS...] [-- ARGS...]", DEBUG_HELP, true, debugScript,
     false, true},
    {"exec", "CODE", "Runs Python text through the command sys.execute_python_code.", true, execCode},
    {"call", "COMMAND [ARG=VALUE]... [--json]",
     "Runs any registered command and prints its result. VALUE is read as a Python literal\n"
     "(3, True, [1, 2], {'a': 1}), or taken as text when it is none. 'zut call COMMAND --help'\n"
     "describes a command and its arguments.",
     true, callCommand, true},
    {"commands", "[--json]", "Lists the registered commands: name, title and kind.", true, listCommands},
    {"editor", "[FILE.py] [--screenshot PNG]",
     "Opens the script editor on a file (created when saved), or on the script database's current\n"
     "script. F5 runs the text, Ctrl+S saves. --screenshot writes a picture of the editor and\n"
     "exits (works without a display).",
     true, editor},
    {"blocks", "FILE.py [--json]",
     "Prints the foldable blocks of a Python file as the editor finds them: first and last line,\n"
     "0-based, one block a line.",
     true, blocks},
    {"highlight", "FILE.py [--json]",
     "Prints the colour runs of a Python file as the editor colours them: line, start, length and\n"
     "colour role (0 comment, 2 string, 3 special method, 4 keyword, 5 builtin, 6 interactive\n"
     "command or database script, 7 script command).",
     true, highlight},
    {"scripts", "[--json]",
     "Lists the script database: level (system, public, user), qualified name and the command that\n"
     "runs the script. User scripts live in $XDG_DATA_HOME/zut/scripts (~/.local/share/zut/scripts),\n"
     "public ones in $ZUT_PUBLIC_SCRIPTS.",
     false, listScripts},
    {"lint", "FILE.xml... [--json] | --normalize FILE.xml",
     "Reads user-defined dialog definitions as the dialogs do and checks every element; prints\n"
     "each fault as FILE:LINE: message and exits 1 if there is any. --normalize prints the\n"
     "definition as it is written now (older words converted).",
     true, lint},
    {"dialog", "FILE.xml|--template NAME [--answers A.json] [--record-answers A.json] [--json] [--screenshot PNG] [--dump] | --templates",
     "Executes a user-defined dialog and prints its result and values. Without a display it needs\n"
     "answers (--answers or ZUT_DIALOG_ANSWERS), or it fails at once. --screenshot writes a picture\n"
     "of the dialog as it first appears; --dump lists its elements (row, column, spans, type, name,\n"
     "value, enabled). --templates lists the dialog templates to start from; --template NAME uses one\n"
     "instead of a file.",
     true, dialog},
    {"update-scripts", "[--dry-run] [FILE.py...]",
     "Brings scripts up to date with the commands: calls of a command's older names, and older\n"
     "argument names, are rewritten to the current ones (commands and database scripts say which\n"
     "names they replace). Without files, every script of the database's public and user levels.\n"
     "Prints each change as FILE:LINE: OLD -> NEW and writes it unless --dry-run; the original is\n"
     "first kept as FILE.py.bak (never replacing an earlier backup) while the configuration item\n"
     "MSysScript/UpdateScriptDialog/Backup is set. A script that cannot be read or written is\n"
     "reported with its error code and left as it was; the exit status is then 1.",
     true, updateScripts},
    {"config", "[KEY [VALUE]] [--json]",
     "Lists the configuration items, prints one, or sets one. A value is checked against the\n"
     "item's type and range and saved at once.",
     true, config},
};

}  // namespace

void printOut(const QString& text)
{
  print(stdout, text);
}
void printErr(const QString& text)
{
  print(stderr, text);
}

const SubCommand* subCommands(int& count)
{
  count = int(sizeof(SUB_COMMANDS) / sizeof(SUB_COMMANDS[0]));
  return SUB_COMMANDS;
}

const SubCommand* findSubCommand(const QString& name)
{
  for (const SubCommand& sub_command : SUB_COMMANDS)
    if (name == QLatin1String(sub_command.name))
      return &sub_command;
  return nullptr;
}
