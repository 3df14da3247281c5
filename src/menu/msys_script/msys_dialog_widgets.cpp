#include "menu/msys_script/msys_dialog_widgets.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <QVariantMap>

#include <algorithm>

#include "core/prog_error.h"
#include "core/translate.h"
#include "gapp/interaction.h"
#include "gscript/python_interpreter.h"
#include "gtools/vel_tool_tip_label.h"
#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_button_widgets.h"
#include "menu/msys_script/msys_dialog_controls.h"
#include "menu/msys_script/msys_dialog_display_widgets.h"
#include "menu/msys_script/msys_dialog_file_widget.h"
#include "menu/msys_script/msys_dialog_input_widgets.h"
#include "menu/msys_script/msys_dialog_list_widget.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_radio_buttons.h"
#include "menu/msys_script/msys_dialog_text_field_widget.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_tools_python.h"
#include "menu/msys_script/msys_value_limits.h"

namespace Vel::MSysScript {

namespace {

QString editorText(const char* text, const char* key = "")
{
  return translate("MSysScript_DialogEditor_other", text, key);
}

[[noreturn]] void progError(const char* function, const QString& message)
{
  throw ProgError(QString::fromLatin1(function), QStringLiteral(__FILE__), message);
}

}  // namespace

// ---------------------------------------------------------------------------------------------

const QString DialogWidget::TAG_NAME = QStringLiteral("name");
const QString DialogWidget::TAG_TOOLTIP = QStringLiteral("tooltip");
const QString DialogWidget::TAG_ENABLED = QStringLiteral("enabled");
const QString DialogWidget::TAG_VALUE = QStringLiteral("value");
const QString DialogWidget::TAG_ATTRIBUTES = QStringLiteral("attributes");
const QString DialogWidget::TAG_FOCUS = QStringLiteral("focus");
const QString DialogWidget::TAG_LIMITS = QStringLiteral("limits");

DialogWidget::DialogWidget(const QString& creatorId) : _creator_id(creatorId) {}

void DialogWidget::setTooltip(const QString& tooltip)
{
  _tooltip = tooltip;
  updateWidget();
}

bool DialogWidget::checkConfiguration(QString* error) const
{
  if (getName().isEmpty()) {
    if (error)
      *error = errorText("The name for the GUI element is missing.");
    return false;
  }
  return true;
}

void DialogWidget::parseXml(const QDomNode& node)
{
  // Both read before either is taken: a fault in the second leaves the first as it was.
  const QString name = Xml::getValue<QString>(node, TAG_NAME);
  const QDomElement tooltipChild = Xml::findChild(node, TAG_TOOLTIP);
  const QString tooltip = tooltipChild.isNull() ? _tooltip : tooltipChild.text();
  setName(name);
  _tooltip = tooltip;
  updateWidget();
}

void DialogWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  element->appendChild(Xml::createValue(document, TAG_NAME, getName()));
  element->appendChild(Xml::createValue(document, TAG_TOOLTIP, _tooltip));
}

void DialogWidget::takeFocus()
{
  setFocus(Qt::OtherFocusReason);
}

QString DialogWidget::__doc__() const
{
  const DialogWidgetCreator* creator = DialogRegistry::getRegistry()->getWidgetCreator(_creator_id);
  if (!creator && _creator_id == DialogWidgetCreator::EMPTY_WIDGET_ID)
    creator = DialogRegistry::getEmptyWidgetCreator();
  if (!creator)
    progError(__func__, QStringLiteral("Widget has no valid creator"));

  QString doc = translate("MSysScript_Dialog_other", "Handle for a widget called '%1' of type '%2' (%3)", "")
                    .arg(getName(), creator->getDisplayName(), creator->getId());
  doc += QLatin1Char('\n') + translate("MSysScript_Dialog_other", "Attributes:", "");
  for (const AttributeInfo& info : getAttributeInfo())
    doc += QLatin1Char('\n') + QStringLiteral("%1 %3 - %2").arg(info.name, info.description, info.type_name);
  return doc;
}

QVariant DialogWidget::__getattr__(const QString& name) const
{
  if (name == TAG_NAME)
    return getName();
  if (name == TAG_VALUE)
    return getValue();
  if (name == TAG_TOOLTIP)
    return _tooltip;
  if (name == TAG_ENABLED)
    return isEnabled();
  if (name == TAG_FOCUS)
    return hasFocus();
  if (name == TAG_ATTRIBUTES) {
    QVariantMap attributes;
    for (const AttributeInfo& info : getAttributeInfo())
      if (info.name != TAG_ATTRIBUTES)
        attributes.insert(info.name, __getattr__(info.name));
    return attributes;
  }
  return QVariant();
}

void DialogWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_NAME)
    setName(value.toString());
  else if (name == TAG_TOOLTIP)
    setTooltip(value.toString());
  else if (name == TAG_ENABLED)
    setEnabled(value.toBool());
  else if (name == TAG_FOCUS) {
    if (value.toBool())
      takeFocus();
  } else if (name == TAG_LIMITS && value.typeId() == qMetaTypeId<ValueLimitsPtr>()) {
    setValueLimits(*value.value<ValueLimitsPtr>());
  } else if (name == TAG_LIMITS && value.typeId() == GScript::PythonCallable::typeId()) {
    setValueLimits(*readValueLimits(value).value<ValueLimitsPtr>());
  } else
    throwNotWritable(name);
}

QVariant DialogWidget::readValueLimits(const QVariant& scriptObject)
{
  if (scriptObject.typeId() != GScript::PythonCallable::typeId())
    throw ScriptTypeException(errorText("The value has not the expected type."));
  const ValueLimitsPtr limits(
      createValueLimits(static_cast<PyObject*>(scriptObject.value<GScript::PythonCallable>().get())));
  if (!limits)
    throw ScriptTypeException(errorText("The value has not the expected type."));
  return QVariant::fromValue(limits);
}

void DialogWidget::setValueLimits(const ValueLimits&)
{
  throwNotWritable(TAG_LIMITS);
}

std::vector<AttributeInfo> DialogWidget::getAttributeInfo() const
{
  const char* context = "MSysScript_Dialog_other";
  return {
      {TAG_NAME, QStringLiteral("str"), translate(context, "Name of the element", ""), false},
      {TAG_VALUE, QStringLiteral("object"), translate(context, "Current value of the element", ""), true},
      {TAG_TOOLTIP, QStringLiteral("str"), translate(context, "Tooltip of the element", ""), false},
      {TAG_ENABLED, QStringLiteral("bool"), translate(context, "Whether the element accepts input", ""), false},
      {TAG_FOCUS, QStringLiteral("bool"), translate(context, "Whether the element has the keyboard focus", ""), false},
      {TAG_ATTRIBUTES, QStringLiteral("dict"), translate(context, "All attributes with their values", ""), true},
  };
}

void DialogWidget::updateWidget()
{
  setToolTip(_tooltip);
}

void DialogWidget::slotModified()
{
  Q_EMIT signalModified(this);
}

void DialogWidget::throwNotWritable(const QString& name)
{
  throw ScriptTypeException(errorText("The object has no writeable attribute \"%1\".").arg(name));
}

// ---------------------------------------------------------------------------------------------

DialogControl::DialogControl(const QString& creatorId, const QString& formName) : _creator_id(creatorId)
{
  setObjectName(formName);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  _status = new Vel_ToolTipLabel(this);
  _status->setObjectName(QStringLiteral("_status"));
  layout->addWidget(_status, 1);
}

void DialogControl::updateEnabledState(bool enabled)
{
  for (QPushButton* button : findChildren<QPushButton*>())
    button->setEnabled(enabled);
}

Vel_ToolTipLabel* DialogControl::getStatusLabel() const
{
  return _status;
}

void DialogControl::addButtons(const std::vector<QPushButton*>& buttons)
{
  for (QPushButton* button : buttons)
    layout()->addWidget(button);
}

void DialogControl::throwInvalidButton(const QString& buttonId)
{
  throw ScriptTypeException(translate("MSysScript_DialogEditor_err", "Invalid control ID \"%1\"", "").arg(buttonId));
}

// ---------------------------------------------------------------------------------------------

const QString DialogWidgetCreator::EMPTY_WIDGET_ID = QStringLiteral("empty");

QString DialogWidgetCreator::Category::getTitle(Type_t category)
{
  switch (category) {
    case Output: return editorText("Output");
    case Input: return editorText("Input");
    case Buttons: return editorText("Buttons");
    case Selection: return editorText("Selection");
    case Layout: return editorText("Layout");
    case Other: break;
  }
  return editorText("Other");
}

DialogWidgetCreator::DialogWidgetCreator(const QString& id, Category::Type_t category) : _id(id), _category(category) {}

DialogWidgetCreator::~DialogWidgetCreator() = default;

QPixmap DialogWidgetCreator::createDragPixmap() const
{
  std::unique_ptr<DialogWidget> widget(createWidget());
  widget->setDialogMode(DialogWidget::DialogMode::Editor);
  widget->adjustSize();
  return widget->grab();
}

const QString DialogControlCreator::EMPTY_ID = QStringLiteral("Empty");
const QString DialogControlCreator::KIOSK_ID = QStringLiteral("kiosk");

DialogControlCreator::DialogControlCreator(const QString& id) : _id(id) {}

DialogControlCreator::~DialogControlCreator() = default;

// ---------------------------------------------------------------------------------------------

ElementConfiguration::ElementConfiguration(QWidget* parent)
    : QWidget(parent), _model(new PropertyEditorModel(this)), _view(new QTreeView(this))
{
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  _view->setObjectName(QStringLiteral("_properties"));
  _view->setModel(_model);
  _view->setItemDelegate(new PropertyEditorDelegate(_view));
  _view->setRootIsDecorated(false);
  _view->setEditTriggers(QAbstractItemView::AllEditTriggers);
  // Labels such as "Keep original size" are read whole, in whatever font the panel gets.
  _view->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  layout->addWidget(_view);
}

void ElementConfiguration::setup(const DialogWidget* widget)
{
  for (Property* property : _properties)
    if (!property->getKey().isEmpty())
      property->setValue(widget->__getattr__(property->getKey()));
  updateWidget();
}

void ElementConfiguration::apply(DialogWidget* widget)
{
  _apply_errors.clear();
  for (Property* property : _properties) {
    if (property->getKey().isEmpty())
      continue;
    try {
      widget->__setattr__(property->getKey(), property->getValue());
    } catch (const ScriptTypeException& error) {
      _apply_errors
          << QStringLiteral("ERROR while setting property '%1': %2").arg(property->getKey(), error.getMessage());
    }
  }
  if (!_apply_errors.isEmpty())
    GApp::ErrorDialog(QString::fromLatin1(ERR_EXECUTE_SCRIPT), _apply_errors.join(QLatin1Char('\n')));
}

void ElementConfiguration::doubleClicked(DialogWidget*) {}

void ElementConfiguration::initializeNew(DialogWidget*) const {}

void ElementConfiguration::slotModified()
{
  Q_EMIT signalModified();
}

void ElementConfiguration::updateWidget() {}

void ElementConfiguration::addProperty(Property* property)
{
  property->setParent(this);
  _properties.push_back(property);
  connect(property, &Property::signalModified, this, &ElementConfiguration::slotModified);
  // The list is shown once it can be: it must begin with a separator.
  if (!qobject_cast<SeparatorProperty*>(_properties.front()))
    return;
  _model->setProperties(_properties);
  _view->expandAll();
}

void ElementConfiguration::addCommonProperties()
{
  addProperty(new SeparatorProperty(editorText("General")));
  addProperty(new StringProperty(DialogWidget::TAG_NAME, editorText("Name")));
  addProperty(new StringProperty(DialogWidget::TAG_TOOLTIP, editorText("Tooltip")));
}

// ---------------------------------------------------------------------------------------------

namespace {

class EmptyWidgetCreator : public DialogWidgetCreator
{
public:
  EmptyWidgetCreator() : DialogWidgetCreator(EMPTY_WIDGET_ID, Category::Layout) {}
  QString getDisplayName() const override { return translate("MSysScript_DialogElement_other", "Empty cell", ""); }
  QString getKeyWord() const override { return EMPTY_WIDGET_ID; }
  DialogWidget* createWidget() const override { return new EmptyWidget; }
  ElementConfiguration* createConfiguration(QWidget* parent) const override { return new ElementConfiguration(parent); }
};

}  // namespace

EmptyWidget::EmptyWidget() : DialogWidget(DialogWidgetCreator::EMPTY_WIDGET_ID) {}

// A placeholder has no name to miss.
bool EmptyWidget::checkConfiguration(QString*) const
{
  return true;
}

void EmptyWidget::parseXml(const QDomNode&) {}

void EmptyWidget::createXml(QDomDocument*, QDomElement*) const {}

QString EmptyWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.EmptyWidget ()");
}

// ---------------------------------------------------------------------------------------------

DialogRegistry::DialogRegistry() = default;

DialogRegistry::~DialogRegistry()
{
  if (!_creator_deletion_allowed)
    return;
  for (auto& entry : _widget_creators)
    delete entry.second;
  for (DialogControlCreator* creator : _control_creators)
    delete creator;
}

DialogRegistry* DialogRegistry::getRegistry()
{
  static DialogRegistry registry;
  return &registry;
}

const DialogWidgetCreator* DialogRegistry::getEmptyWidgetCreator()
{
  static const EmptyWidgetCreator creator;
  return &creator;
}

void DialogRegistry::initialize()
{
  DialogRegistry* registry = getRegistry();
  if (registry->_initialized)
    return;
  registry->_initialized = true;
  // Element types: one line each, in the order the editor lists them.
  registry->addWidgetCreator(new LabelWidgetCreator(DialogWidgetCreator::Category::Output, "Description field", "label"));
  registry->addWidgetCreator(
      new TextFieldWidgetCreator(DialogWidgetCreator::Category::Output, "Continuous text", "text"));
  registry->addWidgetCreator(new ImageWidgetCreator(DialogWidgetCreator::Category::Output, "Image", "image"));
  registry->addWidgetCreator(new LogWidgetCreator(DialogWidgetCreator::Category::Output, "Log", ""));
  registry->addWidgetCreator(
      new ProgressBarWidgetCreator(DialogWidgetCreator::Category::Output, "Progress bar", "progressbar"));
  registry->addWidgetCreator(new IntegerWidgetCreator("Integer", "input"));
  registry->addWidgetCreator(new NumberWidgetCreator("Decimal", "input"));
  registry->addWidgetCreator(new StringWidgetCreator("Text entry field", "input"));
  registry->addWidgetCreator(new SliderWidgetCreator("Slider", "input"));
  registry->addWidgetCreator(new CheckboxWidgetCreator("Checkbox", "checkbox"));
  registry->addWidgetCreator(new FileWidgetCreator("File", "input"));
  registry->addWidgetCreator(new DateWidgetCreator("Date", "date"));
  registry->addWidgetCreator(new ColorWidgetCreator("Color", "input"));
  registry->addWidgetCreator(new PushButtonWidgetCreator(DialogWidgetCreator::Category::Buttons, "Button"));
  registry->addWidgetCreator(new AbortButtonWidgetCreator(DialogWidgetCreator::Category::Other, "Abort"));
  registry->addWidgetCreator(
      new RadioButtonWidgetCreator(DialogWidgetCreator::Category::Buttons, "Radiobutton", "radiobuttons"));
  registry->addWidgetCreator(new ListWidgetCreator(DialogWidgetCreator::Category::Selection, "Selection list", "list"));
  registry->addWidgetCreator(new SeparatorWidgetCreator(DialogWidgetCreator::Category::Layout, "Separator line", "separator"));
  registry->addWidgetCreator(
      new HorizontalSpacerWidgetCreator(DialogWidgetCreator::Category::Layout, "Horizontal spacer", "spacer"));
  registry->addWidgetCreator(
      new VerticalSpacerWidgetCreator(DialogWidgetCreator::Category::Layout, "Vertical spacer", "spacer"));

  // Control rows, with the headings that structure the editor's list of them.
  registry->addControlCreator(new SeparatorControlCreator(editorText("--- No buttons ---")));
  registry->addControlCreator(
      new EmptyControlCreator(DialogControlCreator::EMPTY_ID, "Dialog without control buttons"));
  registry->addControlCreator(new SeparatorControlCreator(editorText("--- Standard buttons ---")));
  registry->addControlCreator(new OkCancelControlCreator(QStringLiteral("OkCancel"), "OK-Cancel button dialog"));
  registry->addControlCreator(new YesNoControlCreator(QStringLiteral("YesNo"), "Yes-No dialog"));
  registry->addControlCreator(new CloseControlCreator(QStringLiteral("Close"), "Close button dialog"));
  registry->addControlCreator(new SeparatorControlCreator(editorText("--- Extended buttons ---")));
  registry->addControlCreator(new WizardControlCreator(QStringLiteral("Wizard"), "Wizard dialog"));
}

void DialogRegistry::addWidgetCreator(DialogWidgetCreator* creator)
{
  const QString& id = creator->getId();
  if (_widget_creators.count(id)) {
    delete creator;
    progError(__func__, QStringLiteral("Creator with id '%1' already registered").arg(id));
  }
  _widget_priorities[id] = static_cast<int>(_widget_creators.size());
  _widget_creators[id] = creator;
}

void DialogRegistry::addControlCreator(DialogControlCreator* creator)
{
  _control_creators.push_back(creator);
  if (!creator->isSeparator())
    _control_creator_map[creator->getId()] = creator;
}

const DialogWidgetCreator* DialogRegistry::getWidgetCreator(const QString& id) const
{
  const auto pos = _widget_creators.find(id);
  return pos == _widget_creators.end() ? nullptr : pos->second;
}

const DialogControlCreator* DialogRegistry::getControlCreator(const QString& id) const
{
  const auto pos = _control_creator_map.find(id);
  return pos == _control_creator_map.end() ? nullptr : pos->second;
}

std::vector<DialogWidgetCreator*> DialogRegistry::getSortedWidgetCreators(
    DialogWidgetCreator::Category::Type_t category) const
{
  std::vector<DialogWidgetCreator*> creators;
  for (const auto& entry : _widget_creators)
    if (entry.second->getCategory() == category)
      creators.push_back(entry.second);
  const auto priority = [this](const DialogWidgetCreator* creator) {
    const auto pos = _widget_priorities.find(creator->getId());
    if (pos == _widget_priorities.end())
      progError("getSortedWidgetCreators", QStringLiteral("Widget priority map corrupted"));
    return pos->second;
  };
  std::sort(creators.begin(), creators.end(),
            [&](const DialogWidgetCreator* a, const DialogWidgetCreator* b) { return priority(a) < priority(b); });
  return creators;
}

std::vector<DialogControlCreator*> DialogRegistry::getSortedControlCreators() const
{
  return _control_creators;
}

// Separator entries cannot be chosen, so the default is the first control row that can.
QString DialogRegistry::getDefaultControlId() const
{
  // The expression as it is reported, spaces included.
  if (_default_control_id.isEmpty() && _control_creators.empty())
    vel_assert("!_default_control_id.isEmpty () || !_control_creators.empty ()", __func__, __FILE__, __LINE__);
  if (!_default_control_id.isEmpty())
    return _default_control_id;
  for (const DialogControlCreator* creator : _control_creators)
    if (!creator->isSeparator())
      return creator->getId();
  return _control_creators.front()->getId();
}

}  // namespace Vel::MSysScript
