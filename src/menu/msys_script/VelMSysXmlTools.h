#pragma once

#include <QDomDocument>
#include <QDomElement>
#include <QDomNode>
#include <QString>
#include <QStringList>

#include <map>
#include <vector>

#include "core/prog_error.h"
#include "core/script_type.h"
#include "core/translate.h"
#include "gapp/command.h"
#include "menu/msys_script/msys_error_codes.h"

// What every element of a user-defined dialog uses to read itself from, and write itself to,
// the definition's DOM tree, so that all readers stay short and all report faults alike.
namespace Vel::MSysScript::Xml {

// A fault in a dialog definition: the module's code for a malformed definition, the filled-in
// message as the log, and the line of the node at fault (-1 when unknown).
class ParseException : public GApp::CommandError
{
public:
  explicit ParseException(const QString& message);
  ParseException(const QString& message, int line);
  ParseException(const QDomNode& node, const QString& message);
  ParseException(const ParseException& other) = default;
  ParseException& operator=(const ParseException& other) = default;
  ~ParseException() override = default;

  int getLine() const { return _line; }
  // The filled-in message alone (the base's message is the one registered for the code).
  const QString& getParseMessage() const { return _message; }

private:
  QString _message;
  int _line;
};

void checkTag(const QDomNode& node, const QString& tag);
bool hasChild(const QDomNode& node, const QString& tag);
bool hasAttribute(const QDomNode& node, const QString& name);

template <typename T>
T getAttribute(const QDomNode& node, const QString& name);
template <>
QString getAttribute<QString>(const QDomNode& node, const QString& name);
template <>
int getAttribute<int>(const QDomNode& node, const QString& name);
template <>
bool getAttribute<bool>(const QDomNode& node, const QString& name);

QDomElement getChild(const QDomNode& node, const QString& tag);
// The child with the tag, a null element where there is none; several are a fault, as for getChild.
QDomElement findChild(const QDomNode& node, const QString& tag);
// Every element with the tag anywhere below `node`, not only direct children: callers rely on
// their nesting being unambiguous.
std::vector<QDomElement> getChildren(const QDomNode& node, const QString& tag);

// The value of `child`, the child of `node` with the tag, read and refused as getValue does: for a
// child that has already been looked up.
template <typename T>
T valueOf(const QDomNode& node, const QDomElement& child, const QString& tag);
template <>
QString valueOf<QString>(const QDomNode& node, const QDomElement& child, const QString& tag);
template <>
int valueOf<int>(const QDomNode& node, const QDomElement& child, const QString& tag);
template <>
double valueOf<double>(const QDomNode& node, const QDomElement& child, const QString& tag);
template <>
bool valueOf<bool>(const QDomNode& node, const QDomElement& child, const QString& tag);

// The value of the one child with the tag; a missing or repeated child is a fault.
template <typename T>
T getValue(const QDomNode& node, const QString& tag)
{
  return valueOf<T>(node, getChild(node, tag), tag);
}

// The free text of `tag`, which may hold markup and is therefore one CDATA section.
QString getCData(const QDomNode& node, const QString& tag);
// A new, unattached element `tag` holding `text` as one CDATA section.
QDomNode createCData(QDomDocument* document, const QString& tag, const QString& text);

// The text form of a value as the readers above read it back.
QString valueText(const QString& value);
QString valueText(int value);
QString valueText(double value);
QString valueText(bool value);

// A new, unattached element `tag` holding the value's text; the caller appends it.
template <typename T>
QDomNode createValue(QDomDocument* document, const QString& tag, const T& value)
{
  QDomElement element = document->createElement(tag);
  element.appendChild(document->createTextNode(valueText(value)));
  return element;
}

// An enumerated setting stored as a word: the owner fills the table and sets the default at
// construction; scripts and definitions name the value by its word.
template <typename T>
class Enumeration
{
public:
  Enumeration() = default;
  Enumeration(T current, std::map<T, QString> values) : _current(current), _values(std::move(values)) {}

  T get() const { return _current; }
  void set(T value) { _current = value; }
  const std::map<T, QString>& getValues() const { return _values; }

  QString getId() const { return getId(_current); }
  void setId(const QString& word) { _current = create(word); }

  // The element is optional: without it the current value (the default) stays.
  void read(const QDomNode& parent, const QString& tag)
  {
    if (!hasChild(parent, tag))
      return;
    const QString word = getValue<QString>(parent, tag);
    const auto pos = find(word);
    if (pos == _values.end())
      throw ParseException(getChild(parent, tag),
                           errorText("The type \"%1\" is invalid for tag \"%2\".", "id=38113").arg(word, tag));
    _current = pos->first;
  }

  // The table's word for any of its values, and the value for a word.
  QString getId(T value) const
  {
    const auto pos = _values.find(value);
    if (pos == _values.end())
      vel_assert("pos != _values.end ()", __func__, __FILE__, __LINE__);
    return pos->second;
  }

  T create(const QString& word) const
  {
    const auto pos = find(word);
    if (pos == _values.end())
      throw ScriptTypeException(errorText("The value \"%1\" is invalid.", "id=38112").arg(word));
    return pos->first;
  }

  // The words in declaration order.
  QStringList getIds() const
  {
    QStringList words;
    for (const auto& entry : _values)
      words << entry.second;
    return words;
  }

  void create(QDomDocument* document, QDomNode& parent, const QString& tag) const
  {
    parent.appendChild(createValue<QString>(document, tag, getId()));
  }

protected:
  T _current{};
  std::map<T, QString> _values;

private:
  typename std::map<T, QString>::const_iterator find(const QString& word) const
  {
    for (auto pos = _values.begin(); pos != _values.end(); ++pos)
      if (pos->second == word)
        return pos;
    return _values.end();
  }
};

}  // namespace Vel::MSysScript::Xml
