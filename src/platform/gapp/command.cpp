#include "gapp/command.h"

#include <algorithm>
#include <iterator>

#include "core/color.h"
#include "core/error_message_container.h"
#include "gapp/command_container.h"

namespace Vel::GApp {

const char* const ERR_COMMAND_FAILED = "GAppErr-0001";
const char* const ERR_INVALID_ARGUMENT = "GAppErr-0002";

namespace {

void registerFrameworkErrors()
{
  static const bool done = [] {
    ErrorMessageContainer::registerError(ERR_COMMAND_FAILED, QStringLiteral("Command failed"));
    ErrorMessageContainer::registerError(ERR_INVALID_ARGUMENT, QStringLiteral("Invalid command argument"));
    return true;
  }();
  (void)done;
}

}  // namespace

CommandError::CommandError(const QString& code, const ErrorLog& log)
    : _code(code), _log(log), _what(getText().toStdString())
{}

CommandError::CommandError(const QString& message)
    : CommandError(QString::fromLatin1(ERR_COMMAND_FAILED), ErrorLog(message))
{
  registerFrameworkErrors();
}

QString CommandError::getMessage() const
{
  registerFrameworkErrors();
  return ErrorMessageContainer::getMessage(_code);
}

QString CommandError::getText() const
{
  QString text = _code;
  const QString message = getMessage();
  if (!message.isEmpty())
    text += QStringLiteral(": ") + message;
  if (!_log.isEmpty())
    text += QLatin1Char('\n') + _log.getText();
  return text;
}

// ---------------------------------------------------------------------------------------------

Trait CommandParameters::get(const QString& name) const
{
  const auto found = _values.find(name);
  return found == _values.end() ? Trait() : found->second;
}

QString CommandParameters::generateReadableTypeName(int type_id)
{
  if (type_id == Trait::fileTypeId())
    return QStringLiteral("file");
  if (type_id == qMetaTypeId<Vel::Color>())
    return QStringLiteral("color");
  switch (type_id) {
    case QMetaType::UnknownType: return QStringLiteral("none");
    case QMetaType::Bool: return QStringLiteral("boolean");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return QStringLiteral("integer");
    case QMetaType::Double: return QStringLiteral("float");
    case QMetaType::QString: return QStringLiteral("string");
    case QMetaType::QStringList: return QStringLiteral("list of strings");
    case QMetaType::QVariantList: return QStringLiteral("list");
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash: return QStringLiteral("parameter map");
    default: {
      const char* name = QMetaType(type_id).name();
      return name ? QString::fromLatin1(name) : QStringLiteral("unknown");
    }
  }
}

// ---------------------------------------------------------------------------------------------

QString CommandMetaInfo::typeCodeName(int code)
{
  switch (code) {
    case TYPE_BOOLEAN: return QStringLiteral("boolean");
    case TYPE_INTEGER: return QStringLiteral("integer");
    case TYPE_DOUBLE: return QStringLiteral("float");
    case TYPE_STRING: return QStringLiteral("string");
    case TYPE_FILE: return QStringLiteral("file");
    case TYPE_LIST: return QStringLiteral("list");
    case TYPE_DICTIONARY: return QStringLiteral("dictionary");
    case TYPE_PARAMETER_MAP: return QStringLiteral("parameter map");
    case TYPE_CONFIG_LEVEL: return QStringLiteral("configuration level");
    case TYPE_OBJECT: return QStringLiteral("object");
    default: return QStringLiteral("any");
  }
}

// The level names, in level order (as the script database numbers them).
const char* const CONFIG_LEVEL_NAMES[] = {"system", "public", "user"};

QString CommandMetaInfo::typeCodeDescription(int code)
{
  if (code != TYPE_CONFIG_LEVEL)
    return typeCodeName(code);
  return typeCodeName(code) + QStringLiteral(": 0, 1, 2 or %1, %2, %3")
                                  .arg(QLatin1String(CONFIG_LEVEL_NAMES[0]), QLatin1String(CONFIG_LEVEL_NAMES[1]),
                                       QLatin1String(CONFIG_LEVEL_NAMES[2]));
}

bool CommandMetaInfo::readConfigLevel(const QVariant& value, int& level)
{
  const int count = int(std::size(CONFIG_LEVEL_NAMES));
  if (value.typeId() == QMetaType::QString) {
    for (int i = 0; i < count; ++i)
      if (value.toString() == QLatin1String(CONFIG_LEVEL_NAMES[i])) {
        level = i;
        return true;
      }
    return false;
  }
  QVariant number;
  if (!Trait(value).convertTo(StageIdentifier::NO_STAGE, QMetaType::Int, number) || number.toInt() < 0 ||
      number.toInt() >= count)
    return false;
  level = number.toInt();
  return true;
}

void CommandMetaInfo::setArgumentTypes(const ArgumentTypes& arguments)
{
  _values[KEY_ARGUMENT_TYPES] = QVariant::fromValue(arguments);
}

CommandMetaInfo::ArgumentTypes CommandMetaInfo::getArgumentTypes() const
{
  // Read in place: every command call asks, and a copy of the variant copies the list twice.
  const auto found = _values.constFind(KEY_ARGUMENT_TYPES);
  return found == _values.cend() ? ArgumentTypes() : found->value<ArgumentTypes>();
}

void CommandMetaInfo::setFlags(bool needs_main_window, bool undoable, bool scriptable)
{
  _needs_main_window = needs_main_window;
  _undoable = undoable;
  _scriptable = scriptable;
}

// ---------------------------------------------------------------------------------------------

Command::Command(const QString& name) : _name(name)
{
  CommandContainer::getInstance().registerCommand(this);
}

Command::~Command()
{
  CommandContainer::getInstance().unregisterCommand(this);
}

bool Command::prepareInteractive(CommandParameters&)
{
  return true;
}

QString Command::describe() const
{
  QString text = getTitle() + QLatin1Char('\n');
  const CommandMetaInfo::ArgumentTypes arguments = _meta_info.getArgumentTypes();
  if (arguments.isEmpty())
    return text + QStringLiteral("\nTakes no arguments.\n");
  text += QStringLiteral("\nArguments:\n");
  for (const auto& argument : arguments) {
    QString type = CommandMetaInfo::typeCodeDescription(argument.type);
    if (argument.required)
      type += QStringLiteral(", required");
    text += QStringLiteral("  %1 (%2)\n      %3\n").arg(argument.name, type, argument.description);
  }
  return text;
}

QString Command::checkArgumentNames(const CommandParameters& parameters) const
{
  const CommandMetaInfo::ArgumentTypes arguments = _meta_info.getArgumentTypes();
  QStringList unknown;
  for (const auto& entry : parameters.values())
    if (std::none_of(arguments.begin(), arguments.end(),
                     [&](const auto& argument) { return argument.name == entry.first; }))
      unknown << QLatin1Char('\'') + entry.first + QLatin1Char('\'');
  if (unknown.isEmpty())
    return QString();
  QStringList known;
  for (const auto& argument : arguments)
    known << argument.name;
  const QString what =
      unknown.size() == 1 ? QStringLiteral("%1 has no argument %2") : QStringLiteral("%1 has no arguments %2");
  const QString text = what.arg(_name, unknown.join(QStringLiteral(", ")));
  if (known.isEmpty())
    return text + QStringLiteral("; it takes none");
  return text + QStringLiteral("; its arguments are ") + known.join(QStringLiteral(", "));
}

namespace {
CommandRecorder* command_recorder = nullptr;
int run_depth = 0;  // runs of Command::run on the stack
}  // namespace

CommandRecorder::~CommandRecorder() = default;

void Command::setRecorder(CommandRecorder* recorder)
{
  command_recorder = recorder;
}

CommandRecorder* Command::getRecorder()
{
  return command_recorder;
}

QVariant Command::run(const CommandParameters& parameters, bool interactive)
{
  const QString unknown = checkArgumentNames(parameters);
  if (!unknown.isEmpty())
    throw CommandError(QString::fromLatin1(ERR_INVALID_ARGUMENT), ErrorLog(unknown));
  struct Depth
  {
    Depth() { ++run_depth; }
    ~Depth() { --run_depth; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;
  } depth;
  CommandRecorder* recorder = interactive && run_depth == 1 ? command_recorder : nullptr;
  _result = QVariant();
  if (interactive) {
    CommandParameters completed = parameters;
    if (!prepareInteractive(completed))
      return QVariant();
    if (recorder)
      recorder->commandStarted(*this);
    execute(completed);
    // The recorder may have gone while the command ran (the editor closed meanwhile).
    if (recorder && recorder == command_recorder)
      recorder->commandRun(*this, completed);
  } else {
    execute(parameters);
  }
  return _result;
}

}  // namespace Vel::GApp
