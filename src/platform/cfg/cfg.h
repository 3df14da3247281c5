#pragma once

#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <map>
#include <memory>
#include <set>
#include <vector>

#include "core/unit.h"
#include "core/vel_export.h"

namespace Vel {

class Cfg;

enum class CfgType
{
  Node,
  Bool,
  UInt,
  Int,
  Double,
  IntArray,
  DoubleArray,
  UnitValue,
  Choice,
  StringVector
};

// One declared node or item. Values of unit items are kept in the kind's internal unit;
// a choice keeps the index of the chosen text.
struct VEL_EXPORT CfgItem
{
  QString key;
  CfgType type = CfgType::Node;
  QString description;
  int flags = 0;
  QVariant minimum;
  QVariant maximum;
  QVariant default_value;
  QVariant step;
  int decimals = 0;
  int count = 0;           // element count of arrays
  bool fixed_size = true;  // arrays: the element count may not change
  UnitKind unit = uLength;
  QStringList choices;
  QVariant value;

  static QString typeName(CfgType type);
};

// A node of the configuration tree. Keys below a node are paths ("MSysScript/TabWidth");
// every item's parent node must be declared first.
class VEL_EXPORT CfgNode
{
public:
  CfgNode(Cfg* cfg, const QString& path) : _cfg(cfg), _path(path) {}

  CfgNode* declareNode(const QString& key, const QString& description, int flags);
  void declareBool(const QString& key, const QString& description, bool def, int flags);
  void declareUInt(const QString& key, const QString& description, unsigned min, unsigned max, unsigned def,
                   unsigned step, int flags);
  void declareInt(const QString& key, const QString& description, int min, int max, int def, int step, int flags);
  void declareDouble(const QString& key, const QString& description, double min, double max, double def, double step,
                     int decimals, int flags);
  void declareIntArray(const QString& key, const QString& description, int min, int max, const QList<int>& def,
                       int step, int flags);
  void declareDoubleArray(const QString& key, const QString& description, double min, double max, double def_element,
                          double step, int decimals, int count, bool fixed_size, int flags);
  void declareUnitValue(const QString& key, const QString& description, UnitKind unit, double min, double max,
                        double def, double step, int decimals, int flags);
  void declareChoice(const QString& key, const QString& description, const QStringList& choices, int def_index,
                     int flags);
  void declareStringVector(const QString& key, const QString& description, const QStringList& def, int flags);

  bool contains(const QString& key) const;
  // Throws ProgError for an undeclared key: readers name their items by constant keys.
  QVariant getValue(const QString& key) const;
  bool getBool(const QString& key) const { return getValue(key).toBool(); }
  unsigned getUInt(const QString& key) const { return getValue(key).toUInt(); }
  int getInt(const QString& key) const { return getValue(key).toInt(); }
  double getDouble(const QString& key) const { return getValue(key).toDouble(); }
  QList<int> getIntArray(const QString& key) const;
  QList<double> getDoubleArray(const QString& key) const;
  int getChoiceIndex(const QString& key) const { return getValue(key).toInt(); }
  QStringList getStringVector(const QString& key) const { return getValue(key).toStringList(); }

  // Checks the value against the item's type and range; refuses it with a message otherwise.
  bool setValue(const QString& key, const QVariant& value, QString* error = nullptr);

  const QString& path() const { return _path; }
  Cfg* getCfg() const { return _cfg; }

private:
  QString fullKey(const QString& key) const;
  void declare(CfgItem item);

  Cfg* _cfg;
  QString _path;
};

// The configuration tree with its file. Values found in the file are applied when their item is
// declared (modules declare late); values of items nobody declared are kept and written back.
class VEL_EXPORT Cfg
{
public:
  explicit Cfg(const QString& file_name);
  ~Cfg();
  Cfg(const Cfg&) = delete;
  Cfg& operator=(const Cfg&) = delete;

  // $XDG_CONFIG_HOME/zut/config.json, by default ~/.config/zut/config.json
  static QString defaultFileName();

  CfgNode* root() { return &_root; }
  const QString& fileName() const { return _file_name; }

  // Reads the file. A missing file is no problem. A damaged file is renamed aside (its new name
  // is in the problem text), reported, and the defaults stay; the state before the call is kept.
  bool load();
  // Writes the values set since the last load or save, merged with what the file holds now, so
  // that another process's changes meanwhile are kept (the file is locked while it is merged and
  // written atomically). Items not set here take the file's current values afterwards. Without a
  // file, every value is written.
  bool save(QString* error = nullptr);
  bool isModified() const { return !_changed.empty(); }

  // Problems met since the last call (damaged file, rejected values), each reported once.
  QStringList takeProblems();

  // Declared nodes and items in the order of declaration.
  std::vector<const CfgItem*> items() const;
  const CfgItem* item(const QString& key) const;

  bool setValue(const QString& key, const QVariant& value, QString* error = nullptr);
  // Reads `text` the way a user types it for the item's type ("true", "8", "[500, 0]",
  // "a,b", a choice's text or index) and sets it.
  bool setValueFromText(const QString& key, const QString& text, QString* error = nullptr);
  // The value as a user reads it: numbers, lists in brackets, a choice's text.
  static QString valueText(const CfgItem& item, const QVariant& value);

  // Pages of the settings dialog that modules add (id such as "templates/ManageScripts", title).
  void registerPage(const QString& id, const QString& title);
  const QList<QPair<QString, QString>>& pages() const { return _pages; }

private:
  friend class CfgNode;
  void declare(CfgItem item);
  bool validate(const CfgItem& item, const QVariant& value, QVariant& out, QString& error) const;
  static QJsonValue toJson(const CfgItem& item, const QVariant& value);
  static QVariant fromJson(const QJsonValue& value);
  enum class FileState
  {
    Missing,
    Read,
    Damaged,    // kept aside (or refused) and reported
    Unreadable  // `error` says why
  };
  FileState readFile(QJsonObject& object, QString& error);

  QString _file_name;
  CfgNode _root;
  std::vector<std::unique_ptr<CfgItem>> _items;
  std::map<QString, CfgItem*> _by_key;
  std::vector<std::unique_ptr<CfgNode>> _nodes;
  QJsonObject _stored;  // file values not yet claimed by a declaration
  QStringList _problems;
  QList<QPair<QString, QString>> _pages;
  std::set<QString> _changed;   // set since the last load or save: what save() writes
  std::set<QString> _rejected;  // file values refused on reading: save() writes their defaults
  bool _backup_before_save = false;
};

}  // namespace Vel
