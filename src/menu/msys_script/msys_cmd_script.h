#pragma once

#include <QString>

#include "gapp/command.h"

namespace Vel::GScript {
class Script;
class ScriptDatabase;
}  // namespace Vel::GScript

namespace Vel::MSysScript {

// The command of one database script: runs the script's current text with the caller's
// parameters. Made, updated and withdrawn as scripts come and go.
class ScriptCommand : public GApp::Command
{
public:
  // Nested script commands deeper than this are refused.
  static constexpr int MAX_RECURSION_DEPTH = 10;

  // `name` must begin with the script command prefix.
  explicit ScriptCommand(const QString& name);

  QString getTitle() const override { return _menu_title; }
  QString getCommandType() const override { return QStringLiteral("cmd_dynamic_execute_script"); }
  void execute(const GApp::CommandParameters& parameters) override;

  void updateFromScript(const GScript::Script& script);
  const QString& getScriptFileName() const { return _script_file_name; }
  const QString& getQualifiedName() const { return _qualified_name; }
  // The script's own icon file; empty when it has none, and the menus show its level's icon.
  const QString& getIconFile() const { return _icon_file; }
  int getConfigLevel() const { return _config_level; }
  bool getShowInMenu() const { return _show_in_menu; }

  // Brings the script commands and the folders' group commands in line with the database;
  // commands of unchanged scripts stay the same objects.
  static void update(const GScript::ScriptDatabase& database);

private:
  QString _menu_title;
  QString _script_file_name;
  QString _qualified_name;
  QString _icon_file;
  int _config_level = 0;
  bool _show_in_menu = true;
};

}  // namespace Vel::MSysScript
