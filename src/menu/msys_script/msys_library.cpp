#include "menu/msys_script/msys_library.h"

#include "core/color.h"
#include "core/prog_error.h"
#include "core/translate.h"
#include "gscript/gui_handler.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_cmd_delay.h"
#include "menu/msys_script/msys_cmd_dialog.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_cmd_execute.h"
#include "menu/msys_script/msys_cmd_export_archive.h"
#include "menu/msys_script/msys_cmd_export_script.h"
#include "menu/msys_script/msys_cmd_test_timeout.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dialog_templates.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_gui_half.h"
#include "menu/msys_script/msys_python_script_creator.h"
#include "menu/msys_script/msys_python_script_database.h"
#include "menu/msys_script/msys_script_update.h"

namespace Vel::MSysScript {
namespace {

void createCommands()
{
  // Each command registers itself with the host's container, which owns it from now on.
  new DelayCommand;
  new EditorCommand;
  new ExecuteScriptCommand;
  new ExecutePythonCodeCommand;
  new ImportScriptCommand;
  new ExportScriptCommand;
  new ImportScriptArchiveCommand;
  new ExportScriptArchiveCommand;
  new SetTestTimeoutCommand;
  new CreateDialogCommand;
  new ExecuteDialogCommand;
  new ShowDialogCommand;
  new OpenDialogCommand;
  new CloseDialogCommand;
}

}  // namespace

extern "C" {

void InitLibrary(Vel::CfgNode* root)
{
  guarded("InitLibrary", [root] {
    VEL_ASSERT(root);
    installTranslator(QStringLiteral("VelMSysScript"));
    Color::registerMetaType();
    createCommands();
    declareHandleTypes();
    DialogTemplateDatabase::registerResource();
    setConfigurationRoot(root);
    declareConfiguration(root);
    declareTemplateConfiguration(root);
    registerErrorCodes();
    installDatabaseImportHandler();
  });
}

void CloseLibrary()
{
  // Commands and configuration items belong to the host once registered.
}

void InitDefaults()
{
  guarded("InitDefaults", [] {
    // Answers are for dialogs: taking them brings the windows up.
    GScript::setDialogAnswersHandler([](const QVariantList& answers) { guiHalf().answer_dialogs(answers); });
  });
}

void CloseDefaults()
{
  guarded("CloseDefaults", [] { GScript::setDialogAnswersHandler(nullptr); });
}

void InitScriptDatabase()
{
  guarded("InitScriptDatabase", [] {
    PythonScriptDatabase::getDatabase(false);
    PythonScriptDatabase::releaseDatabase();
  });
}

void CloseScriptDatabase() {}

void UpdateRegisteredCommands()
{
  // The script commands follow the database, and the editors' command names follow both.
  guarded("UpdateRegisteredCommands", [] {
    DatabaseLock database;
    if (database)
      database->getCreator()->update(database.get());
  });
}

GApp::CommandParameters* CreateParameterDelay(double seconds)
{
  auto* parameters = new GApp::CommandParameters;
  parameters->set(QStringLiteral("time"), seconds);
  return parameters;
}

char* DialogTemplates(const char* name, int* faulty)
{
  char* result = nullptr;
  guarded("DialogTemplates", [&] {
    QString output;
    *faulty = 0;
    try {
      if (name && *name) {
        output = DialogTemplateDatabase::read(QString::fromUtf8(name));
      } else {
        for (const DialogTemplate& entry : DialogTemplateDatabase::list())
          output += QStringLiteral("%1\t%2\t%3\n").arg(entry.name, entry.origin, entry.path);
      }
    } catch (const GApp::CommandError& error) {
      *faulty = 1;
      output = error.getText();
    }
    result = qstrdup(output.toUtf8().constData());
  });
  return result;
}

int UpdateScripts(const char* const* files, int count, int dry_run, void (*out)(const char*), void (*err)(const char*))
{
  int status = -1;
  guarded("UpdateScripts", [&] {
    QStringList paths;
    for (int i = 0; i < count; ++i)
      paths << QString::fromLocal8Bit(files[i]);
    const auto say = [](void (*stream)(const char*), const QString& line) {
      stream((line + QLatin1Char('\n')).toUtf8().constData());
    };
    status = 0;
    for (const FileUpdate& update : updateScripts(paths, dry_run != 0, backupWanted(), UpdateRules::fromCommands())) {
      for (const ScriptChange& change : update.changes)
        say(out,
            QStringLiteral("%1:%2: %3 -> %4").arg(update.file).arg(change.line).arg(change.old_text, change.new_text));
      for (const QString& problem : update.problems)
        say(err, QStringLiteral("%1: warning: %2").arg(update.file, problem));
      if (!update.backup.isEmpty())
        say(err, QStringLiteral("%1: the original is kept as %2").arg(update.file, update.backup));
      if (!update.error_code.isEmpty()) {
        status = 1;
        say(err,
            QStringLiteral("%1: %2").arg(update.file, GApp::CommandError(update.error_code, update.log).getText()));
      }
    }
  });
  return status;
}

void FreeAnalysis(char* analysis)
{
  delete[] analysis;
}

}  // extern "C"
}  // namespace Vel::MSysScript
