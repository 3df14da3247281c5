#pragma once

#include <QDialog>
#include <QVariant>

#include "gtools/vel_file_select.h"
#include "menu/msys_script/msys_dialog_input_widgets.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_widgets.h"

class QCheckBox;
class QLabel;
class QTableWidget;

// The element with which the user picks a file or a folder, and the editor's means to list the
// file types it offers.
namespace Vel::MSysScript {

class FileLimitProperty;
class FileProperty;

class FileWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  FileWidget();

  Vel_FileSelect* selector() const { return _select; }
  // The selected file.
  QVariant getValue() const override;
  // The name first, then file types promised but missing, the dialog's title, and every
  // pattern of the file types.
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;
  // File name extensions become one file type each.
  void setValueLimits(const ValueLimits& limits) override;

  // Empty when every space-separated part of `pattern` is "*." followed by an extension, else
  // the first part that is not.
  static QString invalidPattern(const QString& pattern);

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  Vel_FileSelect* _select;
  QString _default_file;
};

// The editor's panel: the selector's mode, its dialog's title, the default file, and the list
// of file types with the flag that limits the choice to them.
class FileConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit FileConfiguration(QWidget* parent);
  void setup(const DialogWidget* widget) override;
  void apply(DialogWidget* widget) override;

private:
  void updateDefaultFileKind();

  Property* _mode;
  FileProperty* _default;
  FileLimitProperty* _file_types;
};

using FileWidgetCreator = InputWidgetCreator<FileWidget, FileConfiguration>;

// The list of file types, each a list of two texts (pattern, description), with the flag that
// limits the choice to them riding along: both are edited in one table.
class FileLimitProperty : public Property
{
  Q_OBJECT

public:
  FileLimitProperty(const QString& key, const QString& name);
  void setLimited(bool limited) { _limited = limited; }
  bool isLimited() const { return _limited; }

  Property* clone() const override;
  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

private:
  bool _limited = false;
};

// A preview of the file types and the button that opens their table.
class FileLimitPropertyWidget : public QWidget
{
  Q_OBJECT

public:
  explicit FileLimitPropertyWidget(QWidget* parent);

  void setFileTypes(const QVariantList& types);
  const QVariantList& getFileTypes() const { return _types; }
  void setLimited(bool limited) { _limited = limited; }
  bool isLimited() const { return _limited; }

  // "*.stl (STL files), *.txt (Text)".
  static QString previewText(const QVariantList& types);

Q_SIGNALS:
  void signalChanged();

private Q_SLOTS:
  void slotEdit();

private:
  QVariantList _types;
  bool _limited = false;
  QLabel* _preview;
};

// The table of file types: one row per type, rows added and removed, and the flag that offers
// only these types.
class FileTypeTableDialog : public QDialog
{
  Q_OBJECT

public:
  FileTypeTableDialog(QWidget* parent, const QVariantList& types, bool limited);

  // The rows with a pattern, in table order.
  QVariantList getFileTypes() const;
  bool isLimited() const;

  QTableWidget* table() const { return _table; }

private Q_SLOTS:
  void slotAdd();
  void slotRemove();

private:
  void addRow(const QString& pattern, const QString& description);

  QTableWidget* _table;
  QCheckBox* _limited;
};

}  // namespace Vel::MSysScript
