#pragma once

#include <QPointer>
#include <QString>
#include <QToolBar>

#include <cstdint>
#include <utility>
#include <vector>

#include "core/vel_export.h"

namespace Vel::GTools {

// The tool bars that show a group command's commands (the scripts of a folder, say). After the
// commands change (CommandContainer::updateAllActions), their buttons are rebuilt from the commands
// as they are now.
class VEL_EXPORT CustomToolBarContainer
{
public:
  static CustomToolBarContainer& getInstance();

  // `tool_bar` shows the commands of the group command named `group`; it leaves the container
  // when it is destroyed.
  void addToolBar(QToolBar* tool_bar, const QString& group);
  void update();
  uint64_t getUpdateCount() const { return _update_count; }

private:
  CustomToolBarContainer();

  std::vector<std::pair<QPointer<QToolBar>, QString>> _tool_bars;
  uint64_t _update_count = 0;
};

}  // namespace Vel::GTools
