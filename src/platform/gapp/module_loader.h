#pragma once

#include <QLibrary>
#include <QString>

#include <memory>

#include "core/vel_export.h"

namespace Vel {
class CfgNode;
}

namespace Vel::GApp {

class CommandParameters;

// Loads an application module (a plug-in library) and calls its exported functions. The module
// is never linked: everything is resolved by name. A program error that the module reports
// from inside an exported function is raised again here as a ProgError.
class VEL_EXPORT ModuleLoader
{
public:
  // `path` is a file name or a library name that QLibrary understands.
  explicit ModuleLoader(const QString& path);
  ~ModuleLoader();

  // The module VelNAME as installed beside the program: lib/zut/libVelNAME.so, or the folder
  // named by $ZUT_MODULE_PATH.
  static QString modulePath(const QString& name);

  // Loads the library and resolves its functions. The lifecycle functions are required; the
  // others may be missing. On failure, `error` says why and nothing is loaded.
  bool load(QString* error);
  bool isLoaded() const { return _library.isLoaded(); }
  QString fileName() const { return _library.fileName(); }

  void initLibrary(CfgNode* root);
  void closeLibrary();
  void initDefaults();
  void closeDefaults();
  // False when the module does not export the function.
  bool initScriptDatabase();
  bool closeScriptDatabase();
  bool updateRegisteredCommands();
  // The arguments of the module's delay command for a wait of `seconds`, made by the module
  // (CreateParameterDelay); null when the module exports no such function.
  std::unique_ptr<CommandParameters> createParameterDelay(double seconds);
  // Any other function the module exports; null when it has none of that name.
  QFunctionPointer resolve(const char* name) { return _library.resolve(name); }

private:
  using VoidFunction = void (*)();
  using InitFunction = void (*)(CfgNode*);
  void call(VoidFunction function);

  QLibrary _library;
  InitFunction _init_library = nullptr;
  VoidFunction _close_library = nullptr;
  VoidFunction _init_defaults = nullptr;
  VoidFunction _close_defaults = nullptr;
  VoidFunction _init_script_database = nullptr;
  VoidFunction _close_script_database = nullptr;
  VoidFunction _update_registered_commands = nullptr;
};

}  // namespace Vel::GApp
