#pragma once

#include <QString>

#include "core/vel_export.h"

namespace Vel {

// The text as a Python string literal, quoted and escaped as Python's repr() would: single
// quotes unless the text holds a single quote and no double quote.
VEL_EXPORT QString quotePythonString(const QString& text);
// The inside of a Python string literal delimited by `quote`, escaped so that it reads back
// as `text`.
VEL_EXPORT QString escapePythonString(const QString& text, QChar quote = QLatin1Char('\''));

}  // namespace Vel
