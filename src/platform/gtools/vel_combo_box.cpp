#include "gtools/vel_combo_box.h"

Vel_ComboBox::Vel_ComboBox(QWidget* parent) : QComboBox(parent) {}

bool Vel_ComboBox::selectData(const QVariant& value)
{
  const int index = findData(value);
  if (index < 0)
    return false;
  setCurrentIndex(index);
  return true;
}
