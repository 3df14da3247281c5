#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace Vel::MSysScript {

// A Python tuple read from a call. Commands take it as a list; the editor keeps it apart so that
// it is written back as a tuple.
struct PythonTuple
{
  QVariantList items;

  bool operator==(const PythonTuple& other) const;
  bool operator!=(const PythonTuple& other) const { return !(*this == other); }
};

// One keyword argument of a call as it stands in the text: its value, and where its name and
// its value's text are (offsets into the text that was read).
struct CallArgument
{
  QString name;
  QVariant value;
  int name_begin = 0;
  int value_begin = 0;
  int value_end = 0;
  // False for a value that is an expression, not a literal (read only when tolerant).
  bool literal = true;
};

// One command call, `[TARGET =] zut.script.NAME(ARG=VALUE, ...)  [# comment]`, as read from
// the text of its lines. Offsets are into that text.
struct CommandCall
{
  QString command;  // "sys.set_test_timeout"
  bool interactive = false;
  QList<CallArgument> arguments;
  int begin = 0;       // at "zut"
  int end = 0;         // after ")"
  int name_begin = 0;  // at the command's name, after "zut.script."
  int name_end = 0;
  int arguments_begin = 0;  // after "("
  int arguments_end = 0;    // at ")"

  const CallArgument* find(const QString& name) const;
};

// Arguments as they are to be written, in order.
using ArgumentList = QList<QPair<QString, QVariant>>;

// Reads the call that `text` holds. A text that is no such call throws GApp::CommandError with
// ERR_PARSE_PARAMETERS, "line L, column C: expected ..." (1-based; lines counted from
// `first_line`).
CommandCall readCommandCall(const QString& text, int first_line = 1);

// The call that begins at `offset` of a whole script (at "zut"), up to its ")"; offsets and
// error positions are the script's. `tolerant` passes over values that are expressions (a
// variable, a sum) instead of refusing them.
CommandCall readCommandCallAt(const QString& text, int offset, bool tolerant = false);

// Where the script's command calls begin: every "zut.script." and "zut.interactive." of its code,
// none in strings or comments.
QList<int> findCommandCalls(const QString& text);

// Reads one Python literal (the whole text, comments and blanks around it allowed); the same
// errors as readCommandCall.
QVariant readLiteral(const QString& text);

// A value as a Python literal that readLiteral gives back. None is an invalid QVariant, a tuple
// a PythonTuple, bytes a QByteArray; a value without a literal (NaN, an object) throws
// GApp::CommandError with ERR_GENERATE_SCRIPT.
QString writeLiteral(const QVariant& value);

// Equal values of the same kinds, all the way down (1 is not True, not 1.0, a tuple no list).
bool sameValue(const QVariant& a, const QVariant& b);

// `text` with the argument list of the call it holds replaced by `arguments`, and the command's
// name by `command` when one is given. Everything outside the parentheses stays as it is, and so
// does the text of each value that did not change. Throws as readCommandCall.
QString rewriteCall(const QString& text, const ArgumentList& arguments, const QString& command = QString());

}  // namespace Vel::MSysScript

Q_DECLARE_METATYPE(Vel::MSysScript::PythonTuple)
