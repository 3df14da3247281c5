#pragma once

#include <QDomDocument>
#include <QString>

#include <memory>
#include <stdexcept>

#include "dialog_test_element.h"

// Elements as the tests make them: from the registry, read from a few tags, written back.
namespace TestElement {

inline std::unique_ptr<DialogWidget> create(const QString& type)
{
  const DialogWidgetCreator* creator = registryWithTestElement()->getWidgetCreator(type);
  if (!creator)
    throw std::runtime_error("unknown type " + type.toStdString());
  return std::unique_ptr<DialogWidget>(creator->createWidget());
}

// The name stands on the second line, so that a fault in the tags names a line of its own.
inline void parse(DialogWidget* widget, const QString& tags, const QString& name = QStringLiteral("n"))
{
  QDomDocument document;
  const QString text =
      QStringLiteral("<widget type=\"%1\">\n<name>%2</name>%3</widget>").arg(widget->getCreatorId(), name, tags);
  if (!document.setContent(text))
    throw std::runtime_error("bad test XML: " + text.toStdString());
  widget->parseXml(document.documentElement());
}

template <typename Widget = DialogWidget>
std::unique_ptr<Widget> parsed(const QString& type, const QString& tags, const QString& name = QStringLiteral("n"))
{
  std::unique_ptr<DialogWidget> widget = create(type);
  parse(widget.get(), tags, name);
  return std::unique_ptr<Widget>(static_cast<Widget*>(widget.release()));
}

inline QString xmlOf(const DialogWidget* widget)
{
  QDomDocument document;
  QDomElement element = document.createElement(QStringLiteral("widget"));
  widget->createXml(&document, &element);
  document.appendChild(element);
  return document.toString();
}

}  // namespace TestElement
