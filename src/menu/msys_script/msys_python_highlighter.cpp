#include "menu/msys_script/msys_python_highlighter.h"

#include <QDebug>

#include <algorithm>
#include <climits>
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
  if (role >= 0 && role < ROLE_COUNT)
    _role_colors[role] = color;
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
  for (const auto& [role, color] : _colors)
    _role_colors[role] = color;
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
  indexWords();
  Q_EMIT signalUpdate(0);
}

void PythonHighlighter::update(const GScript::ScriptDatabase* database)
{
  for (PythonHighlighter* highlighter : instances())
    highlighter->updateDatabase(database);
}

void PythonHighlighter::indexWords()
{
  // One table for all the sets. A word in several takes the role of the first set in the order
  // of the lookup; the sets go in backwards, so that the earlier ones overwrite.
  _words.clear();
  const std::pair<const QSet<QString>*, ColorRole_t> sets[] = {
      {&_script_commands, ROLE_SCRIPT_COMMAND},           {&_database_scripts, ROLE_INTERACTIVE_COMMAND},
      {&_interactive_commands, ROLE_INTERACTIVE_COMMAND}, {&_builtins, ROLE_BUILTIN},
      {&_special_methods, ROLE_SPECIAL_METHOD},           {&_keywords, ROLE_KEYWORD}};
  _first_letters.fill(false);
  _shortest_word = INT_MAX;
  _longest_word = 0;
  bool other_first_letter = false;
  for (const auto& [set, role] : sets)
    for (const QString& word : *set) {
      _words.insert(word, role);
      const char16_t first = word.isEmpty() ? 0 : word.front().unicode();
      if (first < _first_letters.size())
        _first_letters[first] = true;
      else
        other_first_letter = true;
      _shortest_word = std::min(_shortest_word, int(word.size()));
      _longest_word = std::max(_longest_word, int(word.size()));
    }
  _other_first_letter = other_first_letter;
}

void PythonHighlighter::colourWord(const QChar* word, int start, int length)
{
  // Most words are in no set: a cheap look at the first letter and the length sorts out many.
  const char16_t first = word->unicode();
  if (length < _shortest_word || length > _longest_word ||
      !(first < _first_letters.size() ? _first_letters[first] : _other_first_letter))
    return;
  const auto found = _words.constFind(QString::fromRawData(word, length));
  if (found == _words.constEnd())
    return;
  const ColorRole_t role = found.value();
  setFormat(start, length, _role_colors[role], role == ROLE_KEYWORD ? STYLE_BOLD : STYLE_NORMAL, role);
}

int PythonHighlighter::highlightLine(unsigned int, const QString& text, int state)
{
  const int length = int(text.size());
  const QChar* const chars = text.constData();
  const QColor& string_color = _role_colors[ROLE_STRING];
  int i = 0;
  int string_start = 0;  // where the string that is open began on this line
  while (i < length) {
    const QChar c = chars[i];
    switch (state) {
      case STATE_PLAIN:
        if (startsWord(c)) {
          const int start = i;
          while (i < length && continuesWord(chars[i]))
            ++i;
          colourWord(chars + start, start, i - start);
          continue;
        }
        if (c == QLatin1Char('#')) {
          setFormat(i, length - i, _role_colors[ROLE_COMMENT], STYLE_NORMAL, ROLE_COMMENT);
          return STATE_PLAIN;
        }
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
          string_start = i;
          const bool triple = i + 2 < length && chars[i + 1] == c && chars[i + 2] == c;
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
          setFormat(string_start, i - string_start, string_color, STYLE_NORMAL, ROLE_STRING);
          state = STATE_PLAIN;
        } else {
          ++i;
        }
        break;
      }
      case STATE_TRIPLE_SINGLE:
      case STATE_TRIPLE_DOUBLE: {
        const QChar quote = state == STATE_TRIPLE_SINGLE ? QLatin1Char('\'') : QLatin1Char('"');
        if (c == quote && i + 2 < length && chars[i + 1] == quote && chars[i + 2] == quote) {
          i += 3;
          setFormat(string_start, i - string_start, string_color, STYLE_NORMAL, ROLE_STRING);
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
    setFormat(string_start, std::min(i, length) - string_start, string_color, STYLE_NORMAL, ROLE_STRING);
  return state;
}

}  // namespace Vel::MSysScript
