#pragma once

#include <QAbstractItemModel>
#include <QDate>
#include <QFont>
#include <QImage>
#include <QItemDelegate>
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

class IntegerProperty : public Property
{
  Q_OBJECT

public:
  IntegerProperty(const QString& key, const QString& name);
  void setMinimumValue(int value) { _minimum = value; }
  void setMaximumValue(int value) { _maximum = value; }

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

private:
  int _minimum = -2147483647;
  int _maximum = 2147483647;
};

class DoubleProperty : public Property
{
  Q_OBJECT

public:
  DoubleProperty(const QString& key, const QString& name);
  void setMinimumValue(double value) { _minimum = value; }
  void setMaximumValue(double value) { _maximum = value; }
  void setPrecision(int digits) { _precision = digits; }

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

private:
  double _minimum = -1e9;
  double _maximum = 1e9;
  int _precision = 2;
};

class BoolProperty : public Property
{
  Q_OBJECT

public:
  BoolProperty(const QString& key, const QString& name);

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;
};

class ColorProperty : public Property
{
  Q_OBJECT

public:
  ColorProperty(const QString& key, const QString& name);

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;
};

class DateProperty : public Property
{
  Q_OBJECT

public:
  DateProperty(const QString& key, const QString& name);

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;
};

// A choice among labelled values.
class SelectorProperty : public Property
{
  Q_OBJECT

public:
  using Items = std::vector<std::pair<QString, QVariant>>;
  SelectorProperty(const QString& key, const QString& name, const Items& items);
  const Items& getItems() const { return _items; }

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

private:
  Items _items;
};

// A measuring unit by its id; empty for none.
class UnitProperty : public Property
{
  Q_OBJECT

public:
  UnitProperty(const QString& key, const QString& name);

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;
};

// Rich text, edited in its own small editor window.
class TextProperty : public Property
{
  Q_OBJECT

public:
  TextProperty(const QString& key, const QString& name);
  void setDefaultFont(const QFont& font) { _default_font = font; }
  const QFont& getDefaultFont() const { return _default_font; }

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

private:
  QFont _default_font;
};

// An image (a QImage; null for none), chosen from a file.
class IconProperty : public Property
{
  Q_OBJECT

public:
  IconProperty(const QString& key, const QString& name);
  // The file of the image last committed from the editor; empty when the image came otherwise.
  const QString& getFileName() const { return _file_name; }

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

private:
  QString _file_name;
};

// A file name, typed or chosen.
class FileProperty : public Property
{
  Q_OBJECT

public:
  struct File
  {
    enum Type_t
    {
      Any,
      Image,
      Python,
      Xml,
      Directory
    };
  };

  FileProperty(const QString& key, const QString& name);
  void setFileType(File::Type_t type) { _file_type = type; }
  File::Type_t getFileType() const { return _file_type; }

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

private:
  File::Type_t _file_type = File::Any;
};

// The properties of an element in blocks, each under the heading of the separator that opened
// it. Rows of the top level are blocks, their children properties; column 0 the name, 1 the value.
class PropertyEditorModel : public QAbstractItemModel
{
  Q_OBJECT

public:
  struct Block
  {
    QString heading;
    std::vector<Property*> properties;
  };

  explicit PropertyEditorModel(QObject* parent = nullptr);

  // The list must begin with a separator.
  void setProperties(const std::vector<Property*>& properties);
  const Block& getBlock(const QModelIndex& index) const;
  Property* getProperty(const QModelIndex& index) const;
  bool isBlock(const QModelIndex& index) const { return index.isValid() && index.internalId() == BLOCK_ID; }

  QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  // The text column 1 shows for a value.
  static QString valueText(const QVariant& value);

private Q_SLOTS:
  void slotPropertyModified();

private:
  // Children carry their block's row + 1; blocks carry this.
  static constexpr quintptr BLOCK_ID = 0;

  std::vector<Block> _blocks;
};

// Asks each property for the editor of its value.
class PropertyEditorDelegate : public QItemDelegate
{
  Q_OBJECT

public:
  explicit PropertyEditorDelegate(QObject* parent = nullptr);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace Vel::MSysScript
