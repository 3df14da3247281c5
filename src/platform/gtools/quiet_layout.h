#pragma once

#include <QLayout>
#include <QWidget>

namespace Vel::GTools {

// Gives a widget under construction its layout without asking the event loop to lay it out: the
// request would only wake the loop (a system call where it waits on the platform's main loop) and
// do nothing for a widget not yet shown. The layout is laid out when the widget is first shown or
// resized, as it is anyway. `layout` must not belong to a widget yet.
inline void setQuietLayout(QWidget* widget, QLayout* layout)
{
  // Marked as waiting to be laid out while no widget holds it, it tells nobody, and what is added
  // to it later does not tell again.
  layout->update();
  widget->setLayout(layout);
}

}  // namespace Vel::GTools
