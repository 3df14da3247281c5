#include "menu/msys_script/msys_cmd_export_script.h"

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

ImportScriptCommand::ImportScriptCommand()
    : MSysCommand(
          QStringLiteral("sys.import_script"), {"MSysScript_cmd", "Import Script", "id=9991"},
          {{QStringLiteral("files"), Meta::TYPE_LIST, QStringLiteral("file names of scripts to import")},
           {QStringLiteral("names"), Meta::TYPE_LIST, QStringLiteral("names of scripts resulting from the import")},
           {QStringLiteral("config_level"), Meta::TYPE_CONFIG_LEVEL,
            QStringLiteral("config level where the scripts are stored")},
           {QStringLiteral("display_names"), Meta::TYPE_LIST, QStringLiteral("display names of the imported scripts")},
           {QStringLiteral("replace_existing_scripts"), Meta::TYPE_BOOLEAN,
            QStringLiteral("whether existing scripts should be overwritten")}})
{}

void ImportScriptCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

// The argument reads "script archive" although a single script is written: the description is
// shared with the archive export.
ExportScriptCommand::ExportScriptCommand()
    : MSysCommand(
          QStringLiteral("sys.export_script"), {"MSysScript_cmd", "Export Script", "id=10010"},
          {{QStringLiteral("file"), Meta::TYPE_FILE, QStringLiteral("file name of the created script archive")}})
{}

void ExportScriptCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

}  // namespace Vel::MSysScript
