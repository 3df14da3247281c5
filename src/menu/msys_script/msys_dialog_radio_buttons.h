#pragma once

#include <QStringList>

#include <vector>

#include "menu/msys_script/msys_dialog_list_widget.h"
#include "menu/msys_script/msys_dialog_widgets.h"

class QButtonGroup;
class QRadioButton;
class QVBoxLayout;

namespace Vel::MSysScript {

// A group of radio buttons, one of which is always checked while there are any. Each button
// has a state, the identifier that scripts and definitions use, and a description, its label.
class RadioButtonWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  struct Item
  {
    QString state;
    QString description;
  };

  RadioButtonWidget();

  QButtonGroup* group() const { return _group; }
  // In display order.
  const std::vector<QRadioButton*>& buttons() const { return _buttons; }
  std::vector<Item> getItems() const;

  // The checked button's state; the empty text when there are no buttons.
  QVariant getValue() const override;
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  void takeFocus() override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  // Checks the button whose state is `keep`, or the first when none has it.
  void setItems(const std::vector<Item>& items, const QString& keep);
  QRadioButton* find(const QString& state) const;
  QString stateOf(const QRadioButton* button) const;

  QVBoxLayout* _layout;
  QButtonGroup* _group;
  std::vector<QRadioButton*> _buttons;
  QStringList _states;
};

class RadioButtonConfiguration : public ListConfiguration
{
  Q_OBJECT

public:
  explicit RadioButtonConfiguration(QWidget* parent);
};

using RadioButtonWidgetCreator = SelectionWidgetCreator<RadioButtonWidget, RadioButtonConfiguration>;

}  // namespace Vel::MSysScript
