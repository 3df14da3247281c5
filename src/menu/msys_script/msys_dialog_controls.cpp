#include "menu/msys_script/msys_dialog_controls.h"

#include <QBoxLayout>

#include "core/prog_error.h"
#include "core/translate.h"

namespace Vel::MSysScript {

namespace {

QString buttonText(const char* text)
{
  return translate("MSysScript_Dialog_other", text, "");
}

}  // namespace

template <typename Control>
QString StandardControlCreator<Control>::getDisplayName() const
{
  return translate("MSysScript_DialogEditor_other", _name, "");
}

ButtonDialogControl::ButtonDialogControl(const QString& creatorId, const QString& formName)
    : DialogControl(creatorId, formName)
{}

QStringList ButtonDialogControl::getButtonIds() const
{
  QStringList ids;
  for (const auto& entry : _buttons)
    ids << entry.first;
  return ids;
}

void ButtonDialogControl::setButtonEnabled(const QString& buttonId, bool enabled)
{
  buttonOrThrow(buttonId)->setEnabled(enabled);
}

void ButtonDialogControl::setButtonText(const QString& buttonId, const QString& text)
{
  buttonOrThrow(buttonId)->setText(text);
}

QPushButton* ButtonDialogControl::getDefaultButton() const
{
  return _buttons.empty() ? nullptr : _buttons.front().second;
}

QPushButton* ButtonDialogControl::getButton(const QString& buttonId) const
{
  for (const auto& entry : _buttons)
    if (entry.first == buttonId)
      return entry.second;
  return nullptr;
}

QPushButton* ButtonDialogControl::addButton(const QString& buttonId, const QString& objectName, const QString& text)
{
  auto* button = new QPushButton(text, this);
  button->setObjectName(objectName);
  button->setDefault(_buttons.empty());
  _buttons.emplace_back(buttonId, button);
  addButtons({button});
  return button;
}

QPushButton* ButtonDialogControl::buttonOrThrow(const QString& buttonId) const
{
  QPushButton* button = getButton(buttonId);
  if (!button)
    throwInvalidButton(buttonId);
  return button;
}

EmptyDialogControl::EmptyDialogControl()
    : ButtonDialogControl(DialogControlCreator::EMPTY_ID, QStringLiteral("EmptyControl"))
{}

OkCancelDialogControl::OkCancelDialogControl()
    : ButtonDialogControl(QStringLiteral("OkCancel"), QStringLiteral("OkCancelControl"))
{
  connect(addButton(QStringLiteral("ok"), QStringLiteral("_ok"), buttonText("OK")), &QPushButton::clicked, this,
          &DialogControl::signalAccept);
  connect(addButton(QStringLiteral("cancel"), QStringLiteral("_cancel"), buttonText("Cancel")), &QPushButton::clicked,
          this, &DialogControl::signalReject);
}

YesNoDialogControl::YesNoDialogControl() : ButtonDialogControl(QStringLiteral("YesNo"), QStringLiteral("YesNoControl"))
{
  connect(addButton(QStringLiteral("yes"), QStringLiteral("_yes"), buttonText("Yes")), &QPushButton::clicked, this,
          &DialogControl::signalAccept);
  connect(addButton(QStringLiteral("no"), QStringLiteral("_no"), buttonText("No")), &QPushButton::clicked, this,
          &DialogControl::signalReject);
}

// Closing by this button accepts the dialog: its values count.
CloseDialogControl::CloseDialogControl() : ButtonDialogControl(QStringLiteral("Close"), QStringLiteral("CloseControl"))
{
  connect(addButton(QStringLiteral("close"), QStringLiteral("_close"), buttonText("Close")), &QPushButton::clicked,
          this, &DialogControl::signalAccept);
}

WizardDialogControl::WizardDialogControl()
    : ButtonDialogControl(QStringLiteral("Wizard"), QStringLiteral("WizardControl"))
{
  // Next is the default button, so it comes first in the table; the row shows Back first.
  QPushButton* next = addButton(QStringLiteral("next"), QStringLiteral("_next"), buttonText("Next >"));
  QPushButton* prev = addButton(QStringLiteral("prev"), QStringLiteral("_prev"), buttonText("< Back"));
  QPushButton* close = addButton(QStringLiteral("close"), QStringLiteral("_close"), buttonText("Close"));
  auto* row = static_cast<QBoxLayout*>(layout());
  row->removeWidget(prev);
  row->insertWidget(row->indexOf(next), prev);
  connect(prev, &QPushButton::clicked, this, &WizardDialogControl::slotPrev);
  connect(next, &QPushButton::clicked, this, &WizardDialogControl::slotNext);
  connect(close, &QPushButton::clicked, this, &DialogControl::signalAccept);
}

void WizardDialogControl::slotPrev()
{
  Q_EMIT signalControlEvent(QStringLiteral("prev"));
}

void WizardDialogControl::slotNext()
{
  Q_EMIT signalControlEvent(QStringLiteral("next"));
}

SeparatorControlCreator::SeparatorControlCreator(const QString& title) : DialogControlCreator(QString()), _title(title)
{}

DialogControl* SeparatorControlCreator::createControl() const
{
  VEL_ASSERT(false && "Should never be called");
  return nullptr;
}

template class StandardControlCreator<EmptyDialogControl>;
template class StandardControlCreator<OkCancelDialogControl>;
template class StandardControlCreator<YesNoDialogControl>;
template class StandardControlCreator<CloseDialogControl>;
template class StandardControlCreator<WizardDialogControl>;

}  // namespace Vel::MSysScript
