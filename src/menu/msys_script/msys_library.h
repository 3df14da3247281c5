#pragma once

#include <QString>

#include <exception>

#include "core/prog_error.h"
#include "core/vel_export.h"

namespace Vel {
class CfgNode;
}
namespace Vel::GApp {
class CommandParameters;
}

// The functions through which the host drives the module. C linkage: the host resolves them by
// name, and no exception crosses them (a program error is handed to the host's reporter).
namespace Vel::MSysScript {
extern "C" {
VEL_EXPORT void InitLibrary(Vel::CfgNode* root);
VEL_EXPORT void CloseLibrary();
VEL_EXPORT void InitDefaults();
VEL_EXPORT void CloseDefaults();
VEL_EXPORT void InitScriptDatabase();
VEL_EXPORT void CloseScriptDatabase();
VEL_EXPORT void UpdateRegisteredCommands();
// A delay as the host runs it between commands: the arguments of "sys.delay_script" for a wait
// of `seconds` (checked when the command runs). The host owns the object.
VEL_EXPORT Vel::GApp::CommandParameters* CreateParameterDelay(double seconds);
// The functions below as far as DescribeDialog are the GUI half's (VelMSysScriptGui); FreeAnalysis
// is the module's and releases their results too.
//
// For the program's tools: the foldable blocks ("blocks") or the colour runs ("highlight") of a
// Python text (UTF-8), as text or JSON. The result is released with FreeAnalysis; null for an
// unknown request.
VEL_EXPORT char* AnalyzePythonText(const char* what, const char* text, int json);
VEL_EXPORT void FreeAnalysis(char* analysis);
// For the program's tools: reads a dialog definition (UTF-8) and checks every element. Sets
// `faulty` and returns the faults, one "LINE<TAB>message" a line (LINE -1 when unknown); or,
// without a fault and with `normalize`, the definition as it is written now (otherwise empty).
// Released with FreeAnalysis; null after a program error.
VEL_EXPORT char* CheckDialogDefinition(const char* text, int normalize, int* faulty);
// For the program: a file of answers for the dialogs that wait where no person is, and a file
// to record a person's answers in (either empty for none). Returns empty text, or the fault
// ("CODE: message" and the log). Released with FreeAnalysis.
VEL_EXPORT char* PrepareDialogAnswers(const char* answers, const char* record);
// The answers that no dialog has taken, one a line. Released with FreeAnalysis.
VEL_EXPORT char* UnusedDialogAnswers();
// For the program's tools: builds the dialog of a definition as it first appears and lists
// its elements (row, column, spans, type, name, value, enabled) as text or JSON; with
// `screenshot`, writes a picture of it there. Sets `faulty` and returns the fault's text
// instead. Released with FreeAnalysis; null after a program error.
VEL_EXPORT char* DescribeDialog(const char* text, const char* screenshot, int json, int* faulty);
// For the program: the dialog templates, one "NAME<TAB>ORIGIN<TAB>PATH" a line, or the text
// of the template `name` when one is given. Sets `faulty` and returns the fault's text instead.
VEL_EXPORT char* DialogTemplates(const char* name, int* faulty);
// For the program: brings the calls of older command and argument names up to date in the
// `count` files (none: the script database), writing unless `dry_run`. Each change goes to `out`
// as "FILE:LINE: OLD -> NEW", each fault and warning to `err`. Returns 0 when nothing failed, 1
// when a script could not be read or written (it is left as it was), -1 after a program error.
VEL_EXPORT int UpdateScripts(const char* const* files, int count, int dry_run, void (*out)(const char*),
                             void (*err)(const char*));

// Of the module's GUI half (a library of its own, loaded with the windows): sets up what the
// windows need (the break dialog, the editor's exit handling, the script menu, the dialog
// elements) and takes it down again.
VEL_EXPORT void InitGui();
VEL_EXPORT void CloseGui();
}

// Runs an exported function's body: nothing is thrown across the C boundary; a program error
// goes to the host's reporter.
template <class Function>
void guarded(const char* function, Function body)
{
  try {
    body();
  } catch (const ProgError& error) {
    reportProgError(error);
  } catch (const std::exception& error) {
    reportProgError(
        ProgError(QString::fromLatin1(function), QStringLiteral("msys_library"), QString::fromUtf8(error.what())));
  }
}
}  // namespace Vel::MSysScript
