#include "menu/msys_script/msys_dialog_radio_buttons.h"

#include <QButtonGroup>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>

#include "core/prog_error.h"
#include "core/python_string.h"
#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"

namespace Vel::MSysScript {

using namespace WidgetTools;

namespace {

const QString TAG_ITEMS = QStringLiteral("items");
const QString TAG_ITEM = QStringLiteral("item");
const QString TAG_DEFAULT = QStringLiteral("default");
const QString ATTR_STATE = QStringLiteral("state");
const QString ATTR_DESCRIPTION = QStringLiteral("description");

[[noreturn]] void throwNoSuchButton(const QString& state)
{
  throw ScriptTypeException(editorError("There is no radiobutton with the name \"%1\".").arg(state));
}

// Scripts give (state, description) tuples; Python's tuples and lists arrive alike, as lists.
std::vector<RadioButtonWidget::Item> itemsArg(const QVariant& value)
{
  if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList)
    throwTypeError();
  std::vector<RadioButtonWidget::Item> items;
  for (const QVariant& entry : value.toList()) {
    const QVariantList pair = entry.toList();
    if (entry.typeId() != QMetaType::QVariantList || pair.size() != 2)
      throw ScriptTypeException(editorError("A tuple is expected."));
    items.push_back({textArg(pair[0]), textArg(pair[1])});
  }
  return items;
}

}  // namespace

const QString RadioButtonWidget::TYPE_ID = QStringLiteral("input::radiobutton");

RadioButtonWidget::RadioButtonWidget()
    : DialogWidget(TYPE_ID), _layout(new QVBoxLayout(this)), _group(new QButtonGroup(this))
{
  _layout->setContentsMargins(0, 0, 0, 0);
  connect(_group, &QButtonGroup::buttonClicked, this, &RadioButtonWidget::slotModified);
  // The element has the focus when its checked button has it.
  connect(_group, &QButtonGroup::buttonToggled, this, [this](QAbstractButton* button, bool checked) {
    if (checked)
      setFocusProxy(button);
  });
  const QString one = QStringLiteral("ONE");
  const QString two = QStringLiteral("TWO");
  const QString three = QStringLiteral("THREE");
  setItems({{one, one}, {two, two}, {three, three}}, one);
}

std::vector<RadioButtonWidget::Item> RadioButtonWidget::getItems() const
{
  std::vector<Item> items;
  for (size_t index = 0; index < _buttons.size(); ++index)
    items.push_back({_states[int(index)], _buttons[index]->text()});
  return items;
}

QVariant RadioButtonWidget::getValue() const
{
  if (_buttons.empty())
    return QString();
  const QAbstractButton* checked = _group->checkedButton();
  if (!checked)
    throw ProgError(QStringLiteral("RadioButtonWidget::getValue"), QStringLiteral(__FILE__),
                    QStringLiteral("Radio button state corrupted"));
  return stateOf(static_cast<const QRadioButton*>(checked));
}

bool RadioButtonWidget::checkConfiguration(QString* error) const
{
  if (!DialogWidget::checkConfiguration(error))
    return false;
  if (!_buttons.empty())
    return true;
  if (error)
    *error = editorError("For object \"%1\" no button was added yet.").arg(getName());
  return false;
}

void RadioButtonWidget::parseXml(const QDomNode& node)
{
  const QString old_name = getName();
  const QString old_tooltip = getTooltip();
  std::vector<Item> items;
  std::optional<QString> chosen;
  try {
    DialogWidget::parseXml(node);
    if (Xml::hasChild(node, TAG_ITEMS))
      for (const QDomElement& item : Xml::getChildren(Xml::getChild(node, TAG_ITEMS), TAG_ITEM))
        items.push_back({Xml::getAttribute<QString>(item, ATTR_STATE), Xml::getAttribute<QString>(item, ATTR_DESCRIPTION)});
    if (Xml::hasChild(node, TAG_DEFAULT)) {
      chosen = Xml::getValue<QString>(node, TAG_DEFAULT);
      const bool known = std::any_of(items.begin(), items.end(), [&](const Item& item) { return item.state == *chosen; });
      if (!known)
        throw Xml::ParseException(Xml::getChild(node, TAG_DEFAULT),
                                  editorError("There is no radiobutton with the name \"%1\".").arg(*chosen));
    }
  } catch (...) {
    // A definition that does not read changes nothing, the base's tags included.
    setName(old_name);
    setTooltip(old_tooltip);
    throw;
  }
  setItems(items, chosen.value_or(QString()));
}

void RadioButtonWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  QDomElement items = document->createElement(TAG_ITEMS);
  for (const Item& item : getItems()) {
    QDomElement entry = document->createElement(TAG_ITEM);
    entry.setAttribute(ATTR_STATE, item.state);
    entry.setAttribute(ATTR_DESCRIPTION, item.description);
    items.appendChild(entry);
  }
  element->appendChild(items);
  // Without buttons nothing is checked, and a default would name a button that is not there.
  if (!_buttons.empty())
    element->appendChild(Xml::createValue(document, TAG_DEFAULT, getValue().toString()));
}

void RadioButtonWidget::takeFocus()
{
  if (QAbstractButton* checked = _group->checkedButton())
    checked->setFocus(Qt::OtherFocusReason);
  else
    DialogWidget::takeFocus();
}

QString RadioButtonWidget::__repr__() const
{
  QStringList states;
  for (const QString& state : _states)
    states << QStringLiteral("'%1'").arg(escapePythonString(state));
  return QStringLiteral("zut.dialog.RadioButtonWidget (name='%1', value='%2', items=[%3])")
      .arg(nameText(this), escapePythonString(getValue().toString()), states.join(QStringLiteral(", ")));
}

QVariant RadioButtonWidget::__getattr__(const QString& name) const
{
  if (name == TAG_ITEMS) {
    QVariantList pairs;
    for (const Item& item : getItems())
      pairs << QVariant(QVariantList{item.state, item.description});
    return pairs;
  }
  if (name == TAG_DEFAULT)
    return getValue();
  return DialogWidget::__getattr__(name);
}

void RadioButtonWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE || name == TAG_DEFAULT) {
    const QString state = textArg(value);
    QRadioButton* button = find(state);
    if (!button)
      throwNoSuchButton(state);
    button->setChecked(true);
  } else if (name == TAG_ITEMS)
    setItems(itemsArg(value), getValue().toString());
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> RadioButtonWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "str");
  rows.push_back(row(TAG_ITEMS, "list", "List of radio button items"));
  rows.push_back(row(TAG_DEFAULT, "str", "Default enabled radio button"));
  return rows;
}

void RadioButtonWidget::setItems(const std::vector<Item>& items, const QString& keep)
{
  setFocusProxy(nullptr);
  // Later, not now: a handler may replace the items from inside the click of one of them.
  for (QRadioButton* button : _buttons) {
    _group->removeButton(button);
    button->hide();
    _layout->removeWidget(button);
    button->deleteLater();
  }
  _buttons.clear();
  _states.clear();
  for (const Item& item : items) {
    auto* button = new QRadioButton(item.description, this);
    _group->addButton(button);
    _layout->addWidget(button);
    _buttons.push_back(button);
    _states << item.state;
  }
  if (_buttons.empty())
    return;
  QRadioButton* checked = find(keep);
  (checked ? checked : _buttons.front())->setChecked(true);
}

QRadioButton* RadioButtonWidget::find(const QString& state) const
{
  const qsizetype index = _states.indexOf(state);
  return index < 0 ? nullptr : _buttons[size_t(index)];
}

QString RadioButtonWidget::stateOf(const QRadioButton* button) const
{
  const auto pos = std::find(_buttons.begin(), _buttons.end(), button);
  return pos == _buttons.end() ? QString() : _states[int(pos - _buttons.begin())];
}

// ---------------------------------------------------------------------------------------------

RadioButtonConfiguration::RadioButtonConfiguration(QWidget* parent)
    : ListConfiguration(parent, "Radiobutton", new RadioButtonProperty(TAG_ITEMS, panelText("Edit list")))
{
}

}  // namespace Vel::MSysScript
