#pragma once

#include <QStringList>

class ZutHost;

// Exit codes of every sub-command.
enum ExitCode
{
  EXIT_OK = 0,
  EXIT_FAILED = 1,
  EXIT_USAGE = 2,
  // zut debug: the person ended the script from the debugger (quit, or the end of its input).
  EXIT_DEBUG_QUIT = 3,
  // The script ended with KeyboardInterrupt (Ctrl+C), as python3 reports it.
  EXIT_INTERRUPTED = 130
};

struct SubCommand
{
  const char* name;
  const char* synopsis;
  const char* help;
  // Whether the sub-command needs the scripting module loaded.
  bool needs_module;
  int (*run)(ZutHost& host, const QStringList& arguments, bool json);
  // Whether --help after the first operand asks about the operand (zut call COMMAND --help).
  bool operand_help = false;
  // Whether "--" stays among the arguments, for a sub-command that hands on what follows it.
  bool keeps_separator = false;
};

// The argument that ends a sub-command's options.
inline const char* const OPTIONS_END = "--";

const SubCommand* findSubCommand(const QString& name);
const SubCommand* subCommands(int& count);

// Prints to standard output / standard error in the locale's encoding.
void printOut(const QString& text);
void printErr(const QString& text);
