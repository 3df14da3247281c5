#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <exception>
#include <map>
#include <string>

#include "core/error_log.h"
#include "core/vel_export.h"
#include "gapp/trait.h"

namespace Vel::GApp {

// Every command that runs a script of the script database is named with this prefix.
constexpr const char* SCRIPT_COMMAND_PREFIX = "userscript.";

// Host error codes of the command framework itself.
VEL_EXPORT extern const char* const ERR_COMMAND_FAILED;    // "GAppErr-0001"
VEL_EXPORT extern const char* const ERR_INVALID_ARGUMENT;  // "GAppErr-0002"

// A user's or a script's fault while running a command: an error code whose registered message
// the user sees, and the detail lines of the log.
class VEL_EXPORT CommandError : public std::exception
{
public:
  CommandError(const QString& code, const ErrorLog& log);
  // A failure without a code of its own: the framework's code, the text as the log.
  explicit CommandError(const QString& message);

  const QString& getCode() const { return _code; }
  const ErrorLog& getLog() const { return _log; }
  // The message registered for the code.
  QString getMessage() const;
  // "CODE: message" followed by the log lines.
  QString getText() const;
  const char* what() const noexcept override { return _what.c_str(); }

private:
  QString _code;
  ErrorLog _log;
  std::string _what;
};

// The typed arguments of one command call, by name.
class VEL_EXPORT CommandParameters
{
public:
  bool contains(const QString& name) const { return _values.count(name) != 0; }
  Trait get(const QString& name) const;
  void set(const QString& name, const Trait& value) { _values[name] = value; }
  void set(const QString& name, const QVariant& value) { _values[name] = Trait(value); }
  void remove(const QString& name) { _values.erase(name); }
  const std::map<QString, Trait>& values() const { return _values; }

  // The name a user knows a meta-type by ("integer", "text", "parameter map").
  static QString generateReadableTypeName(int type_id);

private:
  std::map<QString, Trait> _values;
};

// What the framework knows of a command beyond its name: flags and keyed values, the argument
// table among them.
class VEL_EXPORT CommandMetaInfo
{
public:
  enum TypeCode
  {
    TYPE_ANY = 0,
    TYPE_BOOLEAN = 1,
    TYPE_INTEGER = 2,
    TYPE_DOUBLE = 3,
    TYPE_STRING = 4,
    TYPE_FILE = 5,
    TYPE_LIST = 6,
    TYPE_DICTIONARY = 7,
    TYPE_PARAMETER_MAP = 8,
    TYPE_CONFIG_LEVEL = 9,
    TYPE_OBJECT = 10
  };
  static QString typeCodeName(int code);
  // The type's name followed by the words it takes, if it takes fixed words
  // ("configuration level: 0, 1, 2 or system, public, user").
  static QString typeCodeDescription(int code);
  // A configuration level given as its number or its name; false for anything else.
  static bool readConfigLevel(const QVariant& value, int& level);

  struct Argument
  {
    QString name;
    int type = TYPE_ANY;
    QString description;
    // A run without the argument fails (an interactive run may ask for it first).
    bool required = false;
    // What a run without the argument uses; invalid when the command decides.
    QVariant default_value = QVariant();
  };
  using ArgumentTypes = QList<Argument>;

  // Key under which the argument table is kept.
  static constexpr int KEY_ARGUMENT_TYPES = 700;
  // Older names of the command (QStringList): scripts that call them are brought up to date.
  static constexpr int KEY_REPLACES = 701;
  // Older argument names, each with the name that replaced it (QVariantMap).
  static constexpr int KEY_RENAMED_ARGUMENTS = 702;

  void setValue(int key, const QVariant& value) { _values[key] = value; }
  QVariant getValue(int key) const { return _values.value(key); }

  void setArgumentTypes(const ArgumentTypes& arguments);
  ArgumentTypes getArgumentTypes() const;

  void setReplaces(const QStringList& older_names) { setValue(KEY_REPLACES, older_names); }
  QStringList getReplaces() const { return getValue(KEY_REPLACES).toStringList(); }
  void setRenamedArguments(const QVariantMap& older_to_newer) { setValue(KEY_RENAMED_ARGUMENTS, older_to_newer); }
  QVariantMap getRenamedArguments() const { return getValue(KEY_RENAMED_ARGUMENTS).toMap(); }

  // needs_main_window: only runs with the GUI up; undoable: the run can be undone; scriptable:
  // scripts may call the command through zut.script.
  void setFlags(bool needs_main_window, bool undoable, bool scriptable);
  bool needsMainWindow() const { return _needs_main_window; }
  bool isUndoable() const { return _undoable; }
  bool isScriptable() const { return _scriptable; }

private:
  QMap<int, QVariant> _values;
  bool _needs_main_window = false;
  bool _undoable = false;
  bool _scriptable = true;
};

class Command;

// Told of the commands a person runs: the outermost interactive runs (from a menu, a dialog of
// the application, zut.interactive), not the runs those commands or scripts make themselves.
class VEL_EXPORT CommandRecorder
{
public:
  virtual ~CommandRecorder();
  virtual void commandStarted(const Command& command) = 0;
  // The run succeeded with these arguments (as completed by the person).
  virtual void commandRun(const Command& command, const CommandParameters& parameters) = 0;
};

// An application command. It registers itself with the command container when constructed;
// the container owns it from then on, and deleting it withdraws it.
class VEL_EXPORT Command
{
public:
  explicit Command(const QString& name);
  virtual ~Command();
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  const QString& getName() const { return _name; }
  virtual QString getTitle() const { return _name; }
  virtual QString getMenuTitle() const { return getTitle(); }
  // The kind of command, for listings and for code that treats kinds differently.
  virtual QString getCommandType() const { return QStringLiteral("cmd_execute"); }

  // How scripts spell the command: 0 only as zut.script.NAME, 1 only as zut.interactive.NAME,
  // 2 and 3 both (3: the interactive form is the usual one).
  virtual int getScriptKind() const { return 2; }

  // The title and each argument with its type and description, as help shows them.
  QString describe() const;
  // What is wrong with the names of `parameters`: each must be an argument of the command.
  // Empty when nothing is; otherwise the unknown names and the command's arguments.
  QString checkArgumentNames(const CommandParameters& parameters) const;

  // Runs the command; a user's or script's fault is thrown as CommandError.
  virtual void execute(const CommandParameters& parameters) = 0;
  // Lets the user complete the arguments before an interactive run (file dialogs and the
  // like). False when the user cancelled.
  virtual bool prepareInteractive(CommandParameters& parameters);

  // One call as the framework makes it: refuses arguments the command does not declare (with
  // ERR_INVALID_ARGUMENT), clears the result, optionally asks the user, runs. Returns the result
  // (invalid when there is none or the user cancelled).
  QVariant run(const CommandParameters& parameters, bool interactive);

  // One recorder at a time; null for none.
  static void setRecorder(CommandRecorder* recorder);
  static CommandRecorder* getRecorder();

  CommandMetaInfo& getMetaInfo() { return _meta_info; }
  const CommandMetaInfo& getMetaInfo() const { return _meta_info; }

  void setResult(const QVariant& result) { _result = result; }
  const QVariant& getResult() const { return _result; }

private:
  QString _name;
  CommandMetaInfo _meta_info;
  QVariant _result;
};

// A named group of commands that a tool bar shows together (the scripts of one folder, say).
// Running it yields the names of its commands.
class VEL_EXPORT ToolBarGroupCommand : public Command
{
public:
  explicit ToolBarGroupCommand(const QString& name) : Command(name) {}
  QString getCommandType() const override { return QStringLiteral("cmd_toolbar_group"); }
  void execute(const CommandParameters&) override { setResult(_commands); }

  void setCommands(const QStringList& commands) { _commands = commands; }
  const QStringList& getCommands() const { return _commands; }

private:
  QStringList _commands;
};

}  // namespace Vel::GApp

Q_DECLARE_METATYPE(Vel::GApp::CommandMetaInfo::ArgumentTypes)
