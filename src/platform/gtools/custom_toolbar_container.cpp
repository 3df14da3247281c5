#include "gtools/custom_toolbar_container.h"

#include <QAction>

#include <algorithm>

#include "gapp/command.h"
#include "gapp/command_container.h"
#include "gapp/main_window.h"

namespace Vel::GTools {

using GApp::Command;
using GApp::CommandContainer;
using GApp::MainWindow;
using GApp::ToolBarGroupCommand;

CustomToolBarContainer& CustomToolBarContainer::getInstance()
{
  static CustomToolBarContainer instance;
  return instance;
}

CustomToolBarContainer::CustomToolBarContainer()
{
  CommandContainer::getInstance().addActionsListener([this] { update(); });
}

void CustomToolBarContainer::addToolBar(QToolBar* tool_bar, const QString& group)
{
  _tool_bars.emplace_back(tool_bar, group);
  update();
}

void CustomToolBarContainer::update()
{
  ++_update_count;
  _tool_bars.erase(std::remove_if(_tool_bars.begin(), _tool_bars.end(), [](const auto& t) { return t.first.isNull(); }),
                   _tool_bars.end());
  const CommandContainer& container = CommandContainer::getInstance();
  for (const auto& [tool_bar, group_name] : _tool_bars) {
    // The buttons made last time belong to the tool bar; clear() alone would only hide them.
    const QList<QAction*> old_actions = tool_bar->actions();
    tool_bar->clear();
    for (QAction* action : old_actions)
      if (action->parent() == tool_bar)
        delete action;
    const auto* group = dynamic_cast<const ToolBarGroupCommand*>(container.getCommand(group_name));
    if (!group)
      continue;
    for (const QString& name : group->getCommands()) {
      const Command* command = container.getCommand(name);
      if (!command)
        continue;
      QAction* action = tool_bar->addAction(command->getMenuTitle());
      action->setObjectName(name);
      // Looked up when clicked: the command may have been withdrawn meanwhile.
      QObject::connect(action, &QAction::triggered, action, [name] {
        if (Command* current = CommandContainer::getInstance().getCommand(name))
          MainWindow::executeMenu(current);
      });
    }
  }
}

}  // namespace Vel::GTools
