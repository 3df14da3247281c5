#include "gapp/trait.h"

#include <climits>
#include <cmath>

#include "core/color.h"

namespace Vel {

int Trait::fileTypeId()
{
  static const int id = qRegisterMetaType<Vel::Parse::File>("Vel::Parse::File");
  return id;
}

namespace {

bool isInteger(int type)
{
  return type == QMetaType::Int || type == QMetaType::UInt || type == QMetaType::LongLong ||
         type == QMetaType::ULongLong;
}

}  // namespace

bool Trait::convertTo(StageIdentifier, int type_id, QVariant& out) const
{
  const int from = getTypeId();
  if (from == type_id) {
    out = _value;
    return true;
  }
  if (from == QMetaType::UnknownType)
    return false;

  if (type_id == fileTypeId()) {
    if (from != QMetaType::QString)
      return false;
    out = QVariant::fromValue(Parse::File(_value.toString()));
    return true;
  }
  switch (type_id) {
    case QMetaType::Bool: return false;
    case QMetaType::Int:
    case QMetaType::LongLong: {
      qlonglong value = 0;
      if (isInteger(from)) {
        value = _value.toLongLong();
      } else if (from == QMetaType::Double) {
        const double d = _value.toDouble();
        if (!std::isfinite(d) || d != std::floor(d) || std::fabs(d) > 9.0e18)
          return false;
        value = static_cast<qlonglong>(d);
      } else {
        return false;
      }
      if (type_id == QMetaType::Int) {
        if (value < INT_MIN || value > INT_MAX)
          return false;
        out = int(value);
      } else {
        out = value;
      }
      return true;
    }
    case QMetaType::Double:
      if (!isInteger(from))
        return false;
      out = _value.toDouble();
      return true;
    case QMetaType::QString:
      if (from == fileTypeId()) {
        out = _value.value<Parse::File>().getName();
        return true;
      }
      return false;
    case QMetaType::QVariantList:
      if (from == QMetaType::QStringList) {
        out = _value.toList();
        return true;
      }
      return false;
    case QMetaType::QStringList: {
      if (from != QMetaType::QVariantList)
        return false;
      QStringList texts;
      for (const QVariant& element : _value.toList()) {
        if (element.typeId() != QMetaType::QString)
          return false;
        texts << element.toString();
      }
      out = texts;
      return true;
    }
    case QMetaType::QVariantMap:
      if (from == QMetaType::QVariantHash) {
        QVariantMap map;
        const QVariantHash hash = _value.toHash();
        for (auto it = hash.begin(); it != hash.end(); ++it)
          map.insert(it.key(), it.value());
        out = map;
        return true;
      }
      return false;
    default: return false;
  }
}

}  // namespace Vel
