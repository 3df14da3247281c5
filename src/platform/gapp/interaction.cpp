#include "gapp/interaction.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <unistd.h>

#include "core/error_message_container.h"
#include "core/prog_error.h"

namespace Vel::GApp {
namespace {

ErrorDialogHandler& errorHandler()
{
  static ErrorDialogHandler handler;
  return handler;
}

QuestionHandler& questionHandler()
{
  static QuestionHandler handler;
  return handler;
}

QtMessageHandler default_handler = nullptr;

// The offscreen platform says on every window that it cannot do what only a screen can do.
void quietOffscreen(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
  if (type == QtWarningMsg && message.startsWith(QLatin1String("This plugin does not support")))
    return;
  if (default_handler)
    default_handler(type, context, message);
}

bool interactivePlatform(const QString& platform)
{
  return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

}  // namespace

void prepareGuiEnvironment()
{
  if (!default_handler)
    default_handler = qInstallMessageHandler(quietOffscreen);
  if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
      qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
    const QString runtime = QDir::tempPath() + QStringLiteral("/runtime-zut-") + QString::number(getuid());
    QDir().mkpath(runtime);
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", runtime.toLocal8Bit());
  }
}

namespace Gui {
namespace {
struct State
{
  Loader loader;
  bool loaded = false;
  Services services;
};

State& state()
{
  static State instance;
  return instance;
}

bool guiApplicationExists()
{
  // By name: this library does not link the GUI libraries.
  const QCoreApplication* application = QCoreApplication::instance();
  return application && application->inherits("QGuiApplication");
}
}  // namespace

void setLoader(Loader loader)
{
  state().loader = std::move(loader);
  state().loaded = false;
}

bool isUp()
{
  return state().loader ? state().loaded : guiApplicationExists();
}

void ensureUp()
{
  if (isUp())
    return;
  if (!state().loader)
    throw ProgError(QStringLiteral("Gui::ensureUp"), QStringLiteral("interaction"),
                    QStringLiteral("this program has no windows"));
  state().loader();
  state().loaded = true;
}

void setServices(const Services& services)
{
  state().services = services;
}

const Services& services()
{
  return state().services;
}
}  // namespace Gui

bool isInteractive()
{
  if (Gui::isUp())
    return Gui::guiApplicationExists() &&
           interactivePlatform(QCoreApplication::instance()->property("platformName").toString());
  if (!Gui::state().loader)
    return false;
  // Where the GUI would open once it is needed.
  const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
  if (!platform.isEmpty())
    return interactivePlatform(platform.section(QLatin1Char(':'), 0, 0));
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

namespace {
// What the widgets offer for showing or asking a person something, with the GUI brought up for
// it; null where nobody is there to see it or the GUI cannot come up.
const Gui::Services* servicesForPerson()
{
  if (!isInteractive())
    return nullptr;
  try {
    Gui::ensureUp();
  } catch (const ProgError& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return nullptr;
  }
  return &Gui::services();
}
}  // namespace

void ErrorDialog(const QString& code, const QString& text)
{
  if (errorHandler()) {
    errorHandler()(code, text);
    return;
  }
  const QString message = ErrorMessageContainer::getMessage(code);
  const QString headline = code.isEmpty()      ? text.section(QLatin1Char('\n'), 0, 0)
                           : message.isEmpty() ? code
                                               : QStringLiteral("%1: %2").arg(code, message);
  if (const Gui::Services* gui = servicesForPerson(); gui && gui->show_error) {
    gui->show_error(code, headline, text);
    return;
  }
  std::fprintf(stderr, "%s\n", headline.toLocal8Bit().constData());
  if (!text.isEmpty() && !code.isEmpty())
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

bool askYesNo(const QString& title, const QString& question, bool fallback)
{
  if (questionHandler())
    return questionHandler()(title, question);
  const Gui::Services* gui = servicesForPerson();
  return gui && gui->ask_yes_no ? gui->ask_yes_no(title, question) : fallback;
}

QStringList askFileNames(FileQuestion question, const QString& title, const QString& filter)
{
  const Gui::Services* gui = servicesForPerson();
  return gui && gui->ask_files ? gui->ask_files(int(question), title, filter) : QStringList();
}

void setErrorDialogHandler(ErrorDialogHandler handler)
{
  errorHandler() = std::move(handler);
}

void setQuestionHandler(QuestionHandler handler)
{
  questionHandler() = std::move(handler);
}

}  // namespace Vel::GApp
