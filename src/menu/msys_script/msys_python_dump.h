#pragma once

#include <QString>

#include <utility>
#include <vector>

namespace Vel::MSysScript {

class PythonHighlighter;

// One coloured run: line and start are 0-based, role is the highlighter's colour role.
struct ColourRun
{
  int line;
  int start;
  int length;
  int role;
  bool operator==(const ColourRun& other) const
  {
    return line == other.line && start == other.start && length == other.length && role == other.role;
  }
};

// The foldable blocks of a whole text, as the editor's parser finds them.
std::vector<std::pair<int, int>> findBlocks(const QString& text);
// The colour runs of a whole text, each line starting in the state the line before ended in.
std::vector<ColourRun> colourText(const QString& text, PythonHighlighter& highlighter);

// "first last" per line, and "line start length role" per line: the form of the reference files.
QString blocksToText(const std::vector<std::pair<int, int>>& blocks);
QString runsToText(const std::vector<ColourRun>& runs);
QString blocksToJson(const std::vector<std::pair<int, int>>& blocks);
QString runsToJson(const std::vector<ColourRun>& runs);

}  // namespace Vel::MSysScript
