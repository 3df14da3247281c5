#include "gtools/vel_separator.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

Vel_Separator::Vel_Separator(QWidget* parent) : QWidget(parent), _title(new QLabel(this))
{
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  _title->setObjectName(QStringLiteral("_title"));
  _title->hide();
  layout->addWidget(_title);
  auto* line = new QFrame(this);
  line->setObjectName(QStringLiteral("_line"));
  line->setFrameShape(QFrame::HLine);
  line->setFrameShadow(QFrame::Sunken);
  layout->addWidget(line, 1);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Vel_Separator::setTitle(const QString& title)
{
  _title->setText(title);
  _title->setVisible(!title.isEmpty());
}

QString Vel_Separator::getTitle() const
{
  return _title->text();
}
