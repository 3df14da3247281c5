#pragma once

namespace Vel::GScript::Parser {

// How scripts name the application's commands: zut.script.sys.execute_script(...)
constexpr const char* SCRIPT_PREFIX = "zut.script";
constexpr const char* INTERACTIVE_PREFIX = "zut.interactive";
constexpr const char* GUI_PREFIX = "zut.gui";

}  // namespace Vel::GScript::Parser
