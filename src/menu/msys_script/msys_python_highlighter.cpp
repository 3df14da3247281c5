#include "menu/msys_script/msys_python_highlighter.h"

#include <QDebug>

#include <algorithm>
#include <vector>

#include "core/prog_error.h"
#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gscript/parser.h"
#include "gscript/script_database.h"

namespace Vel::MSysScript {
namespace {

std::vector<PythonHighlighter*>& instances()
{
  static std::vector<PythonHighlighter*> list;
  return list;
}

// The older Python vocabulary on purpose: "print" and "exec" are keywords, "None" is plain.
const char* const KEYWORDS[] = {"and",    "assert", "break", "class",   "continue", "def",  "del",    "elif",
                                "else",   "except", "exec",  "finally", "for",      "from", "global", "if",
                                "import", "in",     "is",    "lambda",  "not",      "or",   "pass",   "print",
                                "raise",  "return", "try",   "while",   "yield"};
const char* const SPECIAL_METHODS[] = {"__new__",  "__init__", "__del__",     "__repr__",   "__str__", "__lt__",
                                       "__le__",   "__eq__",   "__ne__",      "__ge__",     "__gt__",  "__cmp__",
                                       "__rcmp__", "__hash__", "__nonzero__", "__unicode__"};
const char* const BUILTINS[] = {"self", "int", "bool", "long", "float", "list", "True", "False"};

template <size_t N>
QSet<QString> wordSet(const char* const (&words)[N])
{
  QSet<QString> set;
  for (const char* word : words)
    set.insert(QString::fromLatin1(word));
  return set;
}

bool startsWord(QChar c)
{
  return c.isLetter() || c == QLatin1Char('_');
}
bool continuesWord(QChar c)
{
  return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('.');
}

}  // namespace

PythonHighlighter::PythonHighlighter(QObject* parent, const GScript::ScriptDatabase* database)
    : GEdit::TextHighlighter(parent),
      _keywords(wordSet(KEYWORDS)),
      _special_methods(wordSet(SPECIAL_METHODS)),
      _builtins(wordSet(BUILTINS))
{
  instances().push_back(this);
  updateDatabase(database);
  updateConfiguration();
  connect(GApp::DataChangeNotifier::getInstance(), &GApp::DataChangeNotifier::signalDataChanged, this,
          &PythonHighlighter::slotDataChanged);
}

PythonHighlighter::~PythonHighlighter()
{
  instances().erase(std::remove(instances().begin(), instances().end(), this), instances().end());
}

const QColor& PythonHighlighter::getColor(ColorRole_t role) const
{
  const auto found = _colors.find(role);
  if (found == _colors.end())
    vel_assert("Color role map corrupted", __func__, __FILE__, __LINE__);
  return found->second;
}

void PythonHighlighter::setColor(ColorRole_t role, const QColor& color)
{
  _colors[role] = color;
}

void PythonHighlighter::updateConfiguration()
{
  _colors = {{ROLE_COMMENT, QColor(180, 56, 56)},
             {ROLE_TEXT, QColor(0, 0, 0)},
             {ROLE_STRING, QColor(36, 120, 120)},
             {ROLE_SPECIAL_METHOD, QColor(56, 56, 180)},
             {ROLE_KEYWORD, QColor(56, 56, 180)},
             {ROLE_BUILTIN, QColor(112, 8, 112)},
             {ROLE_INTERACTIVE_COMMAND, QColor(140, 36, 140)},
             {ROLE_SCRIPT_COMMAND, QColor(232, 93, 1)},
             {ROLE_EDITOR_MARK, QColor(180, 56, 56)},
             {ROLE_EDITOR_BACKGROUND, QColor(255, 255, 255)}};
  Q_EMIT signalUpdate(0);
}

void PythonHighlighter::slotDataChanged(GApp::DataChangedReason_t reason)
{
  if (reason != GApp::DATA_CHANGED_CONFIGURATION)
    return;
  if (qEnvironmentVariableIsSet("ZUT_DEBUG"))
    qDebug() << "MSysScript::PythonHighlighter::dataChanged start";
  updateConfiguration();
  if (qEnvironmentVariableIsSet("ZUT_DEBUG"))
    qDebug() << "MSysScript::PythonHighlighter::dataChanged end";
}

void PythonHighlighter::updateDatabase(const GScript::ScriptDatabase* database)
{
  _interactive_commands.clear();
  _script_commands.clear();
  _database_scripts.clear();
  const QString script = QString::fromLatin1(GScript::Parser::SCRIPT_PREFIX);
  const QString interactive = QString::fromLatin1(GScript::Parser::INTERACTIVE_PREFIX);
  for (const auto& entry : GApp::CommandContainer::getInstance()) {
    const int kind = entry.second->getScriptKind();
    if (kind == 0 || kind == 2 || kind == 3)
      _script_commands.insert(QStringLiteral("%1.%2").arg(script, entry.first));
    if (kind == 1 || kind == 2 || kind == 3)
      _interactive_commands.insert(QStringLiteral("%1.%2").arg(interactive, entry.first));
  }
  if (database)
    for (const GScript::Script* item : database->getAllScripts())
      _database_scripts.insert(QStringLiteral("%1.%2").arg(script, item->getCommandName()));
  Q_EMIT signalUpdate(0);
}

void PythonHighlighter::update(const GScript::ScriptDatabase* database)
{
  for (PythonHighlighter* highlighter : instances())
    highlighter->updateDatabase(database);
}

void PythonHighlighter::colourWord(const QString& word, int start)
{
  if (_keywords.contains(word))
    setFormat(start, int(word.size()), getColor(ROLE_KEYWORD), STYLE_BOLD, ROLE_KEYWORD);
  else if (_special_methods.contains(word))
    setFormat(start, int(word.size()), getColor(ROLE_SPECIAL_METHOD), STYLE_NORMAL, ROLE_SPECIAL_METHOD);
  else if (_builtins.contains(word))
    setFormat(start, int(word.size()), getColor(ROLE_BUILTIN), STYLE_NORMAL, ROLE_BUILTIN);
  else if (_interactive_commands.contains(word) || _database_scripts.contains(word))
    setFormat(start, int(word.size()), getColor(ROLE_INTERACTIVE_COMMAND), STYLE_NORMAL, ROLE_INTERACTIVE_COMMAND);
  else if (_script_commands.contains(word))
    setFormat(start, int(word.size()), getColor(ROLE_SCRIPT_COMMAND), STYLE_NORMAL, ROLE_SCRIPT_COMMAND);
}

int PythonHighlighter::highlightLine(unsigned int, const QString& text, int state)
{
  const int length = int(text.size());
  int i = 0;
  int string_start = 0;  // where the string that is open began on this line
  while (i < length) {
    const QChar c = text[i];
    switch (state) {
      case STATE_PLAIN:
        if (startsWord(c)) {
          const int start = i;
          while (i < length && continuesWord(text[i]))
            ++i;
          colourWord(text.mid(start, i - start), start);
          continue;
        }
        if (c == QLatin1Char('#')) {
          setFormat(i, length - i, getColor(ROLE_COMMENT), STYLE_NORMAL, ROLE_COMMENT);
          return STATE_PLAIN;
        }
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
          string_start = i;
          const bool triple = i + 2 < length && text[i + 1] == c && text[i + 2] == c;
          if (triple) {
            state = c == QLatin1Char('\'') ? STATE_TRIPLE_SINGLE : STATE_TRIPLE_DOUBLE;
            i += 3;
          } else {
            state = c == QLatin1Char('\'') ? STATE_SINGLE : STATE_DOUBLE;
            i += 1;
          }
          continue;
        }
        ++i;
        break;
      case STATE_SINGLE:
      case STATE_DOUBLE: {
        const QChar quote = state == STATE_SINGLE ? QLatin1Char('\'') : QLatin1Char('"');
        if (c == QLatin1Char('\\')) {
          i += 2;
        } else if (c == quote) {
          ++i;
          setFormat(string_start, i - string_start, getColor(ROLE_STRING), STYLE_NORMAL, ROLE_STRING);
          state = STATE_PLAIN;
        } else {
          ++i;
        }
        break;
      }
      case STATE_TRIPLE_SINGLE:
      case STATE_TRIPLE_DOUBLE: {
        const QChar quote = state == STATE_TRIPLE_SINGLE ? QLatin1Char('\'') : QLatin1Char('"');
        if (c == quote && i + 2 < length && text[i + 1] == quote && text[i + 2] == quote) {
          i += 3;
          setFormat(string_start, i - string_start, getColor(ROLE_STRING), STYLE_NORMAL, ROLE_STRING);
          state = STATE_PLAIN;
        } else {
          ++i;
        }
        break;
      }
      default:  // reserved: characters pass uncoloured
        ++i;
        break;
    }
  }
  if (state != STATE_PLAIN && state != STATE_RESERVED)
    setFormat(string_start, std::min(i, length) - string_start, getColor(ROLE_STRING), STYLE_NORMAL, ROLE_STRING);
  return state;
}

}  // namespace Vel::MSysScript
