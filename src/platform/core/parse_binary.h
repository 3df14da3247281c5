#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

#include "core/vel_export.h"

namespace Vel::Parse {

// The application's text form of binary data, for bytes that must travel inside text files
// such as dialog definitions: standard base64 (RFC 4648, with "=" padding), broken into lines
// of 76 characters. Reading ignores white space, so the text may be re-indented freely.
class VEL_EXPORT Binary
{
public:
  // What scripts see a binary value as.
  static const char* const TYPE_NAME;

  static QString encode(const QByteArray& bytes);
  // Empty when the text is not base64 (a stray character, a truncated group, bad padding).
  static std::optional<QByteArray> decode(const QString& text);
};

}  // namespace Vel::Parse
