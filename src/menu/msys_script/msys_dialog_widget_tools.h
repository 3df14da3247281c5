#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QDomNode>
#include <QImage>
#include <QString>
#include <QVariant>

#include <cmath>
#include <vector>

#include "core/script_type.h"
#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_widgets.h"

class QHBoxLayout;
class QWidget;

// What the element types share in reading their tags, checking script values and describing
// themselves, so that every type refuses and reports alike.
namespace Vel::MSysScript::WidgetTools {

QString editorError(const char* text);
QString attributeText(const char* text);
// Labels of the editor's panels.
QString panelText(const char* text);
QString otherText(const char* text);

// Script values arrive as the interpreter converted them; anything but the attribute's own
// kind is refused before the element changes.
[[noreturn]] void throwTypeError();
bool isInteger(const QVariant& value);
bool boolArg(const QVariant& value);
int intArg(const QVariant& value);
QString textArg(const QVariant& value);

// Python's words for a truth value.
QString boolText(bool value);
// The element's name quoted for a printed form.
QString nameText(const DialogWidget* widget);

AttributeInfo row(const QString& name, const char* type, const char* description);
// The base's rows, with the value row giving the type's own kind of value.
std::vector<AttributeInfo> withValueType(std::vector<AttributeInfo> rows, const char* valueType);

// An image in the form a definition stores it (Qt's data stream), and back; a null image for
// bytes that hold none.
QByteArray imageBytes(const QImage& image);
QImage imageFromBytes(const QByteArray& bytes);
// An image tag: the stored form in the host's binary text, one CDATA section. A missing tag is no
// image; a tag that holds none is a fault of the definition.
QImage imageOr(const QDomNode& node, const QString& tag);
QDomNode createImage(QDomDocument* document, const QString& tag, const QImage& image);
// A script's image: the stored form, any image file's bytes, or an image from the editor; empty
// bytes clear it.
QImage imageArg(const QVariant& value);

// A layout that lets the inner control fill the element, laid out when the element is first shown.
QHBoxLayout* innerLayout(QWidget* widget);

// A tag that is missing stands for its default, whatever the element held before.
template <typename T>
T valueOr(const QDomNode& node, const QString& tag, const T& fallback)
{
  const QDomElement child = Xml::findChild(node, tag);
  return child.isNull() ? fallback : Xml::valueOf<T>(node, child, tag);
}

template <>
inline double valueOr<double>(const QDomNode& node, const QString& tag, const double& fallback)
{
  const QDomElement child = Xml::findChild(node, tag);
  if (child.isNull())
    return fallback;
  const double value = Xml::valueOf<double>(node, child, tag);
  if (!std::isfinite(value))
    throw Xml::ParseException(node, errorText("The value of tag '%1' is not a finite number.").arg(tag));
  return value;
}

}  // namespace Vel::MSysScript::WidgetTools
