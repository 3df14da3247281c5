#include "menu/msys_script/msys_python_dump.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_parser.h"

namespace Vel::MSysScript {

std::vector<std::pair<int, int>> findBlocks(const QString& text)
{
  PythonParser parser;
  parser.setText(text);
  parser.parse();
  const auto blocks = parser.getBlocks();
  return {blocks.begin(), blocks.end()};
}

std::vector<ColourRun> colourText(const QString& text, PythonHighlighter& highlighter)
{
  std::vector<ColourRun> runs;
  int state = 0;
  int line = 0;
  for (const QString& content : text.split(QLatin1Char('\n'))) {
    highlighter.clearFormats();
    state = highlighter.highlightLine(unsigned(line), content, state);
    for (const auto& format : highlighter.getFormats())
      runs.push_back({line, format.start, format.length, format.tag});
    ++line;
  }
  return runs;
}

QString blocksToText(const std::vector<std::pair<int, int>>& blocks)
{
  QString text;
  for (const auto& block : blocks)
    text += QStringLiteral("%1 %2\n").arg(block.first).arg(block.second);
  return text;
}

QString runsToText(const std::vector<ColourRun>& runs)
{
  QString text;
  for (const ColourRun& run : runs)
    text += QStringLiteral("%1 %2 %3 %4\n").arg(run.line).arg(run.start).arg(run.length).arg(run.role);
  return text;
}

QString blocksToJson(const std::vector<std::pair<int, int>>& blocks)
{
  QJsonArray list;
  for (const auto& block : blocks)
    list.append(QJsonObject{{QStringLiteral("first"), block.first}, {QStringLiteral("last"), block.second}});
  return QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Indented));
}

QString runsToJson(const std::vector<ColourRun>& runs)
{
  QJsonArray list;
  for (const ColourRun& run : runs)
    list.append(QJsonObject{{QStringLiteral("line"), run.line},
                            {QStringLiteral("start"), run.start},
                            {QStringLiteral("length"), run.length},
                            {QStringLiteral("role"), run.role}});
  return QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Indented));
}

}  // namespace Vel::MSysScript
