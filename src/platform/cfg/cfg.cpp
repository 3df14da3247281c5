#include "cfg/cfg.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <cmath>
#include <functional>

#include "core/prog_error.h"

namespace Vel {
namespace {

const QString SOURCE = QStringLiteral("cfg");

double roundTo(double value, int decimals)
{
  const double scale = std::pow(10.0, decimals);
  const double rounded = std::round(value * scale) / scale;
  return std::isfinite(rounded) ? rounded : value;  // huge values have no digits to drop
}

bool isIntegral(const QVariant& value, qlonglong& out)
{
  switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: out = value.toLongLong(); return true;
    case QMetaType::Double: {
      const double d = value.toDouble();
      if (!std::isfinite(d) || d != std::floor(d) || std::fabs(d) > 9.0e15)
        return false;
      out = static_cast<qlonglong>(d);
      return true;
    }
    default: return false;
  }
}

bool isNumber(const QVariant& value, double& out)
{
  switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double: out = value.toDouble(); return std::isfinite(out);
    default: return false;
  }
}

QString number(double value)
{
  return QString::number(value, 'g', 17);
}

}  // namespace

QString CfgItem::typeName(CfgType type)
{
  switch (type) {
    case CfgType::Node: return QStringLiteral("node");
    case CfgType::Bool: return QStringLiteral("boolean");
    case CfgType::UInt: return QStringLiteral("unsigned integer");
    case CfgType::Int: return QStringLiteral("integer");
    case CfgType::Double: return QStringLiteral("double");
    case CfgType::IntArray: return QStringLiteral("integer array");
    case CfgType::DoubleArray: return QStringLiteral("double array");
    case CfgType::UnitValue: return QStringLiteral("value with unit");
    case CfgType::Choice: return QStringLiteral("choice");
    case CfgType::StringVector: return QStringLiteral("string vector");
  }
  return QString();
}

// ---------------------------------------------------------------------------------------------

QString CfgNode::fullKey(const QString& key) const
{
  return _path.isEmpty() ? key : _path + QLatin1Char('/') + key;
}

void CfgNode::declare(CfgItem item)
{
  item.key = fullKey(item.key);
  _cfg->declare(std::move(item));
}

CfgNode* CfgNode::declareNode(const QString& key, const QString& description, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::Node;
  item.description = description;
  item.flags = flags;
  declare(item);
  _cfg->_nodes.push_back(std::make_unique<CfgNode>(_cfg, fullKey(key)));
  return _cfg->_nodes.back().get();
}

void CfgNode::declareBool(const QString& key, const QString& description, bool def, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::Bool;
  item.description = description;
  item.flags = flags;
  item.default_value = def;
  declare(item);
}

void CfgNode::declareUInt(const QString& key, const QString& description, unsigned min, unsigned max, unsigned def,
                          unsigned step, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::UInt;
  item.description = description;
  item.flags = flags;
  item.minimum = qlonglong(min);
  item.maximum = qlonglong(max);
  item.default_value = qlonglong(def);
  item.step = qlonglong(step);
  declare(item);
}

void CfgNode::declareInt(const QString& key, const QString& description, int min, int max, int def, int step, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::Int;
  item.description = description;
  item.flags = flags;
  item.minimum = qlonglong(min);
  item.maximum = qlonglong(max);
  item.default_value = qlonglong(def);
  item.step = qlonglong(step);
  declare(item);
}

void CfgNode::declareDouble(const QString& key, const QString& description, double min, double max, double def,
                            double step, int decimals, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::Double;
  item.description = description;
  item.flags = flags;
  item.minimum = min;
  item.maximum = max;
  item.default_value = def;
  item.step = step;
  item.decimals = decimals;
  declare(item);
}

void CfgNode::declareIntArray(const QString& key, const QString& description, int min, int max, const QList<int>& def,
                              int step, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::IntArray;
  item.description = description;
  item.flags = flags;
  item.minimum = qlonglong(min);
  item.maximum = qlonglong(max);
  QVariantList elements;
  for (int v : def)
    elements << qlonglong(v);
  item.default_value = elements;
  item.step = qlonglong(step);
  item.count = int(def.size());
  declare(item);
}

void CfgNode::declareDoubleArray(const QString& key, const QString& description, double min, double max,
                                 double def_element, double step, int decimals, int count, bool fixed_size, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::DoubleArray;
  item.description = description;
  item.flags = flags;
  item.minimum = min;
  item.maximum = max;
  QVariantList elements;
  for (int i = 0; i < count; ++i)
    elements << def_element;
  item.default_value = elements;
  item.step = step;
  item.decimals = decimals;
  item.count = count;
  item.fixed_size = fixed_size;
  declare(item);
}

void CfgNode::declareUnitValue(const QString& key, const QString& description, UnitKind unit, double min, double max,
                               double def, double step, int decimals, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::UnitValue;
  item.description = description;
  item.flags = flags;
  item.unit = unit;
  item.minimum = min;
  item.maximum = max;
  item.default_value = def;
  item.step = step;
  item.decimals = decimals;
  declare(item);
}

void CfgNode::declareChoice(const QString& key, const QString& description, const QStringList& choices, int def_index,
                            int flags)
{
  if (def_index < 0 || def_index >= choices.size())
    throw ProgError(QStringLiteral("declareChoice"), SOURCE,
                    QStringLiteral("Default choice out of range: %1").arg(key));
  CfgItem item;
  item.key = key;
  item.type = CfgType::Choice;
  item.description = description;
  item.flags = flags;
  item.choices = choices;
  item.default_value = def_index;
  declare(item);
}

void CfgNode::declareStringVector(const QString& key, const QString& description, const QStringList& def, int flags)
{
  CfgItem item;
  item.key = key;
  item.type = CfgType::StringVector;
  item.description = description;
  item.flags = flags;
  item.default_value = def;
  declare(item);
}

bool CfgNode::contains(const QString& key) const
{
  return _cfg->item(fullKey(key)) != nullptr;
}

QVariant CfgNode::getValue(const QString& key) const
{
  const CfgItem* item = _cfg->item(fullKey(key));
  if (!item || item->type == CfgType::Node)
    throw ProgError(QStringLiteral("getValue"), SOURCE,
                    QStringLiteral("Configuration item not declared: %1").arg(fullKey(key)));
  return item->value;
}

QList<int> CfgNode::getIntArray(const QString& key) const
{
  QList<int> result;
  for (const QVariant& v : getValue(key).toList())
    result << v.toInt();
  return result;
}

QList<double> CfgNode::getDoubleArray(const QString& key) const
{
  QList<double> result;
  for (const QVariant& v : getValue(key).toList())
    result << v.toDouble();
  return result;
}

bool CfgNode::setValue(const QString& key, const QVariant& value, QString* error)
{
  return _cfg->setValue(fullKey(key), value, error);
}

// ---------------------------------------------------------------------------------------------

Cfg::Cfg(const QString& file_name) : _file_name(file_name), _root(this, QString()) {}

Cfg::~Cfg() = default;

QString Cfg::defaultFileName()
{
  QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
  if (base.isEmpty())
    base = QDir::homePath() + QStringLiteral("/.config");
  return base + QStringLiteral("/zut/config.json");
}

void Cfg::declare(CfgItem item)
{
  const int slash = int(item.key.lastIndexOf(QLatin1Char('/')));
  if (slash > 0) {
    const CfgItem* parent = this->item(item.key.left(slash));
    if (!parent || parent->type != CfgType::Node)
      throw ProgError(QStringLiteral("declare"), SOURCE,
                      QStringLiteral("Parent node not declared: %1").arg(item.key.left(slash)));
  }
  item.value = item.default_value;

  auto found = _by_key.find(item.key);
  if (found != _by_key.end()) {
    // A re-declaration (a module loaded again) keeps the current value where it still fits.
    CfgItem* existing = found->second;
    if (existing->type != item.type)
      throw ProgError(QStringLiteral("declare"), SOURCE,
                      QStringLiteral("Configuration item declared twice with different types: %1").arg(item.key));
    QVariant kept;
    QString ignored;
    if (item.type != CfgType::Node && validate(item, existing->value, kept, ignored))
      item.value = kept;
    *existing = std::move(item);
    return;
  }

  if (item.type != CfgType::Node && _stored.contains(item.key)) {
    QVariant accepted;
    QString error;
    if (validate(item, fromJson(_stored.value(item.key)), accepted, error)) {
      item.value = accepted;
    } else {
      _problems << QStringLiteral("%1: stored value rejected (%2); the default is used").arg(item.key, error);
      _backup_before_save = true;
      _rejected.insert(item.key);
    }
    _stored.remove(item.key);
  }
  _items.push_back(std::make_unique<CfgItem>(std::move(item)));
  _by_key.emplace(_items.back()->key, _items.back().get());
}

const CfgItem* Cfg::item(const QString& key) const
{
  auto found = _by_key.find(key);
  return found == _by_key.end() ? nullptr : found->second;
}

std::vector<const CfgItem*> Cfg::items() const
{
  std::vector<const CfgItem*> result;
  result.reserve(_items.size());
  for (const auto& item : _items)
    result.push_back(item.get());
  return result;
}

bool Cfg::validate(const CfgItem& item, const QVariant& value, QVariant& out, QString& error) const
{
  auto checkInteger = [&](const QVariant& v, QVariant& result) {
    qlonglong i = 0;
    if (!isIntegral(v, i)) {
      error = QStringLiteral("'%1' is not an integer").arg(v.toString());
      return false;
    }
    const qlonglong min = item.minimum.toLongLong(), max = item.maximum.toLongLong(), step = item.step.toLongLong();
    if (i < min || i > max) {
      error = QStringLiteral("%1 is outside the range %2 to %3").arg(i).arg(min).arg(max);
      return false;
    }
    if (step > 1 && (i - min) % step != 0) {
      error = QStringLiteral("%1 is not a multiple of the step %2 above %3").arg(i).arg(step).arg(min);
      return false;
    }
    result = i;
    return true;
  };
  auto checkDouble = [&](const QVariant& v, QVariant& result) {
    double d = 0;
    if (!isNumber(v, d)) {
      error = QStringLiteral("'%1' is not a number").arg(v.toString());
      return false;
    }
    d = roundTo(d, item.decimals);
    const double min = item.minimum.toDouble(), max = item.maximum.toDouble();
    if (d < min || d > max) {
      error = QStringLiteral("%1 is outside the range %2 to %3").arg(number(d), number(min), number(max));
      return false;
    }
    result = d;
    return true;
  };
  auto checkList = [&](const QVariant& v, const std::function<bool(const QVariant&, QVariant&)>& element) {
    if (v.typeId() != QMetaType::QVariantList && v.typeId() != QMetaType::QStringList) {
      error = QStringLiteral("a list is expected");
      return false;
    }
    const QVariantList list = v.toList();
    if (item.fixed_size && list.size() != item.count) {
      error = QStringLiteral("%1 elements are expected, not %2").arg(item.count).arg(list.size());
      return false;
    }
    QVariantList result;
    for (const QVariant& e : list) {
      QVariant checked;
      if (!element(e, checked))
        return false;
      result << checked;
    }
    out = result;
    return true;
  };

  switch (item.type) {
    case CfgType::Node: error = QStringLiteral("a node has no value"); return false;
    case CfgType::Bool:
      if (value.typeId() != QMetaType::Bool) {
        error = QStringLiteral("'%1' is not a boolean").arg(value.toString());
        return false;
      }
      out = value.toBool();
      return true;
    case CfgType::UInt:
    case CfgType::Int: return checkInteger(value, out);
    case CfgType::Double:
    case CfgType::UnitValue: return checkDouble(value, out);
    case CfgType::IntArray: return checkList(value, checkInteger);
    case CfgType::DoubleArray: return checkList(value, checkDouble);
    case CfgType::Choice: {
      qlonglong index = -1;
      if (value.typeId() == QMetaType::QString)
        index = item.choices.indexOf(value.toString());
      else if (!isIntegral(value, index))
        index = -1;
      if (index < 0 || index >= item.choices.size()) {
        error = QStringLiteral("'%1' is none of the choices %2")
                    .arg(value.toString(), item.choices.join(QStringLiteral(", ")));
        return false;
      }
      out = int(index);
      return true;
    }
    case CfgType::StringVector: {
      if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList) {
        error = QStringLiteral("a list of texts is expected");
        return false;
      }
      QStringList result;
      for (const QVariant& e : value.toList()) {
        if (e.typeId() != QMetaType::QString) {
          error = QStringLiteral("a list of texts is expected");
          return false;
        }
        result << e.toString();
      }
      out = result;
      return true;
    }
  }
  return false;
}

bool Cfg::setValue(const QString& key, const QVariant& value, QString* error)
{
  const auto found = _by_key.find(key);
  QString message;
  QVariant accepted;
  if (found == _by_key.end())
    message = QStringLiteral("unknown configuration key '%1'").arg(key);
  else if (validate(*found->second, value, accepted, message)) {
    if (found->second->value != accepted) {
      found->second->value = accepted;
      _changed.insert(key);
    }
    return true;
  }
  if (error)
    *error = message;
  return false;
}

bool Cfg::setValueFromText(const QString& key, const QString& text, QString* error)
{
  const CfgItem* target = item(key);
  if (!target)
    return setValue(key, QVariant(), error);

  const QString t = text.trimmed();
  QVariant value = t;
  switch (target->type) {
    case CfgType::Bool:
      if (t == QLatin1String("true") || t == QLatin1String("1"))
        value = true;
      else if (t == QLatin1String("false") || t == QLatin1String("0"))
        value = false;
      break;
    case CfgType::UInt:
    case CfgType::Int: {
      bool ok = false;
      const qlonglong i = t.toLongLong(&ok);
      if (ok)
        value = i;
      break;
    }
    case CfgType::Double:
    case CfgType::UnitValue: {
      bool ok = false;
      const double d = t.toDouble(&ok);
      if (ok)
        value = d;
      break;
    }
    case CfgType::IntArray:
    case CfgType::DoubleArray:
    case CfgType::StringVector: {
      const QJsonDocument doc = QJsonDocument::fromJson(t.toUtf8());
      if (doc.isArray()) {
        value = doc.array().toVariantList();
      } else {
        // "a, b" as a user would type a list without brackets
        QVariantList list;
        for (const QString& part : t.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
          bool ok = false;
          const double d = part.trimmed().toDouble(&ok);
          if (target->type == CfgType::StringVector || !ok)
            list << part.trimmed();
          else
            list << d;
        }
        value = list;
      }
      break;
    }
    case CfgType::Choice: {
      bool ok = false;
      const int index = t.toInt(&ok);
      if (ok && !target->choices.contains(t))
        value = index;
      break;
    }
    case CfgType::Node: break;
  }
  return setValue(key, value, error);
}

QString Cfg::valueText(const CfgItem& item, const QVariant& value)
{
  switch (item.type) {
    case CfgType::Node: return QString();
    case CfgType::Bool: return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case CfgType::UInt:
    case CfgType::Int: return QString::number(value.toLongLong());
    case CfgType::Double: return number(value.toDouble());
    case CfgType::UnitValue:
      return number(value.toDouble()) + QLatin1Char(' ') + Unit::getDefault(item.unit).getSymbol();
    case CfgType::Choice: return item.choices.value(value.toInt());
    case CfgType::IntArray:
    case CfgType::DoubleArray:
    case CfgType::StringVector:
      return QString::fromUtf8(QJsonDocument(toJson(item, value).toArray()).toJson(QJsonDocument::Compact));
  }
  return QString();
}

QJsonValue Cfg::toJson(const CfgItem& item, const QVariant& value)
{
  switch (item.type) {
    case CfgType::Choice: return item.choices.value(value.toInt());
    case CfgType::StringVector: return QJsonArray::fromStringList(value.toStringList());
    case CfgType::IntArray:
    case CfgType::DoubleArray: return QJsonArray::fromVariantList(value.toList());
    default: return QJsonValue::fromVariant(value);
  }
}

QVariant Cfg::fromJson(const QJsonValue& value)
{
  // Whole numbers come back as integers so that integer items accept them.
  if (value.isDouble()) {
    const double d = value.toDouble();
    if (d == std::floor(d) && std::fabs(d) < 9.0e15)
      return qlonglong(d);
    return d;
  }
  if (value.isArray()) {
    QVariantList list;
    for (const QJsonValue& e : value.toArray())
      list << fromJson(e);
    return list;
  }
  return value.toVariant();
}

Cfg::FileState Cfg::readFile(QJsonObject& object, QString& error)
{
  QFile file(_file_name);
  if (!file.exists())
    return FileState::Missing;
  if (!file.open(QIODevice::ReadOnly)) {
    error = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(_file_name), file.errorString());
    return FileState::Unreadable;
  }
  QJsonParseError parse_error;
  const QJsonDocument doc = QJsonDocument::fromJson(file.readAll(), &parse_error);
  file.close();
  if (parse_error.error == QJsonParseError::NoError && doc.isObject()) {
    object = doc.object();
    return FileState::Read;
  }
  const QString reason = parse_error.error != QJsonParseError::NoError
                             ? QStringLiteral("%1 at offset %2").arg(parse_error.errorString()).arg(parse_error.offset)
                             : QStringLiteral("not a JSON object");
  QString backup = _file_name + QStringLiteral(".damaged");
  if (QFile::exists(backup))
    backup += QDateTime::currentDateTime().toString(QStringLiteral("-yyyyMMdd-hhmmss-zzz"));
  if (QFile::rename(_file_name, backup))
    _problems << QStringLiteral("%1 is damaged (%2); it was kept as %3 and the defaults are used")
                     .arg(QDir::toNativeSeparators(_file_name), reason, QDir::toNativeSeparators(backup));
  else {
    // It could not be moved aside: never write over it without a copy.
    _problems << QStringLiteral("%1 is damaged (%2) and could not be kept aside; it will be copied to %1.bak "
                                "before it is written")
                     .arg(QDir::toNativeSeparators(_file_name), reason);
    _backup_before_save = true;
  }
  return FileState::Damaged;
}

bool Cfg::load()
{
  QJsonObject object;
  QString error;
  switch (readFile(object, error)) {
    case FileState::Missing: return true;
    case FileState::Unreadable: _problems << error + QStringLiteral("; the defaults are used"); return false;
    case FileState::Damaged: return false;
    case FileState::Read: break;
  }
  for (auto it = object.begin(); it != object.end(); ++it) {
    const auto found = _by_key.find(it.key());
    if (found == _by_key.end()) {
      _stored.insert(it.key(), it.value());
      continue;
    }
    QVariant accepted;
    QString rejected;
    if (validate(*found->second, fromJson(it.value()), accepted, rejected)) {
      found->second->value = accepted;
    } else {
      _problems << QStringLiteral("%1: stored value rejected (%2); the default is used").arg(it.key(), rejected);
      _backup_before_save = true;
      _rejected.insert(it.key());
    }
  }
  _changed.clear();
  return true;
}

bool Cfg::save(QString* error)
{
  const auto fail = [error](const QString& message) {
    if (error)
      *error = message;
    return false;
  };
  QDir().mkpath(QFileInfo(_file_name).absolutePath());
  // Other processes (a second zut, the application) write the same file: read, merge and
  // write as one step.
  QLockFile lock(_file_name + QStringLiteral(".lock"));
  if (!lock.tryLock(10000)) {
    qint64 pid = 0;
    QString host, application;
    lock.getLockInfo(&pid, &host, &application);
    return fail(QStringLiteral("%1 is locked by process %2 (%3); it was not written")
                    .arg(QDir::toNativeSeparators(_file_name))
                    .arg(pid)
                    .arg(application));
  }

  QJsonObject on_disk;
  QString read_error;
  const FileState state = readFile(on_disk, read_error);
  if (state == FileState::Unreadable)
    return fail(read_error + QStringLiteral("; it was not written"));
  if (_backup_before_save && QFile::exists(_file_name)) {
    // Rejected values live on only in the file: keep a copy before writing over it.
    const QString backup = _file_name + QStringLiteral(".bak");
    QFile::remove(backup);
    if (!QFile::copy(_file_name, backup))
      return fail(QStringLiteral("%1 could not be kept as %2; it was not written").arg(_file_name, backup));
  }

  QJsonObject object;
  if (state == FileState::Read) {
    object = on_disk;
    for (const QString& key : _rejected)
      _changed.insert(key);
    for (const QString& key : _changed)
      if (const CfgItem* changed = item(key))
        object.insert(key, toJson(*changed, changed->value));
  } else {
    // Nothing (intact) to merge with: everything this process knows is written.
    object = _stored;
    for (const auto& declared : _items)
      if (declared->type != CfgType::Node)
        object.insert(declared->key, toJson(*declared, declared->value));
  }

  QSaveFile file(_file_name);
  if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(object).toJson()) < 0 || !file.commit())
    return fail(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(_file_name), file.errorString()));

  // What others changed meanwhile is now this process's value too.
  for (auto it = object.begin(); it != object.end(); ++it) {
    const auto found = _by_key.find(it.key());
    if (found == _by_key.end()) {
      _stored.insert(it.key(), it.value());
      continue;
    }
    QVariant accepted;
    QString ignored;
    if (!_changed.count(it.key()) && validate(*found->second, fromJson(it.value()), accepted, ignored))
      found->second->value = accepted;
  }
  _backup_before_save = false;
  _changed.clear();
  _rejected.clear();
  return true;
}

void Cfg::registerPage(const QString& id, const QString& title)
{
  for (auto& page : _pages)
    if (page.first == id) {
      page.second = title;
      return;
    }
  _pages.append(qMakePair(id, title));
}

QStringList Cfg::takeProblems()
{
  QStringList problems;
  problems.swap(_problems);
  return problems;
}

}  // namespace Vel
