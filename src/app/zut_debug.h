#pragma once

#include <functional>

// What `zut debug --help` says about the commands and the output.
extern const char* const DEBUG_HELP;

// Runs `run` (a script run as `zut run` does it, returning its exit status) under the debugger,
// driven from standard input: it pauses at the script's first line. Returns the run's status,
// or EXIT_DEBUG_QUIT when the person ended the run with quit (or standard input ended).
int runUnderDebugger(const std::function<int()>& run);
