#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include "core/error_log.h"
#include "core/vel_export.h"

namespace Vel::GScript {

// Host error code of a Python run that failed ("Python script failed").
VEL_EXPORT extern const char* const ERR_SCRIPT_FAILED;  // "GScriptErr-0001"

// One run of Python text in the embedded interpreter, in a fresh global namespace.
class VEL_EXPORT Execute
{
public:
  enum Flags
  {
    FLAG_NONE = 0,
    // The text runs as the main module (__name__ == "__main__").
    FLAG_MAIN = 1
  };

  explicit Execute(const QString& code);

  // Visible to the script as the dictionary PARAMETERS.
  void setParameters(const QMap<QString, QVariant>& parameters) { _parameters = parameters; }
  // What the script prints is collected instead of written; both streams go into one text.
  void setCollectStdout(bool collect) { _collect_stdout = collect; }
  void setCollectStderr(bool collect) { _collect_stderr = collect; }
  // The name tracebacks give the text ("<string>" without one); also the script's __file__.
  void setFileName(const QString& file_name) { _file_name = file_name; }
  const QString& getFileName() const { return _file_name; }
  // The name tracebacks give the text instead of its file name (a database script's name).
  void setCodeName(const QString& code_name) { _code_name = code_name; }

  // Runs the text. Every run has safe points (window events, abort; see SafePoints); `gui_mode`
  // changes nothing here. On failure returns false, sets `error_code` and adds the traceback to
  // `log`; a failure that came from a command the script called keeps that command's code.
  bool execute(int gui_mode, int flags, QString& error_code, ErrorLog& log);

  const QString& getCollectedOutput() const { return _collected; }

private:
  QString _code;
  QString _file_name;
  QString _code_name;
  QMap<QString, QVariant> _parameters;
  bool _collect_stdout = false;
  bool _collect_stderr = false;
  QString _collected;
};

}  // namespace Vel::GScript
