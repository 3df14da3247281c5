#pragma once

#include "core/vel_export.h"

class QWidget;

namespace Vel::GTools {

// What the application offers the dialogs that plug-ins build at run time: the window they
// belong to, and whether they may be embedded in it. The application installs one at start-up.
class VEL_EXPORT DialogWidgetSupplierInterface
{
public:
  virtual ~DialogWidgetSupplierInterface();

  // The window that a new top-level dialog is placed over; null for none.
  virtual QWidget* getDialogParent() const = 0;
  // Whether a dialog that asks to be embedded is shown inside the main window.
  virtual bool canEmbed() const = 0;

  // Null until the application has installed one. The application keeps ownership.
  static DialogWidgetSupplierInterface* getInstance();
  static void setInstance(DialogWidgetSupplierInterface* supplier);
};

}  // namespace Vel::GTools
