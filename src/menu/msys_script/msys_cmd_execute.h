#pragma once

#include "core/error_log.h"
#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::GScript {
class Execute;
}

namespace Vel::MSysScript {

// Hands the call's "parameters" and output switches to a prepared run. The stderr switch reads
// the "collect_stdout" argument; commands that run Python all share this. Returns whether a
// switch was given (the collected text is then the command's result).
bool applyRunArguments(const GApp::CommandParameters& parameters, GScript::Execute& run);

// "sys.execute_script": runs a Python file from disk.
class ExecuteScriptCommand : public MSysCommand
{
public:
  ExecuteScriptCommand();
  void execute(const GApp::CommandParameters& parameters) override;
  // Asks for the file when the call has none.
  bool prepareInteractive(GApp::CommandParameters& parameters) override;

  // The file's bytes, ended by a line feed. False (with the reason in `log`) when the file cannot
  // be opened, is unreadable or empty, or is not in the encoding it declares (UTF-8 when it
  // declares none); the bytes are compiled as they are, so that Python decodes them itself.
  static bool readScriptFile(const QString& path, QByteArray& source, ErrorLog& log);
};

// "sys.execute_python_code": runs Python text given as the argument "code".
class ExecutePythonCodeCommand : public MSysCommand
{
public:
  ExecutePythonCodeCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

}  // namespace Vel::MSysScript
