#pragma once

#include <QWidget>

#include "core/color.h"
#include "core/vel_export.h"

class QToolButton;

// A button that shows a colour and lets the user pick another. When checkable, the colour may be
// transparent; checked means fully transparent ("no colour").
class VEL_EXPORT Vel_ColorButton : public QWidget
{
  Q_OBJECT

public:
  explicit Vel_ColorButton(QWidget* parent = nullptr);

  void setColor(const Vel::Color& color);
  const Vel::Color& getColor() const { return _color; }
  void setCheckable(bool checkable);
  bool checkable() const { return _checkable; }
  void setChecked(bool checked);
  bool checked() const { return _color.isTransparent(); }

  QToolButton* button() const { return _button; }

Q_SIGNALS:
  void changed(Vel::Color color);

private Q_SLOTS:
  void slotPick();

private:
  void updateButton();

  QToolButton* _button;
  Vel::Color _color{0, 0, 0, 255};
  Vel::Color _last_opaque{0, 0, 0, 255};
  bool _checkable = false;
};
