#include "menu/msys_script/VelMSysXmlTools.h"

#include <QDomNodeList>
#include <QLocale>

#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript::Xml {

namespace {}  // namespace

ParseException::ParseException(const QString& message) : ParseException(message, -1) {}

ParseException::ParseException(const QString& message, int line)
    : GApp::CommandError(QString::fromLatin1(ERR_EXECUTE_SCRIPT), ErrorLog(message)), _message(message), _line(line)
{}

ParseException::ParseException(const QDomNode& node, const QString& message)
    : ParseException(message, node.lineNumber())
{}

void checkTag(const QDomNode& node, const QString& tag)
{
  const QString actual = node.toElement().tagName();
  if (actual != tag)
    throw ParseException(
        node, errorText("Invalid XML tag. '%1' is expected but '%2' is given.", "id=27745").arg(tag, actual));
}

bool hasChild(const QDomNode& node, const QString& tag)
{
  return !node.firstChildElement(tag).isNull();
}

bool hasAttribute(const QDomNode& node, const QString& name)
{
  return node.toElement().hasAttribute(name);
}

template <>
QString getAttribute<QString>(const QDomNode& node, const QString& name)
{
  if (!hasAttribute(node, name))
    throw ParseException(node, errorText("Cannot find attribute \"%1\".", "id=27750").arg(name));
  return node.toElement().attribute(name);
}

// Presence is not tested on purpose: an absent attribute reads as empty text and is reported
// as not being an integer.
template <>
int getAttribute<int>(const QDomNode& node, const QString& name)
{
  bool ok = false;
  const int value = node.toElement().attribute(name).toInt(&ok, 10);
  if (!ok)
    throw ParseException(node, errorText("Attribute '%1' should be of type 'integer'.", "id=27751").arg(name));
  return value;
}

template <>
bool getAttribute<bool>(const QDomNode& node, const QString& name)
{
  if (!hasAttribute(node, name))
    throw ParseException(node, errorText("Cannot find attribute \"%1\".", "id=27752").arg(name));
  const QString text = node.toElement().attribute(name);
  if (text == QLatin1String("true"))
    return true;
  if (text == QLatin1String("false"))
    return false;
  throw ParseException(node, errorText("Attribute '%1' should be of type 'boolean'.", "id=27753").arg(name));
}

QDomElement findChild(const QDomNode& node, const QString& tag)
{
  QDomElement found = node.firstChildElement(tag);
  if (!found.isNull() && !found.nextSiblingElement(tag).isNull())
    throw ParseException(node, errorText("The element with tag \"%1\" exists several times.", "id=27747").arg(tag));
  return found;
}

QDomElement getChild(const QDomNode& node, const QString& tag)
{
  QDomElement found = findChild(node, tag);
  if (found.isNull())
    throw ParseException(node, errorText("The element with tag \"%1\" is missing.", "id=27746").arg(tag));
  return found;
}

std::vector<QDomElement> getChildren(const QDomNode& node, const QString& tag)
{
  const QDomNodeList list = node.toElement().elementsByTagName(tag);
  std::vector<QDomElement> children;
  children.reserve(list.size());
  for (int i = 0; i < list.size(); ++i) {
    const QDomNode entry = list.at(i);
    if (!entry.isElement())
      throw ParseException(entry, errorText("The element with tag \"%1\" has a wrong type.", "id=27749").arg(tag));
    children.push_back(entry.toElement());
  }
  return children;
}

template <>
QString valueOf<QString>(const QDomNode&, const QDomElement& child, const QString&)
{
  return child.text();
}

template <>
int valueOf<int>(const QDomNode& node, const QDomElement& child, const QString& tag)
{
  bool ok = false;
  const int value = child.text().toInt(&ok, 10);
  if (!ok)
    throw ParseException(node, errorText("The tag content '%1' should be of type 'integer'.", "id=27754").arg(tag));
  return value;
}

// The message says 'integer' for a real number too; translations are keyed on it as it is.
template <>
double valueOf<double>(const QDomNode& node, const QDomElement& child, const QString& tag)
{
  bool ok = false;
  const double value = child.text().toDouble(&ok);
  if (!ok)
    throw ParseException(node, errorText("The tag content '%1' should be of type 'integer'.", "id=27755").arg(tag));
  return value;
}

template <>
bool valueOf<bool>(const QDomNode& node, const QDomElement& child, const QString& tag)
{
  const QString text = child.text();
  if (text == QLatin1String("true"))
    return true;
  if (text == QLatin1String("false"))
    return false;
  throw ParseException(node, errorText("The tag content '%1' should be of type 'boolean'.", "id=27756").arg(tag));
}

QString getCData(const QDomNode& node, const QString& tag)
{
  const QDomElement child = getChild(node, tag);
  const QDomNodeList nodes = child.childNodes();
  if (nodes.isEmpty())
    throw ParseException(child, translate("MSysScript_Dialog_err", "Only one child element is allowed.", ""));
  // A text holding "]]>" can only be written as adjacent sections, split inside it: they are one
  // text again. Anything else beside a section is not ours.
  QString text;
  for (int i = 0; i < nodes.size(); ++i) {
    if (!nodes.at(i).isCDATASection())
      throw ParseException(child, nodes.size() == 1
                                      ? translate("MSysScript_Dialog_err", "The section \"CDATA\" is expected.", "")
                                      : translate("MSysScript_Dialog_err", "Only one child element is allowed.", ""));
    text += nodes.at(i).nodeValue();
  }
  return text;
}

QDomNode createCData(QDomDocument* document, const QString& tag, const QString& text)
{
  QDomElement element = document->createElement(tag);
  element.appendChild(document->createCDATASection(text));
  return element;
}

QString valueText(const QString& value)
{
  return value;
}

QString valueText(int value)
{
  return QString::number(value);
}

// The shortest text that reads back to the same double.
QString valueText(double value)
{
  return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString valueText(bool value)
{
  return value ? QStringLiteral("true") : QStringLiteral("false");
}

}  // namespace Vel::MSysScript::Xml
