#pragma once

#include <QComboBox>

#include "core/vel_export.h"

// The application's combo box: entries carry a value as user data, and the value selects.
class VEL_EXPORT Vel_ComboBox : public QComboBox
{
  Q_OBJECT

public:
  explicit Vel_ComboBox(QWidget* parent = nullptr);

  void addSeparator() { insertSeparator(count()); }
  // Selects the entry that carries `value`; false (selection unchanged) when none does.
  bool selectData(const QVariant& value);
};
