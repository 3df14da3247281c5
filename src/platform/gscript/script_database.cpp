#include "gscript/script_database.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <set>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include "gapp/command.h"

namespace Vel::GScript {
namespace {

const QString PY_SUFFIX = QStringLiteral(".py");
const QString META_SUFFIX = QStringLiteral(".meta.json");

QString metadataPath(const QString& script_path)
{
  return script_path.chopped(PY_SUFFIX.size()) + META_SUFFIX;
}

// Missing metadata is no fault; damaged metadata is reported and the defaults are used.
ScriptMetadata readMetadata(const QString& script_path, ErrorLog& log)
{
  ScriptMetadata metadata;
  QFile file(metadataPath(script_path));
  QJsonParseError error;
  const QJsonDocument document =
      file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll(), &error) : QJsonDocument();
  if (!document.isObject()) {
    log.addLine(QStringLiteral("%1: the script's metadata cannot be read; defaults are used")
                    .arg(QDir::toNativeSeparators(file.fileName())));
    return metadata;
  }
  const QJsonObject object = document.object();
  metadata.display_name = object.value(QStringLiteral("display_name")).toString();
  metadata.show_in_menu = object.value(QStringLiteral("show_in_menu")).toBool(true);
  metadata.icon = object.value(QStringLiteral("icon")).toString();
  for (const QJsonValue& name : object.value(QStringLiteral("replaces")).toArray())
    if (name.isString())
      metadata.replaces << name.toString();
  return metadata;
}

QByteArray metadataJson(const ScriptMetadata& metadata)
{
  QJsonObject object;
  if (!metadata.display_name.isEmpty())
    object.insert(QStringLiteral("display_name"), metadata.display_name);
  object.insert(QStringLiteral("show_in_menu"), metadata.show_in_menu);
  if (!metadata.icon.isEmpty())
    object.insert(QStringLiteral("icon"), metadata.icon);
  if (!metadata.replaces.isEmpty())
    object.insert(QStringLiteral("replaces"), QJsonArray::fromStringList(metadata.replaces));
  return QJsonDocument(object).toJson();
}

bool writeAtomically(const QString& path, const QByteArray& bytes, ErrorLog& log)
{
  QDir().mkpath(QFileInfo(path).absolutePath());
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
    return true;
  log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
  return false;
}

QString mangle(const QString& path)
{
  QString name;
  name.reserve(path.size());
  for (const QChar c : path) {
    if (c == QLatin1Char('/'))
      name += QLatin1Char('.');
    else if (c.isLetterOrNumber() || c == QLatin1Char('_'))
      name += c;
    else
      name += QLatin1Char('_');
  }
  return name;
}

bool isHidden(const char* name)
{
  return name[0] == '.';
}

bool hasScriptSuffix(const char* name, size_t length)
{
  return length > 3 && strcasecmp(name + length - 3, ".py") == 0;
}

// Calls found(file name relative to root, whether it has metadata) for every script below root
// (which ends in "/"):
// readable "*.py" files (in any case), neither hidden nor in hidden folders, and no folders
// reached through links. The entry types that readdir gives spare a stat per file, and the
// metadata files are seen in the same listing, so a database of thousands of scripts is read
// with one pass over its folders.
void listScripts(const QString& root, const std::function<void(const QString&, bool)>& found)
{
  const QByteArray meta_suffix = META_SUFFIX.toUtf8();
  std::vector<QByteArray> pending{QByteArray()};  // folders relative to root, "" or "a/b/"
  const QByteArray root_path = QFile::encodeName(root);
  while (!pending.empty()) {
    const QByteArray relative = std::move(pending.back());
    pending.pop_back();
    DIR* dir = opendir((root_path + relative).constData());
    if (!dir)
      continue;
    std::vector<QByteArray> files;
    std::set<QByteArray> metadata;
    while (const dirent* entry = readdir(dir)) {
      const char* name = entry->d_name;
      if (isHidden(name))
        continue;
      const size_t length = strlen(name);
      unsigned char type = entry->d_type;
      struct stat info;
      if (type == DT_UNKNOWN) {
        if (fstatat(dirfd(dir), name, &info, AT_SYMLINK_NOFOLLOW) != 0)
          continue;
        type = S_ISDIR(info.st_mode)   ? DT_DIR
               : S_ISREG(info.st_mode) ? DT_REG
               : S_ISLNK(info.st_mode) ? DT_LNK
                                       : DT_UNKNOWN;
      }
      if (type == DT_LNK) {
        // A link counts as the file it names; a folder link is not followed, a broken link is
        // nothing.
        if (fstatat(dirfd(dir), name, &info, 0) != 0 || !S_ISREG(info.st_mode))
          continue;
        type = DT_REG;
      }
      if (type == DT_DIR) {
        pending.push_back(relative + name + '/');
      } else if (type == DT_REG) {
        if (hasScriptSuffix(name, length)) {
          if (faccessat(dirfd(dir), name, R_OK, 0) == 0)
            files.emplace_back(name, qsizetype(length));
        } else if (length > size_t(meta_suffix.size()) &&
                   QByteArrayView(name, qsizetype(length)).endsWith(meta_suffix)) {
          metadata.emplace(name, qsizetype(length));
        }
      }
    }
    closedir(dir);
    for (const QByteArray& file : files) {
      const QByteArray meta = file.chopped(PY_SUFFIX.size()) + meta_suffix;
      found(QFile::decodeName(relative + file), metadata.count(meta) != 0);
    }
  }
}

}  // namespace

QString Script::getQualifiedName() const
{
  return _file_name.chopped(PY_SUFFIX.size());
}

QString Script::getDisplayName() const
{
  if (!_metadata.display_name.isEmpty())
    return _metadata.display_name;
  // The file's name without its folders and its ".py".
  const QString name = _file_name.mid(_file_name.lastIndexOf(QLatin1Char('/')) + 1);
  return name.left(name.lastIndexOf(QLatin1Char('.')));
}

QString Script::getIconPath() const
{
  return _metadata.icon.isEmpty() ? QString() : QFileInfo(_path).dir().filePath(_metadata.icon);
}

bool Script::hasIcon() const
{
  return !_metadata.icon.isEmpty() && QFileInfo(getIconPath()).isFile();
}

ScriptCreator::~ScriptCreator() = default;

ScriptDatabase::ScriptDatabase(ScriptCreator* creator) : _creator(creator) {}

ScriptDatabase::~ScriptDatabase() = default;

QString ScriptDatabase::levelRoot(int level)
{
  switch (level) {
    case LEVEL_SYSTEM: {
      const QString env = qEnvironmentVariable("ZUT_SYSTEM_SCRIPTS");
      if (!env.isEmpty())
        return env;
      const QString base = QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QDir::currentPath();
      return QDir::cleanPath(base + QStringLiteral("/../share/zut/scripts"));
    }
    case LEVEL_PUBLIC: return qEnvironmentVariable("ZUT_PUBLIC_SCRIPTS");
    case LEVEL_USER: {
      QString base = qEnvironmentVariable("XDG_DATA_HOME");
      if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.local/share");
      return base + QStringLiteral("/zut/scripts");
    }
    default: return QString();
  }
}

bool ScriptDatabase::isValidFileName(const QString& file_name)
{
  if (!file_name.endsWith(PY_SUFFIX) || file_name.size() == PY_SUFFIX.size() || file_name.startsWith(QLatin1Char('/')))
    return false;
  for (const QString& part : file_name.split(QLatin1Char('/')))
    if (part.isEmpty() || part == QLatin1String(".") || part == QLatin1String(".."))
      return false;
  return true;
}

QString ScriptDatabase::makeScriptCommandName(const QString& qualified_name)
{
  return QString::fromLatin1(GApp::SCRIPT_COMMAND_PREFIX) + mangle(qualified_name);
}

QString ScriptDatabase::makeGroupCommandName(const QString& folder_qualified_name)
{
  return QStringLiteral("scriptgroup.") + mangle(folder_qualified_name);
}

bool ScriptDatabase::initialize(bool defer_scan, ErrorLog* log)
{
  _scanned = false;
  if (defer_scan)
    return true;
  scan();
  if (log)
    log->append(_scan_log);
  return _scan_log.isEmpty();
}

void ScriptDatabase::scanLevel(int level, std::map<QString, std::unique_ptr<Script>>& scripts, ErrorLog& log) const
{
  const QString root = levelRoot(level);
  if (root.isEmpty() || !QFileInfo(root).isDir())
    return;
  const QString base = QDir::cleanPath(root) + QLatin1Char('/');
  listScripts(base, [&](const QString& file_name, bool has_metadata) {
    auto script = std::make_unique<Script>();
    script->_file_name = file_name;
    script->_path = base + file_name;
    script->_level = level;
    if (has_metadata)
      script->_metadata = readMetadata(script->_path, log);
    // A higher level hides the script of the same name below it.
    scripts[script->_file_name] = std::move(script);
  });
}

void ScriptDatabase::scan() const
{
  _scripts.clear();
  _folders.clear();
  _scan_log.clear();
  for (int level = LEVEL_SYSTEM; level < LEVEL_COUNT; ++level)
    scanLevel(level, _scripts, _scan_log);
  nameCommands();

  for (const auto& entry : _scripts) {
    const Script* script = entry.second.get();
    bool direct = true;
    for (qsizetype slash = entry.first.lastIndexOf(QLatin1Char('/')); slash > 0;
         slash = entry.first.lastIndexOf(QLatin1Char('/'), slash - 1)) {
      const QString folder = entry.first.left(slash);
      auto& slot = _folders[folder];
      if (!slot) {
        slot = std::make_unique<ScriptFolder>();
        slot->_qualified_name = folder;
      }
      slot->_level = std::max(slot->_level, script->getConfigLevel());
      if (direct)
        slot->_scripts.push_back(script);
      direct = false;
    }
  }
  _scanned = true;
}

void ScriptDatabase::nameCommands() const
{
  std::map<QString, std::vector<Script*>> by_name;
  for (const auto& entry : _scripts)
    by_name[makeScriptCommandName(entry.second->getQualifiedName())].push_back(entry.second.get());
  // Names given to the second and later scripts of a name; the first scripts' names are the keys.
  std::set<QString> numbered;
  const QString prefix = QString::fromLatin1(GApp::SCRIPT_COMMAND_PREFIX);
  for (auto& entry : by_name) {
    std::vector<Script*>& scripts = entry.second;
    // The name that needs no change keeps its command whatever else is added to the database.
    if (scripts.size() > 1)
      std::stable_partition(scripts.begin(), scripts.end(), [&](const Script* script) {
        return prefix + QString(script->getQualifiedName()).replace(QLatin1Char('/'), QLatin1Char('.')) ==
               entry.first;
      });
    scripts.front()->_command_name = entry.first;
    int number = 2;
    for (auto it = std::next(scripts.begin()); it != scripts.end(); ++it) {
      QString name;
      do
        name = entry.first + QStringLiteral("_%1").arg(number++);
      while (by_name.count(name) || numbered.count(name));
      (*it)->_command_name = name;
      numbered.insert(name);
    }
  }
}

std::vector<const Script*> ScriptDatabase::getAllScripts() const
{
  if (!_scanned)
    scan();
  std::vector<const Script*> result;
  result.reserve(_scripts.size());
  for (const auto& entry : _scripts)
    result.push_back(entry.second.get());
  return result;
}

std::vector<ScriptFolder*> ScriptDatabase::getAllFolders() const
{
  if (!_scanned)
    scan();
  std::vector<ScriptFolder*> result;
  result.reserve(_folders.size());
  for (const auto& entry : _folders)
    result.push_back(entry.second.get());
  return result;
}

const Script* ScriptDatabase::getScript(const QString& file_name) const
{
  if (!_scanned)
    scan();
  const auto found = _scripts.find(file_name);
  return found == _scripts.end() ? nullptr : found->second.get();
}

ScriptFolder* ScriptDatabase::getFolder(const QString& qualified_name) const
{
  if (!_scanned)
    scan();
  const auto found = _folders.find(qualified_name);
  return found == _folders.end() ? nullptr : found->second.get();
}

bool ScriptDatabase::readScriptBytes(const QString& file_name, QByteArray& code, QByteArray* icon, ErrorLog& log) const
{
  const Script* script = getScript(file_name);
  if (!script) {
    log.addLine(QStringLiteral("There is no script '%1' in the script database.").arg(file_name));
    return false;
  }
  QFile file(script->getPath());
  if (!file.open(QIODevice::ReadOnly)) {
    log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file.fileName()), file.errorString()));
    return false;
  }
  code = file.readAll();
  if (icon && !script->getMetadata().icon.isEmpty()) {
    QFile icon_file(script->getIconPath());
    if (!icon_file.open(QIODevice::ReadOnly)) {
      log.addLine(
          QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(icon_file.fileName()), icon_file.errorString()));
      return false;
    }
    *icon = icon_file.readAll();
  }
  return true;
}

Script* ScriptDatabase::createLoadedScript(const QString& file_name, ErrorLog& log) const
{
  QByteArray code;
  if (!readScriptBytes(file_name, code, nullptr, log))
    return nullptr;
  const Script* script = getScript(file_name);
  auto* loaded = new Script;
  loaded->_file_name = script->_file_name;
  loaded->_command_name = script->_command_name;
  loaded->_path = script->_path;
  loaded->_level = script->_level;
  loaded->_metadata = script->_metadata;
  loaded->_source = code;
  return loaded;
}

bool ScriptDatabase::writeScript(int level, const QString& file_name, const QByteArray& code,
                                 const ScriptMetadata& metadata, ErrorLog& log, const QByteArray& icon)
{
  if (level != LEVEL_PUBLIC && level != LEVEL_USER) {
    log.addLine(level == LEVEL_SYSTEM ? QStringLiteral("The system level of the script database is read-only.")
                                      : QStringLiteral("There is no configuration level %1.").arg(level));
    return false;
  }
  const QString root = levelRoot(level);
  if (root.isEmpty()) {
    log.addLine(
        QStringLiteral("The public level of the script database has no folder (ZUT_PUBLIC_SCRIPTS is not set)."));
    return false;
  }
  if (!isValidFileName(file_name)) {
    log.addLine(QStringLiteral("'%1' is not a valid script name.").arg(file_name));
    return false;
  }
  if (!metadata.icon.isEmpty() && (metadata.icon.contains(QLatin1Char('/')) || metadata.icon == QLatin1String(".") ||
                                   metadata.icon == QLatin1String(".."))) {
    log.addLine(
        QStringLiteral("'%1' is not a valid icon name: icons are kept beside their script.").arg(metadata.icon));
    return false;
  }
  const QString path = QDir(root).filePath(file_name);
  if (!icon.isEmpty() && !metadata.icon.isEmpty() &&
      !writeAtomically(QFileInfo(path).dir().filePath(metadata.icon), icon, log))
    return false;
  if (!writeAtomically(path, code, log))
    return false;
  const QString meta_path = metadataPath(path);
  if (metadata.isDefault()) {
    QFile::remove(meta_path);
  } else if (!writeAtomically(meta_path, metadataJson(metadata), log)) {
    return false;
  }
  _scanned = false;
  return true;
}

void ScriptDatabase::setCurrentScript(const QString& file_name)
{
  _current_script = file_name;
}

const Script* ScriptDatabase::getCurrentScript() const
{
  return _current_script.isEmpty() ? nullptr : getScript(_current_script);
}

}  // namespace Vel::GScript
