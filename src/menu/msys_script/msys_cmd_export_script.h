#pragma once

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::GScript {
class ScriptDatabase;
class ScriptFolder;
struct ScriptMetadata;
}  // namespace Vel::GScript

namespace Vel::MSysScript {

// Whether a name from outside (an archive, an import) can be stored in the database and found
// there again: a relative path of visible, printable parts ending in ".py"; an icon is a plain
// file name beside its script that is neither a script nor metadata. False with the reason.
bool isStorableScriptName(const QString& file_name, QString& reason);
bool isStorableIconName(const QString& icon_name, QString& reason);

// Writes scripts into the database as one step: everything is checked first (names, levels,
// scripts that run, scripts that exist), then written; a failed write takes back what this
// step wrote. Returns false with the reason in `log`.
struct ScriptToWrite
{
  QString file_name;
  QByteArray code;
  QString display_name;
  bool show_in_menu = true;
  QString icon_name;
  QByteArray icon;
  QStringList replaces;
};
bool writeScripts(GScript::ScriptDatabase& database, int level, const std::vector<ScriptToWrite>& scripts,
                  bool replace_existing, ErrorLog& log);

// "sys.import_script": copies script files into the script database.
class ImportScriptCommand : public MSysCommand
{
public:
  ImportScriptCommand();
  void execute(const GApp::CommandParameters& parameters) override;
  bool prepareInteractive(GApp::CommandParameters& parameters) override;

  // The folder the script views asked to import into; names are relative to it.
  void setTargetFolder(GScript::ScriptFolder* folder) { _target_folder = folder; }

private:
  GScript::ScriptFolder* _target_folder = nullptr;
};

// "sys.export_script": writes the current script of the database to a file.
class ExportScriptCommand : public MSysCommand
{
public:
  ExportScriptCommand();
  void execute(const GApp::CommandParameters& parameters) override;
  bool prepareInteractive(GApp::CommandParameters& parameters) override;
};

}  // namespace Vel::MSysScript
