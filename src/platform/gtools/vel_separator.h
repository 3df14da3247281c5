#pragma once

#include <QString>
#include <QWidget>

#include "core/vel_export.h"

class QLabel;

// A horizontal line that divides a dialog into parts, with an optional title at its start.
class VEL_EXPORT Vel_Separator : public QWidget
{
  Q_OBJECT

public:
  explicit Vel_Separator(QWidget* parent = nullptr);

  // An empty title shows the line alone.
  void setTitle(const QString& title);
  QString getTitle() const;

private:
  QLabel* _title;
};
