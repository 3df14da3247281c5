#include "menu/msys_script/msys_error_codes.h"

#include <QtGlobal>

#include "core/error_message_container.h"
#include "core/translate.h"

namespace Vel::MSysScript {
namespace {

struct ErrorEntry
{
  const char* code;
  const char* message;
  const char* key;
};

// Codes and translation ids do not run in parallel (0015/0016 sit between 0007 and 0008):
// the codes are what users know, the ids what the catalogue knows.
const ErrorEntry ERRORS[] = {
    {ERR_LOAD_DATABASE, "Error loading script database", "id=10154"},
    {ERR_LOAD_SCRIPT, "Error loading script", "id=10156"},
    {ERR_SAVE_SCRIPT, "Error saving script", "id=10158"},
    {ERR_EXECUTE_SCRIPT, "Error executing script", "id=10160"},
    {ERR_RECORD_SCRIPT, "Error recording script", "id=10162"},
    {ERR_IMPORT_SCRIPT, "Error importing script", "id=10164"},
    {ERR_EXPORT_SCRIPT, "Error exporting script", "id=10166"},
    {ERR_IMPORT_ARCHIVE, "Error importing script archive", "id=10168"},
    {ERR_EXPORT_ARCHIVE, "Error exporting script archive", "id=10170"},
    {ERR_EXIT, "Exiting not possible", "id=10172"},
    {ERR_PARSE_SCRIPT, "Parsing script failed", "id=10174"},
    {ERR_PARSE_PARAMETERS, "Parsing parameters failed", "id=10176"},
    {ERR_RESOLVE_ITEM, "Resolving item failed", "id=10178"},
    {ERR_GENERATE_SCRIPT, "Script generation failed", "id=10180"},
    {ERR_RECURSION_DEPTH, "Maximum recursion depth exceeded", "id=10182"},
    {ERR_LOCK_SCRIPT, "Script cannot be locked", "id=10184"},
    {ERR_LOAD_IMAGE, "Cannot load the image.", "id=27742"},
    {ERR_TEMPLATE_DATABASE, "Cannot access the dialog template database.", "id=27743"},
    {ERR_SAVE_FILE, "Cannot save the file.", "id=28205"},
};

}  // namespace

QString errorText(const char* text, const char* key)
{
  return translate("MSysScript_err", text, key);
}

void registerErrorCodes()
{
  for (const ErrorEntry& entry : ERRORS)
    ErrorMessageContainer::registerError(entry.code, errorText(entry.message, entry.key));
}

}  // namespace Vel::MSysScript
