#include "menu/msys_script/msys_dialog_display_widgets.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

#include <algorithm>

#include <limits>

#include "core/python_string.h"
#include "core/translate.h"
#include "gapp/progress.h"
#include "gtools/vel_separator.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"

namespace Vel::MSysScript {

using namespace WidgetTools;

namespace {

const QString TAG_TEXT = QStringLiteral("text");
const QString TAG_TITLE = QStringLiteral("title");
// Larger spacers than a screen only push the dialog off it.
constexpr int MAX_SPACER_SIZE = 10000;

int sizeArg(const QVariant& value)
{
  if (!isInteger(value) || value.toLongLong() < 0 || value.toLongLong() > MAX_SPACER_SIZE)
    throwTypeError();
  return static_cast<int>(value.toLongLong());
}

}  // namespace

const QString LabelWidget::TYPE_ID = QStringLiteral("label");

LabelWidget::LabelWidget() : DialogWidget(TYPE_ID), _label(new QLabel(this))
{
  // Rich text where the text is markup; links open as a person expects.
  _label->setTextFormat(Qt::AutoText);
  _label->setWordWrap(true);
  _label->setOpenExternalLinks(true);
  innerLayout(this)->addWidget(_label);
}

bool LabelWidget::checkConfiguration(QString* error) const
{
  if (!DialogWidget::checkConfiguration(error))
    return false;
  if (!_label->text().isEmpty())
    return true;
  if (error)
    *error = editorError("For object \"%1\" no text was entered yet.").arg(getName());
  return false;
}

void LabelWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  _label->setText(valueOr<QString>(node, TAG_TEXT, QString()));
}

void LabelWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_TEXT, _label->text()));
}

QString LabelWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.LabelWidget (name='%1')").arg(nameText(this));
}

QVariant LabelWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TEXT)
    return _label->text();
  return DialogWidget::__getattr__(name);
}

void LabelWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_TEXT)
    _label->setText(textArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> LabelWidget::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_TEXT, "str", "Label text"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

namespace {

const QString TAG_MINIMUM = QStringLiteral("minimum");
const QString TAG_MAXIMUM = QStringLiteral("maximum");
const QString TAG_PARTS = QStringLiteral("parts");
const QString TAG_STEP = QStringLiteral("step");
const QString TAG_MODE = QStringLiteral("mode");

template <typename T>
T wordOr(const Xml::Enumeration<T>& table, const QDomNode& node, const QString& tag, T fallback, const char* message)
{
  if (!Xml::hasChild(node, tag))
    return fallback;
  const QString word = Xml::getValue<QString>(node, tag);
  try {
    return table.create(word);
  } catch (const ScriptTypeException&) {
    throw Xml::ParseException(Xml::getChild(node, tag), errorText(message).arg(word));
  }
}

template <typename T>
T wordArg(const Xml::Enumeration<T>& table, const QVariant& value, const char* message)
{
  const QString word = textArg(value);
  try {
    return table.create(word);
  } catch (const ScriptTypeException&) {
    throw ScriptTypeException(errorText(message).arg(word));
  }
}

}  // namespace

const QString ProgressBarWidget::TYPE_ID = QStringLiteral("display::progressbar");

const Xml::Enumeration<ProgressBarWidget::Text::Type_t>& ProgressBarWidget::texts()
{
  static const Xml::Enumeration<Text::Type_t> table(Text::Percentage, {{Text::None, QStringLiteral("none")},
                                                                       {Text::Percentage, QStringLiteral("percentage")},
                                                                       {Text::Step, QStringLiteral("step")}});
  return table;
}

const Xml::Enumeration<ProgressBarWidget::Mode::Type_t>& ProgressBarWidget::modes()
{
  static const Xml::Enumeration<Mode::Type_t> table(
      Mode::Manual, {{Mode::System, QStringLiteral("system")}, {Mode::Manual, QStringLiteral("manual")}});
  return table;
}

ProgressBarWidget::ProgressBarWidget() : DialogWidget(TYPE_ID), _bar(new QProgressBar(this))
{
  innerLayout(this)->addWidget(_bar);
  _bar->setRange(0, 100);
  _bar->setValue(0);
  // One interface reports the application's progress; a bar in system mode follows it.
  connect(&GApp::Progress::getInstance(), &GApp::Progress::signalProgressChanged, this,
          &ProgressBarWidget::slotProgress);
  connect(&GApp::Progress::getInstance(), &GApp::Progress::signalProgressCleared, this,
          &ProgressBarWidget::slotProgress);
  updateWidget();
}

QVariant ProgressBarWidget::getValue() const
{
  return _bar->value();
}

void ProgressBarWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  const int minimum = valueOr(node, TAG_MINIMUM, 0);
  const int maximum = valueOr(node, TAG_MAXIMUM, 100);
  const int value = valueOr(node, TAG_VALUE, minimum);
  const int parts = valueOr(node, TAG_PARTS, 1);
  const int step = valueOr(node, TAG_STEP, 0);
  const auto text = wordOr(texts(), node, TAG_TEXT, Text::Percentage, "The labeling \"%1\" is invalid.");
  const auto mode = wordOr(modes(), node, TAG_MODE, Mode::Manual, "The type \"%1\" is invalid.");
  _bar->setRange(minimum, std::max(minimum, maximum));
  _bar->setValue(std::clamp(value, _bar->minimum(), _bar->maximum()));
  _parts = std::max(1, parts);
  _step = step;
  _text = text;
  _mode = mode;
  updateWidget();
}

void ProgressBarWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_VALUE, _bar->value()));
  element->appendChild(Xml::createValue(document, TAG_MINIMUM, _bar->minimum()));
  element->appendChild(Xml::createValue(document, TAG_MAXIMUM, _bar->maximum()));
  element->appendChild(Xml::createValue(document, TAG_PARTS, _parts));
  element->appendChild(Xml::createValue(document, TAG_STEP, _step));
  element->appendChild(Xml::createValue(document, TAG_TEXT, texts().getId(_text)));
  element->appendChild(Xml::createValue(document, TAG_MODE, modes().getId(_mode)));
}

QString ProgressBarWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.ProgressBarWidget (name='%1', value=%4, minimum=%5, maximum=%6, text=%2, "
                        "mode=%3, parts=%7, step=%8)")
      .arg(nameText(this), texts().getId(_text), modes().getId(_mode))
      .arg(_bar->value())
      .arg(_bar->minimum())
      .arg(_bar->maximum())
      .arg(_parts)
      .arg(_step);
}

QVariant ProgressBarWidget::__getattr__(const QString& name) const
{
  if (name == TAG_MINIMUM)
    return _bar->minimum();
  if (name == TAG_MAXIMUM)
    return _bar->maximum();
  if (name == TAG_PARTS)
    return _parts;
  if (name == TAG_STEP)
    return _step;
  if (name == TAG_TEXT)
    return texts().getId(_text);
  if (name == TAG_MODE)
    return modes().getId(_mode);
  return DialogWidget::__getattr__(name);
}

void ProgressBarWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE)
    _bar->setValue(std::clamp(intArg(value), _bar->minimum(), _bar->maximum()));
  else if (name == TAG_MINIMUM)
    _bar->setRange(intArg(value), std::max(intArg(value), _bar->maximum()));
  else if (name == TAG_MAXIMUM)
    _bar->setRange(std::min(_bar->minimum(), intArg(value)), intArg(value));
  else if (name == TAG_PARTS)
    _parts = std::max(1, intArg(value));
  else if (name == TAG_STEP)
    _step = intArg(value);
  else if (name == TAG_TEXT)
    _text = wordArg(texts(), value, "The text \"%1\" is invalid.");
  else if (name == TAG_MODE)
    _mode = wordArg(modes(), value, "The type \"%1\" is invalid.");
  else {
    DialogWidget::__setattr__(name, value);
    return;
  }
  updateWidget();
}

std::vector<AttributeInfo> ProgressBarWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "int");
  for (AttributeInfo& info : rows)
    if (info.name == TAG_VALUE)
      info.description = attributeText("Current value");
  rows.push_back(row(TAG_MINIMUM, "int", "Minimum value"));
  rows.push_back(row(TAG_MAXIMUM, "int", "Maximum value"));
  rows.push_back(row(TAG_PARTS, "int", "Progress bar parts"));
  rows.push_back(row(TAG_STEP, "int", "Current progress bar step"));
  const QStringList text_words = texts().getIds();
  rows.push_back({TAG_TEXT, QStringLiteral("str"),
                  attributeText("Progress bar text mode (%1, %2, %3)").arg(text_words[0], text_words[1], text_words[2]),
                  false});
  const QStringList mode_words = modes().getIds();
  rows.push_back({TAG_MODE, QStringLiteral("str"),
                  attributeText("Progress bar mode (%1, %2)").arg(mode_words[0], mode_words[1]), false});
  return rows;
}

void ProgressBarWidget::updateWidget()
{
  _bar->setTextVisible(_text != Text::None);
  _bar->setFormat(_text == Text::Step ? QStringLiteral("%1 / %2").arg(_step).arg(_parts) : QStringLiteral("%p%"));
  if (_mode == Mode::System)
    slotProgress();
}

// The application's share of work done, over the bar's range.
void ProgressBarWidget::slotProgress()
{
  if (_mode != Mode::System)
    return;
  const GApp::Progress& progress = GApp::Progress::getInstance();
  _bar->setValue(_bar->minimum() + static_cast<int>(progress.getShare() * (_bar->maximum() - _bar->minimum())));
}

// ---------------------------------------------------------------------------------------------

const QString SeparatorWidget::TYPE_ID = QStringLiteral("separator");

SeparatorWidget::SeparatorWidget() : DialogWidget(TYPE_ID), _separator(new Vel_Separator(this))
{
  innerLayout(this)->addWidget(_separator);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SeparatorWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  _separator->setTitle(valueOr<QString>(node, TAG_TITLE, QString()));
}

void SeparatorWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_TITLE, _separator->getTitle()));
}

// The title stands where the others show the name; scripts rely on this form.
QString SeparatorWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.SeparatorWidget (title='%1')").arg(escapePythonString(_separator->getTitle()));
}

QVariant SeparatorWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TITLE)
    return _separator->getTitle();
  return DialogWidget::__getattr__(name);
}

void SeparatorWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_TITLE)
    _separator->setTitle(textArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> SeparatorWidget::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_TITLE, "str", "Separator title"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

const QString SpacerWidgetBase::TAG_MINIMUM_SIZE = QStringLiteral("minimum_size");

SpacerWidgetBase::SpacerWidgetBase(const QString& creatorId, Qt::Orientation orientation, const char* className)
    : DialogWidget(creatorId), _orientation(orientation), _class_name(className)
{
  updateWidget();
}

void SpacerWidgetBase::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  const int size = valueOr(node, TAG_MINIMUM_SIZE, 0);
  if (size < 0 || size > MAX_SPACER_SIZE)
    throw Xml::ParseException(Xml::getChild(node, TAG_MINIMUM_SIZE),
                              errorText("The value of tag '%1' is out of range.").arg(TAG_MINIMUM_SIZE));
  _minimum_size = size;
  updateWidget();
}

void SpacerWidgetBase::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_MINIMUM_SIZE, _minimum_size));
}

QString SpacerWidgetBase::__repr__() const
{
  return QStringLiteral("zut.dialog.%1 ()").arg(QLatin1String(_class_name));
}

QVariant SpacerWidgetBase::__getattr__(const QString& name) const
{
  if (name == TAG_MINIMUM_SIZE)
    return _minimum_size;
  return DialogWidget::__getattr__(name);
}

void SpacerWidgetBase::__setattr__(const QString& name, const QVariant& value)
{
  if (name != TAG_MINIMUM_SIZE) {
    DialogWidget::__setattr__(name, value);
    return;
  }
  _minimum_size = sizeArg(value);
  updateWidget();
}

std::vector<AttributeInfo> SpacerWidgetBase::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_MINIMUM_SIZE, "int", "Minimum spacer size"));
  return rows;
}

// Grows along its direction, takes no room across it.
void SpacerWidgetBase::updateWidget()
{
  if (_orientation == Qt::Horizontal) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    setMinimumSize(_minimum_size, 0);
  } else {
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Expanding);
    setMinimumSize(0, _minimum_size);
  }
}

const QString HorizontalSpacerWidget::TYPE_ID = QStringLiteral("spacer::horizontal");

HorizontalSpacerWidget::HorizontalSpacerWidget()
    : SpacerWidgetBase(TYPE_ID, Qt::Horizontal, "HorizontalSpacerWidget")
{}

const QString VerticalSpacerWidget::TYPE_ID = QStringLiteral("spacer::vertical");

VerticalSpacerWidget::VerticalSpacerWidget() : SpacerWidgetBase(TYPE_ID, Qt::Vertical, "VerticalSpacerWidget") {}

// ---------------------------------------------------------------------------------------------

LabelConfiguration::LabelConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Description field")));
  addProperty(new TextProperty(TAG_TEXT, otherText("Text")));
}

ProgressBarConfiguration::ProgressBarConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  const auto widgetText = [](const char* text) { return translate("MSysScript_DialogWidget_other", text, ""); };
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Progress bar")));
  addProperty(new SelectorProperty(TAG_MODE, otherText("Type"),
                                   {{otherText("Automatic"), QStringLiteral("system")},
                                    {otherText("Manual"), QStringLiteral("manual")}}));
  addProperty(new IntegerProperty(DialogWidget::TAG_VALUE, otherText("Default value")));
  addProperty(new IntegerProperty(TAG_MINIMUM, otherText("Minimum")));
  addProperty(new IntegerProperty(TAG_MAXIMUM, otherText("Maximum")));
  addProperty(new SelectorProperty(TAG_TEXT, otherText("Labeling"),
                                   {{widgetText("No labeling"), QStringLiteral("none")},
                                    {widgetText("Percent"), QStringLiteral("percentage")},
                                    {widgetText("Step"), QStringLiteral("step")}}));
}

SeparatorConfiguration::SeparatorConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Separator line")));
  addProperty(new StringProperty(TAG_TITLE, otherText("Title")));
}

SpacerConfiguration::SpacerConfiguration(QWidget* parent, const char* heading, const char* field)
    : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText(heading)));
  auto* size = new IntegerProperty(SpacerWidgetBase::TAG_MINIMUM_SIZE, otherText(field));
  size->setMinimumValue(0);
  size->setMaximumValue(MAX_SPACER_SIZE);
  addProperty(size);
}

}  // namespace Vel::MSysScript
