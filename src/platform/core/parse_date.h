#pragma once

#include <QString>

#include "core/vel_export.h"

namespace Vel::Parse::Date {

// The application's date display format, a QDate format text ("dd.MM.yyyy"); empty when the
// application leaves dates to the language's own short format.
class VEL_EXPORT Format
{
public:
  static QString getFormat();
  static void setFormat(const QString& format);
  // The format to show dates in: the application's where set, else the short format of the
  // user interface's language with the year in full.
  static QString getDisplayFormat();
};

}  // namespace Vel::Parse::Date
