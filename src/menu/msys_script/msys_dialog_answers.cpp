#include "menu/msys_script/msys_dialog_answers.h"

#include <QDate>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPushButton>
#include <QSaveFile>
#include <QTimer>

#include <cmath>
#include <deque>

#include "core/color.h"
#include "core/script_type.h"
#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_dialog_controls.h"
#include "menu/msys_script/msys_dlg_user_defined.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

namespace {

const QString KEY_TITLE = QStringLiteral("title");
const QString KEY_VALUES = QStringLiteral("values");
const QString KEY_BUTTON = QStringLiteral("button");

struct State
{
  std::deque<QJsonObject> pending;
  int taken = 0;
  QString record_file;
  QJsonArray recorded;
  std::function<void(const QJsonObject&)> listener;
};

State& state()
{
  static State current;
  return current;
}

[[noreturn]] void failAnswer(const UserDefinedDialog* dialog, const QString& detail)
{
  failCommand(ERR_EXECUTE_SCRIPT, errorText("The answer for the dialog \"%1\" does not fit: %2")
                                      .arg(dialog->windowTitle(), detail));
}

// A JSON value as the element's own kind of value, so that the element's check applies.
QVariant valueFor(const DialogWidget* widget, const QJsonValue& answer)
{
  const QVariant current = widget->getValue();
  const QVariant given = answer.toVariant();
  switch (current.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
      if (answer.isDouble() && std::floor(answer.toDouble()) == answer.toDouble() &&
          std::fabs(answer.toDouble()) < 9.2e18)
        return QVariant::fromValue(static_cast<qlonglong>(answer.toDouble()));
      return given;
    case QMetaType::QDate:
      if (answer.isString()) {
        const QDate date = QDate::fromString(answer.toString(), Qt::ISODate);
        return date.isValid() ? QVariant(date) : given;
      }
      return given;
    default:
      if (current.typeId() == qMetaTypeId<Color>() && answer.isString()) {
        Color color;
        if (Color::fromString(answer.toString(), color))
          return QVariant::fromValue(color);
      }
      return given;
  }
}

void checkRange(const UserDefinedDialog* dialog, const DialogWidget* widget, const QString& name, const QVariant& value,
                const QJsonValue& answer)
{
  const QVariant minimum = widget->__getattr__(QStringLiteral("minimum"));
  const QVariant maximum = widget->__getattr__(QStringLiteral("maximum"));
  if (!minimum.isValid() || !maximum.isValid() || !value.canConvert<double>())
    return;
  const double number = value.toDouble();
  if (number < minimum.toDouble() || number > maximum.toDouble())
    failAnswer(dialog, errorText("the value %1 of element \"%2\" is outside %3 to %4.")
                           .arg(answerText(answer), name)
                           .arg(minimum.toDouble())
                           .arg(maximum.toDouble()));
}

void pressButton(UserDefinedDialog* dialog, const QString& word)
{
  if (word.isEmpty()) {
    dialog->accept();
    return;
  }
  auto* control = qobject_cast<ButtonDialogControl*>(dialog->getControl());
  QPushButton* button = control ? control->getButton(word) : nullptr;
  if (!button) {
    const QStringList words = control ? control->getButtonIds() : QStringList();
    failAnswer(dialog, errorText("the dialog has no button \"%1\" (it has: %2).").arg(word, words.join(QStringLiteral(", "))));
  }
  button->click();
}

void remember(const UserDefinedDialog* dialog, const QString& button)
{
  State& current = state();
  if (current.record_file.isEmpty() && !current.listener)
    return;
  QJsonObject values;
  for (const DialogDefinition::Cell* cell : dialog->getElementCells()) {
    const QVariant value = cell->widget->getValue();
    if (value.isValid())
      values.insert(cell->widget->getName(), answerValue(value));
  }
  QJsonObject entry{{KEY_TITLE, dialog->windowTitle()}, {KEY_VALUES, values}};
  if (!button.isEmpty())
    entry.insert(KEY_BUTTON, button);
  if (current.listener)
    current.listener(entry);
  if (current.record_file.isEmpty())
    return;
  current.recorded.append(entry);
  QSaveFile file(current.record_file);
  if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(current.recorded).toJson()) < 0 || !file.commit())
    failCommand(ERR_SAVE_FILE, errorText("Cannot open file for writing: %1").arg(current.record_file));
}

// Applied once the dialog waits, as a person would answer it: after its first handler call has
// finished, and never inside a handler call, which lets window events in at its safe points.
void applyWhenReady(UserDefinedDialog* dialog, const QJsonObject& answer, int delay = 0)
{
  QTimer::singleShot(delay, dialog, [dialog, answer] {
    if (dialog->isClosed())
      return;
    if (!dialog->isReadyForInput()) {
      applyWhenReady(dialog, answer, 10);
      return;
    }
    try {
      DialogAnswers::apply(dialog, answer);
    } catch (...) {
      dialog->failWith(std::current_exception());
    }
  });
}

bool respond(UserDefinedDialog* dialog)
{
  State& current = state();
  if (current.pending.empty())
    return false;
  const QJsonObject answer = current.pending.front();
  current.pending.pop_front();
  ++current.taken;
  applyWhenReady(dialog, answer);
  return true;
}

// Watches the buttons a person presses, for the record.
void watch(UserDefinedDialog* dialog)
{
  if (auto* control = qobject_cast<ButtonDialogControl*>(dialog->getControl()))
    for (const QString& word : control->getButtonIds())
      if (QPushButton* button = control->getButton(word))
        // Pressed comes before the click that closes the dialog.
        QObject::connect(button, &QPushButton::pressed, dialog, [dialog, word] {
          dialog->setProperty("_answer_button", word);
        });
  QObject::connect(dialog, &UserDefinedDialog::signalClosed, dialog, [dialog] {
    try {
      remember(dialog, dialog->property("_answer_button").toString());
    } catch (...) {
      dialog->failWith(std::current_exception());
    }
  });
}

}  // namespace

QJsonValue answerValue(const QVariant& value)
{
  if (value.typeId() == QMetaType::QDate)
    return value.toDate().toString(Qt::ISODate);
  if (value.typeId() == qMetaTypeId<Color>())
    return value.value<Color>().toString();
  return QJsonValue::fromVariant(value);
}

QString answerText(const QJsonValue& value)
{
  if (value.isString())
    return QStringLiteral("'%1'").arg(value.toString());
  return QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact)).mid(1).chopped(1);
}

void DialogAnswers::load(const QString& fileName)
{
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly))
    failCommand(ERR_EXECUTE_SCRIPT, errorText("Cannot read the dialog answers \"%1\": %2").arg(fileName, file.errorString()));
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
  if (error.error != QJsonParseError::NoError || !document.isArray())
    failCommand(ERR_EXECUTE_SCRIPT, errorText("The dialog answers \"%1\" are not a JSON list of answers: %2")
                                        .arg(fileName, error.error != QJsonParseError::NoError
                                                           ? error.errorString()
                                                           : QStringLiteral("the top level is not a list")));
  loadList(document.array(), fileName);
}

void DialogAnswers::loadList(const QJsonArray& list, const QString& source)
{
  std::deque<QJsonObject> answers;
  int index = 0;
  for (const QJsonValue& entry : list) {
    ++index;
    const QJsonObject object = entry.toObject();
    if (!entry.isObject() || (object.contains(KEY_VALUES) && !object.value(KEY_VALUES).isObject()) ||
        (object.contains(KEY_TITLE) && !object.value(KEY_TITLE).isString()) ||
        (object.contains(KEY_BUTTON) && !object.value(KEY_BUTTON).isString()))
      failCommand(ERR_EXECUTE_SCRIPT,
                  errorText("Answer %1 of \"%2\" is not an object with \"title\", \"values\" and \"button\".")
                      .arg(index)
                      .arg(source));
    answers.push_back(object);
  }
  State& current = state();
  current.pending = std::move(answers);
  current.taken = 0;
  UserDefinedDialog::setResponder(respond);
}

void DialogAnswers::listen(std::function<void(const QJsonObject&)> listener)
{
  State& current = state();
  current.listener = std::move(listener);
  UserDefinedDialog::setWatcher(current.listener || !current.record_file.isEmpty() ? watch : nullptr);
}

void DialogAnswers::record(const QString& fileName)
{
  state().record_file = fileName;
  state().recorded = QJsonArray();
  UserDefinedDialog::setWatcher(watch);
}

QStringList DialogAnswers::getUnused()
{
  QStringList lines;
  int index = state().taken;
  for (const QJsonObject& answer : state().pending) {
    ++index;
    lines << errorText("Answer %1 (%2) was not used: no dialog asked for it.")
                 .arg(index)
                 .arg(answer.value(KEY_TITLE).toString(QStringLiteral("any title")));
  }
  return lines;
}

void DialogAnswers::reset()
{
  state() = State();
  UserDefinedDialog::setResponder(nullptr);
  UserDefinedDialog::setWatcher(nullptr);
}

void DialogAnswers::apply(UserDefinedDialog* dialog, const QJsonObject& answer)
{
  const QString title = answer.value(KEY_TITLE).toString();
  if (answer.contains(KEY_TITLE) && title != dialog->windowTitle())
    failAnswer(dialog, errorText("it is meant for the dialog \"%1\".").arg(title));
  const QJsonObject values = answer.value(KEY_VALUES).toObject();
  for (auto entry = values.begin(); entry != values.end(); ++entry) {
    DialogWidget* widget = dialog->findWidget(entry.key());
    if (!widget)
      failAnswer(dialog, errorText("there is no element \"%1\".").arg(entry.key()));
    const QVariant value = valueFor(widget, entry.value());
    checkRange(dialog, widget, entry.key(), value, entry.value());
    try {
      dialog->setAsPerson(widget, value);
    } catch (const ScriptTypeException& error) {
      failAnswer(dialog, errorText("the value %1 of element \"%2\" is refused: %3")
                             .arg(answerText(entry.value()), entry.key(), error.getMessage()));
    }
    // What the element made of it, where it is not a rounding to the element's digits: an
    // answer that a person could not have given (a transparent colour where none is allowed).
    const QVariant taken = widget->getValue();
    if (value.typeId() != QMetaType::Double && taken.typeId() == value.typeId() && taken != value)
      failAnswer(dialog, errorText("the value %1 of element \"%2\" became %3.")
                             .arg(answerText(entry.value()), entry.key(), answerText(answerValue(taken))));
    if (dialog->isClosed())
      return;  // the handler closed it
  }
  pressButton(dialog, answer.value(KEY_BUTTON).toString());
}

}  // namespace Vel::MSysScript
