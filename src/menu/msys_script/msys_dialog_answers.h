#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QVariant>
#include <QString>
#include <QStringList>

#include <functional>

namespace Vel::MSysScript {

class UserDefinedDialog;

// Answers for dialogs that wait where no person is: read from a JSON file, one entry per modal
// dialog in the order the dialogs appear:
//   [{"title": "Bore check", "values": {"diameter": 12.5}, "button": "ok"}]
// "title" is optional (when given it must match), values not given keep the dialog's own, and
// "button" is a word of the control row (default: the accepting button). Each value is applied
// as a person's edit: checked against the element and followed by the change handler.
class DialogAnswers
{
public:
  // Reads the file and answers the dialogs that wait from now on; a file that does not read is
  // a command error naming it, and the answers given before stay.
  static void load(const QString& fileName);
  // The same from a list of answer objects; `source` names it in messages.
  static void loadList(const QJsonArray& list, const QString& source);
  // Writes the answers that people give from now on to the file, rewritten after every dialog.
  static void record(const QString& fileName);
  // Tells `listener` each answer people give from now on, as an answer object; null stops.
  static void listen(std::function<void(const QJsonObject&)> listener);
  // The answers that no dialog has taken, one line each; empty when all were used.
  static QStringList getUnused();
  // Forgets loaded and recorded answers.
  static void reset();

  // Applies one answer to a shown dialog and closes it; a bad answer closes it unanswered and
  // throws a command error naming the dialog, the element and the value.
  static void apply(UserDefinedDialog* dialog, const QJsonObject& answer);
};

// A value as answer files and dumps write it: dates and colours as text.
QJsonValue answerValue(const QVariant& value);
// A JSON value as a line of text shows it ("12.5", "true", "\"text\"" unquoted as 'text').
QString answerText(const QJsonValue& value);

}  // namespace Vel::MSysScript
