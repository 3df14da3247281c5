#include "menu/msys_script/msys_cmd_export_archive.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "core/translate.h"
#include "gapp/interaction.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_cmd_export_script.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_script_database.h"
#include "menu/msys_script/msys_script_archive.h"

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

namespace {

QString archiveFilter()
{
  return QStringLiteral("Script archives (*.scriptar)");
}

// A script's icon, read only from inside the script's level of the database: the name comes
// from a metadata file that anyone may have written. False with the reason otherwise.
bool readIcon(const GScript::Script& script, QByteArray& icon, QString& reason)
{
  const QString name = script.getMetadata().icon;
  if (!isStorableIconName(name, reason))
    return false;
  const QString root = QFileInfo(GScript::ScriptDatabase::levelRoot(script.getConfigLevel())).canonicalFilePath();
  const QString path = QFileInfo(script.getPath()).dir().filePath(name);
  const QString real = QFileInfo(path).canonicalFilePath();  // through any link
  if (real.isEmpty()) {
    reason = QStringLiteral("%1 does not exist").arg(QDir::toNativeSeparators(path));
    return false;
  }
  if (root.isEmpty() || !real.startsWith(root + QLatin1Char('/'))) {
    reason = QStringLiteral("%1 lies outside the script database").arg(QDir::toNativeSeparators(path));
    return false;
  }
  QFile file(real);
  if (!file.open(QIODevice::ReadOnly)) {
    reason = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString());
    return false;
  }
  icon = file.readAll();
  return true;
}

}  // namespace

ImportScriptArchiveCommand::ImportScriptArchiveCommand()
    : MSysCommand(
          QStringLiteral("sys.import_script_archive"), {"MSysScript_cmd", "Import Script Archive", "id=10014"},
          {{QStringLiteral("file"), Meta::TYPE_FILE, QStringLiteral("file name of the imported script archive"), true}})
{}

bool ImportScriptArchiveCommand::prepareInteractive(GApp::CommandParameters& parameters)
{
  return askForFile(parameters, QStringLiteral("file"), getTitle(), archiveFilter(), false);
}

void ImportScriptArchiveCommand::execute(const GApp::CommandParameters& parameters)
{
  const QString path = getArgument<Parse::File>(parameters, QStringLiteral("file")).getName();
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    failCommand(ERR_IMPORT_ARCHIVE, QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
  ErrorLog log;
  std::vector<ArchivedScript> archived;
  if (!ScriptArchive::read(file.readAll(), archived, log))
    failCommand(ERR_IMPORT_ARCHIVE, log);

  DatabaseLock database;
  if (!database)
    failCommand(ERR_IMPORT_ARCHIVE, QStringLiteral("The script database is not available."));
  std::vector<ScriptToWrite> scripts;
  QStringList existing;
  for (const ArchivedScript& entry : archived) {
    scripts.push_back({entry.file_name, entry.code, entry.metadata.display_name, entry.metadata.show_in_menu,
                       entry.metadata.icon, entry.icon, entry.metadata.replaces});
    const GScript::Script* script = database->getScript(entry.file_name);
    if (script && script->getConfigLevel() == GScript::LEVEL_USER)
      existing << entry.file_name;
  }
  // Existing scripts are replaced only when a person says so.
  const bool replace =
      !existing.isEmpty() &&
      GApp::askYesNo(
          getTitle(),
          QStringLiteral("These scripts exist already:\n%1\nReplace them?").arg(existing.join(QLatin1Char('\n'))),
          false);
  if (!writeScripts(*database.get(), GScript::LEVEL_USER, scripts, replace, log))
    failCommand(ERR_IMPORT_ARCHIVE, log);
  QStringList imported;
  for (const ArchivedScript& entry : archived)
    imported << entry.file_name;
  setResult(imported);
}

// ---------------------------------------------------------------------------------------------

ExportScriptArchiveCommand::ExportScriptArchiveCommand()
    : MSysCommand(
          QStringLiteral("sys.export_script_archive"), {"MSysScript_cmd", "Export Script Archive", "id=10030"},
          {{QStringLiteral("file"), Meta::TYPE_FILE, QStringLiteral("file name of the created script archive"), true},
           {QStringLiteral("names"), Meta::TYPE_LIST, QStringLiteral("names of scripts to export")}})
{}

bool ExportScriptArchiveCommand::prepareInteractive(GApp::CommandParameters& parameters)
{
  return askForFile(parameters, QStringLiteral("file"), getTitle(), archiveFilter(), true);
}

void ExportScriptArchiveCommand::execute(const GApp::CommandParameters& parameters)
{
  const QString path = getArgument<Parse::File>(parameters, QStringLiteral("file")).getName();
  QStringList names;
  if (parameters.contains(QStringLiteral("names")))
    names = getArgument<QStringList>(parameters, QStringLiteral("names"));

  DatabaseLock database;
  if (!database)
    failCommand(ERR_EXPORT_ARCHIVE, QStringLiteral("The script database is not available."));
  // Names are qualified names or file names; none means every script.
  QStringList file_names;
  if (names.isEmpty()) {
    for (const GScript::Script* script : database->getAllScripts())
      file_names << script->getFileName();
  }
  for (const QString& name : names)
    file_names << (name.endsWith(QStringLiteral(".py")) ? name : name + QStringLiteral(".py"));

  ErrorLog log;
  ErrorLog warnings;
  std::vector<ArchivedScript> scripts;
  for (const QString& file_name : file_names) {
    ArchivedScript entry;
    entry.file_name = file_name;
    if (!database->readScriptBytes(file_name, entry.code, nullptr, log))
      failCommand(ERR_EXPORT_ARCHIVE, log);
    const GScript::Script* script = database->getScript(file_name);
    entry.metadata = script->getMetadata();
    QString reason;
    if (!entry.metadata.icon.isEmpty() && !readIcon(*script, entry.icon, reason)) {
      // The script matters more than its picture.
      warnings.addLine(QStringLiteral("%1: the icon is left out (%2).").arg(file_name, reason));
      entry.metadata.icon.clear();
    }
    scripts.push_back(std::move(entry));
  }
  const QByteArray bytes = ScriptArchive::write(scripts);
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
    failCommand(ERR_EXPORT_ARCHIVE, QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
  if (!warnings.isEmpty())
    GApp::ErrorDialog(QString::fromLatin1(ERR_LOAD_IMAGE), warnings.getText());
  setResult(file_names);
}

}  // namespace Vel::MSysScript
