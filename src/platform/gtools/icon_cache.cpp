#include "gtools/icon_cache.h"

#include <QApplication>
#include <QGuiApplication>
#include <QStyle>
#include <QMap>
#include <QPainter>
#include <QPixmap>

namespace Vel::GIcon {

QIcon Cache::getConfigLevelIcon(int level)
{
  static QMap<int, QIcon> icons;
  const auto found = icons.constFind(level);
  if (found != icons.constEnd())
    return *found;
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
    return QIcon();  // no pixmaps without a GUI application
  // A document sheet in the level's colour: grey for the installation, blue for public, green
  // for the user's own.
  static const QColor colours[] = {QColor(0x80, 0x80, 0x80), QColor(0x30, 0x70, 0xc0), QColor(0x30, 0x9a, 0x40)};
  QPixmap pixmap(16, 16);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(colours[qBound(0, level, 2)].darker(140), 1));
  painter.setBrush(colours[qBound(0, level, 2)]);
  painter.drawRoundedRect(QRectF(2.5, 1.5, 11, 13), 1.5, 1.5);
  painter.setPen(QPen(Qt::white, 1));
  for (int y = 5; y <= 11; y += 3)
    painter.drawLine(QPointF(5, y), QPointF(11, y));
  painter.end();
  return icons[level] = QIcon(pixmap);
}

}  // namespace Vel::GIcon

namespace Vel::GIcon {

QIcon Cache::getSystemIcon(SystemIcon::Type_t type)
{
  if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
    return QIcon();
  // The style's own pictures, so that dialog buttons look like the application's buttons.
  static const QStyle::StandardPixmap pixmaps[] = {
      QStyle::SP_DialogOkButton, QStyle::SP_DialogCancelButton, QStyle::SP_ArrowUp,
      QStyle::SP_ArrowDown,      QStyle::SP_ArrowLeft,          QStyle::SP_ArrowRight};
  return QApplication::style()->standardIcon(pixmaps[qBound(0, static_cast<int>(type), 5)]);
}

int Cache::getSystemIconExtent(SystemIconSize::Type_t size)
{
  switch (size) {
    case SystemIconSize::Large: return 32;
    case SystemIconSize::ExtraLarge: return 48;
    case SystemIconSize::Default: break;
  }
  return 16;
}

}  // namespace Vel::GIcon
