#include "core/parse_date.h"

#include <QLocale>

#include "core/translate.h"

namespace Vel::Parse::Date {
namespace {
QString& format()
{
  static QString text = qEnvironmentVariable("ZUT_DATE_FORMAT");
  return text;
}
}  // namespace

QString Format::getFormat()
{
  return format();
}

void Format::setFormat(const QString& text)
{
  format() = text;
}

// Two-digit years are ambiguous in measurement records that outlive a century's turn.
QString Format::getDisplayFormat()
{
  if (!format().isEmpty())
    return format();
  QString text = QLocale(Translator::getLanguage()).dateFormat(QLocale::ShortFormat);
  if (!text.contains(QLatin1String("yyyy")))
    text.replace(QLatin1String("yy"), QLatin1String("yyyy"));
  return text;
}

}  // namespace Vel::Parse::Date
