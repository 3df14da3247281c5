#include "menu/msys_script/msys_script_update.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>
#include <set>

#include "cfg/cfg.h"
#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_parameter_map.h"
#include "menu/msys_script/msys_python_script_database.h"
#include "menu/msys_script/msys_script_file_format.h"

namespace Vel::MSysScript {
namespace {

struct Edit
{
  int begin;
  int length;
  QString replacement;
};

int lineOf(const QString& text, int offset)
{
  return int(QStringView(text).left(offset).count(QLatin1Char('\n'))) + 1;
}

// The dotted name after "zut.script." at `start`, for a call the reader cannot take in full.
QString nameAt(const QString& text, int start, int& name_begin)
{
  static const QRegularExpression pattern(QStringLiteral("\\Gzut\\.(?:script|interactive)\\.([\\w.]*\\w)"),
                                          QRegularExpression::UseUnicodePropertiesOption);
  const QRegularExpressionMatch match = pattern.match(text, start);
  name_begin = int(match.capturedStart(1));
  return match.captured(1);
}

}  // namespace

UpdateRules UpdateRules::fromCommands()
{
  UpdateRules rules;
  for (const auto& entry : GApp::CommandContainer::getInstance()) {
    const GApp::CommandMetaInfo& meta = entry.second->getMetaInfo();
    rules.addCommand(entry.first, meta.getReplaces(), meta.getRenamedArguments());
  }
  return rules;
}

void UpdateRules::addCommand(const QString& name, const QStringList& replaces, const QVariantMap& renamed_arguments)
{
  for (const QString& older : replaces)
    if (older != name)
      _newer.insert(older, name);
  if (!renamed_arguments.isEmpty())
    _renamed[name].insert(renamed_arguments);
}

QString UpdateRules::currentName(const QString& name) const
{
  // A cycle of renames (a -> b -> a) stops where it would come round again.
  QString current = name;
  std::set<QString> seen{current};
  for (auto it = _newer.find(current); it != _newer.end(); it = _newer.find(current)) {
    if (!seen.insert(it.value()).second)
      break;
    current = it.value();
  }
  return current;
}

QVariantMap UpdateRules::renamedArguments(const QString& current_name) const
{
  QVariantMap renamed;
  for (auto it = _newer.begin(); it != _newer.end(); ++it)
    if (currentName(it.key()) == current_name)
      renamed.insert(_renamed.value(it.key()));
  renamed.insert(_renamed.value(current_name));
  return renamed;
}

ScriptUpdate updateScriptText(const QString& text, const UpdateRules& rules)
{
  ScriptUpdate update;
  std::vector<Edit> edits;
  for (const int start : findCommandCalls(text)) {
    const int line = lineOf(text, start);
    CommandCall call;
    try {
      call = readCommandCallAt(text, start, true);
    } catch (const GApp::CommandError& error) {
      // The name can be brought up to date all the same; the arguments cannot be checked.
      int name_begin = 0;
      const QString name = nameAt(text, start, name_begin);
      const QString current = rules.currentName(name);
      if (!name.isEmpty() && current != name) {
        edits.push_back({name_begin, int(name.size()), current});
        update.changes << ScriptChange{line, name, current};
      }
      if (!rules.renamedArguments(current).isEmpty())
        update.problems << QStringLiteral("line %1: the arguments of this call are not checked: %2")
                               .arg(line)
                               .arg(error.getLog().getText());
      continue;
    }
    const QString current = rules.currentName(call.command);
    if (current != call.command) {
      edits.push_back({call.name_begin, call.name_end - call.name_begin, current});
      update.changes << ScriptChange{line, call.command, current};
    }
    const QVariantMap renamed = rules.renamedArguments(current);
    for (const CallArgument& argument : call.arguments) {
      const QString newer = renamed.value(argument.name).toString();
      if (newer.isEmpty() || newer == argument.name)
        continue;
      const int argument_line = lineOf(text, argument.name_begin);
      if (call.find(newer)) {
        update.problems << QStringLiteral("line %1: %2 is given both as '%3' and as '%4'; left as it is")
                               .arg(argument_line)
                               .arg(current, argument.name, newer);
        continue;
      }
      edits.push_back({argument.name_begin, int(argument.name.size()), newer});
      update.changes << ScriptChange{argument_line, QStringLiteral("%1(%2=)").arg(current, argument.name),
                                     QStringLiteral("%1(%2=)").arg(current, newer)};
    }
  }
  // From the back, so that the offsets before each edit still hold.
  std::sort(edits.begin(), edits.end(), [](const Edit& a, const Edit& b) { return a.begin > b.begin; });
  update.text = text;
  for (const Edit& edit : edits)
    update.text.replace(edit.begin, edit.length, edit.replacement);
  return update;
}

bool readScriptFile(const QString& path, QString& text, ScriptFileFormat& format, ErrorLog& log)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
    return false;
  }
  QString error;
  if (ScriptFileFormat::decode(file.readAll(), text, format, error))
    return true;
  log.addLine(QStringLiteral("%1: %2.").arg(QDir::toNativeSeparators(path), error));
  return false;
}

bool writeUpdatedScript(const QString& path, const QString& text, const ScriptFileFormat& format, bool backup,
                        QString* backup_path, ErrorLog& log)
{
  QByteArray bytes;
  QString error;
  if (!format.encode(text, bytes, error)) {
    log.addLine(QStringLiteral("%1: %2.").arg(QDir::toNativeSeparators(path), error));
    return false;
  }
  if (backup) {
    QString target = path + QStringLiteral(".bak");
    for (int number = 2; QFileInfo::exists(target); ++number)
      target = path + QStringLiteral(".bak%1").arg(number);
    QFile original(path);
    if (!original.copy(target)) {
      log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(target), original.errorString()));
      return false;
    }
    if (backup_path)
      *backup_path = target;
  }
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
    return true;
  log.addLine(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
  return false;
}

bool backupWanted()
{
  const CfgNode* root = configurationRoot();
  const QString key = QString::fromLatin1(CFG_UPDATE_SCRIPT_DIALOG_BACKUP);
  return !root || !root->contains(key) || root->getBool(key);
}

std::vector<FileUpdate> updateScripts(const QStringList& files, bool dry_run, bool backup, const UpdateRules& rules)
{
  QStringList paths = files;
  if (paths.isEmpty()) {
    DatabaseLock database;
    if (database)
      for (const GScript::Script* script : database->getAllScripts())
        if (script->getConfigLevel() != GScript::LEVEL_SYSTEM)
          paths << script->getPath();
  }
  std::vector<FileUpdate> results;
  for (const QString& path : paths) {
    FileUpdate result;
    result.file = path;
    QString text;
    ScriptFileFormat format;
    if (!readScriptFile(path, text, format, result.log)) {
      result.error_code = QString::fromLatin1(ERR_LOAD_SCRIPT);
    } else {
      const ScriptUpdate update = updateScriptText(text, rules);
      result.changes = update.changes;
      result.problems = update.problems;
      if (!dry_run && update.text != text &&
          !writeUpdatedScript(path, update.text, format, backup, &result.backup, result.log))
        result.error_code = QString::fromLatin1(ERR_SAVE_SCRIPT);
    }
    results.push_back(result);
  }
  return results;
}

}  // namespace Vel::MSysScript
