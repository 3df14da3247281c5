#pragma once

#include <QColor>
#include <QHash>
#include <QSet>
#include <QString>

#include <array>
#include <map>

#include "gapp/data_change_notifier.h"
#include "gedit/text_highlighter.h"

namespace Vel::GScript {
class ScriptDatabase;
}

namespace Vel::MSysScript {

// Colours Python text line by line; the application's commands and the database's scripts
// stand out from ordinary Python.
class PythonHighlighter : public GEdit::TextHighlighter
{
  Q_OBJECT

public:
  // The editor addresses roles by number.
  enum ColorRole_t
  {
    ROLE_COMMENT = 0,
    ROLE_TEXT = 1,
    ROLE_STRING = 2,
    ROLE_SPECIAL_METHOD = 3,
    ROLE_KEYWORD = 4,
    ROLE_BUILTIN = 5,
    ROLE_INTERACTIVE_COMMAND = 6,
    ROLE_SCRIPT_COMMAND = 7,
    ROLE_EDITOR_MARK = 8,
    ROLE_EDITOR_BACKGROUND = 9
  };

  // Line states: plain, (reserved), inside a '...' or "..." string, inside a '''...''' or
  // """...""" string.
  enum State
  {
    STATE_PLAIN = 0,
    STATE_RESERVED = 1,
    STATE_SINGLE = 2,
    STATE_DOUBLE = 3,
    STATE_TRIPLE_SINGLE = 4,
    STATE_TRIPLE_DOUBLE = 5
  };

  // Reads the command names from the command container and, when one is given, the database.
  explicit PythonHighlighter(QObject* parent = nullptr, const GScript::ScriptDatabase* database = nullptr);
  ~PythonHighlighter() override;

  int highlightLine(unsigned int line, const QString& text, int state) override;

  const QColor& getColor(ColorRole_t role) const;
  void setColor(ColorRole_t role, const QColor& color);

  void updateDatabase(const GScript::ScriptDatabase* database);
  // Every highlighter of the process takes the new command names.
  static void update(const GScript::ScriptDatabase* database);

private:
  static constexpr int ROLE_COUNT = ROLE_EDITOR_BACKGROUND + 1;

  void updateConfiguration();
  void slotDataChanged(Vel::GApp::DataChangedReason_t reason);
  void indexWords();
  void colourWord(const QChar* word, int start, int length);

  std::map<ColorRole_t, QColor> _colors;
  std::array<QColor, ROLE_COUNT> _role_colors;  // the same colours, for the scanner
  QSet<QString> _keywords;
  QSet<QString> _special_methods;
  QSet<QString> _builtins;
  QSet<QString> _interactive_commands;
  QSet<QString> _script_commands;
  QSet<QString> _database_scripts;
  // Every word of the sets above with the role it takes.
  QHash<QString, ColorRole_t> _words;
  std::array<bool, 128> _first_letters{};  // ASCII letters some word of the table starts with
  bool _other_first_letter = false;
  int _shortest_word = 0;
  int _longest_word = 0;
};

}  // namespace Vel::MSysScript
