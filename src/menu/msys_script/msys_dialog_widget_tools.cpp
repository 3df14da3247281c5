#include "menu/msys_script/msys_dialog_widget_tools.h"

#include <QDataStream>
#include <QHBoxLayout>
#include <QIODevice>

#include <limits>

#include "core/parse_binary.h"
#include "core/python_string.h"
#include "core/translate.h"
#include "gtools/quiet_layout.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript::WidgetTools {

QString editorError(const char* text)
{
  return translate("MSysScript_DialogEditor_err", text, "");
}

QString attributeText(const char* text)
{
  return translate("MSysScript_Dialog_other", text, "");
}

QString panelText(const char* text)
{
  return translate("MSysScript_DialogEditor_widget", text, "");
}

QString otherText(const char* text)
{
  return translate("MSysScript_DialogEditor_other", text, "");
}

void throwTypeError()
{
  throw ScriptTypeException(errorText("The value has not the expected type."));
}

bool isInteger(const QVariant& value)
{
  switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return true;
    default: return false;
  }
}

bool boolArg(const QVariant& value)
{
  if (value.typeId() != QMetaType::Bool && !isInteger(value))
    throwTypeError();
  return value.toBool();
}

int intArg(const QVariant& value)
{
  if (!isInteger(value))
    throwTypeError();
  const int low = std::numeric_limits<int>::min();
  const int high = std::numeric_limits<int>::max();
  if (value.typeId() == QMetaType::ULongLong) {
    if (value.toULongLong() > static_cast<qulonglong>(high))
      throwTypeError();
  } else if (value.toLongLong() < low || value.toLongLong() > high) {
    throwTypeError();
  }
  return static_cast<int>(value.toLongLong());
}

QString textArg(const QVariant& value)
{
  if (value.typeId() != QMetaType::QString)
    throwTypeError();
  return value.toString();
}

QString boolText(bool value)
{
  return value ? QStringLiteral("True") : QStringLiteral("False");
}

QString nameText(const DialogWidget* widget)
{
  return escapePythonString(widget->getName());
}

AttributeInfo row(const QString& name, const char* type, const char* description)
{
  return {name, QString::fromLatin1(type), attributeText(description), false};
}

std::vector<AttributeInfo> withValueType(std::vector<AttributeInfo> rows, const char* valueType)
{
  for (AttributeInfo& info : rows)
    if (info.name == DialogWidget::TAG_VALUE)
      info.type_name = QString::fromLatin1(valueType);
  return rows;
}

QByteArray imageBytes(const QImage& image)
{
  QByteArray bytes;
  if (image.isNull())
    return bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  // A fixed stream version, so that a definition written today reads the same in later versions.
  stream.setVersion(QDataStream::Qt_6_0);
  stream << image;
  return bytes;
}

QImage imageFromBytes(const QByteArray& bytes)
{
  QImage image;
  if (bytes.isEmpty())
    return image;
  QDataStream stream(bytes);
  stream.setVersion(QDataStream::Qt_6_0);
  stream >> image;
  if (stream.status() != QDataStream::Ok || !stream.atEnd())
    return QImage();
  return image;
}

QImage imageOr(const QDomNode& node, const QString& tag)
{
  QImage image;
  if (!Xml::hasChild(node, tag))
    return image;
  const auto bytes = Parse::Binary::decode(Xml::getCData(node, tag));
  if (bytes)
    image = imageFromBytes(*bytes);
  if (!bytes || (image.isNull() && !bytes->isEmpty()))
    throw Xml::ParseException(
        Xml::getChild(node, tag),
        translate("MSysScript_Dialog_err", "The tag \"%1\" does not hold an image.", "").arg(tag));
  return image;
}

QDomNode createImage(QDomDocument* document, const QString& tag, const QImage& image)
{
  return Xml::createCData(document, tag, Parse::Binary::encode(imageBytes(image)));
}

QImage imageArg(const QVariant& value)
{
  if (value.typeId() == QMetaType::QImage)
    return value.value<QImage>();
  if (value.typeId() != QMetaType::QByteArray)
    throwTypeError();
  const QByteArray bytes = value.toByteArray();
  QImage image = imageFromBytes(bytes);
  if (image.isNull() && !bytes.isEmpty() && !image.loadFromData(bytes))
    throwTypeError();
  return image;
}

QHBoxLayout* innerLayout(QWidget* widget)
{
  auto* layout = new QHBoxLayout;
  layout->setContentsMargins(0, 0, 0, 0);
  GTools::setQuietLayout(widget, layout);
  return layout;
}

}  // namespace Vel::MSysScript::WidgetTools
