#include "menu/msys_script/msys_python_script_creator.h"

#include "core/prog_error.h"
#include "gapp/command_container.h"
#include "gapp/main_window.h"
#include "gscript/import_handler.h"
#include "menu/msys_script/msys_cmd_export_script.h"
#include "menu/msys_script/msys_cmd_script.h"
#include "menu/msys_script/msys_gui_half.h"
#include "menu/msys_script/msys_python_script_database.h"

namespace Vel::MSysScript {
namespace {

GApp::Command* lookUp(const char* name, const char* missing)
{
  GApp::Command* command = GApp::CommandContainer::getInstance().getCommand(QString::fromLatin1(name));
  if (!command)
    throw ProgError(QStringLiteral("lookUp"), QStringLiteral("msys_python_script_creator"),
                    QString::fromLatin1(missing));
  return command;
}

// Python modules from the database: the module "tools.helpers" is the script whose file name,
// with backslashes read as separators, is "tools/helpers.py". A file name is compared as it is
// spelt with forward slashes only.
class DatabaseImportHandler : public GScript::ImportHandlerSource
{
public:
  QStringList getNames() const override
  {
    QStringList names;
    DatabaseLock database;
    if (!database)
      return names;
    for (const GScript::Script* script : database->getAllScripts())
      names << QString(script->getFileName()).replace(QLatin1Char('\\'), QLatin1Char('/'));
    return names;
  }

  QByteArray getSource(const QString& name) const override
  {
    QByteArray text;
    DatabaseLock database;
    if (!database)
      return text;
    for (const GScript::Script* script : database->getAllScripts()) {
      if (!text.isEmpty())
        break;
      if (QString(script->getFileName()).replace(QLatin1Char('\\'), QLatin1Char('/')) != name)
        continue;
      ErrorLog ignored;
      if (GScript::Script* loaded = database->createLoadedScript(script->getFileName(), ignored)) {
        text = loaded->getSource();
        delete loaded;
      }
    }
    return text;
  }
};

}  // namespace

void PythonScriptCreator::importScript(GScript::ScriptFolder* folder) const
{
  auto* command = dynamic_cast<ImportScriptCommand*>(lookUp("sys.import_script", "Import command not registered"));
  if (!command)
    throw ProgError(QStringLiteral("importScript"), QStringLiteral("msys_python_script_creator"),
                    QStringLiteral("Import command not registered"));
  command->setTargetFolder(folder);
  GApp::MainWindow::executeMenu(command);
  command->setTargetFolder(nullptr);
}

void PythonScriptCreator::exportScript() const
{
  GApp::MainWindow::executeMenu(lookUp("sys.export_script", "Export command not registered"));
}

void PythonScriptCreator::importScriptArchive() const
{
  GApp::MainWindow::executeMenu(lookUp("sys.import_script_archive", "Import command not registered"));
}

void PythonScriptCreator::exportScriptArchive() const
{
  GApp::MainWindow::executeMenu(lookUp("sys.export_script_archive", "Export command not registered"));
}

void PythonScriptCreator::update(const GScript::ScriptDatabase* database) const
{
  ScriptCommand::update(*database);
  if (const GuiHalf* gui = loadedGuiHalf())
    gui->database_changed(database);
}

void installDatabaseImportHandler()
{
  // Lives as long as the process: the interpreter may import through it until the end.
  static bool installed = false;
  if (!installed)
    new DatabaseImportHandler;
  installed = true;
}

}  // namespace Vel::MSysScript
