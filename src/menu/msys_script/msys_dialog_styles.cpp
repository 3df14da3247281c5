#include "menu/msys_script/msys_dialog_styles.h"

#include <QPainter>
#include <QStyleOption>

#include "core/prog_error.h"
#include "core/translate.h"

namespace Vel::MSysScript {

namespace {

// The platform's own look is a dialog's without a sheet: its body lets the window colour through.
// A sheet, even one that changes nothing, would restyle every element of the dialog one by one.
const char* const STANDARD_SHEET = "";

// A touch screen needs targets a finger can hit and text readable at arm's length.
const char* const TOUCH_SHEET = R"(
QDialog, Vel--MSysScript--DialogStyleWidget { background-color: #f4f4f4; }
QWidget { font-size: 16pt; }
QPushButton, QToolButton { min-height: 44px; min-width: 88px; padding: 6px 16px; border-radius: 6px;
  border: 1px solid #8a8a8a; background-color: #ffffff; }
QPushButton:pressed, QToolButton:pressed { background-color: #d0e4f7; }
QPushButton:disabled { color: #a0a0a0; }
QLineEdit, QSpinBox, QDoubleSpinBox, QComboBox, QDateEdit { min-height: 40px; padding: 2px 8px; }
QCheckBox::indicator, QRadioButton::indicator { width: 28px; height: 28px; }
QSlider::handle { width: 36px; height: 36px; }
Vel_FileSelect QToolButton { min-width: 44px; padding: 6px 8px; }
)";

}  // namespace

DialogStyleDatabase::DialogStyleDatabase()
{
  const char* context = "VelMSysScript_DialogStyle_other";
  addStyle(translate(context, "Standard", "id=37809#gui style"), QStringLiteral("Standard"),
           QString::fromLatin1(STANDARD_SHEET), 0);
  addStyle(translate(context, "Touch screen", "id=38917#gui style"), QStringLiteral("Touch screen"),
           QString::fromLatin1(TOUCH_SHEET), 44, {QStringLiteral("TouchDark"), QStringLiteral("TouchLight")});
}

DialogStyleDatabase& DialogStyleDatabase::instance()
{
  static DialogStyleDatabase database;
  return database;
}

// Made, filled in, and only then listed.
void DialogStyleDatabase::addStyle(const QString& name, const QString& id, const QString& sheet, int controlHeight,
                                   const QStringList& aliases)
{
  DialogStyle style(name);
  style.setId(id);
  style.setAliases(aliases);
  style.setStyleSheet(sheet);
  style.setControlHeight(controlHeight);
  _styles.push_back(style);
}

const std::vector<DialogStyle>& DialogStyleDatabase::getStyles()
{
  const auto& styles = instance()._styles;
  if (styles.empty())
    vel_assert("!_styles.empty ()", __func__, __FILE__, __LINE__);
  return styles;
}

const DialogStyle* DialogStyleDatabase::findStyle(const QString& id)
{
  for (const DialogStyle& style : getStyles())
    if (style.getId() == id || style.getAliases().contains(id))
      return &style;
  // A name a user typed from what the editor shows, in the user's language.
  for (const DialogStyle& style : getStyles())
    if (style.getName().compare(id, Qt::CaseInsensitive) == 0)
      return &style;
  return nullptr;
}

DialogStyleWidget::DialogStyleWidget(QWidget* parent) : QWidget(parent) {}

void DialogStyleWidget::paintEvent(QPaintEvent*)
{
  QStyleOption option;
  option.initFrom(this);
  QPainter painter(this);
  style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

}  // namespace Vel::MSysScript
