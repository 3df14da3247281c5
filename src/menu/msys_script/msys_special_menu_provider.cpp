#include "menu/msys_script/msys_special_menu_provider.h"

#include <QMenu>

#include "core/prog_error.h"
#include "gapp/command_container.h"

namespace Vel::MSysScript {
namespace {

ScriptSpecialMenuProvider* instance = nullptr;

const QString SOURCE = QStringLiteral("msys_special_menu_provider");

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

void ScriptSpecialMenuProvider::fillMenu(QMenu* menu) const
{
  for (const char* name : MENU_COMMANDS) {
    if (!*name) {
      menu->addSeparator();
      continue;
    }
    GApp::Command* command = GApp::CommandContainer::getInstance().getCommand(QString::fromLatin1(name));
    if (!command)
      continue;
    const QString command_name = command->getName();
    QAction* action = menu->addAction(command->getMenuTitle());
    action->setObjectName(command_name);
    // Looked up again when triggered: the command may have been replaced meanwhile.
    QObject::connect(action, &QAction::triggered, menu, [command_name] {
      if (GApp::Command* current = GApp::CommandContainer::getInstance().getCommand(command_name))
        GApp::MainWindow::executeMenu(current);
    });
  }
}

}  // namespace Vel::MSysScript
