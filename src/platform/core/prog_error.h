#pragma once

#include <QString>

#include <exception>
#include <string>

#include "core/vel_export.h"

namespace Vel {

// A broken invariant: a programming error, never a user's fault. Not translated.
class VEL_EXPORT ProgError : public std::exception
{
public:
  ProgError(const QString& function, const QString& source_file, const QString& message);

  const QString& getFunction() const { return _function; }
  const QString& getSourceFile() const { return _source_file; }
  const QString& getMessage() const { return _message; }
  const char* what() const noexcept override { return _what.c_str(); }

private:
  QString _function;
  QString _source_file;
  QString _message;
  std::string _what;
};

// Reports a failed assertion (function, file, line, expression) on standard error and raises
// it as a program error, so that the border handlers report it like any broken invariant.
[[noreturn]] VEL_EXPORT void vel_assert(const char* expression, const char* function, const char* file, int line);

}  // namespace Vel

#define VEL_ASSERT(expr) ((expr) ? static_cast<void>(0) : ::Vel::vel_assert(#expr, __func__, __FILE__, __LINE__))

namespace Vel {

// Exported C functions of a plug-in may not let an exception cross them: they hand a program
// error to the host here, and the host's loader raises it again on its own side.
VEL_EXPORT void reportProgError(const ProgError& error);
// The error reported since the last call, if any.
VEL_EXPORT bool takeReportedProgError(ProgError& error);

}  // namespace Vel
