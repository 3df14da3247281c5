#pragma once

#include <QString>

#include <vector>

// Dialog definitions to start from: those compiled into the module, those an installation adds
// (share/zut/dialog_templates) and the user's own ($XDG_DATA_HOME/zut/dialog_templates), each a
// "NAME.dialog_template" file holding a dialog definition. A later place hides a template of the
// same name in an earlier one; the names in "MSysScript/ScriptDialogTemplateDatabase/
// InvisibleTemplates" are not listed.
namespace Vel::MSysScript {

struct DialogTemplate
{
  QString name;
  QString origin;  // "module", "installation" or "user"
  QString path;    // a resource path for the module's own
};

class DialogTemplateDatabase
{
public:
  static constexpr const char* SUFFIX = ".dialog_template";

  // Makes the module's own templates known; once, at start-up.
  static void registerResource();
  static QString installationFolder();
  static QString userFolder();

  // The visible templates by name. A folder that exists but cannot be read is
  // "MSysScriptErr-0018" with the folder named.
  static std::vector<DialogTemplate> list();
  // A template's definition text; an unknown or unreadable one is "MSysScriptErr-0018".
  static QString read(const QString& name);
};

}  // namespace Vel::MSysScript
