#pragma once

#include <QImage>

#include "core/translate.h"
#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_widgets.h"

class QPushButton;

// The button elements of a dialog: a push button that may toggle and carry a picture, and the
// abort button that the application wires to stopping the running script.
namespace Vel::MSysScript {

class IconProperty;

class ButtonWidget : public DialogWidget
{
  Q_OBJECT

public:
  struct IconType
  {
    enum Type_t
    {
      None,
      System,
      File
    };
  };
  struct IconSize
  {
    enum Type_t
    {
      Icon,  // beside the text, at icon size
      Full   // the picture at its own size
    };
  };
  struct IconSystemType
  {
    enum Type_t
    {
      Ok,
      Cancel,
      ArrowUp,
      ArrowDown,
      ArrowLeft,
      ArrowRight
    };
  };
  struct IconSystemSize
  {
    enum Type_t
    {
      Default,
      Large,
      ExtraLarge
    };
  };

  static const QString TAG_TEXT;
  static const QString TAG_TYPE;
  static const QString TAG_ICON;
  static const QString TAG_ICON_FILE_NAME;
  static const QString TAG_ICON_TYPE;
  static const QString TAG_ICON_SIZE;
  static const QString TAG_ICON_SYSTEM_TYPE;
  static const QString TAG_ICON_SYSTEM_SIZE;

  // The word tables, filled once in declaration order.
  static const Xml::Enumeration<IconType::Type_t>& iconTypes();
  static const Xml::Enumeration<IconSize::Type_t>& iconSizes();
  static const Xml::Enumeration<IconSystemType::Type_t>& iconSystemTypes();
  static const Xml::Enumeration<IconSystemSize::Type_t>& iconSystemSizes();
  // The editor's labels of the words, in declaration order.
  static std::vector<std::pair<QString, QString>> iconTypeLabels();
  static std::vector<std::pair<QString, QString>> iconSizeLabels();
  static std::vector<std::pair<QString, QString>> iconSystemTypeLabels();
  static std::vector<std::pair<QString, QString>> iconSystemSizeLabels();
  static std::vector<std::pair<QString, QString>> buttonTypeLabels();

  QPushButton* button() const { return _button; }
  const QImage& getIcon() const { return _icon; }
  IconType::Type_t getIconType() const { return _icon_type; }
  IconSize::Type_t getIconSize() const { return _icon_size; }
  IconSystemType::Type_t getIconSystemType() const { return _icon_system_type; }
  IconSystemSize::Type_t getIconSystemSize() const { return _icon_system_size; }

  // What the dialog editor does when it duplicates or previews an element.
  void copyFrom(const ButtonWidget& other);

  QVariant getValue() const override;
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  ButtonWidget(const QString& creatorId, IconType::Type_t defaultIconType,
               IconSystemType::Type_t defaultSystemType);
  std::vector<AttributeInfo> getAttributeInfo() const override;
  void updateWidget() override;

private:
  bool hasIcon() const;

  QPushButton* _button;
  QImage _icon;
  QString _icon_file_name;
  const IconType::Type_t _default_icon_type;
  const IconSystemType::Type_t _default_system_type;
  IconType::Type_t _icon_type;
  IconSize::Type_t _icon_size = IconSize::Icon;
  IconSystemType::Type_t _icon_system_type;
  IconSystemSize::Type_t _icon_system_size = IconSystemSize::Default;
};

class PushButtonWidget : public ButtonWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  PushButtonWidget();
};

// Disabled until the application runs a script; a click asks the application to stop it.
class AbortButtonWidget : public ButtonWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  AbortButtonWidget();
};

class ButtonConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit ButtonConfiguration(QWidget* parent);
  void setup(const DialogWidget* widget) override;
  void apply(DialogWidget* widget) override;
  void initializeNew(DialogWidget* widget) const override;

private:
  IconProperty* _icon;
};

template <typename Widget>
class ButtonWidgetCreator : public ElementCreator<Widget, ButtonConfiguration>
{
public:
  ButtonWidgetCreator(DialogWidgetCreator::Category::Type_t category, const char* displayName)
      : ElementCreator<Widget, ButtonConfiguration>(category, "MSysScript_DialogEditor_other", displayName, "button")
  {
  }
};

using PushButtonWidgetCreator = ButtonWidgetCreator<PushButtonWidget>;
using AbortButtonWidgetCreator = ButtonWidgetCreator<AbortButtonWidget>;

}  // namespace Vel::MSysScript
