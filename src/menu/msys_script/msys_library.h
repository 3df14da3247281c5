#pragma once

#include "core/vel_export.h"

namespace Vel {
class CfgNode;
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
}
}  // namespace Vel::MSysScript
