#include "core/prog_error.h"

#include <QFileInfo>

#include <cstdio>

namespace Vel {

ProgError::ProgError(const QString& function, const QString& source_file, const QString& message)
    : _function(function),
      _source_file(source_file),
      _message(message),
      _what(QStringLiteral("%1 (%2, %3)").arg(message, function, source_file).toStdString())
{}

void vel_assert(const char* expression, const char* function, const char* file, int line)
{
  const QString text = QStringLiteral("Assertion failed: %1 (line %2)").arg(QString::fromUtf8(expression)).arg(line);
  std::fprintf(stderr, "%s in %s, %s\n", qPrintable(text), function, file);
  throw ProgError(QString::fromUtf8(function), QFileInfo(QString::fromUtf8(file)).fileName(), text);
}

}  // namespace Vel

#include <optional>

namespace Vel {
namespace {
std::optional<ProgError>& reported()
{
  static std::optional<ProgError> error;
  return error;
}
}  // namespace

void reportProgError(const ProgError& error)
{
  reported() = error;
}

bool takeReportedProgError(ProgError& error)
{
  if (!reported())
    return false;
  error = *reported();
  reported().reset();
  return true;
}

}  // namespace Vel
