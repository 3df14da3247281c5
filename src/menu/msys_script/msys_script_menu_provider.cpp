#include "menu/msys_script/msys_script_menu_provider.h"

#include <QMenu>
#include <QPixmap>

#include "core/prog_error.h"
#include "gapp/command_container.h"
#include "gscript/script_database.h"
#include "gtools/icon_cache.h"
#include "menu/msys_script/msys_cmd_script.h"

namespace Vel::MSysScript {
namespace {

ScriptSpecialMenuProvider* instance = nullptr;

const QString SOURCE = QStringLiteral("msys_script_menu_provider");

// Empty names stand for separators.
const char* const MENU_COMMANDS[] = {
    "sys.show_script_editor",    "sys.execute_script",        "", "sys.import_script", "sys.export_script", "",
    "sys.import_script_archive", "sys.export_script_archive",
};

}  // namespace

void ScriptSpecialMenuProvider::initialize()
{
  if (instance)
    throw ProgError(QStringLiteral("initialize"), SOURCE, QStringLiteral("Singleton, only one instance allowed"));
  instance = new ScriptSpecialMenuProvider;
  GApp::MainWindow::registerSpecialMenuProvider(instance);
}

void ScriptSpecialMenuProvider::deinitialize()
{
  if (!instance)
    throw ProgError(QStringLiteral("deinitialize"), SOURCE, QStringLiteral("Instance not initialized"));
  GApp::MainWindow::unregisterSpecialMenuProvider(instance);
  delete instance;
  instance = nullptr;
}

ScriptSpecialMenuProvider* ScriptSpecialMenuProvider::getInstance()
{
  return instance;
}

QString ScriptSpecialMenuProvider::getMenuId() const
{
  return QString::fromLatin1(MENU_ID);
}

namespace {

QAction* addCommand(QMenu* menu, const GApp::Command* command, const QIcon& icon = QIcon())
{
  const QString command_name = command->getName();
  QAction* action = menu->addAction(icon, command->getMenuTitle());
  action->setObjectName(command_name);
  // Looked up again when triggered: the command may have been replaced meanwhile.
  QObject::connect(action, &QAction::triggered, menu, [command_name] {
    if (GApp::Command* current = GApp::CommandContainer::getInstance().getCommand(command_name))
      GApp::MainWindow::executeMenu(current);
  });
  return action;
}

// The database's scripts: those at the top directly, those in folders in a sub-menu per folder
// (the folder's group), each as its command.
void addScripts(QMenu* menu)
{
  const GApp::CommandContainer& container = GApp::CommandContainer::getInstance();
  const QString prefix = QString::fromLatin1(GApp::SCRIPT_COMMAND_PREFIX);
  bool separated = false;
  auto separate = [&] {
    if (!separated)
      menu->addSeparator();
    separated = true;
  };
  for (auto it = container.lowerBound(prefix); it != container.end() && it->first.startsWith(prefix); ++it) {
    const auto* script = dynamic_cast<const ScriptCommand*>(it->second);
    if (!script || !script->getShowInMenu() || script->getQualifiedName().contains(QLatin1Char('/')))
      continue;
    separate();
    addCommand(menu, script, ScriptSpecialMenuProvider::iconOf(*script));
  }
  const QString group_prefix = GScript::ScriptDatabase::makeGroupCommandName(QString());
  for (auto it = container.lowerBound(group_prefix); it != container.end() && it->first.startsWith(group_prefix);
       ++it) {
    const auto* group = dynamic_cast<const GApp::ToolBarGroupCommand*>(it->second);
    if (!group || group->getCommands().isEmpty())
      continue;
    separate();
    const auto* first = dynamic_cast<const ScriptCommand*>(container.getCommand(group->getCommands().first()));
    QMenu* sub = menu->addMenu(first ? first->getQualifiedName().section(QLatin1Char('/'), 0, -2) : group->getName());
    sub->setObjectName(group->getName());
    for (const QString& name : group->getCommands())
      if (const auto* script = dynamic_cast<const ScriptCommand*>(container.getCommand(name)))
        addCommand(sub, script, ScriptSpecialMenuProvider::iconOf(*script));
  }
}

}  // namespace

QIcon ScriptSpecialMenuProvider::iconOf(const ScriptCommand& command)
{
  QPixmap pixmap;
  if (!command.getIconFile().isEmpty() && pixmap.load(command.getIconFile()))
    return QIcon(pixmap);
  return GIcon::Cache::getConfigLevelIcon(command.getConfigLevel());
}

void ScriptSpecialMenuProvider::fillMenu(QMenu* menu) const
{
  for (const char* name : MENU_COMMANDS) {
    if (!*name) {
      menu->addSeparator();
      continue;
    }
    if (GApp::Command* command = GApp::CommandContainer::getInstance().getCommand(QString::fromLatin1(name)))
      addCommand(menu, command);
  }
  addScripts(menu);
}

}  // namespace Vel::MSysScript
