#include "menu/msys_script/msys_cmd_export_script.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "core/translate.h"
#include "gapp/interaction.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_script_database.h"

namespace Vel::MSysScript {

using Meta = GApp::CommandMetaInfo;

namespace {

const QString PY = QStringLiteral(".py");

bool readFile(const QString& path, QByteArray& bytes, ErrorLog& log)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
    return false;
  }
  bytes = file.readAll();
  if (bytes.isEmpty()) {
    log.addLine(errorText("Unable to access file: %1", "id=9989").arg(QDir::toNativeSeparators(path)));
    return false;
  }
  return true;
}

// A name as a user can read it: control characters (a NUL among them) spelt out.
QString printable(const QString& name)
{
  QString text;
  for (const QChar c : name)
    text += c.unicode() < 0x20 || c.unicode() == 0x7f
                ? QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'))
                : QString(c);
  return text;
}

// One part of a path: the file system must store it as it is, and the database must list it.
bool isStorablePart(const QString& part, QString& reason)
{
  if (part.isEmpty() || part == QLatin1String(".") || part == QLatin1String("..")) {
    reason = QStringLiteral("a part of it is empty, '.' or '..'");
    return false;
  }
  if (part.startsWith(QLatin1Char('.'))) {
    reason = QStringLiteral("a name beginning with '.' is hidden and would never be listed");
    return false;
  }
  for (const QChar c : part) {
    if (c.unicode() < 0x20 || c.unicode() == 0x7f || c.isSurrogate() || c.isNonCharacter()) {
      reason = QStringLiteral("it holds a control character");
      return false;
    }
    if (c == QLatin1Char('\\')) {
      reason = QStringLiteral("folders are separated by '/', not '\\'");
      return false;
    }
  }
  return true;
}

}  // namespace

bool isStorableScriptName(const QString& file_name, QString& reason)
{
  QString why;
  if (!file_name.endsWith(PY) || file_name.size() == PY.size())
    why = QStringLiteral("a script name ends in '.py'");
  else if (file_name.startsWith(QLatin1Char('/')))
    why = QStringLiteral("a script name is relative to its level");
  else
    for (const QString& part : file_name.split(QLatin1Char('/')))
      if (!isStorablePart(part, why))
        break;
  if (why.isEmpty())
    return true;
  reason = QStringLiteral("'%1' is not a valid script name: %2.").arg(printable(file_name), why);
  return false;
}

bool isStorableIconName(const QString& icon_name, QString& reason)
{
  QString why;
  if (icon_name.contains(QLatin1Char('/')))
    why = QStringLiteral("icons are kept beside their script");
  else if (icon_name.endsWith(PY) || icon_name.endsWith(QStringLiteral(".meta.json")))
    why = QStringLiteral("it would replace a script or its metadata");
  else
    isStorablePart(icon_name, why);
  if (why.isEmpty())
    return true;
  reason = QStringLiteral("'%1' is not a valid icon name: %2.").arg(printable(icon_name), why);
  return false;
}

bool writeScripts(GScript::ScriptDatabase& database, int level, const std::vector<ScriptToWrite>& scripts,
                  bool replace_existing, ErrorLog& log)
{
  struct Previous
  {
    QString file_name;
    bool existed;
    QByteArray code;
    GScript::ScriptMetadata metadata;
  };
  std::vector<Previous> previous;
  for (const ScriptToWrite& script : scripts) {
    QString reason;
    if (!isStorableScriptName(script.file_name, reason) ||
        (!script.icon_name.isEmpty() && !isStorableIconName(script.icon_name, reason))) {
      log.addLine(reason);
      return false;
    }
    if (PythonScriptDatabase::isRunning(script.file_name)) {
      log.addLine(QStringLiteral("The script '%1' is running and cannot be replaced.").arg(script.file_name));
      return false;
    }
    const GScript::Script* existing = database.getScript(script.file_name);
    Previous before{script.file_name, existing && existing->getConfigLevel() == level, {}, {}};
    if (before.existed) {
      if (!replace_existing) {
        log.addLine(QStringLiteral("The script '%1' exists already.").arg(script.file_name));
        return false;
      }
      before.metadata = existing->getMetadata();
      if (!database.readScriptBytes(script.file_name, before.code, nullptr, log))
        return false;
    }
    previous.push_back(before);
  }

  for (size_t i = 0; i < scripts.size(); ++i) {
    const ScriptToWrite& script = scripts[i];
    GScript::ScriptMetadata metadata;
    metadata.display_name = script.display_name;
    metadata.show_in_menu = script.show_in_menu;
    metadata.icon = script.icon_name;
    metadata.replaces = script.replaces;
    if (database.writeScript(level, script.file_name, script.code, metadata, log, script.icon))
      continue;
    // Take back this step's writes: earlier texts return, new files go.
    for (size_t j = 0; j < i; ++j) {
      ErrorLog ignored;
      if (previous[j].existed)
        database.writeScript(level, previous[j].file_name, previous[j].code, previous[j].metadata, ignored);
      else
        QFile::remove(QDir(GScript::ScriptDatabase::levelRoot(level)).filePath(previous[j].file_name));
    }
    return false;
  }
  // The new scripts become commands at once.
  database.getCreator()->update(&database);
  return true;
}

// ---------------------------------------------------------------------------------------------

ImportScriptCommand::ImportScriptCommand()
    : MSysCommand(
          QStringLiteral("sys.import_script"), {"MSysScript_cmd", "Import Script", "id=9991"},
          {{QStringLiteral("files"), Meta::TYPE_LIST, QStringLiteral("file names of scripts to import"), true},
           {QStringLiteral("names"), Meta::TYPE_LIST, QStringLiteral("names of scripts resulting from the import")},
           {QStringLiteral("config_level"), Meta::TYPE_CONFIG_LEVEL,
            QStringLiteral("config level where the scripts are stored")},
           {QStringLiteral("display_names"), Meta::TYPE_LIST, QStringLiteral("display names of the imported scripts")},
           {QStringLiteral("replace_existing_scripts"), Meta::TYPE_BOOLEAN,
            QStringLiteral("whether existing scripts should be overwritten")}})
{}

bool ImportScriptCommand::prepareInteractive(GApp::CommandParameters& parameters)
{
  if (parameters.contains(QStringLiteral("files")) || !GApp::isInteractive())
    return true;
  const QStringList files = GApp::askFileNames(GApp::FileQuestion::OpenMany, getTitle(),
                                               translate("MSysScript_Execute_filedir", "Scripts (*.py)", "id=9988"));
  if (files.isEmpty())
    return false;
  parameters.set(QStringLiteral("files"), QVariant(files));
  return true;
}

void ImportScriptCommand::execute(const GApp::CommandParameters& parameters)
{
  const QStringList files = getArgument<QStringList>(parameters, QStringLiteral("files"));
  const auto optionalList = [&](const char* name) {
    return parameters.contains(QString::fromLatin1(name))
               ? getArgument<QStringList>(parameters, QString::fromLatin1(name))
               : QStringList();
  };
  const QStringList names = optionalList("names");
  const QStringList display_names = optionalList("display_names");
  int level = GScript::LEVEL_USER;
  if (parameters.contains(QStringLiteral("config_level")) &&
      !Meta::readConfigLevel(parameters.get(QStringLiteral("config_level")).getValue(), level))
    throw GApp::CommandError(
        QString::fromLatin1(GApp::ERR_INVALID_ARGUMENT),
        ErrorLog(QStringLiteral("config_level takes a %1").arg(Meta::typeCodeDescription(Meta::TYPE_CONFIG_LEVEL))));
  const bool replace = parameters.contains(QStringLiteral("replace_existing_scripts")) &&
                       getArgument<bool>(parameters, QStringLiteral("replace_existing_scripts"));

  if ((!names.isEmpty() && names.size() != files.size()) ||
      (!display_names.isEmpty() && display_names.size() != files.size()))
    failCommand(ERR_IMPORT_SCRIPT, QStringLiteral("'names' and 'display_names' must have one entry per file."));

  const QString folder = _target_folder ? _target_folder->getQualifiedName() : QString();
  ErrorLog log;
  std::vector<ScriptToWrite> scripts;
  for (int i = 0; i < files.size(); ++i) {
    ScriptToWrite script;
    if (!readFile(files[i], script.code, log))
      failCommand(ERR_IMPORT_SCRIPT, log);
    QString name = names.isEmpty() ? QFileInfo(files[i]).fileName() : names[i];
    if (!name.endsWith(PY))
      name += PY;
    script.file_name = folder.isEmpty() ? name : folder + QLatin1Char('/') + name;
    script.display_name = display_names.value(i);
    scripts.push_back(script);
  }

  DatabaseLock database;
  if (!database || !writeScripts(*database.get(), level, scripts, replace, log))
    failCommand(ERR_IMPORT_SCRIPT, log);
  QStringList imported;
  for (const ScriptToWrite& script : scripts)
    imported << script.file_name;
  setResult(imported);
}

// ---------------------------------------------------------------------------------------------

// The argument reads "script archive" although a single script is written: the description is
// shared with the archive export.
ExportScriptCommand::ExportScriptCommand()
    : MSysCommand(
          QStringLiteral("sys.export_script"), {"MSysScript_cmd", "Export Script", "id=10010"},
          {{QStringLiteral("file"), Meta::TYPE_FILE, QStringLiteral("file name of the created script archive"), true}})
{}

bool ExportScriptCommand::prepareInteractive(GApp::CommandParameters& parameters)
{
  return askForFile(parameters, QStringLiteral("file"), getTitle(),
                    translate("MSysScript_Execute_filedir", "Scripts (*.py)", "id=9988"), true);
}

void ExportScriptCommand::execute(const GApp::CommandParameters& parameters)
{
  const QString path = getArgument<Parse::File>(parameters, QStringLiteral("file")).getName();
  DatabaseLock database;
  const GScript::Script* current = database ? database->getCurrentScript() : nullptr;
  if (!current)
    failCommand(ERR_EXPORT_SCRIPT,
                QStringLiteral("No script is selected: open the script to export in the script editor."));
  ErrorLog log;
  QByteArray code;
  if (!database->readScriptBytes(current->getFileName(), code, nullptr, log))
    failCommand(ERR_EXPORT_SCRIPT, log);
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(code) != code.size() || !file.commit())
    failCommand(ERR_EXPORT_SCRIPT, QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
  setResult(current->getFileName());
}

}  // namespace Vel::MSysScript
