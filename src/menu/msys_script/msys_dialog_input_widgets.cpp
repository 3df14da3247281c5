#include "menu/msys_script/msys_dialog_input_widgets.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVariantMap>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "cfg/cfg.h"
#include "core/color.h"
#include "core/parse_date.h"
#include "core/python_string.h"
#include "core/script_type.h"
#include "core/unit.h"
#include "gtools/vel_color_button.h"
#include "gtools/vel_slider.h"
#include "gtools/vel_spin.h"
#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_value_limits.h"

namespace Vel::MSysScript {

using namespace WidgetTools;

namespace {

constexpr double DOUBLE_MAX = std::numeric_limits<double>::max();
constexpr int INT_MIN_VALUE = std::numeric_limits<int>::min();
constexpr int INT_MAX_VALUE = std::numeric_limits<int>::max();
// More decimals than a double holds only make the field wide.
constexpr int MAX_PRECISION = 100;

const QString TAG_MINIMUM = QStringLiteral("minimum");
const QString TAG_MAXIMUM = QStringLiteral("maximum");
const QString TAG_PRECISION = QStringLiteral("precision");
const QString TAG_UNIT = QStringLiteral("unit");
const QString TAG_BACKGROUND_STYLE = QStringLiteral("background_style");
const QString TAG_READ_ONLY = QStringLiteral("read_only");
const QString TAG_ORIENTATION = QStringLiteral("orientation");
const QString TAG_STEP = QStringLiteral("step");
const QString TAG_TICK_INTERVAL = QStringLiteral("tick_interval");
const QString TAG_TITLE = QStringLiteral("title");
const QString TAG_COLOR = QStringLiteral("color");
const QString TAG_TRANSPARENCY_ALLOWED = QStringLiteral("transparency_allowed");
const QString TAG_RED = QStringLiteral("red");
const QString TAG_GREEN = QStringLiteral("green");
const QString TAG_BLUE = QStringLiteral("blue");
const QString TAG_ALPHA = QStringLiteral("alpha");
const QString TAG_USE_CURRENT_DATE = QStringLiteral("use_current_date");
const QString TAG_SHOW_TODAY_BUTTON = QStringLiteral("show_today_button");
const QString TAG_DEFAULT_DATE = QStringLiteral("default_date");
const QString TAG_YEAR = QStringLiteral("year");
const QString TAG_MONTH = QStringLiteral("month");
const QString TAG_DAY = QStringLiteral("day");
const QString WORD_HORIZONTAL = QStringLiteral("horizontal");
const QString WORD_VERTICAL = QStringLiteral("vertical");

// A spin box or slider cannot hold NaN or infinity.
double numberArg(const QVariant& value)
{
  if (!isInteger(value) && value.typeId() != QMetaType::Double && value.typeId() != QMetaType::Float)
    throwTypeError();
  const double number = value.toDouble();
  if (!std::isfinite(number))
    throwTypeError();
  return number;
}


QDate dateArg(const QVariant& value)
{
  if (value.typeId() != QMetaType::QDate)
    throwTypeError();
  return value.toDate();
}

Color colorArg(const QVariant& value)
{
  if (value.typeId() != qMetaTypeId<Color>())
    throwTypeError();
  return value.value<Color>();
}

unsigned precisionOf(int digits)
{
  return static_cast<unsigned>(std::clamp(digits, 0, MAX_PRECISION));
}

// Limits a script gives for a number: a range or none, and the decimal digits numeric limits
// carry (2 where the script names none). No limits at all leave the digits as they are. A range
// that is upside down or not finite is refused like any wrong value.
struct NumberLimits
{
  bool limited = false;
  double lower = 0.0;
  double upper = 0.0;
  std::optional<int> digits;
};

NumberLimits numberLimits(const ValueLimits& limits)
{
  if (dynamic_cast<const EmptyValueLimits*>(&limits))
    return {};
  const auto* numeric = dynamic_cast<const NumericValueLimits*>(&limits);
  if (!numeric || numeric->getDigits() < 0)
    throwTypeError();
  if (numeric->isLimited() &&
      (!std::isfinite(numeric->getLower()) || !std::isfinite(numeric->getUpper()) ||
       numeric->getLower() > numeric->getUpper()))
    throwTypeError();
  return {numeric->isLimited(), numeric->getLower(), numeric->getUpper(), numeric->getDigits()};
}

// The same form as a script writes it, so that reading and writing back changes nothing.
QVariantMap limitsValue(bool limited, double lower, double upper, int digits)
{
  return {{QStringLiteral("limited"), limited},
          {QStringLiteral("lower"), lower},
          {QStringLiteral("upper"), upper},
          {QStringLiteral("digits"), digits}};
}

QString numberText(double value)
{
  return QStringLiteral("%1").arg(value);
}

// The limits count as equal within the rounding of a stored double; a lower limit of exactly
// zero has no scale of its own, so an upper limit that is all but zero matches it.
bool limitsEqual(double minimum, double maximum)
{
  if (minimum == 0.0)
    return std::fabs(maximum) <= 1e-50;
  return std::fabs(maximum - minimum) <= std::fabs(minimum) * 1e-12;
}

bool checkLimits(const DialogWidget* widget, double minimum, double maximum, const char* message, QString* error)
{
  if (!widget->DialogWidget::checkConfiguration(error))
    return false;
  if (!limitsEqual(minimum, maximum))
    return true;
  if (error)
    *error = editorError(message).arg(widget->getName());
  return false;
}

}  // namespace

// ---------------------------------------------------------------------------------------------

const QString NumberWidget::TYPE_ID = QStringLiteral("input::number");

NumberWidget::NumberWidget() : DialogWidget(TYPE_ID), _spin(new Vel_Spin(this))
{
  innerLayout(this)->addWidget(_spin);
  setFocusProxy(_spin);
  const Vel_BaseSpin::Batch batch(_spin);
  _spin->setMinValue(-DOUBLE_MAX);
  _spin->setMaxValue(DOUBLE_MAX);
  _spin->setDigits(2);
  connect(_spin, &Vel_BaseSpin::valueChanged, this, &NumberWidget::slotModified);
}

QVariant NumberWidget::getValue() const
{
  return _spin->value();
}

bool NumberWidget::checkConfiguration(QString* error) const
{
  return checkLimits(this, _spin->minValue(), _spin->maxValue(), "For object \"%1\" all values are zero.", error);
}

void NumberWidget::parseXml(const QDomNode& node)
{
  {
    const QScopedValueRollback reading(_reading, true);
    DialogWidget::parseXml(node);
  }
  const Vel_BaseSpin::Batch batch(_spin);
  const Unit* unit = Unit::getUnit(valueOr<QString>(node, TAG_UNIT, QString()));
  if (unit)
    _spin->setUnit(*unit);
  else
    _spin->resetUnit();
  _spin->setDigits(precisionOf(valueOr(node, TAG_PRECISION, 2)));
  _spin->setMinValue(valueOr(node, TAG_MINIMUM, -DOUBLE_MAX));
  _spin->setMaxValue(valueOr(node, TAG_MAXIMUM, DOUBLE_MAX));
  _spin->setValue(valueOr(node, TAG_VALUE, 0.0));
  _spin->setProperty("background_style", valueOr<QString>(node, TAG_BACKGROUND_STYLE, QString()));
  updateWidget();
}

void NumberWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_VALUE, _spin->value()));
  element->appendChild(Xml::createValue(document, TAG_MINIMUM, _spin->minValue()));
  element->appendChild(Xml::createValue(document, TAG_MAXIMUM, _spin->maxValue()));
  element->appendChild(Xml::createValue(document, TAG_PRECISION, static_cast<int>(_spin->digits())));
  element->appendChild(
      Xml::createValue(document, TAG_BACKGROUND_STYLE, _spin->property("background_style").toString()));
  if (_spin->getUnit())
    element->appendChild(Xml::createValue(document, TAG_UNIT, Unit::getID(*_spin->getUnit())));
}

QString NumberWidget::__repr__() const
{
  QString places = QStringLiteral("name='%1', value=%2, minimum=%3, maximum=%4, precision=%5")
                       .arg(nameText(this), numberText(_spin->value()), numberText(_spin->minValue()),
                            numberText(_spin->maxValue()), QString::number(_spin->digits()));
  if (_spin->getUnit())
    places += QStringLiteral(", unit='%1'").arg(Unit::getID(*_spin->getUnit()));
  return QStringLiteral("zut.dialog.NumberWidget (%1)").arg(places);
}

QVariant NumberWidget::__getattr__(const QString& name) const
{
  if (name == TAG_MINIMUM)
    return _spin->minValue();
  if (name == TAG_MAXIMUM)
    return _spin->maxValue();
  if (name == TAG_PRECISION)
    return static_cast<int>(_spin->digits());
  if (name == TAG_UNIT)
    return _spin->getUnit() ? QVariant(Unit::getID(*_spin->getUnit())) : QVariant();
  if (name == TAG_BACKGROUND_STYLE)
    return _spin->property("background_style");
  if (name == TAG_LIMITS)
    return limitsValue(_spin->minValue() != -DOUBLE_MAX || _spin->maxValue() != DOUBLE_MAX, _spin->minValue(),
                       _spin->maxValue(), static_cast<int>(_spin->digits()));
  return DialogWidget::__getattr__(name);
}

void NumberWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE)
    _spin->setValue(numberArg(value));
  else if (name == TAG_MINIMUM)
    _spin->setMinValue(numberArg(value));
  else if (name == TAG_MAXIMUM)
    _spin->setMaxValue(numberArg(value));
  else if (name == TAG_PRECISION)
    _spin->setDigits(precisionOf(intArg(value)));
  else if (name == TAG_UNIT) {
    const QString id = value.isValid() ? textArg(value) : QString();
    if (id.isEmpty())
      _spin->resetUnit();
    else if (const Unit* unit = Unit::getUnit(id))
      _spin->setUnit(*unit);
    else
      throw ScriptTypeException(editorError("Invalid unit \"%1\"").arg(id));
    updateWidget();
  } else if (name == TAG_BACKGROUND_STYLE) {
    _spin->setProperty("background_style", textArg(value));
    updateWidget();
  } else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> NumberWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "float");
  rows.push_back(row(TAG_MINIMUM, "float", "Minimum possible value"));
  rows.push_back(row(TAG_MAXIMUM, "float", "Maximum possible value"));
  rows.push_back(row(TAG_PRECISION, "int", "Value precision"));
  rows.push_back(row(TAG_UNIT, "str", "Unit id"));
  rows.push_back(row(TAG_BACKGROUND_STYLE, "str", "Style sheet based background color (red, green, blue)"));
  rows.push_back(row(TAG_LIMITS, "dict", "Value limits (limited, lower, upper, digits)"));
  return rows;
}

void NumberWidget::setValueLimits(const ValueLimits& limits)
{
  const NumberLimits number = numberLimits(limits);
  const Vel_BaseSpin::Batch batch(_spin);
  if (number.digits)
    _spin->setDigits(precisionOf(*number.digits));
  _spin->setMinValue(number.limited ? number.lower : -DOUBLE_MAX);
  _spin->setMaxValue(number.limited ? number.upper : DOUBLE_MAX);
}

void NumberWidget::updateWidget()
{
  DialogWidget::updateWidget();
  if (_reading)
    return;
  const QString sheet = _spin->property("background_style").toString();
  if (_spin->styleSheet() != sheet)
    _spin->setStyleSheet(sheet);
  // A length steps by the finest digit its default unit shows; other kinds by one.
  double step = 1.0;
  if (const Unit* unit = _spin->getUnit(); unit && unit->isLinear())
    step = std::pow(10.0, -Unit::getDefault(unit->getKind()).digitDifferenceToInternal());
  _spin->setLineStep(step);
}

// ---------------------------------------------------------------------------------------------

const QString IntegerWidget::TYPE_ID = QStringLiteral("input::integer");

IntegerWidget::IntegerWidget() : DialogWidget(TYPE_ID), _spin(new Vel_Spin(this))
{
  innerLayout(this)->addWidget(_spin);
  setFocusProxy(_spin);
  const Vel_BaseSpin::Batch batch(_spin);
  _spin->setDigits(0);
  _spin->setMinValue(INT_MIN_VALUE);
  _spin->setMaxValue(INT_MAX_VALUE);
  connect(_spin, &Vel_BaseSpin::valueChanged, this, &IntegerWidget::slotModified);
}

QVariant IntegerWidget::getValue() const
{
  return static_cast<int>(_spin->value());
}

bool IntegerWidget::checkConfiguration(QString* error) const
{
  return checkLimits(this, _spin->minValue(), _spin->maxValue(), "For object \"%1\" all values are zero.", error);
}

void IntegerWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  const Vel_BaseSpin::Batch batch(_spin);
  _spin->setMinValue(valueOr(node, TAG_MINIMUM, INT_MIN_VALUE));
  _spin->setMaxValue(valueOr(node, TAG_MAXIMUM, INT_MAX_VALUE));
  _spin->setValue(valueOr(node, TAG_VALUE, 0));
}

void IntegerWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_VALUE, getValue().toInt()));
  element->appendChild(Xml::createValue(document, TAG_MINIMUM, static_cast<int>(_spin->minValue())));
  element->appendChild(Xml::createValue(document, TAG_MAXIMUM, static_cast<int>(_spin->maxValue())));
}

QString IntegerWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.IntegerWidget (name='%1', value=%2, minimum=%3, maximum=%4)")
      .arg(nameText(this), QString::number(getValue().toInt()), QString::number(static_cast<int>(_spin->minValue())),
           QString::number(static_cast<int>(_spin->maxValue())));
}

QVariant IntegerWidget::__getattr__(const QString& name) const
{
  if (name == TAG_MINIMUM)
    return static_cast<int>(_spin->minValue());
  if (name == TAG_MAXIMUM)
    return static_cast<int>(_spin->maxValue());
  if (name == TAG_LIMITS)
    return limitsValue(_spin->minValue() != INT_MIN_VALUE || _spin->maxValue() != INT_MAX_VALUE, _spin->minValue(),
                       _spin->maxValue(), 0);
  return DialogWidget::__getattr__(name);
}

// Whole numbers only: a range is narrowed to the whole numbers inside it, digits do not apply.
void IntegerWidget::setValueLimits(const ValueLimits& limits)
{
  const NumberLimits number = numberLimits(limits);
  double lower = INT_MIN_VALUE;
  double upper = INT_MAX_VALUE;
  if (number.limited) {
    lower = std::ceil(number.lower);
    upper = std::floor(number.upper);
    if (lower < INT_MIN_VALUE || upper > INT_MAX_VALUE || lower > upper)
      throwTypeError();
  }
  const Vel_BaseSpin::Batch batch(_spin);
  _spin->setMinValue(lower);
  _spin->setMaxValue(upper);
}

void IntegerWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE)
    _spin->setValue(intArg(value));
  else if (name == TAG_MINIMUM)
    _spin->setMinValue(intArg(value));
  else if (name == TAG_MAXIMUM)
    _spin->setMaxValue(intArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> IntegerWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "int");
  rows.push_back(row(TAG_MINIMUM, "int", "Minimum possible value"));
  rows.push_back(row(TAG_MAXIMUM, "int", "Maximum possible value"));
  rows.push_back(row(TAG_LIMITS, "dict", "Value limits (limited, lower, upper, digits)"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

const QString StringWidget::TYPE_ID = QStringLiteral("input::string");

StringWidget::StringWidget() : DialogWidget(TYPE_ID), _edit(new QLineEdit(this))
{
  innerLayout(this)->addWidget(_edit);
  setFocusProxy(_edit);
  connect(_edit, &QLineEdit::textChanged, this, &StringWidget::slotModified);
}

QVariant StringWidget::getValue() const
{
  return _edit->text();
}

void StringWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  _edit->setText(valueOr<QString>(node, TAG_VALUE, QString()));
  _edit->setReadOnly(valueOr(node, TAG_READ_ONLY, false));
}

void StringWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_VALUE, _edit->text()));
  element->appendChild(Xml::createValue(document, TAG_READ_ONLY, _edit->isReadOnly()));
}

QString StringWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.StringWidget (name='%1', value='%2', read_only=%3)")
      .arg(nameText(this), escapePythonString(_edit->text()), boolText(_edit->isReadOnly()));
}

QVariant StringWidget::__getattr__(const QString& name) const
{
  if (name == TAG_READ_ONLY)
    return _edit->isReadOnly();
  return DialogWidget::__getattr__(name);
}

void StringWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE)
    _edit->setText(textArg(value));
  else if (name == TAG_READ_ONLY)
    _edit->setReadOnly(boolArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> StringWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "str");
  rows.push_back(row(TAG_READ_ONLY, "bool", "Read only"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

const QString SliderWidget::TYPE_ID = QStringLiteral("input::slider");

SliderWidget::SliderWidget() : DialogWidget(TYPE_ID), _slider(new Vel_Slider(this))
{
  innerLayout(this)->addWidget(_slider);
  setFocusProxy(_slider);
  _slider->setMaxValue(DOUBLE_MAX);
  _slider->setTickInterval(0.1);
  connect(_slider, &Vel_Slider::valueChanged, this, &SliderWidget::slotModified);
}

QVariant SliderWidget::getValue() const
{
  return _slider->value();
}

bool SliderWidget::checkConfiguration(QString* error) const
{
  return checkLimits(this, _slider->minValue(), _slider->maxValue(), "For object \"%1\" the value range is zero.",
                     error);
}

namespace {

Qt::Orientation orientationOf(const QString& word)
{
  if (word == WORD_HORIZONTAL)
    return Qt::Horizontal;
  if (word == WORD_VERTICAL)
    return Qt::Vertical;
  throw ScriptTypeException(errorText("The slider position \"%1\" is invalid.").arg(word));
}

}  // namespace

void SliderWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  try {
    _slider->setOrientation(orientationOf(valueOr(node, TAG_ORIENTATION, WORD_HORIZONTAL)));
  } catch (const ScriptTypeException& error) {
    throw Xml::ParseException(node, error.getMessage());
  }
  _slider->setDigits(precisionOf(valueOr(node, TAG_PRECISION, 2)));
  _slider->setMinValue(valueOr(node, TAG_MINIMUM, 0.0));
  _slider->setMaxValue(valueOr(node, TAG_MAXIMUM, DOUBLE_MAX));
  _slider->setLineStep(valueOr(node, TAG_STEP, 1.0));
  _slider->setTickInterval(valueOr(node, TAG_TICK_INTERVAL, 0.1));
  _slider->setValue(valueOr(node, TAG_VALUE, 0.0));
}

void SliderWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_VALUE, _slider->value()));
  element->appendChild(Xml::createValue(document, TAG_ORIENTATION, orientationWord()));
  element->appendChild(Xml::createValue(document, TAG_MINIMUM, _slider->minValue()));
  element->appendChild(Xml::createValue(document, TAG_MAXIMUM, _slider->maxValue()));
  element->appendChild(Xml::createValue(document, TAG_PRECISION, static_cast<int>(_slider->digits())));
  element->appendChild(Xml::createValue(document, TAG_STEP, _slider->lineStep()));
  element->appendChild(Xml::createValue(document, TAG_TICK_INTERVAL, _slider->tickInterval()));
}

QString SliderWidget::__repr__() const
{
  const QString places =
      QStringLiteral(
          "name='%1', value=%2, minimum=%3, maximum=%4, precision=%5, step=%6, tick_interval=%7, orientation=%8")
          .arg(nameText(this), numberText(_slider->value()), numberText(_slider->minValue()),
               numberText(_slider->maxValue()), QString::number(_slider->digits()), numberText(_slider->lineStep()),
               numberText(_slider->tickInterval()), orientationWord());
  return QStringLiteral("zut.dialog.SliderWidget (%1)").arg(places);
}

QVariant SliderWidget::__getattr__(const QString& name) const
{
  if (name == TAG_MINIMUM)
    return _slider->minValue();
  if (name == TAG_MAXIMUM)
    return _slider->maxValue();
  if (name == TAG_PRECISION)
    return static_cast<int>(_slider->digits());
  if (name == TAG_STEP)
    return _slider->lineStep();
  if (name == TAG_TICK_INTERVAL)
    return _slider->tickInterval();
  if (name == TAG_ORIENTATION)
    return orientationWord();
  if (name == TAG_LIMITS)
    return limitsValue(true, _slider->minValue(), _slider->maxValue(), static_cast<int>(_slider->digits()));
  return DialogWidget::__getattr__(name);
}

void SliderWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE)
    _slider->setValue(numberArg(value));
  else if (name == TAG_MINIMUM)
    _slider->setMinValue(numberArg(value));
  else if (name == TAG_MAXIMUM)
    _slider->setMaxValue(numberArg(value));
  else if (name == TAG_PRECISION)
    _slider->setDigits(precisionOf(intArg(value)));
  else if (name == TAG_STEP)
    _slider->setLineStep(numberArg(value));
  else if (name == TAG_TICK_INTERVAL)
    _slider->setTickInterval(numberArg(value));
  else if (name == TAG_ORIENTATION)
    _slider->setOrientation(orientationOf(textArg(value)));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> SliderWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "float");
  rows.push_back(row(TAG_MINIMUM, "float", "Minimum possible value"));
  rows.push_back(row(TAG_MAXIMUM, "float", "Maximum possible value"));
  rows.push_back(row(TAG_PRECISION, "int", "Value precision"));
  rows.push_back(row(TAG_STEP, "float", "Amount of increase/decrease with each step"));
  rows.push_back(row(TAG_TICK_INTERVAL, "float", "Interval of ticks drawn"));
  rows.push_back(row(TAG_ORIENTATION, "str", "Widget orientation"));
  rows.push_back(row(TAG_LIMITS, "dict", "Value limits (limited, lower, upper, digits)"));
  return rows;
}

// A slider always spans a range: limits without one change only its digits.
void SliderWidget::setValueLimits(const ValueLimits& limits)
{
  const NumberLimits number = numberLimits(limits);
  if (number.digits)
    _slider->setDigits(precisionOf(*number.digits));
  if (number.limited) {
    _slider->setMinValue(number.lower);
    _slider->setMaxValue(number.upper);
  }
}

QString SliderWidget::orientationWord() const
{
  return _slider->orientation() == Qt::Vertical ? WORD_VERTICAL : WORD_HORIZONTAL;
}

// ---------------------------------------------------------------------------------------------

const QString CheckboxWidget::TYPE_ID = QStringLiteral("input::checkbox");

CheckboxWidget::CheckboxWidget() : DialogWidget(TYPE_ID), _check(new QCheckBox(this))
{
  innerLayout(this)->addWidget(_check);
  setFocusProxy(_check);
  connect(_check, &QCheckBox::clicked, this, &CheckboxWidget::slotModified);
}

QVariant CheckboxWidget::getValue() const
{
  return _check->isChecked();
}

bool CheckboxWidget::checkConfiguration(QString* error) const
{
  if (!DialogWidget::checkConfiguration(error))
    return false;
  if (!_check->text().trimmed().isEmpty())
    return true;
  if (error)
    *error = editorError("Element \"%1\" does not has a labeling.").arg(getName());
  return false;
}

void CheckboxWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  _check->setChecked(valueOr(node, TAG_VALUE, false));
  _check->setText(valueOr<QString>(node, TAG_TITLE, QString()));
}

void CheckboxWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_VALUE, _check->isChecked()));
  element->appendChild(Xml::createValue(document, TAG_TITLE, _check->text()));
}

// The places are numbered out of order; filled in one call so that a name holding "%3" stays.
QString CheckboxWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.CheckboxWidget (name='%2', title='%3', value=%1)")
      .arg(boolText(_check->isChecked()), nameText(this), escapePythonString(_check->text()));
}

QVariant CheckboxWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TITLE)
    return _check->text();
  return DialogWidget::__getattr__(name);
}

void CheckboxWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE)
    _check->setChecked(boolArg(value));
  else if (name == TAG_TITLE)
    _check->setText(textArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> CheckboxWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "bool");
  rows.push_back(row(TAG_TITLE, "str", "Title of the checkbox"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

const QString ColorWidget::TYPE_ID = QStringLiteral("input::color");

ColorWidget::ColorWidget() : DialogWidget(TYPE_ID), _button(new Vel_ColorButton(this))
{
  innerLayout(this)->addWidget(_button);
  setFocusProxy(_button);
  connect(_button, &Vel_ColorButton::changed, this, &ColorWidget::slotModified);
}

QVariant ColorWidget::getValue() const
{
  return QVariant::fromValue(_button->getColor());
}

void ColorWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  _button->setCheckable(valueOr(node, TAG_TRANSPARENCY_ALLOWED, false));
  Color color;  // the host's default colour: opaque black
  if (Xml::hasChild(node, TAG_COLOR)) {
    const QDomElement channels = Xml::getChild(node, TAG_COLOR);
    const auto channel = [&](const QString& tag) {
      const int value = Xml::getValue<int>(channels, tag);
      if (value < 0 || value > 255)
        throw Xml::ParseException(channels, errorText("The value %1 of tag '%2' is out of range.").arg(value).arg(tag));
      return static_cast<uint8_t>(value);
    };
    color = Color(channel(TAG_RED), channel(TAG_GREEN), channel(TAG_BLUE), channel(TAG_ALPHA));
  }
  _button->setColor(color);
  _button->setChecked(color.isTransparent());
}

void ColorWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  const Color& color = _button->getColor();
  QDomElement channels = document->createElement(TAG_COLOR);
  channels.appendChild(Xml::createValue(document, TAG_RED, int(color.red())));
  channels.appendChild(Xml::createValue(document, TAG_GREEN, int(color.green())));
  channels.appendChild(Xml::createValue(document, TAG_BLUE, int(color.blue())));
  channels.appendChild(Xml::createValue(document, TAG_ALPHA, int(color.alpha())));
  element->appendChild(channels);
  element->appendChild(Xml::createValue(document, TAG_TRANSPARENCY_ALLOWED, _button->checkable()));
}

QString ColorWidget::__repr__() const
{
  const Color& color = _button->getColor();
  const auto hex = [](uint8_t channel) { return QStringLiteral("%1").arg(channel, 2, 16, QLatin1Char('0')); };
  return QStringLiteral("zut.dialog.ColorWidget (name='%1', value=zut.Color ('#%2%3%4%5'))")
      .arg(nameText(this), hex(color.red()), hex(color.green()), hex(color.blue()), hex(color.alpha()));
}

QVariant ColorWidget::__getattr__(const QString& name) const
{
  if (name == TAG_COLOR)
    return getValue();
  if (name == TAG_TRANSPARENCY_ALLOWED)
    return _button->checkable();
  return DialogWidget::__getattr__(name);
}

void ColorWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE || name == TAG_COLOR)
    _button->setColor(colorArg(value));
  else if (name == TAG_TRANSPARENCY_ALLOWED)
    _button->setCheckable(boolArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> ColorWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "zut.Color");
  rows.push_back(row(TAG_COLOR, "zut.Color", "Current selected color"));
  rows.push_back(row(TAG_TRANSPARENCY_ALLOWED, "bool", "Transparency allowed"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

const QString DateWidget::TYPE_ID = QStringLiteral("input::date");

namespace {

// The field's own minimum stands for a date that does not exist; no measurement is that old.
const QDate NO_DATE(100, 1, 1);

}  // namespace

DateWidget::DateWidget()
    : DialogWidget(TYPE_ID),
      _edit(new QDateEdit(this)),
      _today(new QPushButton(translate("MSysScript_DialogEditor_widget", "Today", ""), this)),
      _default_date(QDate::currentDate())
{
  QHBoxLayout* layout = innerLayout(this);
  layout->setSpacing(10);
  layout->addWidget(_edit);
  layout->addWidget(_today);
  setFocusProxy(_edit);
  _edit->setCalendarPopup(true);
  _edit->setSizePolicy(QSizePolicy::Expanding, _edit->sizePolicy().verticalPolicy());
  _edit->setDisplayFormat(Parse::Date::Format::getDisplayFormat());
  _edit->setMinimumDate(NO_DATE);
  _edit->setSpecialValueText(translate("MSysScript_DialogEditor_widget", "Invalid date", ""));
  _today->setObjectName(QStringLiteral("_today"));
  setDate(QDate::currentDate());
  connect(_edit, &QDateEdit::dateChanged, this, [this](const QDate& date) {
    if (date == NO_DATE)
      return;
    _year = date.year();
    _month = date.month();
    _day = date.day();
  });
  connect(_edit, &QDateEdit::dateChanged, this, &DateWidget::slotModified);
  connect(_today, &QPushButton::clicked, this, &DateWidget::slotToday);
}

QDate DateWidget::getDate() const
{
  return QDate(_year, _month, _day);
}

QVariant DateWidget::getValue() const
{
  return getDate();
}

void DateWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  _use_current_date = valueOr(node, TAG_USE_CURRENT_DATE, true);
  _show_today_button = valueOr(node, TAG_SHOW_TODAY_BUTTON, true);
  _default_date = QDate::currentDate();
  if (Xml::hasChild(node, TAG_DEFAULT_DATE)) {
    const QDomElement parts = Xml::getChild(node, TAG_DEFAULT_DATE);
    _default_date =
        QDate(Xml::getValue<int>(parts, TAG_YEAR), Xml::getValue<int>(parts, TAG_MONTH), Xml::getValue<int>(parts, TAG_DAY));
    if (!_default_date.isValid())
      throw Xml::ParseException(parts, errorText("The tag content '%1' should be of type 'date'.").arg(TAG_DEFAULT_DATE));
  }
  _today->setVisible(_show_today_button);
  setDate(_use_current_date ? QDate::currentDate() : _default_date);
}

void DateWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_USE_CURRENT_DATE, _use_current_date));
  element->appendChild(Xml::createValue(document, TAG_SHOW_TODAY_BUTTON, _show_today_button));
  QDomElement parts = document->createElement(TAG_DEFAULT_DATE);
  parts.appendChild(Xml::createValue(document, TAG_YEAR, _default_date.year()));
  parts.appendChild(Xml::createValue(document, TAG_MONTH, _default_date.month()));
  parts.appendChild(Xml::createValue(document, TAG_DAY, _default_date.day()));
  element->appendChild(parts);
}

QString DateWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.DateWidget (name='%1', value='%2')").arg(nameText(this), getDate().toString());
}

QVariant DateWidget::__getattr__(const QString& name) const
{
  if (name == TAG_YEAR)
    return _year;
  if (name == TAG_MONTH)
    return _month;
  if (name == TAG_DAY)
    return _day;
  if (name == TAG_USE_CURRENT_DATE)
    return _use_current_date;
  if (name == TAG_DEFAULT_DATE)
    return _default_date;
  if (name == TAG_SHOW_TODAY_BUTTON)
    return _show_today_button;
  return DialogWidget::__getattr__(name);
}

void DateWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE)
    setDate(dateArg(value));
  else if (name == TAG_YEAR)
    setDate(intArg(value), _month, _day);
  else if (name == TAG_MONTH)
    setDate(_year, intArg(value), _day);
  else if (name == TAG_DAY)
    setDate(_year, _month, intArg(value));
  else if (name == TAG_USE_CURRENT_DATE) {
    _use_current_date = boolArg(value);
    setDate(_use_current_date ? QDate::currentDate() : _default_date);
  } else if (name == TAG_DEFAULT_DATE) {
    const QDate date = dateArg(value);
    if (!date.isValid())
      throwTypeError();
    _default_date = date;
    setDate(date);
  } else if (name == TAG_SHOW_TODAY_BUTTON) {
    _show_today_button = boolArg(value);
    _today->setVisible(_show_today_button);
  } else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> DateWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "date");
  rows.push_back(row(TAG_YEAR, "int", "Year"));
  rows.push_back(row(TAG_MONTH, "int", "Month"));
  rows.push_back(row(TAG_DAY, "int", "Day"));
  rows.push_back(row(TAG_USE_CURRENT_DATE, "bool", "Flag for initializing with default date"));
  rows.push_back(row(TAG_DEFAULT_DATE, "date", "Default date"));
  rows.push_back(row(TAG_SHOW_TODAY_BUTTON, "bool", "Show button for setting the current date"));
  return rows;
}

void DateWidget::slotToday()
{
  setDate(QDate::currentDate());
}

void DateWidget::setDate(const QDate& date)
{
  if (date.isValid())
    setDate(date.year(), date.month(), date.day());
  else
    setDate(0, 0, 0);
}

// Nothing corrects an impossible combination: it stays as set and the field says so.
void DateWidget::setDate(int year, int month, int day)
{
  _year = year;
  _month = month;
  _day = day;
  const QDate date(year, month, day);
  if (date.isValid() && date > NO_DATE) {
    _edit->setDate(date);
    return;
  }
  const bool changed = _edit->date() != NO_DATE;
  {
    const QSignalBlocker blocker(_edit);
    _edit->setDate(NO_DATE);
  }
  if (changed)
    slotModified();
}

// ---------------------------------------------------------------------------------------------

namespace {

DoubleProperty* doubleProperty(const QString& key, const char* label)
{
  auto* property = new DoubleProperty(key, panelText(label));
  property->setMinimumValue(-DOUBLE_MAX);
  property->setMaximumValue(DOUBLE_MAX);
  return property;
}

IntegerProperty* integerProperty(const QString& key, const char* label, int minimum = INT_MIN_VALUE,
                                 int maximum = INT_MAX_VALUE)
{
  auto* property = new IntegerProperty(key, panelText(label));
  property->setMinimumValue(minimum);
  property->setMaximumValue(maximum);
  return property;
}

// Limits first, opened to the full range, so that the panel's value is not clamped by the
// element's old limits before the new ones arrive.
void openLimits(DialogWidget* widget, const QVariant& minimum, const QVariant& maximum)
{
  try {
    widget->__setattr__(TAG_MINIMUM, minimum);
    widget->__setattr__(TAG_MAXIMUM, maximum);
  } catch (const ScriptTypeException&) {
    // The panel's own apply reports the fault.
  }
}

void setPrecision(int digits, std::initializer_list<DoubleProperty*> properties)
{
  for (DoubleProperty* property : properties)
    property->setPrecision(precisionOf(digits));
}

// The user's starting values, where the configuration holds them; limits before the value.
void applyStartingValues(DialogWidget* widget, const std::vector<std::pair<const char*, const char*>>& keys,
                         bool integral)
{
  CfgNode* root = configurationRoot();
  if (!root)
    return;
  for (const auto& [attribute, key] : keys) {
    const double value = root->getDouble(QString::fromLatin1(key));
    if (integral)
      widget->__setattr__(QString::fromLatin1(attribute),
                          static_cast<int>(std::clamp<double>(value, INT_MIN_VALUE, INT_MAX_VALUE)));
    else if (QString::fromLatin1(attribute) == TAG_PRECISION)
      widget->__setattr__(TAG_PRECISION, root->getInt(QString::fromLatin1(key)));
    else
      widget->__setattr__(QString::fromLatin1(attribute), value);
  }
}

}  // namespace

NumberConfiguration::NumberConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(panelText("Decimal")));
  addProperty(_value = doubleProperty(DialogWidget::TAG_VALUE, "Default"));
  addProperty(_minimum = doubleProperty(TAG_MINIMUM, "Minimum"));
  addProperty(_maximum = doubleProperty(TAG_MAXIMUM, "Maximum"));
  addProperty(integerProperty(TAG_PRECISION, "No. of decimals", 0, MAX_PRECISION));
  addProperty(new UnitProperty(TAG_UNIT, panelText("Unit")));
}

void NumberConfiguration::setup(const DialogWidget* widget)
{
  setPrecision(widget->__getattr__(TAG_PRECISION).toInt(), {_value, _minimum, _maximum});
  ElementConfiguration::setup(widget);
}

void NumberConfiguration::apply(DialogWidget* widget)
{
  openLimits(widget, -DOUBLE_MAX, DOUBLE_MAX);
  ElementConfiguration::apply(widget);
}

void NumberConfiguration::initializeNew(DialogWidget* widget) const
{
  applyStartingValues(widget,
                      {{"precision", CFG_NUMBER_WIDGET_PRECISION},
                       {"minimum", CFG_NUMBER_WIDGET_MINIMUM},
                       {"maximum", CFG_NUMBER_WIDGET_MAXIMUM},
                       {"value", CFG_NUMBER_WIDGET_DEFAULT}},
                      false);
}

IntegerConfiguration::IntegerConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(panelText("Integer")));
  addProperty(integerProperty(DialogWidget::TAG_VALUE, "Default"));
  addProperty(integerProperty(TAG_MINIMUM, "Minimum"));
  addProperty(integerProperty(TAG_MAXIMUM, "Maximum"));
}

void IntegerConfiguration::apply(DialogWidget* widget)
{
  openLimits(widget, INT_MIN_VALUE, INT_MAX_VALUE);
  ElementConfiguration::apply(widget);
}

void IntegerConfiguration::initializeNew(DialogWidget* widget) const
{
  applyStartingValues(widget,
                      {{"minimum", CFG_INTEGER_WIDGET_MINIMUM},
                       {"maximum", CFG_INTEGER_WIDGET_MAXIMUM},
                       {"value", CFG_INTEGER_WIDGET_DEFAULT}},
                      true);
}

StringConfiguration::StringConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(panelText("Text entry field")));
  addProperty(new StringProperty(DialogWidget::TAG_VALUE, panelText("Default")));
  addProperty(new BoolProperty(TAG_READ_ONLY, panelText("Read-only")));
}

SliderConfiguration::SliderConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(panelText("Slider")));
  addProperty(new SelectorProperty(TAG_ORIENTATION, otherText("Position"),
                                   {{otherText("Horizontal"), WORD_HORIZONTAL}, {otherText("Vertical"), WORD_VERTICAL}}));
  addProperty(_value = doubleProperty(DialogWidget::TAG_VALUE, "Default value"));
  addProperty(_minimum = doubleProperty(TAG_MINIMUM, "Minimum"));
  addProperty(_maximum = doubleProperty(TAG_MAXIMUM, "Maximum"));
  addProperty(integerProperty(TAG_PRECISION, "No. of decimals", 0, MAX_PRECISION));
  addProperty(_step = doubleProperty(TAG_STEP, "Step size"));
  addProperty(_tick_interval = doubleProperty(TAG_TICK_INTERVAL, "Ticks"));
}

void SliderConfiguration::setup(const DialogWidget* widget)
{
  setPrecision(widget->__getattr__(TAG_PRECISION).toInt(), {_value, _minimum, _maximum, _step, _tick_interval});
  ElementConfiguration::setup(widget);
}

void SliderConfiguration::apply(DialogWidget* widget)
{
  openLimits(widget, -DOUBLE_MAX, DOUBLE_MAX);
  ElementConfiguration::apply(widget);
}

void SliderConfiguration::initializeNew(DialogWidget* widget) const
{
  applyStartingValues(widget,
                      {{"precision", CFG_SLIDER_WIDGET_PRECISION},
                       {"minimum", CFG_SLIDER_WIDGET_MINIMUM},
                       {"maximum", CFG_SLIDER_WIDGET_MAXIMUM},
                       {"step", CFG_SLIDER_WIDGET_STEP},
                       {"tick_interval", CFG_SLIDER_WIDGET_TICK_INTERVAL},
                       {"value", CFG_SLIDER_WIDGET_DEFAULT}},
                      false);
}

CheckboxConfiguration::CheckboxConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(panelText("Checkbox")));
  addProperty(new StringProperty(TAG_TITLE, panelText("Labeling")));
  addProperty(new BoolProperty(DialogWidget::TAG_VALUE, panelText("Default status")));
}

ColorConfiguration::ColorConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Color")));
  addProperty(new BoolProperty(TAG_TRANSPARENCY_ALLOWED, panelText("Allow transparency")));
}

DateConfiguration::DateConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Date")));
  addProperty(new BoolProperty(TAG_USE_CURRENT_DATE, panelText("Use current date")));
  addProperty(new BoolProperty(TAG_SHOW_TODAY_BUTTON, panelText("Show \"Today\" button")));
  addProperty(new DateProperty(TAG_DEFAULT_DATE, panelText("Default date")));
}

}  // namespace Vel::MSysScript
