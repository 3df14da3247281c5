#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>
#include <QWidget>

#include <functional>

#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_widgets.h"

class QComboBox;
class QLabel;
class QPushButton;
class QTableWidget;

// The drop-down selection element, and the table editor with which the dialog editor edits the
// entries of it and of the radio-button group.
namespace Vel::MSysScript {

// A drop-down of texts; each entry carries its text as user data. Limited, only entries can be
// chosen; not limited, the field also takes any other text.
class ListWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  ListWidget();

  QComboBox* comboBox() const { return _combo; }
  QStringList getItems() const;
  bool isLimited() const { return _limited; }

  QVariant getValue() const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  void takeFocus() override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;
  void setValueLimits(const ValueLimits& limits) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  void setItems(const QStringList& items);
  void setLimited(bool limited);
  // False, with nothing changed, when the list does not take the text.
  bool select(const QString& text);

  QComboBox* _combo;
  bool _limited = true;
};

// A table of entries, one row each, with one or more columns; the texts of the result column
// form the list. Optionally one entry is chosen as the default display.
class ListEditorDialog : public QDialog
{
  Q_OBJECT

public:
  using Rows = QList<QStringList>;
  // The message for the first row that cannot be taken; empty when all can.
  using RowCheck = std::function<QString(const Rows& rows)>;

  ListEditorDialog(QWidget* parent, const QStringList& headers, int resultColumn = 0,
                   bool canSelectDefaultItem = false);
  ~ListEditorDialog() override;

  QTableWidget* table() const { return _table; }
  void setRowCheck(RowCheck check) { _row_check = std::move(check); }

  // Rows shorter than the table is wide are filled with empty texts.
  void setValue(const Rows& rows);
  QStringList getValue() const;
  Rows getRows() const;
  // Only where a default may be chosen; a text that no entry has chooses none.
  void setDefaultValue(const QString& text);
  QString getDefaultValue() const;

  void accept() override;
  void done(int result) override;

public Q_SLOTS:
  void slotAdd();
  void slotRemove();
  void slotMoveUp();
  void slotMoveDown();

private Q_SLOTS:
  void slotSelectionChanged();
  void slotDefaultChosen(int index);

private:
  QList<int> selectedRows() const;
  void moveRow(int from, int to);
  void selectRow(int row);
  int defaultRow() const;
  void markDefault(int row);
  void refreshDefaults();

  QTableWidget* _table;
  QPushButton* _add;
  QPushButton* _remove;
  QPushButton* _up;
  QPushButton* _down;
  QComboBox* _default = nullptr;
  const int _result_column;
  const bool _can_select_default_item;
  RowCheck _row_check;
};

// The property panel of an entry list: how many entries it has, and a button that opens the
// table editor.
class ListPropertyWidget : public QWidget
{
  Q_OBJECT

public:
  ListPropertyWidget(QWidget* parent, const QString& objectName, const QStringList& headers,
                     ListEditorDialog::RowCheck check, bool canSelectDefaultItem);

  void setRows(const ListEditorDialog::Rows& rows);
  const ListEditorDialog::Rows& getRows() const { return _rows; }
  void setDefaultValue(const QString& text) { _default = text; }
  const QString& getDefaultValue() const { return _default; }

Q_SIGNALS:
  void signalChanged();

private Q_SLOTS:
  void slotEdit();

private:
  QStringList _headers;
  ListEditorDialog::RowCheck _check;
  bool _can_select_default_item;
  ListEditorDialog::Rows _rows;
  QString _default;
  QLabel* _preview;
};

// What the table properties share: the entry chosen as default, when the panel offers that.
class TableProperty : public Property
{
  Q_OBJECT

public:
  void setCanSelectDefaultItem(bool can) { _can_select_default_item = can; }
  bool canSelectDefaultItem() const { return _can_select_default_item; }
  void setDefaultValue(const QString& text) { _default = text; }
  const QString& getDefaultValue() const { return _default; }

  QWidget* createEditor(QWidget* parent) override;
  void updateEditorValue(QWidget* editor, const QVariant& value) override;
  QVariant commitEditorValue(const QWidget* editor) override;

protected:
  TableProperty(const QString& key, const QString& name);
  void copyTableSettingsTo(TableProperty* other) const;

  virtual QString panelName() const = 0;
  virtual QStringList headers() const = 0;
  virtual ListEditorDialog::RowCheck rowCheck() const = 0;
  virtual ListEditorDialog::Rows rowsOf(const QVariant& value) const = 0;
  virtual QVariant valueOf(const ListEditorDialog::Rows& rows) const = 0;

private:
  bool _can_select_default_item = false;
  QString _default;
};

// The entries of a selection list, as a QStringList.
class ListProperty : public TableProperty
{
  Q_OBJECT

public:
  ListProperty(const QString& key, const QString& name);
  Property* clone() const override;

protected:
  QString panelName() const override;
  QStringList headers() const override;
  ListEditorDialog::RowCheck rowCheck() const override;
  ListEditorDialog::Rows rowsOf(const QVariant& value) const override;
  QVariant valueOf(const ListEditorDialog::Rows& rows) const override;
};

// The buttons of a radio-button group: a QVariantList of (state, description) pairs, each a
// QVariantList of two texts, as scripts give them.
class RadioButtonProperty : public TableProperty
{
  Q_OBJECT

public:
  RadioButtonProperty(const QString& key, const QString& name);
  Property* clone() const override;

protected:
  QString panelName() const override;
  QStringList headers() const override;
  ListEditorDialog::RowCheck rowCheck() const override;
  ListEditorDialog::Rows rowsOf(const QVariant& value) const override;
  QVariant valueOf(const ListEditorDialog::Rows& rows) const override;
};

// The panel of a list-like element: its entries, and the default chosen beside them, which must
// outlast the entries being replaced.
class ListConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit ListConfiguration(QWidget* parent);
  void setup(const DialogWidget* widget) override;
  void apply(DialogWidget* widget) override;

protected:
  ListConfiguration(QWidget* parent, const char* heading, TableProperty* items);

private:
  TableProperty* _items;
};

template <typename Widget, typename Configuration>
using SelectionWidgetCreator = CatalogueElementCreator<Widget, Configuration>;

using ListWidgetCreator = SelectionWidgetCreator<ListWidget, ListConfiguration>;

}  // namespace Vel::MSysScript
