#include "core/color.h"

namespace Vel {

QString Color::toString() const
{
  return QStringLiteral("#%1%2%3%4")
      .arg(_r, 2, 16, QLatin1Char('0'))
      .arg(_g, 2, 16, QLatin1Char('0'))
      .arg(_b, 2, 16, QLatin1Char('0'))
      .arg(_a, 2, 16, QLatin1Char('0'));
}

bool Color::fromString(const QString& text, Color& color)
{
  if (!text.startsWith(QLatin1Char('#')) || (text.size() != 7 && text.size() != 9))
    return false;
  uint8_t channels[4] = {0, 0, 0, 255};
  for (int i = 0; i < (text.size() - 1) / 2; ++i) {
    bool ok = false;
    const uint value = text.mid(1 + 2 * i, 2).toUInt(&ok, 16);
    if (!ok)
      return false;
    channels[i] = static_cast<uint8_t>(value);
  }
  color = Color(channels[0], channels[1], channels[2], channels[3]);
  return true;
}

int Color::registerMetaType()
{
  return qRegisterMetaType<Vel::Color>("Vel::Color");
}

}  // namespace Vel
