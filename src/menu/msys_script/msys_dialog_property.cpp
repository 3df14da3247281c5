#include "menu/msys_script/msys_dialog_property.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QFont>
#include <QLineEdit>
#include <QTextDocumentFragment>

#include "core/color.h"
#include "core/prog_error.h"
#include "core/translate.h"
#include "core/unit.h"
#include "gtools/vel_color_button.h"
#include "gtools/vel_combo_box.h"
#include "gtools/vel_spin.h"
#include "menu/msys_script/msys_dialog_property_widgets.h"

namespace Vel::MSysScript {

namespace {

// The editor as the widget class of its property; any other widget is a programming error.
template <class Widget, class Editor>
Widget* editorAs(Editor* editor, const char* function)
{
  auto* widget = qobject_cast<Widget*>(editor);
  if (widget == nullptr)
    vel_assert("widget != 0", function, __FILE__, __LINE__);
  return widget;
}

}  // namespace

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
    connect(editor, &QObject::destroyed, this, &Property::slotEditorDestroyed, Qt::UniqueConnection);
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
  auto* edit = editorAs<QLineEdit>(editor, __func__);
  const QSignalBlocker blocker(edit);
  edit->setText(value.toString());
}

QVariant StringProperty::commitEditorValue(const QWidget* editor)
{
  return editorAs<const QLineEdit>(editor, __func__)->text();
}

// ---------------------------------------------------------------------------------------------

IntegerProperty::IntegerProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* IntegerProperty::clone() const
{
  auto* copy = new IntegerProperty(getKey(), getName());
  copy->_minimum = _minimum;
  copy->_maximum = _maximum;
  copyTo(copy);
  return copy;
}

QWidget* IntegerProperty::createEditor(QWidget* parent)
{
  auto* spin = new Vel_Spin(parent);
  spin->setDigits(0);
  spin->setMinValue(_minimum);
  spin->setMaxValue(_maximum);
  connect(spin, &Vel_Spin::valueChanged, this, &Property::slotModified);
  return spin;
}

void IntegerProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  auto* spin = editorAs<Vel_Spin>(editor, __func__);
  const QSignalBlocker blocker(spin);
  spin->setValue(value.toInt());
}

QVariant IntegerProperty::commitEditorValue(const QWidget* editor)
{
  return qRound(editorAs<const Vel_Spin>(editor, __func__)->value());
}

DoubleProperty::DoubleProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* DoubleProperty::clone() const
{
  auto* copy = new DoubleProperty(getKey(), getName());
  copy->_minimum = _minimum;
  copy->_maximum = _maximum;
  copy->_precision = _precision;
  copyTo(copy);
  return copy;
}

QWidget* DoubleProperty::createEditor(QWidget* parent)
{
  auto* spin = new Vel_Spin(parent);
  spin->setDigits(static_cast<unsigned>(qMax(0, _precision)));
  spin->setMinValue(_minimum);
  spin->setMaxValue(_maximum);
  connect(spin, &Vel_Spin::valueChanged, this, &Property::slotModified);
  return spin;
}

void DoubleProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  auto* spin = editorAs<Vel_Spin>(editor, __func__);
  const QSignalBlocker blocker(spin);
  spin->setValue(value.toDouble());
}

QVariant DoubleProperty::commitEditorValue(const QWidget* editor)
{
  return editorAs<const Vel_Spin>(editor, __func__)->value();
}

BoolProperty::BoolProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* BoolProperty::clone() const
{
  auto* copy = new BoolProperty(getKey(), getName());
  copyTo(copy);
  return copy;
}

QWidget* BoolProperty::createEditor(QWidget* parent)
{
  auto* box = new QCheckBox(parent);
  connect(box, &QCheckBox::clicked, this, &Property::slotModified);
  return box;
}

void BoolProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  editorAs<QCheckBox>(editor, __func__)->setChecked(value.toBool());
}

QVariant BoolProperty::commitEditorValue(const QWidget* editor)
{
  return editorAs<const QCheckBox>(editor, __func__)->isChecked();
}

ColorProperty::ColorProperty(const QString& key, const QString& name) : Property(key, name)
{
  Color::registerMetaType();
}

Property* ColorProperty::clone() const
{
  auto* copy = new ColorProperty(getKey(), getName());
  copyTo(copy);
  return copy;
}

QWidget* ColorProperty::createEditor(QWidget* parent)
{
  auto* button = new Vel_ColorButton(parent);
  connect(button, &Vel_ColorButton::changed, this, &Property::slotModified);
  return button;
}

void ColorProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  auto* button = editorAs<Vel_ColorButton>(editor, __func__);
  const QSignalBlocker blocker(button);
  button->setColor(value.value<Color>());
}

QVariant ColorProperty::commitEditorValue(const QWidget* editor)
{
  return QVariant::fromValue(editorAs<const Vel_ColorButton>(editor, __func__)->getColor());
}

DateProperty::DateProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* DateProperty::clone() const
{
  auto* copy = new DateProperty(getKey(), getName());
  copyTo(copy);
  return copy;
}

QWidget* DateProperty::createEditor(QWidget* parent)
{
  auto* edit = new QDateEdit(parent);
  edit->setCalendarPopup(true);
  connect(edit, &QDateEdit::dateChanged, this, &Property::slotModified);
  return edit;
}

void DateProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  auto* edit = editorAs<QDateEdit>(editor, __func__);
  const QSignalBlocker blocker(edit);
  edit->setDate(value.toDate());
}

QVariant DateProperty::commitEditorValue(const QWidget* editor)
{
  return editorAs<const QDateEdit>(editor, __func__)->date();
}

SelectorProperty::SelectorProperty(const QString& key, const QString& name, const Items& items)
    : Property(key, name), _items(items)
{}

Property* SelectorProperty::clone() const
{
  auto* copy = new SelectorProperty(getKey(), getName(), _items);
  copyTo(copy);
  return copy;
}

QWidget* SelectorProperty::createEditor(QWidget* parent)
{
  auto* box = new Vel_ComboBox(parent);
  for (const auto& [label, value] : _items)
    box->addItem(label, value);
  connect(box, &QComboBox::activated, this, &Property::slotModified);
  return box;
}

// A value that no item carries leaves the selection as it is.
void SelectorProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  editorAs<Vel_ComboBox>(editor, __func__)->selectData(value);
}

QVariant SelectorProperty::commitEditorValue(const QWidget* editor)
{
  return editorAs<const Vel_ComboBox>(editor, __func__)->currentData();
}

UnitProperty::UnitProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* UnitProperty::clone() const
{
  auto* copy = new UnitProperty(getKey(), getName());
  copyTo(copy);
  return copy;
}

QWidget* UnitProperty::createEditor(QWidget* parent)
{
  auto* box = new Vel_ComboBox(parent);
  box->addItem(translate("MSysScript_DialogEditor_other", "No unit", ""), QString());
  box->addSeparator();
  for (const Unit* unit : Unit::getAvailableUnitsForApplication())
    box->addItem(unit->getName(), Unit::getID(*unit));
  connect(box, &QComboBox::activated, this, &Property::slotModified);
  return box;
}

void UnitProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  editorAs<Vel_ComboBox>(editor, __func__)->selectData(value.toString());
}

QVariant UnitProperty::commitEditorValue(const QWidget* editor)
{
  return editorAs<const Vel_ComboBox>(editor, __func__)->currentData().toString();
}

TextProperty::TextProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* TextProperty::clone() const
{
  auto* copy = new TextProperty(getKey(), getName());
  copy->_default_font = _default_font;
  copyTo(copy);
  return copy;
}

QWidget* TextProperty::createEditor(QWidget* parent)
{
  auto* panel = new TextPropertyWidget(parent, _default_font);
  connect(panel, &TextPropertyWidget::signalChanged, this, &Property::slotModified);
  return panel;
}

void TextProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  editorAs<TextPropertyWidget>(editor, __func__)->setText(value.toString());
}

QVariant TextProperty::commitEditorValue(const QWidget* editor)
{
  return editorAs<const TextPropertyWidget>(editor, __func__)->getText();
}

IconProperty::IconProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* IconProperty::clone() const
{
  auto* copy = new IconProperty(getKey(), getName());
  copyTo(copy);
  return copy;
}

QWidget* IconProperty::createEditor(QWidget* parent)
{
  auto* panel = new IconPropertyWidget(parent);
  connect(panel, &IconPropertyWidget::signalChanged, this, &Property::slotModified);
  return panel;
}

void IconProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  editorAs<IconPropertyWidget>(editor, __func__)->setImage(value.value<QImage>());
}

QVariant IconProperty::commitEditorValue(const QWidget* editor)
{
  const auto* panel = editorAs<const IconPropertyWidget>(editor, __func__);
  _file_name = panel->getFileName();
  return panel->getImage();
}

FileProperty::FileProperty(const QString& key, const QString& name) : Property(key, name) {}

Property* FileProperty::clone() const
{
  auto* copy = new FileProperty(getKey(), getName());
  copy->_file_type = _file_type;
  copyTo(copy);
  return copy;
}

QWidget* FileProperty::createEditor(QWidget* parent)
{
  auto* panel = new FilePropertyWidget(parent, _file_type);
  connect(panel, &FilePropertyWidget::signalChanged, this, &Property::slotModified);
  return panel;
}

void FileProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  editorAs<FilePropertyWidget>(editor, __func__)->setFileName(value.toString());
}

QVariant FileProperty::commitEditorValue(const QWidget* editor)
{
  return editorAs<const FilePropertyWidget>(editor, __func__)->getFileName();
}

// ---------------------------------------------------------------------------------------------

PropertyEditorModel::PropertyEditorModel(QObject* parent) : QAbstractItemModel(parent) {}

void PropertyEditorModel::setProperties(const std::vector<Property*>& properties)
{
  if (!properties.empty() && !qobject_cast<SeparatorProperty*>(properties.front()))
    throw ProgError(QStringLiteral("PropertyEditorModel::setProperties"), QStringLiteral(__FILE__),
                    QStringLiteral("The first entry must be a separator"));
  beginResetModel();
  for (const Block& block : _blocks)
    for (Property* property : block.properties)
      disconnect(property, nullptr, this, nullptr);
  _blocks.clear();
  for (Property* property : properties) {
    if (qobject_cast<SeparatorProperty*>(property)) {
      _blocks.push_back({property->getName(), {}});
    } else {
      _blocks.back().properties.push_back(property);
      connect(property, &Property::signalModified, this, &PropertyEditorModel::slotPropertyModified);
    }
  }
  endResetModel();
}

const PropertyEditorModel::Block& PropertyEditorModel::getBlock(const QModelIndex& index) const
{
  VEL_ASSERT(isBlock(index) && index.row() < static_cast<int>(_blocks.size()));
  return _blocks[static_cast<size_t>(index.row())];
}

Property* PropertyEditorModel::getProperty(const QModelIndex& index) const
{
  VEL_ASSERT(index.isValid() && !isBlock(index));
  const size_t block = index.internalId() - 1;
  VEL_ASSERT(block < _blocks.size() && index.row() < static_cast<int>(_blocks[block].properties.size()));
  return _blocks[block].properties[static_cast<size_t>(index.row())];
}

QModelIndex PropertyEditorModel::index(int row, int column, const QModelIndex& parent) const
{
  if (row < 0 || column < 0 || column > 1)
    return QModelIndex();
  if (!parent.isValid())
    return row < static_cast<int>(_blocks.size()) ? createIndex(row, column, BLOCK_ID) : QModelIndex();
  if (!isBlock(parent) || row >= static_cast<int>(_blocks[static_cast<size_t>(parent.row())].properties.size()))
    return QModelIndex();
  return createIndex(row, column, static_cast<quintptr>(parent.row()) + 1);
}

QModelIndex PropertyEditorModel::parent(const QModelIndex& child) const
{
  if (!child.isValid() || isBlock(child))
    return QModelIndex();
  return createIndex(static_cast<int>(child.internalId() - 1), 0, BLOCK_ID);
}

int PropertyEditorModel::rowCount(const QModelIndex& parent) const
{
  if (!parent.isValid())
    return static_cast<int>(_blocks.size());
  if (isBlock(parent) && parent.column() == 0)
    return static_cast<int>(_blocks[static_cast<size_t>(parent.row())].properties.size());
  return 0;
}

int PropertyEditorModel::columnCount(const QModelIndex&) const
{
  return 2;
}

QVariant PropertyEditorModel::data(const QModelIndex& index, int role) const
{
  if (!index.isValid())
    return QVariant();
  if (isBlock(index)) {
    switch (role) {
      case Qt::DisplayRole: return index.column() == 0 ? getBlock(index).heading : QString();
      case Qt::FontRole: {
        QFont font;
        font.setBold(true);
        return font;
      }
      case Qt::ForegroundRole: return QBrush(Qt::white);
      case Qt::BackgroundRole: return QBrush(Qt::darkGray);
      default: return QVariant();
    }
  }
  const Property* property = getProperty(index);
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
    if (index.column() == 0)
      return property->getName();
    const QVariant& value = property->getEnabled() ? property->getValue() : property->getDisabledValue();
    // A choice reads as the label the user picked, not as the value stored for it.
    if (const auto* selector = qobject_cast<const SelectorProperty*>(property))
      for (const auto& [label, item] : selector->getItems())
        if (item == value)
          return label;
    return valueText(value);
  }
  if (role == Qt::ForegroundRole && !property->getEnabled())
    return QBrush(Qt::gray);
  return QVariant();
}

QVariant PropertyEditorModel::headerData(int section, Qt::Orientation orientation, int role) const
{
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
    return QVariant();
  return section == 0 ? translate("MSysScript_DialogEditor_other", "Property", "")
                      : translate("MSysScript_DialogEditor_other", "Value", "");
}

Qt::ItemFlags PropertyEditorModel::flags(const QModelIndex& index) const
{
  if (!index.isValid())
    return Qt::NoItemFlags;
  if (isBlock(index))
    return Qt::ItemIsEnabled;
  Qt::ItemFlags flags = Qt::ItemIsSelectable;
  if (getProperty(index)->getEnabled())
    flags |= Qt::ItemIsEnabled;
  if (index.column() == 1)
    flags |= Qt::ItemIsEditable;
  return flags;
}

QString PropertyEditorModel::valueText(const QVariant& value)
{
  switch (value.metaType().id()) {
    case QMetaType::Bool: return translate("MSysScript_DialogEditor_other", value.toBool() ? "Yes" : "No", "");
    // As many digits as anyone types, without the tail of binary fractions (0.1 + 0.2).
    case QMetaType::Double: return QString::number(value.toDouble(), 'g', 12);
    case QMetaType::QDate: return value.toDate().toString(Qt::ISODate);
    case QMetaType::QImage: {
      const QImage image = value.value<QImage>();
      return image.isNull() ? QString() : QStringLiteral("%1 x %2").arg(image.width()).arg(image.height());
    }
    // An entry list reads as its length; its panel opens the entries themselves.
    case QMetaType::QStringList:
      return translate("MSysScript_DialogEditor_other", "%1 entries", "").arg(value.toList().size());
    case QMetaType::QString: {
      const QString text = value.toString();
      return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
    }
    // A list reads as its items; a pair of texts, such as a file type, as "first (second)".
    case QMetaType::QVariantList: {
      QStringList items;
      for (const QVariant& item : value.toList()) {
        const QVariantList pair = item.toList();
        items << (item.typeId() == QMetaType::QVariantList && pair.size() == 2
                      ? QStringLiteral("%1 (%2)").arg(valueText(pair[0]), valueText(pair[1]))
                      : valueText(item));
      }
      return items.join(QStringLiteral(", "));
    }
    default: break;
  }
  if (value.metaType() == QMetaType::fromType<Color>()) {
    // An opaque colour reads as the colour button shows it, without the alpha channel.
    const Color color = value.value<Color>();
    return color.alpha() == 255 ? color.toString().left(7) : color.toString();
  }
  return value.toString();
}

// Column 1 follows the property's value.
void PropertyEditorModel::slotPropertyModified()
{
  const auto* property = qobject_cast<Property*>(sender());
  for (size_t block = 0; block < _blocks.size(); ++block)
    for (size_t row = 0; row < _blocks[block].properties.size(); ++row)
      if (_blocks[block].properties[row] == property) {
        const QModelIndex value = createIndex(static_cast<int>(row), 1, static_cast<quintptr>(block) + 1);
        Q_EMIT dataChanged(value, value);
      }
}

// ---------------------------------------------------------------------------------------------

PropertyEditorDelegate::PropertyEditorDelegate(QObject* parent) : QItemDelegate(parent) {}

QWidget* PropertyEditorDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                              const QModelIndex& index) const
{
  const auto* model = qobject_cast<const PropertyEditorModel*>(index.model());
  if (!model || model->isBlock(index) || index.column() != 1)
    return nullptr;
  Property* property = model->getProperty(index);
  QWidget* editor = property->createEditor(parent);
  if (!editor)
    return nullptr;
  editor->setAutoFillBackground(true);
  editor->setEnabled(property->getEnabled());
  property->setActiveEditor(editor);
  return editor;
}

void PropertyEditorDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
  const auto* model = qobject_cast<const PropertyEditorModel*>(index.model());
  if (!model || model->isBlock(index))
    return;
  Property* property = model->getProperty(index);
  // The view hands every committed change back to the editor it came from. Showing it again
  // would put the cursor of a line edit at the end and reformat a number while it is typed.
  if (property->getEnabled() && property->commitEditorValue(editor) == property->getValue())
    return;
  property->updateEditor(editor);
}

void PropertyEditorDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
  const auto* properties = qobject_cast<const PropertyEditorModel*>(model);
  if (properties && !properties->isBlock(index))
    properties->getProperty(index)->commitEditor(editor);
}

// Rows as high as the tallest editor, so that an open editor is never cut off.
QSize PropertyEditorDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
  QSize size = QItemDelegate::sizeHint(option, index);
  size.setHeight(qMax(size.height(), 26));
  return size;
}

}  // namespace Vel::MSysScript
