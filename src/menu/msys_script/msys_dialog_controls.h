#pragma once

#include <QPushButton>
#include <QString>
#include <QStringList>

#include <vector>

#include "menu/msys_script/msys_dialog_widgets.h"

namespace Vel::MSysScript {

// A control row whose buttons scripts address by word.
class ButtonDialogControl : public DialogControl
{
  Q_OBJECT

public:
  ButtonDialogControl(const QString& creatorId, const QString& formName);

  QStringList getButtonIds() const override;
  void setButtonEnabled(const QString& buttonId, bool enabled) override;
  void setButtonText(const QString& buttonId, const QString& text) override;
  QPushButton* getDefaultButton() const override;

  // Null for a word this row does not have.
  QPushButton* getButton(const QString& buttonId) const;

protected:
  // The first button added is the default one.
  QPushButton* addButton(const QString& buttonId, const QString& objectName, const QString& text);

private:
  QPushButton* buttonOrThrow(const QString& buttonId) const;

  std::vector<std::pair<QString, QPushButton*>> _buttons;
};

class EmptyDialogControl : public ButtonDialogControl
{
  Q_OBJECT

public:
  EmptyDialogControl();
};

class OkCancelDialogControl : public ButtonDialogControl
{
  Q_OBJECT

public:
  OkCancelDialogControl();
};

class YesNoDialogControl : public ButtonDialogControl
{
  Q_OBJECT

public:
  YesNoDialogControl();
};

class CloseDialogControl : public ButtonDialogControl
{
  Q_OBJECT

public:
  CloseDialogControl();
};

// Back and Next step through the pages of a wizard; the running dialog decides what a step
// means from the control event ("prev", "next").
class WizardDialogControl : public ButtonDialogControl
{
  Q_OBJECT

public:
  WizardDialogControl();

public Q_SLOTS:
  void slotPrev();
  void slotNext();
};

template <typename Control>
class StandardControlCreator : public DialogControlCreator
{
public:
  StandardControlCreator(const QString& id, const char* displayName) : DialogControlCreator(id), _name(displayName) {}
  QString getDisplayName() const override;
  DialogControl* createControl() const override { return new Control; }

private:
  const char* _name;
};

using EmptyControlCreator = StandardControlCreator<EmptyDialogControl>;
using OkCancelControlCreator = StandardControlCreator<OkCancelDialogControl>;
using YesNoControlCreator = StandardControlCreator<YesNoDialogControl>;
using CloseControlCreator = StandardControlCreator<CloseDialogControl>;
using WizardControlCreator = StandardControlCreator<WizardDialogControl>;

// A heading in the editor's list of control types.
class SeparatorControlCreator : public DialogControlCreator
{
public:
  explicit SeparatorControlCreator(const QString& title);
  QString getDisplayName() const override { return _title; }
  DialogControl* createControl() const override;
  bool isSeparator() const override { return true; }

private:
  QString _title;
};

}  // namespace Vel::MSysScript
