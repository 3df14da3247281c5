#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>

#include "core/vel_export.h"

namespace Vel::GEdit {

// Finds the foldable blocks of an editor's text. The editor calls parse(), textInserted() and
// textDeleted() after every change; a concrete parser knows the language.
class VEL_EXPORT TextParser : public QObject
{
  Q_OBJECT

public:
  // First line to last line, 0-based, keyed by the first line.
  using BlockMap = std::map<int, int>;

  explicit TextParser(QObject* parent = nullptr);

  // The lines come from the editor's document, or from a text of their own.
  void setLineSource(std::function<QString(int)> line, std::function<int()> count);
  void setText(const QString& text);

  QString getLine(int line) const;
  int getNumberOfLines() const;

  void addBlock(int first, int last) { _blocks[first] = last; }
  void clearBlocks() { _blocks.clear(); }
  void setBlocks(BlockMap blocks) { _blocks = std::move(blocks); }

protected:
  // For parsers that move blocks in place instead of parsing everything again.
  BlockMap& mutableBlocks() { return _blocks; }

public:
  BlockMap::const_iterator getBlockBegin() const { return _blocks.begin(); }
  BlockMap::const_iterator getBlockEnd() const { return _blocks.end(); }
  const BlockMap& getBlocks() const { return _blocks; }

  virtual void parse() = 0;
  virtual void textInserted(int line, int count) = 0;
  virtual void textDeleted(int line, int count) = 0;
  // The leading white space for a new line at `line`: that of the line before it.
  virtual QString getLineOffset(int line) const;

private:
  BlockMap _blocks;
  QStringList _lines;
  std::function<QString(int)> _line;
  std::function<int()> _count;
};

}  // namespace Vel::GEdit
