#include "menu/msys_script/msys_dialog_list_widget.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>

#include "cfg/cfg.h"
#include "core/prog_error.h"
#include "core/python_string.h"
#include "core/translate.h"
#include "gapp/interaction.h"
#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"
#include "menu/msys_script/msys_value_limits.h"

namespace Vel::MSysScript {

using namespace WidgetTools;

namespace {

const QString TAG_ITEMS = QStringLiteral("items");
const QString TAG_ITEM = QStringLiteral("item");
const QString TAG_DEFAULT = QStringLiteral("default");
const QString TAG_LIMITED = QStringLiteral("limited");
const QString KEY_DESCRIPTIONS = QStringLiteral("descriptions");

// A list of texts as scripts give it (a list or tuple) or as a property holds it.
QStringList textListArg(const QVariant& value)
{
  if (value.typeId() == QMetaType::QStringList)
    return value.toStringList();
  if (value.typeId() != QMetaType::QVariantList)
    throwTypeError();
  QStringList texts;
  for (const QVariant& entry : value.toList())
    texts << textArg(entry);
  return texts;
}

QString quotedList(const QStringList& texts)
{
  QStringList quoted;
  for (const QString& text : texts)
    quoted << QStringLiteral("'%1'").arg(escapePythonString(text));
  return quoted.join(QStringLiteral(", "));
}

}  // namespace

// ---------------------------------------------------------------------------------------------

const QString ListWidget::TYPE_ID = QStringLiteral("input::list");

ListWidget::ListWidget() : DialogWidget(TYPE_ID), _combo(new QComboBox(this))
{
  innerLayout(this)->addWidget(_combo);
  setFocusProxy(_combo);
  // Free text is a value, never a new entry: the entries are the definition's.
  _combo->setInsertPolicy(QComboBox::NoInsert);
  connect(_combo, &QComboBox::activated, this, &ListWidget::slotModified);
}

QStringList ListWidget::getItems() const
{
  QStringList items;
  for (int index = 0; index < _combo->count(); ++index)
    items << _combo->itemData(index).toString();
  return items;
}

QVariant ListWidget::getValue() const
{
  return _limited ? _combo->currentData().toString() : _combo->currentText();
}

void ListWidget::parseXml(const QDomNode& node)
{
  const QString old_name = getName();
  const QString old_tooltip = getTooltip();
  QStringList items;
  bool limited = true;
  std::optional<QString> chosen;
  try {
    DialogWidget::parseXml(node);
    if (Xml::hasChild(node, TAG_ITEMS))
      for (const QDomElement& item : Xml::getChildren(Xml::getChild(node, TAG_ITEMS), TAG_ITEM))
        items << item.text();
    limited = valueOr(node, TAG_LIMITED, true);
    if (Xml::hasChild(node, TAG_DEFAULT))
      chosen = Xml::getValue<QString>(node, TAG_DEFAULT);
  } catch (...) {
    // A definition that does not read changes nothing, the base's tags included.
    setName(old_name);
    setTooltip(old_tooltip);
    throw;
  }
  setLimited(limited);
  setItems(items);
  // A default that is not an entry of a limited list leaves the first entry selected.
  if (chosen)
    select(*chosen);
}

void ListWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  QDomElement items = document->createElement(TAG_ITEMS);
  for (const QString& item : getItems())
    items.appendChild(Xml::createValue(document, TAG_ITEM, item));
  element->appendChild(items);
  element->appendChild(Xml::createValue(document, TAG_DEFAULT, getValue().toString()));
  // Written only where it differs from what a reader assumes without it.
  if (!_limited)
    element->appendChild(Xml::createValue(document, TAG_LIMITED, false));
}

void ListWidget::takeFocus()
{
  _combo->setFocus(Qt::OtherFocusReason);
}

// Without the element's name: the printed form has always been this way.
QString ListWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.ListWidget (value='%1', items=[%2])")
      .arg(escapePythonString(getValue().toString()), quotedList(getItems()));
}

QVariant ListWidget::__getattr__(const QString& name) const
{
  if (name == TAG_ITEMS)
    return getItems();
  if (name == TAG_DEFAULT)
    return getValue();
  if (name == TAG_LIMITS)
    return QVariantMap{{TAG_LIMITED, _limited}, {KEY_DESCRIPTIONS, getItems()}};
  return DialogWidget::__getattr__(name);
}

void ListWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE || name == TAG_DEFAULT) {
    const QString text = textArg(value);
    if (!select(text))
      throw ScriptTypeException(errorText("\"%1\" is not a list member.").arg(text));
  } else if (name == TAG_ITEMS)
    setItems(textListArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

void ListWidget::setValueLimits(const ValueLimits& limits)
{
  const auto* list = dynamic_cast<const ListValueLimits*>(&limits);
  if (!list)
    throwTypeError();
  setLimited(list->isLimited());
  setItems(list->getDescriptions());
}

std::vector<AttributeInfo> ListWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "str");
  rows.push_back(row(TAG_ITEMS, "list", "List of items"));
  rows.push_back(row(TAG_DEFAULT, "str", "Default entry"));
  rows.push_back(row(TAG_LIMITS, "dict", "Allowed entries"));
  return rows;
}

void ListWidget::setItems(const QStringList& items)
{
  _combo->clear();
  for (const QString& item : items)
    _combo->addItem(item, item);
}

void ListWidget::setLimited(bool limited)
{
  _limited = limited;
  if (_combo->isEditable() != limited)
    return;
  _combo->setEditable(!limited);
  // Typing free text is a person's change like picking an entry.
  if (QLineEdit* edit = _combo->lineEdit())
    connect(edit, &QLineEdit::textEdited, this, &ListWidget::slotModified);
}

bool ListWidget::select(const QString& text)
{
  const int index = _combo->findData(text);
  if (index >= 0) {
    _combo->setCurrentIndex(index);
    return true;
  }
  if (_limited)
    return false;
  _combo->setCurrentIndex(-1);
  _combo->setEditText(text);
  return true;
}

// ---------------------------------------------------------------------------------------------

namespace {

QString editorOther(const char* text)
{
  return translate("MSysScript_DialogEditor_other", text, "");
}

// Marks the entry chosen as default on its result-column cell, so that it follows the row
// through moves and goes with it when it is removed.
constexpr int DEFAULT_ROLE = Qt::UserRole + 1;

const QSize DEFAULT_SIZE(420, 320);

QString cellText(const QTableWidget* table, int row, int column)
{
  const QTableWidgetItem* item = table->item(row, column);
  return item ? item->text() : QString();
}

QPushButton* sideButton(QWidget* parent, const char* objectName, const char* text)
{
  auto* button = new QPushButton(editorOther(text), parent);
  button->setObjectName(QString::fromLatin1(objectName));
  button->setAutoDefault(false);
  return button;
}

bool hasSizeItems(const CfgNode* root)
{
  return root && root->contains(QString::fromLatin1(CFG_LIST_EDITOR_DIALOG_WIDTH)) &&
         root->contains(QString::fromLatin1(CFG_LIST_EDITOR_DIALOG_HEIGHT));
}

}  // namespace

ListEditorDialog::ListEditorDialog(QWidget* parent, const QStringList& headers, int resultColumn,
                                   bool canSelectDefaultItem)
    : QDialog(parent),
      _table(new QTableWidget(0, int(headers.size()), this)),
      _add(sideButton(this, "_add", "Add")),
      _remove(sideButton(this, "_remove", "Remove")),
      _up(sideButton(this, "_up", "Move up")),
      _down(sideButton(this, "_down", "Move down")),
      _result_column(resultColumn),
      _can_select_default_item(canSelectDefaultItem)
{
  VEL_ASSERT(resultColumn >= 0 && resultColumn < headers.size());
  setObjectName(QStringLiteral("VelMSysScript_ListEditor"));
  setWindowTitle(editorOther("Edit list"));

  _table->setObjectName(QStringLiteral("_table"));
  _table->setHorizontalHeaderLabels(headers);
  _table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  _table->verticalHeader()->hide();
  _table->setSelectionBehavior(QAbstractItemView::SelectRows);
  _table->setSelectionMode(QAbstractItemView::ExtendedSelection);
  _table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                          QAbstractItemView::AnyKeyPressed);

  auto* side = new QVBoxLayout;
  for (QPushButton* button : {_add, _remove, _up, _down})
    side->addWidget(button);
  side->addStretch(1);
  auto* body = new QHBoxLayout;
  body->addWidget(_table, 1);
  body->addLayout(side);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(body, 1);
  if (_can_select_default_item) {
    _default = new QComboBox(this);
    _default->setObjectName(QStringLiteral("_default"));
    auto* label = new QLabel(editorOther("Default display"), this);
    label->setBuddy(_default);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(_default, 1);
    layout->addLayout(row);
    connect(_default, &QComboBox::activated, this, &ListEditorDialog::slotDefaultChosen);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("_ok"));
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("_cancel"));
  layout->addWidget(buttons);

  connect(buttons, &QDialogButtonBox::accepted, this, &ListEditorDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &ListEditorDialog::reject);
  connect(_add, &QPushButton::clicked, this, &ListEditorDialog::slotAdd);
  connect(_remove, &QPushButton::clicked, this, &ListEditorDialog::slotRemove);
  connect(_up, &QPushButton::clicked, this, &ListEditorDialog::slotMoveUp);
  connect(_down, &QPushButton::clicked, this, &ListEditorDialog::slotMoveDown);
  connect(_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &ListEditorDialog::slotSelectionChanged);
  connect(_table, &QTableWidget::itemChanged, this, &ListEditorDialog::refreshDefaults);

  QSize size = DEFAULT_SIZE;
  if (const CfgNode* root = configurationRoot(); hasSizeItems(root)) {
    const int width = root->getInt(QString::fromLatin1(CFG_LIST_EDITOR_DIALOG_WIDTH));
    const int height = root->getInt(QString::fromLatin1(CFG_LIST_EDITOR_DIALOG_HEIGHT));
    if (width > 0 && height > 0)
      size = QSize(width, height);
  }
  resize(size);
  slotSelectionChanged();
}

void ListEditorDialog::setValue(const Rows& rows)
{
  const QSignalBlocker blocker(_table);
  _table->clearContents();
  _table->setRowCount(int(rows.size()));
  for (int row = 0; row < rows.size(); ++row)
    for (int column = 0; column < _table->columnCount(); ++column)
      _table->setItem(row, column, new QTableWidgetItem(rows[row].value(column)));
  refreshDefaults();
  slotSelectionChanged();
}

QStringList ListEditorDialog::getValue() const
{
  QStringList texts;
  for (int row = 0; row < _table->rowCount(); ++row)
    texts << cellText(_table, row, _result_column);
  return texts;
}

ListEditorDialog::Rows ListEditorDialog::getRows() const
{
  Rows rows;
  for (int row = 0; row < _table->rowCount(); ++row) {
    QStringList texts;
    for (int column = 0; column < _table->columnCount(); ++column)
      texts << cellText(_table, row, column);
    rows << texts;
  }
  return rows;
}

void ListEditorDialog::setDefaultValue(const QString& text)
{
  VEL_ASSERT(_can_select_default_item);
  markDefault(int(getValue().indexOf(text)));
}

QString ListEditorDialog::getDefaultValue() const
{
  VEL_ASSERT(_can_select_default_item);
  const int row = defaultRow();
  return row < 0 ? QString() : cellText(_table, row, _result_column);
}

// The table tells of its selection while QWidget's destructor takes it down, when this is no
// dialog of ours any more.
ListEditorDialog::~ListEditorDialog()
{
  _table->selectionModel()->disconnect(this);
  _table->disconnect(this);
}

void ListEditorDialog::accept()
{
  // A cell still being typed in counts as typed: leaving the current cell commits it.
  const QModelIndex current = _table->currentIndex();
  _table->selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
  _table->selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
  if (_can_select_default_item && _table->rowCount() > 0 && defaultRow() < 0) {
    // The person's slip in the table, not a failed operation: said without an error code.
    GApp::ErrorDialog(QString(), translate("VelMSysScript_ListEditor_err", "Please define a default display.", ""));
    return;
  }
  if (_row_check) {
    const QString fault = _row_check(getRows());
    if (!fault.isEmpty()) {
      GApp::ErrorDialog(QString(), fault);
      return;
    }
  }
  QDialog::accept();
}

void ListEditorDialog::done(int result)
{
  if (CfgNode* root = configurationRoot(); hasSizeItems(root)) {
    root->setValue(QString::fromLatin1(CFG_LIST_EDITOR_DIALOG_WIDTH), width());
    root->setValue(QString::fromLatin1(CFG_LIST_EDITOR_DIALOG_HEIGHT), height());
  }
  QDialog::done(result);
}

// After the one selected row, or at the end.
void ListEditorDialog::slotAdd()
{
  const QList<int> rows = selectedRows();
  if (rows.size() >= 2)
    vel_assert("rows.size () < 2", __func__, __FILE__, __LINE__);
  const int row = rows.isEmpty() ? _table->rowCount() : rows.front() + 1;
  {
    const QSignalBlocker blocker(_table);
    _table->insertRow(row);
    for (int column = 0; column < _table->columnCount(); ++column)
      _table->setItem(row, column, new QTableWidgetItem);
  }
  refreshDefaults();
  selectRow(row);
  _table->editItem(_table->item(row, 0));
}

void ListEditorDialog::slotRemove()
{
  const QList<int> selected_rows = selectedRows();
  if (selected_rows.isEmpty())
    vel_assert("selected_rows.size () > 0", __func__, __FILE__, __LINE__);
  for (auto row = selected_rows.crbegin(); row != selected_rows.crend(); ++row)
    _table->removeRow(*row);
  refreshDefaults();
  // The row that took the place of the first one removed, so that removing can go on.
  if (_table->rowCount() > 0)
    selectRow(std::min(selected_rows.front(), _table->rowCount() - 1));
  else
    slotSelectionChanged();
}

void ListEditorDialog::slotMoveUp()
{
  const QList<int> selected_rows = selectedRows();
  if (selected_rows.size() != 1)
    vel_assert("selected_rows.size () == 1", __func__, __FILE__, __LINE__);
  if (selected_rows.front() > 0)
    moveRow(selected_rows.front(), selected_rows.front() - 1);
}

void ListEditorDialog::slotMoveDown()
{
  const QList<int> selected_rows = selectedRows();
  if (selected_rows.size() != 1)
    vel_assert("selected_rows.size () == 1", __func__, __FILE__, __LINE__);
  if (selected_rows.front() < _table->rowCount() - 1)
    moveRow(selected_rows.front(), selected_rows.front() + 1);
}

void ListEditorDialog::slotSelectionChanged()
{
  const QList<int> rows = selectedRows();
  _add->setEnabled(rows.size() < 2);
  _remove->setEnabled(!rows.isEmpty());
  _up->setEnabled(rows.size() == 1 && rows.front() > 0);
  _down->setEnabled(rows.size() == 1 && rows.front() < _table->rowCount() - 1);
}

void ListEditorDialog::slotDefaultChosen(int index)
{
  markDefault(index);
}

QList<int> ListEditorDialog::selectedRows() const
{
  QList<int> rows;
  for (const QModelIndex& index : _table->selectionModel()->selectedRows())
    rows << index.row();
  std::sort(rows.begin(), rows.end());
  return rows;
}

void ListEditorDialog::moveRow(int from, int to)
{
  {
    const QSignalBlocker blocker(_table);
    for (int column = 0; column < _table->columnCount(); ++column) {
      QTableWidgetItem* moving = _table->takeItem(from, column);
      _table->setItem(from, column, _table->takeItem(to, column));
      _table->setItem(to, column, moving);
    }
  }
  refreshDefaults();
  selectRow(to);
}

void ListEditorDialog::selectRow(int row)
{
  _table->clearSelection();
  _table->setCurrentCell(row, 0, QItemSelectionModel::Select | QItemSelectionModel::Rows);
  slotSelectionChanged();
}

int ListEditorDialog::defaultRow() const
{
  for (int row = 0; row < _table->rowCount(); ++row)
    if (const QTableWidgetItem* item = _table->item(row, _result_column); item && item->data(DEFAULT_ROLE).toBool())
      return row;
  return -1;
}

void ListEditorDialog::markDefault(int chosen)
{
  {
    const QSignalBlocker blocker(_table);
    for (int row = 0; row < _table->rowCount(); ++row)
      if (QTableWidgetItem* item = _table->item(row, _result_column))
        item->setData(DEFAULT_ROLE, row == chosen);
  }
  refreshDefaults();
}

// The choice lists the entries as they are now, with the marked one chosen. An entry of several
// columns shows the others beside its result, so that a state reads with its description.
void ListEditorDialog::refreshDefaults()
{
  if (!_default)
    return;
  const QSignalBlocker blocker(_default);
  _default->clear();
  for (int row = 0; row < _table->rowCount(); ++row) {
    QStringList others;
    for (int column = 0; column < _table->columnCount(); ++column)
      if (column != _result_column && !cellText(_table, row, column).isEmpty())
        others << cellText(_table, row, column);
    const QString result = cellText(_table, row, _result_column);
    _default->addItem(others.isEmpty() ? result : QStringLiteral("%1 (%2)").arg(result, others.join(QStringLiteral(", "))));
  }
  _default->setCurrentIndex(defaultRow());
}

// ---------------------------------------------------------------------------------------------

ListPropertyWidget::ListPropertyWidget(QWidget* parent, const QString& objectName, const QStringList& headers,
                                       ListEditorDialog::RowCheck check, bool canSelectDefaultItem)
    : QWidget(parent),
      _headers(headers),
      _check(std::move(check)),
      _can_select_default_item(canSelectDefaultItem),
      _preview(new QLabel(this))
{
  setObjectName(objectName);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  _preview->setObjectName(QStringLiteral("_preview"));
  layout->addWidget(_preview, 1);
  auto* edit = new QToolButton(this);
  edit->setObjectName(QStringLiteral("_edit"));
  edit->setText(QStringLiteral("..."));
  edit->setToolTip(editorOther("Edit list"));
  layout->addWidget(edit);
  connect(edit, &QToolButton::clicked, this, &ListPropertyWidget::slotEdit);
  setRows({});
}

void ListPropertyWidget::setRows(const ListEditorDialog::Rows& rows)
{
  _rows = rows;
  _preview->setText(editorOther("%1 entries").arg(rows.size()));
}

void ListPropertyWidget::slotEdit()
{
  ListEditorDialog dialog(this, _headers, 0, _can_select_default_item);
  dialog.setRowCheck(_check);
  dialog.setValue(_rows);
  if (_can_select_default_item)
    dialog.setDefaultValue(_default);
  if (dialog.exec() != QDialog::Accepted)
    return;
  const QString chosen = _can_select_default_item ? dialog.getDefaultValue() : _default;
  if (dialog.getRows() == _rows && chosen == _default)
    return;
  _default = chosen;
  setRows(dialog.getRows());
  Q_EMIT signalChanged();
}

// ---------------------------------------------------------------------------------------------

TableProperty::TableProperty(const QString& key, const QString& name) : Property(key, name) {}

void TableProperty::copyTableSettingsTo(TableProperty* other) const
{
  copyTo(other);
  other->_can_select_default_item = _can_select_default_item;
  other->_default = _default;
}

QWidget* TableProperty::createEditor(QWidget* parent)
{
  auto* panel = new ListPropertyWidget(parent, panelName(), headers(), rowCheck(), _can_select_default_item);
  connect(panel, &ListPropertyWidget::signalChanged, this, &Property::slotModified);
  return panel;
}

void TableProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  auto* panel = qobject_cast<ListPropertyWidget*>(editor);
  VEL_ASSERT(panel != 0);
  panel->setRows(rowsOf(value));
  panel->setDefaultValue(_default);
}

QVariant TableProperty::commitEditorValue(const QWidget* editor)
{
  const auto* panel = qobject_cast<const ListPropertyWidget*>(editor);
  VEL_ASSERT(panel != 0);
  if (_can_select_default_item)
    _default = panel->getDefaultValue();
  return valueOf(panel->getRows());
}

ListProperty::ListProperty(const QString& key, const QString& name) : TableProperty(key, name) {}

Property* ListProperty::clone() const
{
  auto* copy = new ListProperty(getKey(), getName());
  copyTableSettingsTo(copy);
  return copy;
}

QString ListProperty::panelName() const
{
  return QStringLiteral("VelMSysScript_ListProperty_widget");
}

QStringList ListProperty::headers() const
{
  return {editorOther("Entries")};
}

ListEditorDialog::RowCheck ListProperty::rowCheck() const
{
  return [](const ListEditorDialog::Rows& rows) {
    for (const QStringList& row : rows)
      if (row.value(0).isEmpty())
        return editorOther("Please enter text.");
    return QString();
  };
}

ListEditorDialog::Rows ListProperty::rowsOf(const QVariant& value) const
{
  ListEditorDialog::Rows rows;
  for (const QString& text : value.toStringList())
    rows << QStringList{text};
  return rows;
}

QVariant ListProperty::valueOf(const ListEditorDialog::Rows& rows) const
{
  QStringList texts;
  for (const QStringList& row : rows)
    texts << row.value(0);
  return texts;
}

RadioButtonProperty::RadioButtonProperty(const QString& key, const QString& name) : TableProperty(key, name) {}

Property* RadioButtonProperty::clone() const
{
  auto* copy = new RadioButtonProperty(getKey(), getName());
  copyTableSettingsTo(copy);
  return copy;
}

QString RadioButtonProperty::panelName() const
{
  return QStringLiteral("VelMSysScript_RadioButtonProperty_widget");
}

QStringList RadioButtonProperty::headers() const
{
  return {editorOther("State"), editorOther("Description")};
}

ListEditorDialog::RowCheck RadioButtonProperty::rowCheck() const
{
  return [](const ListEditorDialog::Rows& rows) {
    for (const QStringList& row : rows)
      if (row.value(1).isEmpty())
        return editorOther("Please enter a description.");
    return QString();
  };
}

ListEditorDialog::Rows RadioButtonProperty::rowsOf(const QVariant& value) const
{
  ListEditorDialog::Rows rows;
  for (const QVariant& pair : value.toList()) {
    const QVariantList texts = pair.toList();
    rows << QStringList{texts.value(0).toString(), texts.value(1).toString()};
  }
  return rows;
}

QVariant RadioButtonProperty::valueOf(const ListEditorDialog::Rows& rows) const
{
  QVariantList pairs;
  for (const QStringList& row : rows)
    pairs << QVariant(QVariantList{row.value(0), row.value(1)});
  return pairs;
}

// ---------------------------------------------------------------------------------------------

ListConfiguration::ListConfiguration(QWidget* parent)
    : ListConfiguration(parent, "Selection list", new ListProperty(TAG_ITEMS, panelText("Edit list")))
{
}

ListConfiguration::ListConfiguration(QWidget* parent, const char* heading, TableProperty* items)
    : ElementConfiguration(parent), _items(items)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(panelText(heading)));
  _items->setCanSelectDefaultItem(true);
  addProperty(_items);
}

void ListConfiguration::setup(const DialogWidget* widget)
{
  _items->setDefaultValue(widget->__getattr__(TAG_DEFAULT).toString());
  ElementConfiguration::setup(widget);
}

// New entries start with a default of their own; the chosen one is set once they are there.
void ListConfiguration::apply(DialogWidget* widget)
{
  ElementConfiguration::apply(widget);
  try {
    widget->__setattr__(TAG_DEFAULT, _items->getDefaultValue());
  } catch (const ScriptTypeException&) {
    // The default left with its entry: the element keeps the one it has now.
  }
}

}  // namespace Vel::MSysScript
