#include "gapp/module_loader.h"

#include <QCoreApplication>
#include <QDir>

#include "core/prog_error.h"
#include "gapp/command.h"

namespace Vel::GApp {

ModuleLoader::ModuleLoader(const QString& path) : _library(path)
{
  // Symbols of the module stay its own; it sees the host's through the shared host libraries.
  _library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
}

// The library stays loaded: commands it created may outlive this object until the host has
// deleted them.
ModuleLoader::~ModuleLoader() = default;

QString ModuleLoader::modulePath(const QString& name)
{
  const QString file = QStringLiteral("libVel%1.so").arg(name);
  const QString env = qEnvironmentVariable("ZUT_MODULE_PATH");
  if (!env.isEmpty())
    return QDir(env).absoluteFilePath(file);
  return QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(QStringLiteral("../lib/zut/") + file);
}

bool ModuleLoader::load(QString* error)
{
  if (!_library.load()) {
    if (error)
      *error = _library.errorString();
    return false;
  }
  _init_library = reinterpret_cast<InitFunction>(_library.resolve("InitLibrary"));
  _close_library = reinterpret_cast<VoidFunction>(_library.resolve("CloseLibrary"));
  _init_defaults = reinterpret_cast<VoidFunction>(_library.resolve("InitDefaults"));
  _close_defaults = reinterpret_cast<VoidFunction>(_library.resolve("CloseDefaults"));
  _init_script_database = reinterpret_cast<VoidFunction>(_library.resolve("InitScriptDatabase"));
  _close_script_database = reinterpret_cast<VoidFunction>(_library.resolve("CloseScriptDatabase"));
  _update_registered_commands = reinterpret_cast<VoidFunction>(_library.resolve("UpdateRegisteredCommands"));
  if (!_init_library || !_close_library || !_init_defaults || !_close_defaults) {
    if (error)
      *error = QStringLiteral("%1 is not a module: InitLibrary, CloseLibrary, InitDefaults or CloseDefaults is missing")
                   .arg(_library.fileName());
    _library.unload();
    return false;
  }
  return true;
}

namespace {
void raiseReported()
{
  ProgError error{QString(), QString(), QString()};
  if (takeReportedProgError(error))
    throw error;
}
}  // namespace

void ModuleLoader::call(VoidFunction function)
{
  function();
  raiseReported();
}

void ModuleLoader::initLibrary(CfgNode* root)
{
  _init_library(root);
  raiseReported();
}

void ModuleLoader::closeLibrary()
{
  call(_close_library);
}
void ModuleLoader::initDefaults()
{
  call(_init_defaults);
}
void ModuleLoader::closeDefaults()
{
  call(_close_defaults);
}

bool ModuleLoader::initScriptDatabase()
{
  if (!_init_script_database)
    return false;
  call(_init_script_database);
  return true;
}

bool ModuleLoader::closeScriptDatabase()
{
  if (!_close_script_database)
    return false;
  call(_close_script_database);
  return true;
}

bool ModuleLoader::updateRegisteredCommands()
{
  if (!_update_registered_commands)
    return false;
  call(_update_registered_commands);
  return true;
}

std::unique_ptr<CommandParameters> ModuleLoader::createParameterDelay(double seconds)
{
  using Function = CommandParameters* (*)(double);
  const auto create = reinterpret_cast<Function>(_library.resolve("CreateParameterDelay"));
  if (!create)
    return nullptr;
  std::unique_ptr<CommandParameters> parameters(create(seconds));
  raiseReported();
  return parameters;
}

}  // namespace Vel::GApp
