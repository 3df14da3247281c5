#include "gtools/vel_tool_tip_label.h"

#include <QFontMetrics>
#include <QResizeEvent>

Vel_ToolTipLabel::Vel_ToolTipLabel(QWidget* parent) : QLabel(parent)
{
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void Vel_ToolTipLabel::setFullText(const QString& text)
{
  _full_text = text;
  updateElided();
}

// Elided texts may shrink to nothing; the row's layout decides the width.
QSize Vel_ToolTipLabel::minimumSizeHint() const
{
  return QSize(0, QLabel::minimumSizeHint().height());
}

void Vel_ToolTipLabel::resizeEvent(QResizeEvent* event)
{
  QLabel::resizeEvent(event);
  updateElided();
}

void Vel_ToolTipLabel::updateElided()
{
  const QString shown = fontMetrics().elidedText(_full_text, Qt::ElideRight, qMax(0, contentsRect().width()));
  setText(shown);
  setToolTip(shown == _full_text ? QString() : _full_text);
}
