// The program's own windows, a plug-in of the program loaded when the windows come up: the GUI
// application object and what the sub-commands do with windows.

#include <QApplication>
#include <QClipboard>
#include <QEventLoop>
#include <QFont>
#include <QMainWindow>
#include <QStyleFactory>
#include <QTimer>

#include <cstdio>

#include "core/vel_export.h"
#include "gtools/dialog_widget_supplier.h"

namespace {

// The program has no main window to embed dialogs in: they are top-level windows over whatever
// window is active.
class ZutDialogSupplier : public Vel::GTools::DialogWidgetSupplierInterface
{
public:
  QWidget* getDialogParent() const override { return QApplication::activeWindow(); }
  bool canEmbed() const override { return false; }
};

ZutDialogSupplier dialog_supplier;

QList<QWidget*> openDialogs()
{
  QList<QWidget*> dialogs;
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->isVisible() && widget->objectName() == QLatin1String("VelMSysScript_UserDefinedDialog"))
      dialogs << widget;
  return dialogs;
}

QWidget* mainWindow()
{
  QWidget* window = nullptr;
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->isVisible() && qobject_cast<QMainWindow*>(widget))
      window = widget;
  return window;
}

}  // namespace

extern "C" {

// The GUI application object, made where the console one was. `picture`: drawn the same on
// every machine, in the Fusion style with a fixed font.
VEL_EXPORT QCoreApplication* ZutGuiCreateApplication(int* argc, char** argv, int picture)
{
  auto* application = new QApplication(*argc, argv);
  if (picture) {
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
  }
  Vel::GTools::DialogWidgetSupplierInterface::setInstance(&dialog_supplier);
  return application;
}

// Dialogs a script opened without waiting for them stay until a person closes them; where
// nobody can (`interactive` false), they are closed, and that is said.
VEL_EXPORT void ZutGuiFinishOpenDialogs(int interactive)
{
  if (openDialogs().isEmpty())
    return;
  if (!interactive) {
    for (QWidget* dialog : openDialogs()) {
      std::fprintf(stderr, "zut: closing the dialog \"%s\": the script has ended and nobody can close it\n",
                   dialog->windowTitle().toLocal8Bit().constData());
      dialog->close();
    }
    return;
  }
  QEventLoop loop;
  QTimer check;
  QObject::connect(&check, &QTimer::timeout, &loop, [&] {
    if (openDialogs().isEmpty())
      loop.quit();
  });
  check.start(100);
  loop.exec();
}

// Writes a picture of the shown main window once it has laid itself out and coloured its text,
// and closes it. 0 on success.
VEL_EXPORT int ZutGuiGrabMainWindow(const char* file)
{
  for (int round = 0; round < 5; ++round)
    QCoreApplication::processEvents();
  QWidget* window = mainWindow();
  if (!window || !window->grab().save(QString::fromLocal8Bit(file)))
    return 1;
  window->close();
  return 0;
}

// Whether the program holds clipboard data that the window system takes over only at Qt's own
// teardown.
VEL_EXPORT int ZutGuiOwnsClipboard()
{
  return QApplication::clipboard()->ownsClipboard() ? 1 : 0;
}

}  // extern "C"
