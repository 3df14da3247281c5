#include "menu/msys_script/msys_dialog_property.h"

#include <QLineEdit>

#include "core/prog_error.h"

namespace Vel::MSysScript {

Property::Property(const QString& key, const QString& name) : _key(key), _name(name) {}

Property::~Property() = default;

void Property::setValue(const QVariant& value)
{
  _value = value;
  if (_active_editor && _enabled)
    updateEditorValue(_active_editor, _value);
}

void Property::setDisabledValue(const QVariant& value)
{
  _disabled_value = value;
  if (_active_editor && !_enabled)
    updateEditorValue(_active_editor, _disabled_value);
}

void Property::setEnabled(bool enabled)
{
  _enabled = enabled;
  if (_active_editor) {
    _active_editor->setEnabled(enabled);
    updateEditor(_active_editor);
  }
}

void Property::setActiveEditor(QWidget* editor)
{
  _active_editor = editor;
  if (editor)
    connect(editor, &QObject::destroyed, this, &Property::slotEditorDestroyed);
}

void Property::updateEditor(QWidget* editor)
{
  updateEditorValue(editor, _enabled ? _value : _disabled_value);
}

void Property::commitEditor(const QWidget* editor)
{
  _value = commitEditorValue(editor);
  Q_EMIT signalModified();
}

void Property::slotModified()
{
  QWidget* editor = _active_editor;
  VEL_ASSERT(editor != 0);
  commitEditor(editor);
}

void Property::slotEditorDestroyed(QObject* editor)
{
  if (_active_editor == editor || _active_editor.isNull())
    _active_editor = nullptr;
}

void Property::copyTo(Property* other) const
{
  other->_value = _value;
  other->_disabled_value = _disabled_value;
  other->_enabled = _enabled;
}

SeparatorProperty::SeparatorProperty(const QString& name) : Property(QString(), name) {}

Property* SeparatorProperty::clone() const
{
  auto* copy = new SeparatorProperty(getName());
  copyTo(copy);
  return copy;
}

QWidget* SeparatorProperty::createEditor(QWidget*)
{
  return nullptr;
}

void SeparatorProperty::updateEditorValue(QWidget*, const QVariant&) {}

QVariant SeparatorProperty::commitEditorValue(const QWidget*)
{
  return QVariant();
}

StringProperty::StringProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* StringProperty::clone() const
{
  auto* copy = new StringProperty(getKey(), getName());
  copy->_validator = _validator;
  copyTo(copy);
  return copy;
}

QWidget* StringProperty::createEditor(QWidget* parent)
{
  auto* edit = new QLineEdit(parent);
  edit->setValidator(_validator);
  connect(edit, &QLineEdit::textChanged, this, &Property::slotModified);
  return edit;
}

void StringProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  auto* edit = qobject_cast<QLineEdit*>(editor);
  QWidget* widget = edit;
  VEL_ASSERT(widget != 0);
  const QSignalBlocker blocker(edit);
  edit->setText(value.toString());
}

QVariant StringProperty::commitEditorValue(const QWidget* editor)
{
  const auto* edit = qobject_cast<const QLineEdit*>(editor);
  const QWidget* widget = edit;
  VEL_ASSERT(widget != 0);
  return edit->text();
}

}  // namespace Vel::MSysScript
