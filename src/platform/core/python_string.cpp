#include "core/python_string.h"

namespace Vel {

QString escapePythonString(const QString& text, QChar quote)
{
  QString result;
  result.reserve(text.size());
  for (const QChar c : text) {
    const ushort u = c.unicode();
    if (c == quote || c == QLatin1Char('\\')) {
      result += QLatin1Char('\\');
      result += c;
    } else if (c == QLatin1Char('\n')) {
      result += QLatin1String("\\n");
    } else if (c == QLatin1Char('\r')) {
      result += QLatin1String("\\r");
    } else if (c == QLatin1Char('\t')) {
      result += QLatin1String("\\t");
    } else if (u < 0x20 || u == 0x7f) {
      result += QStringLiteral("\\x%1").arg(u, 2, 16, QLatin1Char('0'));
    } else {
      result += c;
    }
  }
  return result;
}

QString quotePythonString(const QString& text)
{
  const QChar quote =
      (text.contains(QLatin1Char('\'')) && !text.contains(QLatin1Char('"'))) ? QLatin1Char('"') : QLatin1Char('\'');
  return quote + escapePythonString(text, quote) + quote;
}

}  // namespace Vel
