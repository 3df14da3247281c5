#pragma once

#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_widgets.h"

class QLabel;
class QProgressBar;
class Vel_Separator;

// Elements that show rather than ask, and those that only arrange the others: a label, a
// progress bar, a separator line and the two spacers.
namespace Vel::MSysScript {

// A bar that shows how far work has come: set by scripts ("manual"), or following the progress
// the application reports ("system"). Its label shows nothing, the percentage, or the step of
// the parts the work has.
class ProgressBarWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  struct Text
  {
    enum Type_t
    {
      None,
      Percentage,
      Step
    };
  };
  struct Mode
  {
    enum Type_t
    {
      System,
      Manual
    };
  };
  static const Xml::Enumeration<Text::Type_t>& texts();
  static const Xml::Enumeration<Mode::Type_t>& modes();

  ProgressBarWidget();

  QProgressBar* bar() const { return _bar; }
  QVariant getValue() const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;
  void updateWidget() override;

private Q_SLOTS:
  void slotProgress();

private:
  QProgressBar* _bar;
  int _parts = 1;
  int _step = 0;
  Text::Type_t _text = Text::Percentage;
  Mode::Type_t _mode = Mode::Manual;
};

class LabelWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  LabelWidget();

  QLabel* label() const { return _label; }
  QVariant getValue() const override { return QVariant(); }
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  QLabel* _label;
};

class SeparatorWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  SeparatorWidget();

  Vel_Separator* separator() const { return _separator; }
  QVariant getValue() const override { return QVariant(); }
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  Vel_Separator* _separator;
};

// Empty room that grows in one direction and keeps at least its minimum size there.
class SpacerWidgetBase : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TAG_MINIMUM_SIZE;

  int getMinimumSize() const { return _minimum_size; }
  QVariant getValue() const override { return QVariant(); }
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  SpacerWidgetBase(const QString& creatorId, Qt::Orientation orientation, const char* className);
  std::vector<AttributeInfo> getAttributeInfo() const override;
  void updateWidget() override;

private:
  const Qt::Orientation _orientation;
  const char* _class_name;
  int _minimum_size = 0;
};

class HorizontalSpacerWidget : public SpacerWidgetBase
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  HorizontalSpacerWidget();
};

class VerticalSpacerWidget : public SpacerWidgetBase
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  VerticalSpacerWidget();
};

class LabelConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit LabelConfiguration(QWidget* parent);
};

class ProgressBarConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit ProgressBarConfiguration(QWidget* parent);
};

class SeparatorConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit SeparatorConfiguration(QWidget* parent);
};

class SpacerConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  SpacerConfiguration(QWidget* parent, const char* heading, const char* field);
};

class HorizontalSpacerConfiguration : public SpacerConfiguration
{
  Q_OBJECT

public:
  explicit HorizontalSpacerConfiguration(QWidget* parent)
      : SpacerConfiguration(parent, "Horizontal spacer", "Minimum width")
  {
  }
};

class VerticalSpacerConfiguration : public SpacerConfiguration
{
  Q_OBJECT

public:
  explicit VerticalSpacerConfiguration(QWidget* parent) : SpacerConfiguration(parent, "Vertical spacer", "Minimum height")
  {
  }
};

template <typename Widget, typename Configuration>
class DisplayWidgetCreator : public ElementCreator<Widget, Configuration>
{
public:
  DisplayWidgetCreator(DialogWidgetCreator::Category::Type_t category, const char* displayName, const char* keyWord)
      : ElementCreator<Widget, Configuration>(category, "MSysScript_DialogElement_other", displayName, keyWord)
  {
  }
};

using LabelWidgetCreator = DisplayWidgetCreator<LabelWidget, LabelConfiguration>;
using ProgressBarWidgetCreator = DisplayWidgetCreator<ProgressBarWidget, ProgressBarConfiguration>;
using SeparatorWidgetCreator = DisplayWidgetCreator<SeparatorWidget, SeparatorConfiguration>;
using HorizontalSpacerWidgetCreator = DisplayWidgetCreator<HorizontalSpacerWidget, HorizontalSpacerConfiguration>;
using VerticalSpacerWidgetCreator = DisplayWidgetCreator<VerticalSpacerWidget, VerticalSpacerConfiguration>;

}  // namespace Vel::MSysScript
