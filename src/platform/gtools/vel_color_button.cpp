#include "gtools/vel_color_button.h"

#include <QColorDialog>
#include <QHBoxLayout>
#include <QPainter>
#include <QPixmap>
#include <QToolButton>

#include "core/translate.h"

Vel_ColorButton::Vel_ColorButton(QWidget* parent) : QWidget(parent), _button(new QToolButton(this))
{
  Vel::Color::registerMetaType();
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_button);
  layout->addStretch();
  _button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  setFocusProxy(_button);
  connect(_button, &QToolButton::clicked, this, &Vel_ColorButton::slotPick);
  updateButton();
}

void Vel_ColorButton::setColor(const Vel::Color& color)
{
  const Vel::Color taken = _checkable ? color : Vel::Color(color.red(), color.green(), color.blue(), 255);
  if (!taken.isTransparent())
    _last_opaque = taken;
  if (taken == _color)
    return;
  _color = taken;
  updateButton();
  Q_EMIT changed(_color);
}

void Vel_ColorButton::setCheckable(bool checkable)
{
  _checkable = checkable;
  if (!checkable)
    setColor(_color);
}

void Vel_ColorButton::setChecked(bool checked)
{
  if (!_checkable)
    return;
  if (checked)
    setColor(Vel::Color(_color.red(), _color.green(), _color.blue(), 0));
  else if (_color.isTransparent())
    setColor(_last_opaque);
}

void Vel_ColorButton::slotPick()
{
  QColorDialog::ColorDialogOptions options;
  if (_checkable)
    options |= QColorDialog::ShowAlphaChannel;
  const QColor initial(_color.red(), _color.green(), _color.blue(), _color.alpha());
  const QColor picked = QColorDialog::getColor(initial, this, Vel::translate("GTools", "Select Color", ""), options);
  if (picked.isValid())
    setColor(Vel::Color(picked.red(), picked.green(), picked.blue(), picked.alpha()));
}

void Vel_ColorButton::updateButton()
{
  // A swatch over a checkerboard, so that transparency shows.
  QPixmap swatch(28, 14);
  QPainter painter(&swatch);
  for (int x = 0; x < swatch.width(); x += 7)
    for (int y = 0; y < swatch.height(); y += 7)
      painter.fillRect(x, y, 7, 7, ((x + y) / 7) % 2 ? Qt::lightGray : Qt::white);
  painter.fillRect(swatch.rect(), QColor(_color.red(), _color.green(), _color.blue(), _color.alpha()));
  painter.setPen(Qt::darkGray);
  painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
  painter.end();
  _button->setIcon(QIcon(swatch));
  _button->setIconSize(swatch.size());
  _button->setText(_color.isTransparent() ? Vel::translate("GTools", "None", "") : _color.toString().left(7));
}
