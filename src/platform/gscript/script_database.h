#pragma once

#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <vector>

#include "core/error_log.h"
#include "core/vel_export.h"

namespace Vel::GScript {

class ScriptDatabase;

// The three folder trees of scripts. A script at a higher level hides the script of the same
// name below it: users override public scripts, which override the installation's.
enum ConfigLevel
{
  LEVEL_SYSTEM = 0,  // share/zut/scripts of the installation, read-only
  LEVEL_PUBLIC = 1,  // $ZUT_PUBLIC_SCRIPTS
  LEVEL_USER = 2     // $XDG_DATA_HOME/zut/scripts
};
constexpr int LEVEL_COUNT = 3;

// What the metadata file beside a script says ("<name>.meta.json").
struct VEL_EXPORT ScriptMetadata
{
  QString display_name;  // empty: the script's base name
  bool show_in_menu = true;
  QString icon;  // image file, relative to the script's folder; empty: none
  // Commands the script's command replaces ("userscript.old_name"): a script that was renamed or
  // moved names its former commands, and updating scripts makes their callers call it.
  QStringList replaces;

  bool isDefault() const { return display_name.isEmpty() && show_in_menu && icon.isEmpty() && replaces.isEmpty(); }
};

class VEL_EXPORT Script
{
public:
  // The database file name: the path below the level's root with '/' ("tools/helpers.py").
  // Unique in the database; the key for loading and for the running-script stack.
  const QString& getFileName() const { return _file_name; }
  // The file name without ".py" ("tools/helpers").
  QString getQualifiedName() const;
  // The command that runs the script ("userscript.tools.helpers"), unique in the database.
  const QString& getCommandName() const { return _command_name; }
  QString getDisplayName() const;
  bool getShowInMenu() const { return _metadata.show_in_menu; }
  const ScriptMetadata& getMetadata() const { return _metadata; }
  // Whether the script has an icon of its own: one is named and its file is there. The picture is
  // read where it is drawn.
  bool hasIcon() const;
  int getConfigLevel() const { return _level; }
  // Where the script is on disk.
  const QString& getPath() const { return _path; }
  QString getIconPath() const;
  // The file's bytes, for scripts made by createLoadedScript (empty otherwise): what Python
  // compiles, with the encoding the file declares.
  const QByteArray& getSource() const { return _source; }

private:
  friend class ScriptDatabase;
  QString _file_name;
  QString _command_name;
  QString _path;
  int _level = LEVEL_USER;
  ScriptMetadata _metadata;
  QByteArray _source;
};

// A folder of scripts, merged over the levels that have it.
class VEL_EXPORT ScriptFolder
{
public:
  // The path below the level roots ("tools"); empty for the root.
  const QString& getQualifiedName() const { return _qualified_name; }
  // The highest level that has the folder.
  int getConfigLevel() const { return _level; }
  // The visible scripts directly in the folder, ordered by file name.
  const std::vector<const Script*>& getScripts() const { return _scripts; }

private:
  friend class ScriptDatabase;
  QString _qualified_name;
  int _level = LEVEL_SYSTEM;
  std::vector<const Script*> _scripts;
};

// What the application does when the user asks, in the script views, to import or export, and
// what it does after the set of scripts changed. The database owns its creator.
class VEL_EXPORT ScriptCreator
{
public:
  virtual ~ScriptCreator();
  virtual void importScript(ScriptFolder* folder) const = 0;
  virtual void exportScript() const = 0;
  virtual void importScriptArchive() const = 0;
  virtual void exportScriptArchive() const = 0;
  virtual void update(const ScriptDatabase* database) const = 0;
};

// The scripts of the three levels as they are on disk when the database is initialised.
class VEL_EXPORT ScriptDatabase
{
public:
  // Takes the creator (may be null for a database that only lists).
  explicit ScriptDatabase(ScriptCreator* creator);
  ~ScriptDatabase();
  ScriptDatabase(const ScriptDatabase&) = delete;
  ScriptDatabase& operator=(const ScriptDatabase&) = delete;

  // Reads the level folders. With `defer_scan` the folders are read at the first question
  // about the scripts instead (a caller that only wants the current script pays nothing).
  // False when something could not be read; what could be read is there all the same, and
  // the log says what was wrong.
  bool initialize(bool defer_scan, ErrorLog* log);

  // Visible scripts, ordered by file name.
  std::vector<const Script*> getAllScripts() const;
  // Every folder below the roots that holds visible scripts or folders, ordered by name.
  std::vector<ScriptFolder*> getAllFolders() const;
  const Script* getScript(const QString& file_name) const;
  ScriptFolder* getFolder(const QString& qualified_name) const;

  // A new script object with its text loaded from disk; the caller deletes it. Null (with the
  // reason in `log`) when there is no such script or it cannot be read.
  Script* createLoadedScript(const QString& file_name, ErrorLog& log) const;

  // Writes a script (text byte for byte, metadata beside it) at a level. Refuses the system
  // level, names that leave the level's root, and failed writes; the database is read again.
  bool writeScript(int level, const QString& file_name, const QByteArray& code, const ScriptMetadata& metadata,
                   ErrorLog& log, const QByteArray& icon = QByteArray());
  // The raw bytes of a script and of its icon, for export.
  bool readScriptBytes(const QString& file_name, QByteArray& code, QByteArray* icon, ErrorLog& log) const;

  // The script that the editor works on.
  void setCurrentScript(const QString& file_name);
  const Script* getCurrentScript() const;

  ScriptCreator* getCreator() const { return _creator.get(); }

  // "userscript." and the qualified name with '/' as '.' and every character that cannot be in
  // a Python identifier as '_' ("userscript.my_tools.grüße"). Scripts whose names differ only in
  // such characters ("my tools/x", "my-tools/x", "my_tools/x") each keep a command: the one whose
  // name needs no change, or else the first by name, has this name, and the others have it with
  // "_2", "_3", ... appended in name order (Script::getCommandName).
  static QString makeScriptCommandName(const QString& qualified_name);
  // The tool-bar group of a folder's scripts ("scriptgroup.my_tools").
  static QString makeGroupCommandName(const QString& folder_qualified_name);
  // A level's root folder.
  static QString levelRoot(int level);
  // Whether `file_name` is a database file name: relative, '.py', no "." or ".." parts.
  static bool isValidFileName(const QString& file_name);

private:
  void scan() const;
  void nameCommands() const;
  void scanLevel(int level, std::map<QString, std::unique_ptr<Script>>& scripts, ErrorLog& log) const;

  std::unique_ptr<ScriptCreator> _creator;
  mutable bool _scanned = false;
  mutable std::map<QString, std::unique_ptr<Script>> _scripts;
  mutable std::map<QString, std::unique_ptr<ScriptFolder>> _folders;
  mutable ErrorLog _scan_log;
  QString _current_script;
};

}  // namespace Vel::GScript
