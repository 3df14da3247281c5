#include "zut_host.h"

#include <QCoreApplication>
#include <QThread>

#include <cstdio>

#include "core/prog_error.h"
#include "core/translate.h"
#include "gapp/app_status_manager.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gscript/python_interpreter.h"

namespace {

void warn(const QString& text)
{
  std::fprintf(stderr, "zut: %s\n", text.toLocal8Bit().constData());
}

[[noreturn]] void failGui(const QString& text)
{
  throw Vel::ProgError(QStringLiteral("bringUpGui"), QStringLiteral("zut_host"),
                       QStringLiteral("the windows cannot come up: ") + text);
}

}  // namespace

ZutHost::ZutHost(int& argc, char** argv, bool picture)
    : _argc(argc),
      _argv(argv),
      _picture(picture),
      _application(std::make_unique<QCoreApplication>(argc, argv)),
      _cfg(std::make_unique<Vel::Cfg>(Vel::Cfg::defaultFileName()))
{
  QCoreApplication::setApplicationName(QStringLiteral("zut"));
}

ZutHost::~ZutHost()
{
  stop();
}

bool ZutHost::start()
{
  _cfg->load();
  for (const QString& problem : _cfg->takeProblems())
    warn(QStringLiteral("warning: ") + problem);

  _module =
      std::make_unique<Vel::GApp::ModuleLoader>(Vel::GApp::ModuleLoader::modulePath(QStringLiteral("MSysScript")));
  QString error;
  if (!_module->load(&error)) {
    warn(QStringLiteral("cannot load the scripting module: ") + error);
    _module.reset();
    return false;
  }
  try {
    _module->initLibrary(_cfg->root());
    _module->initDefaults();
    _defaults_initialized = true;
    _module->initScriptDatabase();
    _module->updateRegisteredCommands();
  } catch (const Vel::ProgError& failure) {
    warn(QStringLiteral("the scripting module failed to start: ") + QString::fromUtf8(failure.what()));
    return false;
  }
  // Values of items declared only now may have been refused.
  for (const QString& problem : _cfg->takeProblems())
    warn(QStringLiteral("warning: ") + problem);
  return true;
}

void ZutHost::bringUpGui()
{
  if (_gui_up)
    return;
  // The console application object cannot go while an event loop of it runs.
  if (QThread::currentThread()->loopLevel() > 0)
    failGui(QStringLiteral("an event loop of the console application is running"));
  // Everything is loaded before the console application object goes, so that a failure
  // leaves the run as it was.
  _gui_plugin.setFileName(Vel::GApp::ModuleLoader::modulePath(QStringLiteral("ZutGui")));
  using Create = QCoreApplication* (*)(int*, char**, int);
  const auto create = reinterpret_cast<Create>(_gui_plugin.resolve("ZutGuiCreateApplication"));
  if (!create)
    failGui(_gui_plugin.errorString());
  _module_gui.setFileName(Vel::GApp::ModuleLoader::modulePath(QStringLiteral("MSysScriptGui")));
  const auto init_gui = reinterpret_cast<void (*)()>(_module_gui.resolve("InitGui"));
  if (_module && !init_gui)
    failGui(_module_gui.errorString());
  // One application object at a time. Nothing of the console one is lost that matters: no event
  // loop runs, the catalogues are installed again, and Qt keeps the name.
  _application.reset();
  _application.reset(create(&_argc, _argv, _picture ? 1 : 0));
  Vel::reinstallTranslators();
  _gui_up = true;
  if (_module && _module->isLoaded()) {
    init_gui();
    Vel::ProgError failure{QString(), QString(), QString()};
    if (Vel::takeReportedProgError(failure))
      throw failure;
  }
}

QFunctionPointer ZutHost::resolve(const char* name)
{
  if (!_module)
    return nullptr;
  if (const QFunctionPointer function = _module->resolve(name))
    return function;
  try {
    Vel::GApp::Gui::ensureUp();
  } catch (const Vel::ProgError& failure) {
    warn(QString::fromUtf8(failure.what()));
    return nullptr;
  }
  return _module_gui.resolve(name);
}

QFunctionPointer ZutHost::guiFunction(const char* name)
{
  return _gui_up ? _gui_plugin.resolve(name) : nullptr;
}

void ZutHost::stop()
{
  if (_stopped)
    return;
  _stopped = true;
  try {
    if (_defaults_initialized) {
      Vel::GApp::AppStatusManager::requestExit(true);
      _module->closeDefaults();
    }
    if (_gui_up && _module && _module->isLoaded())
      if (const auto close_gui = reinterpret_cast<void (*)()>(_module_gui.resolve("CloseGui")))
        close_gui();
    if (_module && _module->isLoaded())
      _module->closeScriptDatabase();
    Vel::GApp::CommandContainer::getInstance().deleteAll();
    if (_module && _module->isLoaded())
      _module->closeLibrary();
    Vel::GScript::PythonInterpreter::finalize();
  } catch (const Vel::ProgError& failure) {
    warn(QStringLiteral("error while closing: ") + QString::fromUtf8(failure.what()));
  }
  if (_cfg->isModified()) {
    QString error;
    if (!_cfg->save(&error))
      warn(QStringLiteral("the configuration was not saved: ") + error);
  }
}
