#pragma once

namespace Vel {
class CfgNode;
}

namespace Vel::MSysScript {

// Keys of the module's configuration items (relative to the configuration root).
constexpr const char* CFG_NODE = "MSysScript";
constexpr const char* CFG_TAB_WIDTH = "MSysScript/TabWidth";
constexpr const char* CFG_SHOW_TABS = "MSysScript/ShowTabs";
constexpr const char* CFG_EDITOR_DIALOG = "MSysScript/EditorDialog";
constexpr const char* CFG_EDITOR_DIALOG_SIZE = "MSysScript/EditorDialog/Size";
constexpr const char* CFG_EDITOR_DIALOG_SPLITTER = "MSysScript/EditorDialog/Splitter";
constexpr const char* CFG_SOURCE_EDITOR = "MSysScript/SourceEditor";
constexpr const char* CFG_HIDE_WHEN_RECORDING = "MSysScript/HideWhenRecording";
constexpr const char* CFG_SOURCE_EDITOR_SPLITTER = "MSysScript/SourceEditor/Splitter";
constexpr const char* CFG_EXPORT = "MSysScript/Export";
constexpr const char* CFG_EXPORT_EXPORTED_NAMES = "MSysScript/Export/ExportedNames";
constexpr const char* CFG_BREAK_DIALOG = "MSysScript/BreakDialog";
constexpr const char* CFG_BREAK_DIALOG_TIMEOUT = "MSysScript/BreakDialog/Timeout";
constexpr const char* CFG_DIALOG_EDITOR = "MSysScript/DialogEditor";
constexpr const char* CFG_DIALOG_EDITOR_WIDTH = "MSysScript/DialogEditor/Width";
constexpr const char* CFG_DIALOG_EDITOR_HEIGHT = "MSysScript/DialogEditor/Height";
constexpr const char* CFG_DIALOG_EDITOR_SPLITTER_POSITION = "MSysScript/DialogEditor/SplitterPosition";
constexpr const char* CFG_NUMBER_WIDGET = "MSysScript/NumberWidget";
constexpr const char* CFG_NUMBER_WIDGET_DEFAULT = "MSysScript/NumberWidget/Default";
constexpr const char* CFG_NUMBER_WIDGET_MINIMUM = "MSysScript/NumberWidget/Minimum";
constexpr const char* CFG_NUMBER_WIDGET_MAXIMUM = "MSysScript/NumberWidget/Maximum";
constexpr const char* CFG_NUMBER_WIDGET_PRECISION = "MSysScript/NumberWidget/Precision";
constexpr const char* CFG_INTEGER_WIDGET = "MSysScript/IntegerWidget";
constexpr const char* CFG_INTEGER_WIDGET_DEFAULT = "MSysScript/IntegerWidget/Default";
constexpr const char* CFG_INTEGER_WIDGET_MINIMUM = "MSysScript/IntegerWidget/Minimum";
constexpr const char* CFG_INTEGER_WIDGET_MAXIMUM = "MSysScript/IntegerWidget/Maximum";
constexpr const char* CFG_SLIDER_WIDGET = "MSysScript/SliderWidget";
constexpr const char* CFG_SLIDER_WIDGET_DEFAULT = "MSysScript/SliderWidget/Default";
constexpr const char* CFG_SLIDER_WIDGET_MINIMUM = "MSysScript/SliderWidget/Minimum";
constexpr const char* CFG_SLIDER_WIDGET_MAXIMUM = "MSysScript/SliderWidget/Maximum";
constexpr const char* CFG_SLIDER_WIDGET_PRECISION = "MSysScript/SliderWidget/Precision";
constexpr const char* CFG_SLIDER_WIDGET_STEP = "MSysScript/SliderWidget/Step";
constexpr const char* CFG_SLIDER_WIDGET_TICK_INTERVAL = "MSysScript/SliderWidget/TickInterval";
constexpr const char* CFG_SELECT_TEMPLATE = "MSysScript/ScriptDialogSelectTemplate";
constexpr const char* CFG_SELECT_TEMPLATE_COMMAND_MODE = "MSysScript/ScriptDialogSelectTemplate/CommandMode";
constexpr const char* CFG_UPDATE_SCRIPT_DIALOG = "MSysScript/UpdateScriptDialog";
constexpr const char* CFG_UPDATE_SCRIPT_DIALOG_WIDTH = "MSysScript/UpdateScriptDialog/Width";
constexpr const char* CFG_UPDATE_SCRIPT_DIALOG_HEIGHT = "MSysScript/UpdateScriptDialog/Height";
constexpr const char* CFG_UPDATE_SCRIPT_DIALOG_SPLITTER = "MSysScript/UpdateScriptDialog/Splitter";
constexpr const char* CFG_UPDATE_SCRIPT_DIALOG_BACKUP = "MSysScript/UpdateScriptDialog/Backup";
constexpr const char* CFG_TEMPLATE_DATABASE = "MSysScript/ScriptDialogTemplateDatabase";
constexpr const char* CFG_TEMPLATE_DATABASE_INVISIBLE = "MSysScript/ScriptDialogTemplateDatabase/InvisibleTemplates";
constexpr const char* CFG_LIST_EDITOR_DIALOG = "MSysScript/ListEditorDialog";
constexpr const char* CFG_LIST_EDITOR_DIALOG_WIDTH = "MSysScript/ListEditorDialog/Width";
constexpr const char* CFG_LIST_EDITOR_DIALOG_HEIGHT = "MSysScript/ListEditorDialog/Height";

// The settings page through which users manage dialog templates.
constexpr const char* CFG_PAGE_TEMPLATES = "templates/ManageScriptDialogTemplates";

// Every item is declared with this host item flag.
constexpr int CFG_FLAGS = 2;

// The configuration root the module was started with (null before InitLibrary).
CfgNode* configurationRoot();
void setConfigurationRoot(CfgNode* root);

// The editor, export, break-dialog, dialog-editor and widget items.
void declareConfiguration(CfgNode* root);
// The template page and the template-selection, update-dialog, template-database and list-editor
// items, declared after the licence check.
void declareTemplateConfiguration(CfgNode* root);

}  // namespace Vel::MSysScript
