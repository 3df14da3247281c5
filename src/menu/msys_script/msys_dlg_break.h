#pragma once

#include <QDialog>
#include <QPointer>

#include "gscript/safe_points.h"

class QPushButton;

namespace Vel::MSysScript {

// The small window with a Stop button that a script offers when it runs long in the GUI.
class BreakDialog : public QDialog
{
  Q_OBJECT

public:
  explicit BreakDialog(QWidget* parent = nullptr);
  QPushButton* getStopButton() const { return _stop; }

private:
  QPushButton* _stop;
};

// Shows the break dialog once a script run lasts longer than "MSysScript/BreakDialog/Timeout"
// while the application shows a window (a script in the GUI, not one run from a terminal), and
// closes it when the run ends.
class BreakDialogObserver : public GScript::SafePoints::Observer
{
public:
  static BreakDialogObserver& getInstance();

  void safePoint(double seconds) override;
  void runEnded() override;
  BreakDialog* getDialog() const { return _dialog; }

private:
  QPointer<BreakDialog> _dialog;
  double _timeout = -1;  // of the current run; -1 until read
};

}  // namespace Vel::MSysScript
