#pragma once

#include <QString>

#include "core/vel_export.h"

namespace Vel {

// The text as a Python string literal, quoted and escaped as Python's repr() would: single
// quotes unless the text holds a single quote and no double quote.
VEL_EXPORT QString quotePythonString(const QString& text);

}  // namespace Vel
