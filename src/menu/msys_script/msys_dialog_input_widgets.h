#pragma once

#include <QDate>

#include "core/translate.h"
#include "menu/msys_script/msys_dialog_widgets.h"

class QCheckBox;
class QDateEdit;
class QLineEdit;
class QPushButton;
class Vel_ColorButton;
class Vel_Slider;
class Vel_Spin;

// The element types with which a dialog asks for a value. Each keeps its value, limits and
// flags in its inner control and reads them back from there.
namespace Vel::MSysScript {

class DoubleProperty;
class IntegerProperty;

class NumberWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  NumberWidget();

  Vel_Spin* spin() const { return _spin; }
  QVariant getValue() const override;
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;
  void setValueLimits(const ValueLimits& limits) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;
  void updateWidget() override;

private:
  Vel_Spin* _spin;
  // While the common part is read: the spin is brought up to date once the rest is.
  bool _reading = false;
};

class IntegerWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  IntegerWidget();

  Vel_Spin* spin() const { return _spin; }
  QVariant getValue() const override;
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;
  void setValueLimits(const ValueLimits& limits) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  Vel_Spin* _spin;
};

class StringWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  StringWidget();

  QLineEdit* edit() const { return _edit; }
  QVariant getValue() const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  QLineEdit* _edit;
};

class SliderWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  SliderWidget();

  Vel_Slider* slider() const { return _slider; }
  QVariant getValue() const override;
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;
  void setValueLimits(const ValueLimits& limits) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  QString orientationWord() const;

  Vel_Slider* _slider;
};

class CheckboxWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  CheckboxWidget();

  QCheckBox* checkBox() const { return _check; }
  QVariant getValue() const override;
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  QCheckBox* _check;
};

class ColorWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  ColorWidget();

  Vel_ColorButton* button() const { return _button; }
  QVariant getValue() const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  Vel_ColorButton* _button;
};

class DateWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  DateWidget();

  QDateEdit* dateEdit() const { return _edit; }
  QPushButton* todayButton() const { return _today; }
  // Invalid for an impossible date such as April 31, which is kept as it was set.
  QDate getDate() const;
  QVariant getValue() const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private Q_SLOTS:
  void slotToday();

private:
  void setDate(const QDate& date);
  void setDate(int year, int month, int day);

  QDateEdit* _edit;
  QPushButton* _today;
  bool _use_current_date = true;
  bool _show_today_button = true;
  QDate _default_date;
  // The date's parts as last set: an impossible combination has no QDate to hold it.
  int _year = 0;
  int _month = 0;
  int _day = 0;
};

// ---------------------------------------------------------------------------------------------

// The editor panels. `initializeNew` gives a newly created element the user's starting values.
class NumberConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit NumberConfiguration(QWidget* parent);
  void setup(const DialogWidget* widget) override;
  void apply(DialogWidget* widget) override;
  void initializeNew(DialogWidget* widget) const override;

private:
  DoubleProperty* _value;
  DoubleProperty* _minimum;
  DoubleProperty* _maximum;
};

class IntegerConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit IntegerConfiguration(QWidget* parent);
  void apply(DialogWidget* widget) override;
  void initializeNew(DialogWidget* widget) const override;
};

class StringConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit StringConfiguration(QWidget* parent);
};

class SliderConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit SliderConfiguration(QWidget* parent);
  void setup(const DialogWidget* widget) override;
  void apply(DialogWidget* widget) override;
  void initializeNew(DialogWidget* widget) const override;

private:
  DoubleProperty* _value;
  DoubleProperty* _minimum;
  DoubleProperty* _maximum;
  DoubleProperty* _step;
  DoubleProperty* _tick_interval;
};

class CheckboxConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit CheckboxConfiguration(QWidget* parent);
};

class ColorConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit ColorConfiguration(QWidget* parent);
};

class DateConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit DateConfiguration(QWidget* parent);
};

// ---------------------------------------------------------------------------------------------

template <typename Widget, typename Configuration>
class InputWidgetCreator : public ElementCreator<Widget, Configuration>
{
public:
  InputWidgetCreator(const char* displayName, const char* keyWord)
      : ElementCreator<Widget, Configuration>(DialogWidgetCreator::Category::Input, "MSysScript_DialogElement_other",
                                              displayName, keyWord)
  {
  }
};

using NumberWidgetCreator = InputWidgetCreator<NumberWidget, NumberConfiguration>;
using IntegerWidgetCreator = InputWidgetCreator<IntegerWidget, IntegerConfiguration>;
using StringWidgetCreator = InputWidgetCreator<StringWidget, StringConfiguration>;
using SliderWidgetCreator = InputWidgetCreator<SliderWidget, SliderConfiguration>;
using CheckboxWidgetCreator = InputWidgetCreator<CheckboxWidget, CheckboxConfiguration>;
using ColorWidgetCreator = InputWidgetCreator<ColorWidget, ColorConfiguration>;
using DateWidgetCreator = InputWidgetCreator<DateWidget, DateConfiguration>;

}  // namespace Vel::MSysScript
