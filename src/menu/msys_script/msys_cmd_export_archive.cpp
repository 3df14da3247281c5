#include "menu/msys_script/msys_cmd_export_archive.h"

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

ImportScriptArchiveCommand::ImportScriptArchiveCommand()
    : MSysCommand(
          QStringLiteral("sys.import_script_archive"), {"MSysScript_cmd", "Import Script Archive", "id=10014"},
          {{QStringLiteral("file"), Meta::TYPE_FILE, QStringLiteral("file name of the imported script archive")}})
{}

void ImportScriptArchiveCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

ExportScriptArchiveCommand::ExportScriptArchiveCommand()
    : MSysCommand(QStringLiteral("sys.export_script_archive"), {"MSysScript_cmd", "Export Script Archive", "id=10030"},
                  {{QStringLiteral("file"), Meta::TYPE_FILE, QStringLiteral("file name of the created script archive")},
                   {QStringLiteral("names"), Meta::TYPE_LIST, QStringLiteral("names of scripts to export")}})
{}

void ExportScriptArchiveCommand::execute(const GApp::CommandParameters&)
{
  failNotAvailable();
}

}  // namespace Vel::MSysScript
