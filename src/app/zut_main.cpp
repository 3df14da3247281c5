// zut: runs the scripting module from the command line.

#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <unistd.h>

#include "gapp/command.h"
#include "gapp/interaction.h"
#include "gscript/safe_points.h"
#include "zut_commands.h"
#include "zut_host.h"

namespace {

QString overview()
{
  QString text = QStringLiteral(
      "Usage: zut SUB-COMMAND [ARGUMENTS]\n"
      "\n"
      "Automates the application with Python through the scripting module.\n"
      "\n"
      "Sub-commands:\n");
  int count = 0;
  const SubCommand* list = subCommands(count);
  for (int i = 0; i < count; ++i)
    text += QStringLiteral("  %1 %2\n")
                .arg(QString::fromLatin1(list[i].name).leftJustified(9), QString::fromLatin1(list[i].synopsis));
  text += QStringLiteral(
      "\n'zut SUB-COMMAND --help' describes one. Exit status: 0 success, 1 a command failed,\n"
      "2 wrong usage.\n");
  return text;
}

QString help(const SubCommand& sub_command)
{
  return QStringLiteral("Usage: zut %1 %2\n\n%3\n")
      .arg(QString::fromLatin1(sub_command.name), QString::fromLatin1(sub_command.synopsis),
           QString::fromLatin1(sub_command.help));
}

}  // namespace

int main(int argc, char* argv[])
{
  Vel::GApp::prepareGuiEnvironment();
  // As python3 does: writing to a closed pipe is an error (BrokenPipeError in a script), not
  // the end of the program.
  std::signal(SIGPIPE, SIG_IGN);

  QStringList arguments;
  for (int i = 1; i < argc; ++i)
    arguments << QString::fromLocal8Bit(argv[i]);

  if (arguments.isEmpty()) {
    printErr(overview());
    return EXIT_USAGE;
  }
  if (arguments.first() == QLatin1String("--help") || arguments.first() == QLatin1String("-h") ||
      arguments.first() == QLatin1String("help")) {
    printOut(overview());
    return EXIT_OK;
  }
  const SubCommand* sub_command = findSubCommand(arguments.first());
  if (!sub_command) {
    printErr(QStringLiteral("zut: unknown sub-command '%1'\n\n").arg(arguments.first()) + overview());
    return EXIT_USAGE;
  }
  arguments.removeFirst();
  // Options of the sub-command stop at "--" so that code and values may look like options.
  bool json = false;
  QStringList rest;
  bool options = true;
  for (const QString& argument : arguments) {
    if (options && argument == QLatin1String(OPTIONS_END)) {
      options = false;
      if (sub_command->keeps_separator)
        rest << argument;
    } else if (options && (argument == QLatin1String("--help") || argument == QLatin1String("-h")) &&
               !(sub_command->operand_help && !rest.isEmpty())) {
      printOut(help(*sub_command));
      return EXIT_OK;
    } else if (options && argument == QLatin1String("--json")) {
      json = true;
    } else {
      rest << argument;
    }
  }

  // Pictures look the same on every machine: drawn off screen at 96 dpi, in the Fusion style
  // with a fixed font.
  const bool picture = rest.contains(QLatin1String("--screenshot"));
  if (picture) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "96");
  }
  ZutHost host(argc, argv, picture);
  Vel::GApp::Gui::setLoader([&host] { host.bringUpGui(); });
  if (sub_command->needs_module && !host.start())
    return EXIT_FAILED;
  int status = EXIT_FAILED;
  try {
    status = sub_command->run(host, rest, json);
  } catch (const Vel::GApp::CommandError& error) {
    printErr(error.getText() + QLatin1Char('\n'));
  } catch (const std::exception& error) {
    // Nothing a user types may end the program without a message.
    printErr(QStringLiteral("zut: internal error: %1\n").arg(QString::fromUtf8(error.what())));
  }
  host.stop();
#ifndef __SANITIZE_ADDRESS__
  // Everything the run writes is written by now. Qt's own teardown would start the font
  // configuration only to close it again, a good part of a short run's time, so the process ends
  // here -- unless it owns clipboard data that the window system takes over at Qt's teardown.
  // Under the sanitizers the full teardown runs, so that leaks are still found.
  const auto owns_clipboard = reinterpret_cast<int (*)()>(host.guiFunction("ZutGuiOwnsClipboard"));
  if (!owns_clipboard || !owns_clipboard()) {
    std::fflush(nullptr);
    _exit(status);
  }
#endif
  return status;
}
