#include "gtools/error_dialog.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QMessageBox>

#include <cstdio>
#include <unistd.h>

#include "core/error_message_container.h"

namespace Vel::GTools {
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

}  // namespace

namespace {
QtMessageHandler default_handler = nullptr;

// The offscreen platform says on every window that it cannot do what only a screen can do.
void quietOffscreen(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
  if (type == QtWarningMsg && message.startsWith(QLatin1String("This plugin does not support")))
    return;
  if (default_handler)
    default_handler(type, context, message);
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

bool isInteractive()
{
  if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
    return false;
  const QString platform = QGuiApplication::platformName();
  return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

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
  if (isInteractive()) {
    if (code.isEmpty()) {
      QMessageBox::warning(QApplication::activeWindow(), QStringLiteral("Warning"), text);
      return;
    }
    QMessageBox box(QMessageBox::Critical, QStringLiteral("Error"), headline, QMessageBox::Ok);
    box.setDetailedText(text);
    box.setInformativeText(text.section(QLatin1Char('\n'), 0, 0));
    box.exec();
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
  if (!isInteractive())
    return fallback;
  return QMessageBox::question(nullptr, title, question, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

void setErrorDialogHandler(ErrorDialogHandler handler)
{
  errorHandler() = std::move(handler);
}

void setQuestionHandler(QuestionHandler handler)
{
  questionHandler() = std::move(handler);
}

}  // namespace Vel::GTools
