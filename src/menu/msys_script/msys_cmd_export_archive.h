#pragma once

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

// "sys.import_script_archive": brings the scripts of a ".scriptar" archive into the database.
class ImportScriptArchiveCommand : public MSysCommand
{
public:
  ImportScriptArchiveCommand();
  void execute(const GApp::CommandParameters& parameters) override;
  bool prepareInteractive(GApp::CommandParameters& parameters) override;
};

// "sys.export_script_archive": writes database scripts into a ".scriptar" archive.
class ExportScriptArchiveCommand : public MSysCommand
{
public:
  ExportScriptArchiveCommand();
  void execute(const GApp::CommandParameters& parameters) override;
  bool prepareInteractive(GApp::CommandParameters& parameters) override;
};

}  // namespace Vel::MSysScript
