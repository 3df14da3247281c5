#include "gapp/progress.h"

#include <algorithm>

namespace Vel::GApp {

Progress& Progress::getInstance()
{
  static Progress instance;
  return instance;
}

void Progress::report(double done, double total, const QString& text)
{
  _active = true;
  _total = total > 0 ? total : 0;
  _done = std::clamp(done, 0.0, _total);
  _text = text;
  Q_EMIT signalProgressChanged(_done, _total, _text);
}

void Progress::clear()
{
  if (!_active)
    return;
  _active = false;
  _done = _total = 0;
  _text.clear();
  Q_EMIT signalProgressCleared();
}

}  // namespace Vel::GApp
