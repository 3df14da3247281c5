#pragma once

#include <QObject>

#include "core/vel_export.h"

namespace Vel::GApp {

// What changed in the application's data.
enum DataChangedReason_t
{
  DATA_CHANGED_ELEMENTS = 0,
  DATA_CHANGED_SELECTION = 1,
  DATA_CHANGED_COMMANDS = 2,
  DATA_CHANGED_SCRIPTS = 3,
  DATA_CHANGED_UNITS = 4,
  DATA_CHANGED_CONFIGURATION = 5
};

// The application's announcement that its data changed, for views that show it.
class VEL_EXPORT DataChangeNotifier : public QObject
{
  Q_OBJECT

public:
  static DataChangeNotifier* getInstance();
  void notify(DataChangedReason_t reason) { Q_EMIT signalDataChanged(reason); }

Q_SIGNALS:
  void signalDataChanged(Vel::GApp::DataChangedReason_t reason);
};

}  // namespace Vel::GApp
