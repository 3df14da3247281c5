#pragma once

#include <QString>

namespace Vel::MSysScript {

// The codes users and support see; messages are registered by InitLibrary.
constexpr const char* ERR_LOAD_DATABASE = "MSysScriptErr-0001";
constexpr const char* ERR_LOAD_SCRIPT = "MSysScriptErr-0002";
constexpr const char* ERR_SAVE_SCRIPT = "MSysScriptErr-0003";
constexpr const char* ERR_EXECUTE_SCRIPT = "MSysScriptErr-0004";
constexpr const char* ERR_RECORD_SCRIPT = "MSysScriptErr-0005";
constexpr const char* ERR_IMPORT_SCRIPT = "MSysScriptErr-0006";
constexpr const char* ERR_EXPORT_SCRIPT = "MSysScriptErr-0007";
constexpr const char* ERR_EXIT = "MSysScriptErr-0008";
constexpr const char* ERR_PARSE_SCRIPT = "MSysScriptErr-0009";
constexpr const char* ERR_PARSE_PARAMETERS = "MSysScriptErr-0010";
constexpr const char* ERR_RESOLVE_ITEM = "MSysScriptErr-0011";
constexpr const char* ERR_GENERATE_SCRIPT = "MSysScriptErr-0012";
constexpr const char* ERR_RECURSION_DEPTH = "MSysScriptErr-0013";
constexpr const char* ERR_LOCK_SCRIPT = "MSysScriptErr-0014";
constexpr const char* ERR_IMPORT_ARCHIVE = "MSysScriptErr-0015";
constexpr const char* ERR_EXPORT_ARCHIVE = "MSysScriptErr-0016";
constexpr const char* ERR_LOAD_IMAGE = "MSysScriptErr-0017";
constexpr const char* ERR_TEMPLATE_DATABASE = "MSysScriptErr-0018";
constexpr const char* ERR_SAVE_FILE = "MSysScriptErr-0019";

// A message of the module's errors, translated in their context ("MSysScript_err").
QString errorText(const char* text, const char* key = "");

// Registers every code with its translated message, in the order of the translation ids.
void registerErrorCodes();

}  // namespace Vel::MSysScript
