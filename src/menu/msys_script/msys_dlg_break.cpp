#include "menu/msys_script/msys_dlg_break.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "cfg/cfg.h"
#include "core/translate.h"
#include "gapp/main_window.h"
#include "menu/msys_script/msys_config.h"

namespace Vel::MSysScript {
namespace {

// A person works with the application's windows: a visible top-level window other than ours.
bool guiInUse()
{
  for (const QWidget* widget : QApplication::topLevelWidgets())
    if (widget->isVisible() && !qobject_cast<const BreakDialog*>(widget))
      return true;
  return false;
}

}  // namespace

BreakDialog::BreakDialog(QWidget* parent) : QDialog(parent)
{
  setObjectName(QStringLiteral("BreakDialog"));
  setWindowTitle(translate("MSysScript_BreakDialog", "Script running", "id=39001#title"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(translate("MSysScript_BreakDialog", "A script is running.", "id=39002")));
  _stop = new QPushButton(translate("MSysScript_BreakDialog", "Stop", "id=39003"));
  _stop->setObjectName(QStringLiteral("stop"));
  layout->addWidget(_stop);
  // An abort button like those of dialogs: enabled while the script runs, a click stops it.
  GApp::MainWindow::addAbortButton(_stop);
}

BreakDialogObserver& BreakDialogObserver::getInstance()
{
  static BreakDialogObserver instance;
  return instance;
}

void BreakDialogObserver::safePoint(double seconds)
{
  if (_dialog || !qobject_cast<QApplication*>(QCoreApplication::instance()) || !configurationRoot())
    return;
  // Read once a run: safe points come every few tens of milliseconds.
  if (_timeout < 0)
    _timeout = configurationRoot()->getDouble(QString::fromLatin1(CFG_BREAK_DIALOG_TIMEOUT));
  if (seconds < _timeout || !guiInUse())
    return;
  _dialog = new BreakDialog(QApplication::activeWindow());
  _dialog->setAttribute(Qt::WA_DeleteOnClose, false);
  _dialog->show();
}

void BreakDialogObserver::runEnded()
{
  _timeout = -1;
  delete _dialog;
}

}  // namespace Vel::MSysScript
