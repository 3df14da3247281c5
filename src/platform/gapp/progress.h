#pragma once

#include <QObject>
#include <QString>

#include "core/vel_export.h"

namespace Vel::GApp {

// The progress of the work in progress, as one value that progress displays follow: a long
// command reports the share of its time that has passed, a script reports its own. GUI thread.
class VEL_EXPORT Progress : public QObject
{
  Q_OBJECT

public:
  static Progress& getInstance();

  // `done` of `total` (clamped to 0..total); `text` says what is being done.
  void report(double done, double total, const QString& text = QString());
  // No work in progress any more.
  void clear();

  bool isActive() const { return _active; }
  double getDone() const { return _done; }
  double getTotal() const { return _total; }
  // done / total in 0..1; 0 while nothing is in progress.
  double getShare() const { return _active && _total > 0 ? _done / _total : 0.0; }
  const QString& getText() const { return _text; }

Q_SIGNALS:
  void signalProgressChanged(double done, double total, const QString& text);
  void signalProgressCleared();

private:
  Progress() = default;

  bool _active = false;
  double _done = 0;
  double _total = 0;
  QString _text;
};

}  // namespace Vel::GApp
