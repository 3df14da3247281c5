#include "menu/msys_script/msys_dialog_display_widgets.h"

#include <QHBoxLayout>
#include <QLabel>

#include <limits>

#include "core/python_string.h"
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
