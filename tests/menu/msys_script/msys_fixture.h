#pragma once

#include <QTemporaryDir>

#include "cfg/cfg.h"
#include "core/prog_error.h"
#include "menu/msys_script/msys_library.h"

// The module started once for the whole test program, as the host starts it, with its windows.
inline Vel::Cfg& startedModule()
{
  static QTemporaryDir dir;
  static Vel::Cfg* cfg = [] {
    auto* created = new Vel::Cfg(dir.filePath(QStringLiteral("config.json")));
    Vel::MSysScript::InitLibrary(created->root());
    Vel::MSysScript::InitDefaults();
    Vel::MSysScript::InitGui();
    Vel::ProgError error{QString(), QString(), QString()};
    if (Vel::takeReportedProgError(error))
      throw error;
    return created;
  }();
  return *cfg;
}
