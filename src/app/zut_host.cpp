#include "zut_host.h"

#include <QApplication>

#include <cstdio>

#include "core/prog_error.h"
#include "gapp/app_status_manager.h"
#include "gapp/command_container.h"
#include "gscript/python_interpreter.h"
#include "gtools/dialog_widget_supplier.h"

namespace {

// The program has no main window to embed dialogs in: they are top-level windows over whatever
// window is active.
class ZutDialogSupplier : public Vel::GTools::DialogWidgetSupplierInterface
{
public:
  QWidget* getDialogParent() const override { return QApplication::activeWindow(); }
  bool canEmbed() const override { return false; }
};

ZutDialogSupplier dialog_supplier;

void warn(const QString& text)
{
  std::fprintf(stderr, "zut: %s\n", text.toLocal8Bit().constData());
}

}  // namespace

ZutHost::ZutHost() : _cfg(std::make_unique<Vel::Cfg>(Vel::Cfg::defaultFileName())) {}

ZutHost::~ZutHost()
{
  stop();
}

bool ZutHost::start()
{
  Vel::GTools::DialogWidgetSupplierInterface::setInstance(&dialog_supplier);
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
