#pragma once

#include <QMetaType>
#include <QString>

#include <cstdint>

#include "core/vel_export.h"

namespace Vel {

// Colour of four 8-bit channels; travels in a QVariant under the meta-type name "Vel::Color".
class VEL_EXPORT Color
{
public:
  Color() = default;
  Color(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha = 255) : _r(red), _g(green), _b(blue), _a(alpha) {}

  uint8_t red() const { return _r; }
  uint8_t green() const { return _g; }
  uint8_t blue() const { return _b; }
  uint8_t alpha() const { return _a; }
  bool isTransparent() const { return _a == 0; }

  // "#rrggbbaa"
  QString toString() const;
  // Accepts "#rrggbb" and "#rrggbbaa"; false leaves `color` as it was.
  static bool fromString(const QString& text, Color& color);

  bool operator==(const Color& other) const
  {
    return _r == other._r && _g == other._g && _b == other._b && _a == other._a;
  }
  bool operator!=(const Color& other) const { return !(*this == other); }

  // Registers the meta-type under its name; safe to call repeatedly.
  static int registerMetaType();

private:
  uint8_t _r = 0;
  uint8_t _g = 0;
  uint8_t _b = 0;
  uint8_t _a = 255;
};

}  // namespace Vel

Q_DECLARE_METATYPE(Vel::Color)
