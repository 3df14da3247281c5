#pragma once

#include <QJsonArray>
#include <QStringList>

#include <functional>

#include "gapp/command.h"

namespace Vel::MSysScript {

// Turns the commands a person runs into script lines: one call per command, with only the
// arguments that differ from their defaults, preceded by the answers the person gave the dialogs
// that the command showed. It records while it exists.
class ScriptRecorder : public GApp::CommandRecorder
{
public:
  using LineSink = std::function<void(const QStringList& lines)>;
  // A command that cannot be recorded: the message for MSysScriptErr-0005.
  using FaultSink = std::function<void(const QString& message)>;

  ScriptRecorder(LineSink lines, FaultSink fault);
  ~ScriptRecorder() override;
  ScriptRecorder(const ScriptRecorder&) = delete;
  ScriptRecorder& operator=(const ScriptRecorder&) = delete;

  void commandStarted(const GApp::Command& command) override;
  void commandRun(const GApp::Command& command, const GApp::CommandParameters& parameters) override;

  // The script line that runs `command` with `parameters` again; false with the reason in
  // `error` when an argument has no form a script can write.
  static bool callLine(const GApp::Command& command, const GApp::CommandParameters& parameters, QString& line,
                       QString& error);

private:
  LineSink _lines;
  FaultSink _fault;
  QJsonArray _answers;
};

}  // namespace Vel::MSysScript
