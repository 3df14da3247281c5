#pragma once

#include <QString>
#include <QStringList>

#include "core/vel_export.h"

namespace Vel {

// Detail lines that a failing operation collects for the user; shown below the error code's
// message.
class VEL_EXPORT ErrorLog
{
public:
  ErrorLog() = default;
  // A log of one line, the usual case of a failure that has a single thing to say.
  explicit ErrorLog(const QString& line) { _lines << line; }

  void addLine(const QString& line) { _lines << line; }
  void append(const ErrorLog& other) { _lines << other._lines; }
  bool isEmpty() const { return _lines.isEmpty(); }
  const QStringList& lines() const { return _lines; }
  QString getText() const { return _lines.join(QLatin1Char('\n')); }
  void clear() { _lines.clear(); }

private:
  QStringList _lines;
};

}  // namespace Vel
