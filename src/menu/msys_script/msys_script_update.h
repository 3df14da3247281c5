#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <vector>

#include "core/error_log.h"

namespace Vel::MSysScript {

struct ScriptFileFormat;

// One name a script update replaced: "old.command -> new.command", or for an argument
// "command(old=) -> command(new=)". Lines count from 1.
struct ScriptChange
{
  int line = 0;
  QString old_text;
  QString new_text;

  bool operator==(const ScriptChange& other) const
  {
    return line == other.line && old_text == other.old_text && new_text == other.new_text;
  }
};

// Which command names and argument names replace which older ones.
class UpdateRules
{
public:
  // From the meta information of every registered command.
  static UpdateRules fromCommands();

  void addCommand(const QString& name, const QStringList& replaces, const QVariantMap& renamed_arguments);
  // The name that replaces `name`, following renames of renames; `name` itself when none does.
  QString currentName(const QString& name) const;
  // Older argument name -> newer, of the command and of the older names it replaced.
  QVariantMap renamedArguments(const QString& current_name) const;

private:
  QMap<QString, QString> _newer;
  QMap<QString, QVariantMap> _renamed;
};

struct ScriptUpdate
{
  QString text;
  QList<ScriptChange> changes;
  // Calls that could not be checked completely ("line 4: ..."): left as they are.
  QStringList problems;
};

// The script's text with every call of an older command name, and every older argument name, in
// their current form. Only those names change; the rest of the text stays byte for byte.
ScriptUpdate updateScriptText(const QString& text, const UpdateRules& rules);

// Reads a script file as the editor does (its encoding, line endings and byte-order mark go to
// `format`); false with the reason in `log`.
bool readScriptFile(const QString& path, QString& text, ScriptFileFormat& format, ErrorLog& log);

// Replaces the file at `path` by `text` written in `format` (all or nothing). With `backup`,
// first copies the original beside it as "NAME.py.bak" (or ".bak2", ".bak3", ...: an existing
// backup is never replaced), whose path goes to `backup_path`. False, with the reason in `log`,
// when the text cannot be written in the format or either write fails; the original is then as
// it was.
bool writeUpdatedScript(const QString& path, const QString& text, const ScriptFileFormat& format, bool backup,
                        QString* backup_path, ErrorLog& log);

// Whether updates keep a backup of the original ("MSysScript/UpdateScriptDialog/Backup").
bool backupWanted();

// What updating one file did.
struct FileUpdate
{
  QString file;  // as the caller named it, or the database script's path
  QList<ScriptChange> changes;
  QStringList problems;
  QString error_code;  // empty when the file was read (and written, if it had to be)
  ErrorLog log;
  QString backup;
};

// Updates the given files, or without files every script of the database's public and user
// levels (the system level is the installation's). Writes unless `dry_run`.
std::vector<FileUpdate> updateScripts(const QStringList& files, bool dry_run, bool backup, const UpdateRules& rules);

}  // namespace Vel::MSysScript
