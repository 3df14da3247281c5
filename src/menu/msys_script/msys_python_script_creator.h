#pragma once

#include "gscript/script_database.h"

namespace Vel::MSysScript {

// What the host's script views do through the module: import and export through the module's
// commands, and bringing the script commands in line after the scripts changed.
class PythonScriptCreator : public GScript::ScriptCreator
{
public:
  void importScript(GScript::ScriptFolder* folder) const override;
  void exportScript() const override;
  void importScriptArchive() const override;
  void exportScriptArchive() const override;
  void update(const GScript::ScriptDatabase* database) const override;
};

// Makes the import handler through which scripts import each other (once per process).
void installDatabaseImportHandler();

}  // namespace Vel::MSysScript
