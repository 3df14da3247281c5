#pragma once

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

// "sys.import_script": copies script files into the script database.
class ImportScriptCommand : public MSysCommand
{
public:
  ImportScriptCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

// "sys.export_script": writes a database script to a file.
class ExportScriptCommand : public MSysCommand
{
public:
  ExportScriptCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

}  // namespace Vel::MSysScript
