#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QWidget>

class QValidator;

namespace Vel::MSysScript {

// One typed, editable setting of a dialog element or of the dialog: a key, a label and a
// value, able to make the editor widget that edits it and to move values between the two.
class Property : public QObject
{
  Q_OBJECT

public:
  Property(const QString& key, const QString& name);
  ~Property() override;

  virtual Property* clone() const = 0;
  virtual QWidget* createEditor(QWidget* parent) = 0;
  virtual void updateEditorValue(QWidget* editor, const QVariant& value) = 0;
  virtual QVariant commitEditorValue(const QWidget* editor) = 0;

  const QString& getKey() const { return _key; }
  const QString& getName() const { return _name; }
  const QVariant& getValue() const { return _value; }
  const QVariant& getDisabledValue() const { return _disabled_value; }
  bool getEnabled() const { return _enabled; }
  bool hasActiveEditor() const { return !_active_editor.isNull(); }
  QWidget* getActiveEditor() const { return _active_editor; }

  void setValue(const QVariant& value);
  void setDisabledValue(const QVariant& value);
  void setEnabled(bool enabled);
  void setActiveEditor(QWidget* editor);
  void updateEditor(QWidget* editor);
  void commitEditor(const QWidget* editor);

Q_SIGNALS:
  void signalModified();

public Q_SLOTS:
  void slotModified();

private Q_SLOTS:
  void slotEditorDestroyed(QObject* editor);

protected:
  // Copies the settings every property has into a clone.
  void copyTo(Property* other) const;

private:
  QString _key;
  QString _name;
  QVariant _value;
  QVariant _disabled_value;
  bool _enabled = true;
  QPointer<QWidget> _active_editor;
};

// The heading of a block of properties; it edits nothing.
class SeparatorProperty : public Property
{
  Q_OBJECT

public:
  explicit SeparatorProperty(const QString& name);

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;
};

class StringProperty : public Property
{
  Q_OBJECT

public:
  StringProperty(const QString& key, const QString& name);

  // Shared by every editor of the property; not owned.
  void setValidator(QValidator* validator) { _validator = validator; }

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

private:
  QValidator* _validator = nullptr;
};

}  // namespace Vel::MSysScript
