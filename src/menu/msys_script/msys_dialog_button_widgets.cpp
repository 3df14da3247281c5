#include "menu/msys_script/msys_dialog_button_widgets.h"

#include <QHBoxLayout>
#include <QPixmap>
#include <QPushButton>

#include <algorithm>

#include "core/parse_binary.h"
#include "core/python_string.h"
#include "gapp/main_window.h"
#include "gtools/icon_cache.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

using namespace WidgetTools;

namespace {

const QString WORD_PUSH = QStringLiteral("push");
const QString WORD_TOGGLE = QStringLiteral("toggle");
// A picture chosen as an icon is shown no larger than the large standard pictures.
constexpr GIcon::SystemIconSize::Type_t FILE_ICON_SIZE = GIcon::SystemIconSize::Large;

QString widgetText(const char* text)
{
  return translate("MSysScript_DialogWidget_other", text, "");
}

template <typename T>
std::vector<std::pair<QString, QString>> labelled(const Xml::Enumeration<T>& table, QStringList labels)
{
  std::vector<std::pair<QString, QString>> items;
  const QStringList words = table.getIds();
  for (int index = 0; index < words.size(); ++index)
    items.emplace_back(labels.value(index), words[index]);
  return items;
}

// A missing tag stands for the element type's default.
template <typename T>
T enumerationOr(const Xml::Enumeration<T>& table, const QDomNode& node, const QString& tag, T fallback)
{
  Xml::Enumeration<T> reader = table;
  reader.set(fallback);
  reader.read(node, tag);
  return reader.get();
}

QString iconDescription(const char* text, const QStringList& words)
{
  return attributeText(text).arg(words.join(QStringLiteral(", ")));
}

[[noreturn]] void throwInvalidType(const QString& word)
{
  throw ScriptTypeException(errorText("The button type \"%1\" is invalid.").arg(word));
}

}  // namespace

const QString ButtonWidget::TAG_TEXT = QStringLiteral("text");
const QString ButtonWidget::TAG_TYPE = QStringLiteral("type");
const QString ButtonWidget::TAG_ICON = QStringLiteral("icon");
const QString ButtonWidget::TAG_ICON_FILE_NAME = QStringLiteral("icon_file_name");
const QString ButtonWidget::TAG_ICON_TYPE = QStringLiteral("icon_type");
const QString ButtonWidget::TAG_ICON_SIZE = QStringLiteral("icon_size");
const QString ButtonWidget::TAG_ICON_SYSTEM_TYPE = QStringLiteral("icon_system_type");
const QString ButtonWidget::TAG_ICON_SYSTEM_SIZE = QStringLiteral("icon_system_size");

const Xml::Enumeration<ButtonWidget::IconType::Type_t>& ButtonWidget::iconTypes()
{
  static const Xml::Enumeration<IconType::Type_t> table(
      IconType::None, {{IconType::None, QStringLiteral("none")},
                       {IconType::System, QStringLiteral("system")},
                       {IconType::File, QStringLiteral("file")}});
  return table;
}

const Xml::Enumeration<ButtonWidget::IconSize::Type_t>& ButtonWidget::iconSizes()
{
  static const Xml::Enumeration<IconSize::Type_t> table(
      IconSize::Icon, {{IconSize::Icon, QStringLiteral("icon")}, {IconSize::Full, QStringLiteral("full")}});
  return table;
}

const Xml::Enumeration<ButtonWidget::IconSystemType::Type_t>& ButtonWidget::iconSystemTypes()
{
  static const Xml::Enumeration<IconSystemType::Type_t> table(
      IconSystemType::Ok, {{IconSystemType::Ok, QStringLiteral("ok")},
                           {IconSystemType::Cancel, QStringLiteral("cancel")},
                           {IconSystemType::ArrowUp, QStringLiteral("arrow_up")},
                           {IconSystemType::ArrowDown, QStringLiteral("arrow_down")},
                           {IconSystemType::ArrowLeft, QStringLiteral("arrow_left")},
                           {IconSystemType::ArrowRight, QStringLiteral("arrow_right")}});
  return table;
}

const Xml::Enumeration<ButtonWidget::IconSystemSize::Type_t>& ButtonWidget::iconSystemSizes()
{
  static const Xml::Enumeration<IconSystemSize::Type_t> table(
      IconSystemSize::Default, {{IconSystemSize::Default, QStringLiteral("default")},
                                {IconSystemSize::Large, QStringLiteral("large")},
                                {IconSystemSize::ExtraLarge, QStringLiteral("extra_large")}});
  return table;
}

std::vector<std::pair<QString, QString>> ButtonWidget::iconTypeLabels()
{
  return labelled(iconTypes(), {widgetText("No icon"), widgetText("From system"), widgetText("From file")});
}

std::vector<std::pair<QString, QString>> ButtonWidget::iconSizeLabels()
{
  return labelled(iconSizes(), {otherText("Icon"), otherText("Full size")});
}

std::vector<std::pair<QString, QString>> ButtonWidget::iconSystemTypeLabels()
{
  return labelled(iconSystemTypes(), {widgetText("OK"), widgetText("Cancel"), widgetText("Arrow up"),
                                      widgetText("Arrow down"), widgetText("Arrow left"), widgetText("Arrow right")});
}

std::vector<std::pair<QString, QString>> ButtonWidget::iconSystemSizeLabels()
{
  return labelled(iconSystemSizes(), {widgetText("Default"), widgetText("Large"), widgetText("Extra large")});
}

std::vector<std::pair<QString, QString>> ButtonWidget::buttonTypeLabels()
{
  return {{widgetText("Push button"), WORD_PUSH}, {widgetText("Toggle button"), WORD_TOGGLE}};
}

ButtonWidget::ButtonWidget(const QString& creatorId, IconType::Type_t defaultIconType,
                           IconSystemType::Type_t defaultSystemType)
    : DialogWidget(creatorId),
      _button(new QPushButton(this)),
      _default_icon_type(defaultIconType),
      _default_system_type(defaultSystemType),
      _icon_type(defaultIconType),
      _icon_system_type(defaultSystemType)
{
  innerLayout(this)->addWidget(_button);
  setFocusProxy(_button);
  connect(_button, &QPushButton::clicked, this, &ButtonWidget::slotModified);
  updateWidget();
}

void ButtonWidget::copyFrom(const ButtonWidget& other)
{
  _icon = other._icon;
  _icon_type = other._icon_type;
  _icon_size = other._icon_size;
  _icon_system_type = other._icon_system_type;
  _icon_system_size = other._icon_system_size;
  _button->setText(other._button->text());
  _button->setCheckable(other._button->isCheckable());
  _button->setChecked(other._button->isChecked());
  updateWidget();
}

QVariant ButtonWidget::getValue() const
{
  return _button->isChecked();
}

bool ButtonWidget::hasIcon() const
{
  return _icon_type == IconType::System || (_icon_type == IconType::File && !_icon.isNull());
}

bool ButtonWidget::checkConfiguration(QString* error) const
{
  if (!DialogWidget::checkConfiguration(error))
    return false;
  if (!_button->text().trimmed().isEmpty() || hasIcon())
    return true;
  if (error)
    *error = editorError("Button \"%1\" contains neither a text nor an icon.").arg(getName());
  return false;
}

void ButtonWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  const QString text = valueOr<QString>(node, TAG_TEXT, QString());
  const QString type = valueOr<QString>(node, TAG_TYPE, WORD_PUSH);
  if (type != WORD_PUSH && type != WORD_TOGGLE)
    throw Xml::ParseException(Xml::getChild(node, TAG_TYPE),
                              errorText("The button type \"%1\" is invalid.").arg(type));
  const QImage icon = imageOr(node, TAG_ICON);
  const QString file_name = valueOr<QString>(node, TAG_ICON_FILE_NAME, QString());
  const auto icon_type = enumerationOr(iconTypes(), node, TAG_ICON_TYPE, _default_icon_type);
  const auto icon_size = enumerationOr(iconSizes(), node, TAG_ICON_SIZE, IconSize::Icon);
  const auto system_type = enumerationOr(iconSystemTypes(), node, TAG_ICON_SYSTEM_TYPE, _default_system_type);
  const auto system_size = enumerationOr(iconSystemSizes(), node, TAG_ICON_SYSTEM_SIZE, IconSystemSize::Default);

  // Everything is read before anything changes: a fault leaves the element as it was.
  _button->setText(text);
  _button->setCheckable(type == WORD_TOGGLE);
  _icon = icon;
  _icon_file_name = file_name;
  _icon_type = icon_type;
  _icon_size = icon_size;
  _icon_system_type = system_type;
  _icon_system_size = system_size;
  updateWidget();
}

void ButtonWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_TEXT, _button->text()));
  element->appendChild(Xml::createValue(document, TAG_TYPE, _button->isCheckable() ? WORD_TOGGLE : WORD_PUSH));
  if (!_icon.isNull())
    element->appendChild(createImage(document, TAG_ICON, _icon));
  element->appendChild(Xml::createValue(document, TAG_ICON_FILE_NAME, _icon_file_name));
  element->appendChild(Xml::createValue(document, TAG_ICON_TYPE, iconTypes().getId(_icon_type)));
  element->appendChild(Xml::createValue(document, TAG_ICON_SIZE, iconSizes().getId(_icon_size)));
  element->appendChild(Xml::createValue(document, TAG_ICON_SYSTEM_TYPE, iconSystemTypes().getId(_icon_system_type)));
  element->appendChild(Xml::createValue(document, TAG_ICON_SYSTEM_SIZE, iconSystemSizes().getId(_icon_system_size)));
}

// Lower-case truth words, unlike the input elements; scripts written against this form rely on it.
QString ButtonWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.ButtonWidget (name='%1', text='%2', toggleable=%3)")
      .arg(nameText(this), escapePythonString(_button->text()),
           _button->isCheckable() ? QStringLiteral("true") : QStringLiteral("false"));
}

QVariant ButtonWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TEXT)
    return _button->text();
  if (name == TAG_TYPE)
    return _button->isCheckable() ? WORD_TOGGLE : WORD_PUSH;
  if (name == TAG_ICON)
    return imageBytes(_icon);
  if (name == TAG_ICON_FILE_NAME)
    return _icon_file_name;
  if (name == TAG_ICON_SIZE)
    return iconSizes().getId(_icon_size);
  if (name == TAG_ICON_TYPE)
    return iconTypes().getId(_icon_type);
  if (name == TAG_ICON_SYSTEM_TYPE)
    return iconSystemTypes().getId(_icon_system_type);
  if (name == TAG_ICON_SYSTEM_SIZE)
    return iconSystemSizes().getId(_icon_system_size);
  return DialogWidget::__getattr__(name);
}

void ButtonWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_TEXT) {
    _button->setText(textArg(value));
  } else if (name == TAG_TYPE) {
    const QString word = textArg(value);
    if (word != WORD_PUSH && word != WORD_TOGGLE)
      throwInvalidType(word);
    _button->setCheckable(word == WORD_TOGGLE);
    return;
  } else if (name == TAG_VALUE) {
    const bool checked = boolArg(value);
    if (!_button->isCheckable())
      throw ScriptTypeException(errorText("This is not a toggle button."));
    _button->setChecked(checked);
    return;
  } else if (name == TAG_ICON) {
    _icon = imageArg(value);
  } else if (name == TAG_ICON_FILE_NAME) {
    _icon_file_name = textArg(value);
  } else if (name == TAG_ICON_SIZE) {
    _icon_size = iconSizes().create(textArg(value));
  } else if (name == TAG_ICON_TYPE) {
    _icon_type = iconTypes().create(textArg(value));
  } else if (name == TAG_ICON_SYSTEM_TYPE) {
    _icon_system_type = iconSystemTypes().create(textArg(value));
  } else if (name == TAG_ICON_SYSTEM_SIZE) {
    _icon_system_size = iconSystemSizes().create(textArg(value));
  } else {
    DialogWidget::__setattr__(name, value);
    return;
  }
  updateWidget();
}

std::vector<AttributeInfo> ButtonWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "bool");
  rows.push_back(row(TAG_TEXT, "str", "Text of the button"));
  rows.push_back({TAG_TYPE, QStringLiteral("str"),
                  attributeText("Button type ('%1', '%2')").arg(WORD_PUSH, WORD_TOGGLE), false});
  rows.push_back(row(TAG_ICON, Parse::Binary::TYPE_NAME, "Icon of the button"));
  rows.push_back(row(TAG_ICON_FILE_NAME, "str", "Source file name of the icon"));
  rows.push_back({TAG_ICON_SIZE, QStringLiteral("str"), iconDescription("Icon size mode (%1)", iconSizes().getIds()),
                  false});
  rows.push_back(
      {TAG_ICON_TYPE, QStringLiteral("str"), iconDescription("Icon type (%1)", iconTypes().getIds()), false});
  rows.push_back({TAG_ICON_SYSTEM_TYPE, QStringLiteral("str"),
                  iconDescription("System icon type (%1)", iconSystemTypes().getIds()), false});
  rows.push_back({TAG_ICON_SYSTEM_SIZE, QStringLiteral("str"),
                  iconDescription("System icon size (%1)", iconSystemSizes().getIds()), false});
  return rows;
}

// Applies the icon; the button then never shrinks below what shows all of it.
void ButtonWidget::updateWidget()
{
  QIcon icon;
  QSize extent;
  if (_icon_type == IconType::System) {
    icon = GIcon::Cache::getSystemIcon(static_cast<GIcon::SystemIcon::Type_t>(_icon_system_type));
    const int edge = GIcon::Cache::getSystemIconExtent(static_cast<GIcon::SystemIconSize::Type_t>(_icon_system_size));
    extent = QSize(edge, edge);
  } else if (_icon_type == IconType::File && !_icon.isNull()) {
    icon = QIcon(QPixmap::fromImage(_icon));
    if (_icon_size == IconSize::Full) {
      extent = _icon.size();
    } else {
      const int edge = GIcon::Cache::getSystemIconExtent(FILE_ICON_SIZE);
      extent = _icon.size().boundedTo(QSize(edge, edge));
      if (_icon.width() > edge || _icon.height() > edge)
        extent = _icon.size().scaled(edge, edge, Qt::KeepAspectRatio);
    }
  }
  _button->setIcon(icon);
  if (extent.isValid())
    _button->setIconSize(extent);
  _button->setMinimumSize(0, 0);
  _button->setMinimumSize(_button->sizeHint());
}

// ---------------------------------------------------------------------------------------------

const QString PushButtonWidget::TYPE_ID = QStringLiteral("button::pushbutton");

PushButtonWidget::PushButtonWidget() : ButtonWidget(TYPE_ID, IconType::None, IconSystemType::Ok) {}

const QString AbortButtonWidget::TYPE_ID = QStringLiteral("button::abort");

AbortButtonWidget::AbortButtonWidget() : ButtonWidget(TYPE_ID, IconType::System, IconSystemType::Cancel)
{
  button()->setEnabled(false);
  GApp::MainWindow::addAbortButton(button());
}

// ---------------------------------------------------------------------------------------------

namespace {

SelectorProperty::Items selectorItems(const std::vector<std::pair<QString, QString>>& labels)
{
  SelectorProperty::Items items;
  for (const auto& [label, word] : labels)
    items.emplace_back(label, word);
  return items;
}

}  // namespace

ButtonConfiguration::ButtonConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Button")));
  addProperty(new StringProperty(ButtonWidget::TAG_TEXT, otherText("Text")));
  addProperty(
      new SelectorProperty(ButtonWidget::TAG_TYPE, otherText("Type"), selectorItems(ButtonWidget::buttonTypeLabels())));
  addProperty(new SelectorProperty(ButtonWidget::TAG_ICON_TYPE, otherText("Icon type"),
                                   selectorItems(ButtonWidget::iconTypeLabels())));
  addProperty(new SelectorProperty(ButtonWidget::TAG_ICON_SYSTEM_TYPE, otherText("System icon"),
                                   selectorItems(ButtonWidget::iconSystemTypeLabels())));
  addProperty(new SelectorProperty(ButtonWidget::TAG_ICON_SYSTEM_SIZE, otherText("System icon size"),
                                   selectorItems(ButtonWidget::iconSystemSizeLabels())));
  _icon = new IconProperty(ButtonWidget::TAG_ICON, otherText("Icon"));
  addProperty(_icon);
  addProperty(new SelectorProperty(ButtonWidget::TAG_ICON_SIZE, otherText("Icon size"),
                                   selectorItems(ButtonWidget::iconSizeLabels())));
}

// The icon property edits a picture, not the stored bytes that scripts see.
void ButtonConfiguration::setup(const DialogWidget* widget)
{
  ElementConfiguration::setup(widget);
  if (const auto* button = qobject_cast<const ButtonWidget*>(widget))
    _icon->setValue(button->getIcon());
}

void ButtonConfiguration::apply(DialogWidget* widget)
{
  ElementConfiguration::apply(widget);
  if (!_icon->getFileName().isEmpty())
    widget->__setattr__(ButtonWidget::TAG_ICON_FILE_NAME, _icon->getFileName());
}

void ButtonConfiguration::initializeNew(DialogWidget* widget) const
{
  widget->__setattr__(ButtonWidget::TAG_TEXT, widget->getCreatorId() == AbortButtonWidget::TYPE_ID
                                                  ? otherText("Abort")
                                                  : otherText("Button"));
}

}  // namespace Vel::MSysScript
