#pragma once

#include <QLabel>
#include <QString>

#include "core/vel_export.h"

// A one-line label for status texts: a text too long for the space is elided, and the whole
// text is then its tooltip.
class VEL_EXPORT Vel_ToolTipLabel : public QLabel
{
  Q_OBJECT

public:
  explicit Vel_ToolTipLabel(QWidget* parent = nullptr);

  void setFullText(const QString& text);
  const QString& getFullText() const { return _full_text; }

  QSize minimumSizeHint() const override;

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  void updateElided();

  QString _full_text;
};
