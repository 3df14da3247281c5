#include "menu/msys_script/msys_dialog_handles.h"

#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>

#include <limits>

#include "core/python_string.h"
#include "gscript/python_interpreter.h"
#include "gscript/python_values.h"
#include "gtools/vel_tool_tip_label.h"
#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_dialog_controls.h"
#include "menu/msys_script/msys_dlg_user_defined.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

namespace {

const QString TYPE_PREFIX = QStringLiteral("zut.dialog.");

// Every handle reaches its dialog again at each use: the dialog may have closed meanwhile.
class DialogPart : public ScriptObject
{
public:
  explicit DialogPart(int id) : _id(id) {}

protected:
  UserDefinedDialog* dialog() const
  {
    UserDefinedDialog* found = UserDefinedDialog::find(_id);
    if (!found)
      failCommand(ERR_EXECUTE_SCRIPT, errorText("A dialog with this ID does not exist."));
    return found;
  }
  QString docOf(const QString& heading, const QStringList& rows) const
  {
    return heading + QLatin1Char('\n') + translate("MSysScript_Dialog_other", "Attributes:", "") +
           QLatin1Char('\n') + rows.join(QLatin1Char('\n'));
  }
  const int _id;
};

int intArgument(const QVariant& value)
{
  bool ok = false;
  const qlonglong number = value.toLongLong(&ok);
  if (!ok || value.typeId() == QMetaType::QString || value.typeId() == QMetaType::Bool || number < 0 ||
      number > std::numeric_limits<int>::max())
    throw ScriptTypeException(errorText("The value has not the expected type."));
  return int(number);
}

bool boolArgument(const QVariant& value)
{
  if (value.typeId() != QMetaType::Bool && value.typeId() != QMetaType::LongLong && value.typeId() != QMetaType::Int)
    throw ScriptTypeException(errorText("The value has not the expected type."));
  return value.toBool();
}

QString textArgument(const QVariant& value)
{
  if (value.typeId() != QMetaType::QString)
    throw ScriptTypeException(errorText("The value has not the expected type."));
  return value.toString();
}

[[noreturn]] void throwNotWritable(const QString& name)
{
  throw ScriptTypeException(errorText("The object has no writeable attribute \"%1\".").arg(name));
}

class ElementHandle : public DialogPart
{
public:
  ElementHandle(int id, const QString& name) : DialogPart(id), _name(name) {}

  QString getTypeName() const override { return TYPE_PREFIX + className(); }
  QVariant getAttribute(const QString& name, bool* found) const override
  {
    *found = getAttributeNames().contains(name);
    return *found ? element()->__getattr__(name) : QVariant();
  }
  void setAttribute(const QString& name, const QVariant& value) override
  {
    // Limits are read from the script's object before the element is looked up: reading them
    // runs the script's own code, which may close the dialog.
    const bool limits = name == DialogWidget::TAG_LIMITS && value.typeId() == GScript::PythonCallable::typeId();
    const QVariant taken = limits ? DialogWidget::readValueLimits(value) : value;
    dialog()->setFromScript(element(), name, taken);
  }
  bool takesScriptObject(const QString& name) const override
  {
    return name == DialogWidget::TAG_LIMITS && getAttributeNames().contains(name);
  }
  QStringList getAttributeNames() const override
  {
    QStringList names = element()->__getattr__(DialogWidget::TAG_ATTRIBUTES).toMap().keys();
    names << DialogWidget::TAG_ATTRIBUTES;
    return names;
  }
  QString getRepr() const override { return element()->__repr__(); }
  QString getDoc() const override { return element()->__doc__(); }
  QString getIdentity() const override { return QStringLiteral("element:%1:%2").arg(_id).arg(_name); }

private:
  DialogWidget* element() const
  {
    DialogWidget* found = dialog()->findWidget(_name);
    if (!found)
      failCommand(ERR_EXECUTE_SCRIPT, errorText("A dialog with this ID does not exist."));
    return found;
  }
  // The class word of the element's printed form: "zut.dialog.NumberWidget (...)".
  QString className() const
  {
    const QString printed = element()->__repr__();
    return printed.mid(TYPE_PREFIX.size()).section(QLatin1Char(' '), 0, 0);
  }
  const QString _name;
};

class ControlHandle : public DialogPart
{
public:
  ControlHandle(int id, const QString& word) : DialogPart(id), _word(word) {}

  QString getTypeName() const override { return TYPE_PREFIX + QStringLiteral("Control"); }
  QVariant getAttribute(const QString& name, bool* found) const override
  {
    *found = name == QLatin1String("text") || name == QLatin1String("enabled");
    if (!*found)
      return QVariant();
    QPushButton* button = this->button();
    return name == QLatin1String("text") ? QVariant(button->text()) : QVariant(button->isEnabled());
  }
  void setAttribute(const QString& name, const QVariant& value) override
  {
    DialogControl* control = dialog()->getControl();
    if (name == QLatin1String("text"))
      control->setButtonText(_word, textArgument(value));
    else if (name == QLatin1String("enabled"))
      control->setButtonEnabled(_word, boolArgument(value));
    else
      throwNotWritable(name);
  }
  QStringList getAttributeNames() const override { return {QStringLiteral("text"), QStringLiteral("enabled")}; }
  QString getRepr() const override
  {
    return QStringLiteral("zut.dialog.Control (id='%1', text='%2', enabled=%3)")
        .arg(_word, escapePythonString(button()->text()), button()->isEnabled() ? "True" : "False");
  }
  QString getDoc() const override
  {
    return docOf(QStringLiteral("Handle for the button '%1' of a dialog's control row").arg(_word),
                 {QStringLiteral("text str - Text of the button"),
                  QStringLiteral("enabled bool - Whether the button can be pressed")});
  }
  QString getIdentity() const override { return QStringLiteral("control:%1:%2").arg(_id).arg(_word); }

private:
  QPushButton* button() const
  {
    auto* control = qobject_cast<ButtonDialogControl*>(dialog()->getControl());
    QPushButton* found = control ? control->getButton(_word) : nullptr;
    if (!found)
      failCommand(ERR_EXECUTE_SCRIPT, translate("MSysScript_DialogEditor_err", "Invalid control ID \"%1\"", "").arg(_word));
    return found;
  }
  const QString _word;
};

class ControlGroupHandle : public DialogPart
{
public:
  using DialogPart::DialogPart;

  QString getTypeName() const override { return TYPE_PREFIX + QStringLiteral("ControlGroup"); }
  QVariant getAttribute(const QString& name, bool* found) const override
  {
    if (name == QLatin1String("status")) {
      *found = true;
      Vel_ToolTipLabel* label = dialog()->getControl()->getStatusLabel();
      return label ? label->text() : QString();
    }
    *found = words().contains(name);
    return *found ? QVariant::fromValue(ScriptObjectPtr(std::make_shared<ControlHandle>(_id, name))) : QVariant();
  }
  void setAttribute(const QString& name, const QVariant& value) override
  {
    if (name != QLatin1String("status"))
      throwNotWritable(name);
    if (Vel_ToolTipLabel* label = dialog()->getControl()->getStatusLabel())
      label->setText(textArgument(value));
  }
  QStringList getAttributeNames() const override { return words() << QStringLiteral("status"); }
  QString getRepr() const override
  {
    return QStringLiteral("zut.dialog.ControlGroup (buttons=[%1])")
        .arg(words().replaceInStrings(QRegularExpression(QStringLiteral("^(.*)$")), QStringLiteral("'\\1'")).join(", "));
  }
  QString getDoc() const override
  {
    QStringList rows;
    for (const QString& word : words())
      rows << QStringLiteral("%1 zut.dialog.Control - The button '%1'").arg(word);
    rows << QStringLiteral("status str - Text shown beside the buttons");
    return docOf(QStringLiteral("Handle for the control row of a dialog"), rows);
  }
  QString getIdentity() const override { return QStringLiteral("controls:%1").arg(_id); }

private:
  QStringList words() const { return dialog()->getControl()->getButtonIds(); }
};

class TimerHandle : public DialogPart
{
public:
  using DialogPart::DialogPart;

  QString getTypeName() const override { return TYPE_PREFIX + QStringLiteral("Timer"); }
  QVariant getAttribute(const QString& name, bool* found) const override
  {
    *found = getAttributeNames().contains(name);
    QTimer* timer = dialog()->getTimer();
    if (name == QLatin1String("interval"))
      return timer->interval();
    return *found ? QVariant(timer->isActive()) : QVariant();
  }
  void setAttribute(const QString& name, const QVariant& value) override
  {
    QTimer* timer = dialog()->getTimer();
    if (name == QLatin1String("interval"))
      timer->setInterval(intArgument(value));
    else if (name == QLatin1String("enabled"))
      boolArgument(value) ? timer->start() : timer->stop();
    else
      throwNotWritable(name);
  }
  QStringList getAttributeNames() const override { return {QStringLiteral("interval"), QStringLiteral("enabled")}; }
  QString getRepr() const override
  {
    QTimer* timer = dialog()->getTimer();
    return QStringLiteral("zut.dialog.Timer (interval=%1, enabled=%2)")
        .arg(timer->interval())
        .arg(timer->isActive() ? "True" : "False");
  }
  QString getDoc() const override
  {
    return docOf(QStringLiteral("Handle for a dialog's timer; each tick calls the dialog's handler"),
                 {QStringLiteral("interval int - Time between two ticks, in milliseconds"),
                  QStringLiteral("enabled bool - Whether the timer ticks")});
  }
  QString getIdentity() const override { return QStringLiteral("timer:%1").arg(_id); }
};

class DialogHandleObject : public DialogPart
{
public:
  using DialogPart::DialogPart;

  QString getTypeName() const override { return TYPE_PREFIX + QStringLiteral("DialogHandle"); }
  QVariant getAttribute(const QString& name, bool* found) const override
  {
    UserDefinedDialog* dialog = this->dialog();
    *found = true;
    if (name == QLatin1String("title"))
      return dialog->windowTitle();
    if (name == QLatin1String("handler"))
      return dialog->getHandler();
    if (name == QLatin1String("control"))
      return QVariant::fromValue(ScriptObjectPtr(std::make_shared<ControlGroupHandle>(_id)));
    if (name == QLatin1String("timer"))
      return QVariant::fromValue(ScriptObjectPtr(std::make_shared<TimerHandle>(_id)));
    if (name == QLatin1String("id"))
      return _id;
    if (dialog->findWidget(name))
      return QVariant::fromValue(ScriptObjectPtr(std::make_shared<ElementHandle>(_id, name)));
    *found = false;
    return QVariant();
  }
  void setAttribute(const QString& name, const QVariant& value) override
  {
    UserDefinedDialog* dialog = this->dialog();
    if (name == QLatin1String("title"))
      dialog->setWindowTitle(textArgument(value));
    else if (name == QLatin1String("handler")) {
      if (value.isValid() && value.typeId() != GScript::PythonCallable::typeId())
        throw ScriptTypeException(errorText("The value has not the expected type."));
      dialog->setHandler(value);
    } else
      throwNotWritable(name);
  }
  QStringList getAttributeNames() const override
  {
    QStringList names{QStringLiteral("id"), QStringLiteral("title"), QStringLiteral("handler"),
                      QStringLiteral("control"), QStringLiteral("timer")};
    for (const DialogDefinition::Cell* cell : dialog()->getElementCells())
      names << cell->widget->getName();
    return names;
  }
  QString getRepr() const override
  {
    return QStringLiteral("zut.dialog.DialogHandle (id=%1, title='%2')")
        .arg(_id)
        .arg(escapePythonString(UserDefinedDialog::find(_id) ? dialog()->windowTitle() : QString()));
  }
  QString getDoc() const override
  {
    QStringList rows{QStringLiteral("id int - The dialog's id"), QStringLiteral("title str - Window title"),
                     QStringLiteral("handler function - Called with who changed: an element, a control button, "
                                    "the timer or 'initialize'"),
                     QStringLiteral("control zut.dialog.ControlGroup - The row of control buttons"),
                     QStringLiteral("timer zut.dialog.Timer - The dialog's timer")};
    for (const DialogDefinition::Cell* cell : dialog()->getElementCells())
      rows << QStringLiteral("%1 %2 - Element of the dialog")
                  .arg(cell->widget->getName(), cell->widget->__repr__().section(QLatin1Char(' '), 0, 0));
    return docOf(QStringLiteral("Handle for the user-defined dialog '%1'").arg(dialog()->windowTitle()), rows);
  }
  QString getIdentity() const override { return QStringLiteral("dialog:%1").arg(_id); }
  int id() const { return _id; }
};

class DialogResultObject : public ScriptObject
{
public:
  DialogResultObject(const QVariant& result, const QVariantMap& values) : _result(result), _values(values) {}

  QString getTypeName() const override { return TYPE_PREFIX + QStringLiteral("DialogResult"); }
  QVariant getAttribute(const QString& name, bool* found) const override
  {
    if (name == QLatin1String("result")) {
      *found = true;
      return _result;
    }
    *found = _values.contains(name);
    return _values.value(name);
  }
  void setAttribute(const QString& name, const QVariant&) override { throwNotWritable(name); }
  QStringList getAttributeNames() const override { return QStringList{QStringLiteral("result")} + _values.keys(); }
  QString getRepr() const override
  {
    return QStringLiteral("zut.dialog.DialogResult (result=%1, values=%2)")
        .arg(GScript::PythonInterpreter::repr(_result), GScript::PythonInterpreter::repr(_values));
  }
  QString getDoc() const override
  {
    QStringList rows{QStringLiteral("result - True when accepted, False when cancelled, or the value given "
                                    "when the dialog was closed")};
    for (const QString& name : _values.keys())
      rows << QStringLiteral("%1 - Value of the element").arg(name);
    return QStringLiteral("The answer of a closed dialog\nAttributes:\n") + rows.join(QLatin1Char('\n'));
  }
  QString getIdentity() const override { return QStringLiteral("result:%1").arg(quintptr(this)); }

private:
  QVariant _result;
  QVariantMap _values;
};

}  // namespace

ScriptObjectPtr makeDialogHandle(int id)
{
  return std::make_shared<DialogHandleObject>(id);
}

QVariant makeSender(UserDefinedDialog* dialog, DialogWidget* element, const QString& event)
{
  if (element)
    return QVariant::fromValue(ScriptObjectPtr(std::make_shared<ElementHandle>(dialog->getId(), element->getName())));
  if (event == QLatin1String("timer"))
    return QVariant::fromValue(ScriptObjectPtr(std::make_shared<TimerHandle>(dialog->getId())));
  if (event == QLatin1String("initialize"))
    return event;
  return QVariant::fromValue(ScriptObjectPtr(std::make_shared<ControlHandle>(dialog->getId(), event)));
}

ScriptObjectPtr makeDialogResult(const QVariant& result, const QVariantMap& values)
{
  return std::make_shared<DialogResultObject>(result, values);
}

int dialogIdOf(const QVariant& value)
{
  const auto* handle = dynamic_cast<const DialogHandleObject*>(value.value<ScriptObjectPtr>().get());
  return handle ? handle->id() : 0;
}

}  // namespace Vel::MSysScript
