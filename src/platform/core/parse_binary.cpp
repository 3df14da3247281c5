#include "core/parse_binary.h"

#include <algorithm>

namespace Vel::Parse {

namespace {
constexpr int LINE_LENGTH = 76;
}

const char* const Binary::TYPE_NAME = "bytes";

QString Binary::encode(const QByteArray& bytes)
{
  const QByteArray flat = bytes.toBase64();
  QString text;
  text.reserve(flat.size() + flat.size() / LINE_LENGTH);
  for (qsizetype start = 0; start < flat.size(); start += LINE_LENGTH) {
    if (start > 0)
      text += QLatin1Char('\n');
    text += QLatin1String(flat.constData() + start, std::min<qsizetype>(LINE_LENGTH, flat.size() - start));
  }
  return text;
}

std::optional<QByteArray> Binary::decode(const QString& text)
{
  QByteArray flat;
  flat.reserve(text.size());
  for (const QChar c : text) {
    if (c.isSpace())
      continue;
    if (c.unicode() > 0x7f)
      return std::nullopt;
    flat += static_cast<char>(c.unicode());
  }
  // Qt accepts unpadded input; the application's form always pads, so a short group is damage.
  if (flat.size() % 4 != 0)
    return std::nullopt;
  auto result = QByteArray::fromBase64Encoding(flat, QByteArray::AbortOnBase64DecodingErrors);
  if (!result)
    return std::nullopt;
  return *result;
}

}  // namespace Vel::Parse
