#pragma once

#include <QString>

#include <memory>
#include <vector>

#include "core/error_log.h"
#include "core/vel_export.h"

namespace Vel::GScript {

// One top-level statement of a script.
class VEL_EXPORT ScriptElement
{
public:
  virtual ~ScriptElement();
  // The statement's first and last line, 0-based within the parsed text.
  int first_line = 0;
  int last_line = 0;
};

// A statement that calls an application command (zut.script..., zut.interactive..., zut.gui...),
// alone or as the value of an assignment.
class VEL_EXPORT ScriptCommand : public ScriptElement
{
public:
  QString name;  // as written, with its prefix
};

using ScriptElements = std::vector<std::unique_ptr<ScriptElement>>;

class VEL_EXPORT MacroScript
{
public:
  // Reads `text` with the interpreter's own compiler. False (with the reason in `log`) when the
  // text is no complete Python; otherwise `elements` holds its statements in order.
  static bool parse(const QString& text, ErrorLog& log, ScriptElements& elements);
};

}  // namespace Vel::GScript
