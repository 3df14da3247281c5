#include "gtools/dialog_widget_supplier.h"

namespace Vel::GTools {

namespace {
DialogWidgetSupplierInterface* g_supplier = nullptr;
}

DialogWidgetSupplierInterface::~DialogWidgetSupplierInterface()
{
  if (g_supplier == this)
    g_supplier = nullptr;
}

DialogWidgetSupplierInterface* DialogWidgetSupplierInterface::getInstance()
{
  return g_supplier;
}

void DialogWidgetSupplierInterface::setInstance(DialogWidgetSupplierInterface* supplier)
{
  g_supplier = supplier;
}

}  // namespace Vel::GTools
