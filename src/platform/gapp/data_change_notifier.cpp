#include "gapp/data_change_notifier.h"

namespace Vel::GApp {

DataChangeNotifier* DataChangeNotifier::getInstance()
{
  static auto* instance = new DataChangeNotifier;
  return instance;
}

}  // namespace Vel::GApp
