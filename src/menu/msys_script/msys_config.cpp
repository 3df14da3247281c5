#include "menu/msys_script/msys_config.h"

#include <climits>
#include <limits>

#include "cfg/cfg.h"
#include "core/translate.h"

namespace Vel::MSysScript {
namespace {
const double MAX_DOUBLE = std::numeric_limits<double>::max();
CfgNode* configuration_root = nullptr;
}  // namespace

CfgNode* configurationRoot()
{
  return configuration_root;
}
void setConfigurationRoot(CfgNode* root)
{
  configuration_root = root;
}

void declareConfiguration(CfgNode* root)
{
  const int f = CFG_FLAGS;
  root->declareNode(CFG_NODE, QString(), f);
  root->declareUInt(CFG_TAB_WIDTH, QString(), 1, 32, 4, 1, f);
  root->declareBool(CFG_SHOW_TABS, QString(), false, f);
  root->declareNode(CFG_EDITOR_DIALOG, QStringLiteral("node: editor dialog"), f);
  root->declareIntArray(CFG_EDITOR_DIALOG_SIZE, QStringLiteral("node: current editor size"), 0, INT_MAX, {500, 0}, 1,
                        f);
  root->declareDouble(CFG_EDITOR_DIALOG_SPLITTER, QStringLiteral("editor dialog: current splitter position"), 0, 1,
                      0.75, 0.1, 2, f);
  root->declareNode(CFG_SOURCE_EDITOR, QStringLiteral("Source Editor"), f);
  root->declareBool(CFG_HIDE_WHEN_RECORDING, QStringLiteral("hide editor when recording"), true, f);
  root->declareDouble(CFG_SOURCE_EDITOR_SPLITTER, QStringLiteral("editor: current splitter position"), 0, 1, 0.75, 0.1,
                      2, f);
  root->declareNode(CFG_EXPORT, QStringLiteral("node: export"), f);
  root->declareStringVector(CFG_EXPORT_EXPORTED_NAMES, QStringLiteral("export: exported names"), QStringList(), f);
  root->declareNode(CFG_BREAK_DIALOG, QStringLiteral("node: break dialog"), f);
  root->declareUnitValue(CFG_BREAK_DIALOG_TIMEOUT, translate("MSysScript_cfg", "Timeout", "id=10153"), uTime, 1,
                         MAX_DOUBLE, 10, 1, 1, f);
  root->declareNode(CFG_DIALOG_EDITOR, QStringLiteral("Dialog editor"), f);
  root->declareInt(CFG_DIALOG_EDITOR_WIDTH, QStringLiteral("Dialog editor width"), -1, INT_MAX, -1, 1, f);
  root->declareInt(CFG_DIALOG_EDITOR_HEIGHT, QStringLiteral("Dialog editor height"), -1, INT_MAX, -1, 1, f);
  root->declareDoubleArray(CFG_DIALOG_EDITOR_SPLITTER_POSITION, QStringLiteral("Dialog editor splitter position"), 0, 1,
                           0, 1, 2, 3, true, f);

  root->declareNode(CFG_NUMBER_WIDGET, QStringLiteral("Number widget"), f);
  root->declareDouble(CFG_NUMBER_WIDGET_DEFAULT, QStringLiteral("Number widget: Default"), -MAX_DOUBLE, MAX_DOUBLE, 0,
                      0.1, 2, f);
  root->declareDouble(CFG_NUMBER_WIDGET_MINIMUM, QStringLiteral("Number widget: Minimum"), -MAX_DOUBLE, MAX_DOUBLE, 0,
                      0.1, 2, f);
  root->declareDouble(CFG_NUMBER_WIDGET_MAXIMUM, QStringLiteral("Number widget: Maximum"), -MAX_DOUBLE, MAX_DOUBLE,
                      1000, 0.1, 2, f);
  root->declareInt(CFG_NUMBER_WIDGET_PRECISION, QStringLiteral("Number widget: Precision"), 0, 100, 2, 1, f);

  // Doubles with two decimals although the widget edits integers: kept like the number widget's.
  root->declareNode(CFG_INTEGER_WIDGET, QStringLiteral("Integer widget"), f);
  root->declareDouble(CFG_INTEGER_WIDGET_DEFAULT, QStringLiteral("Integer widget: Default"), -MAX_DOUBLE, MAX_DOUBLE, 0,
                      0.1, 2, f);
  root->declareDouble(CFG_INTEGER_WIDGET_MINIMUM, QStringLiteral("Integer widget: Minimum"), -MAX_DOUBLE, MAX_DOUBLE, 0,
                      0.1, 2, f);
  root->declareDouble(CFG_INTEGER_WIDGET_MAXIMUM, QStringLiteral("Integer widget: Maximum"), -MAX_DOUBLE, MAX_DOUBLE,
                      1000, 0.1, 2, f);

  root->declareNode(CFG_SLIDER_WIDGET, QStringLiteral("Slider widget"), f);
  root->declareDouble(CFG_SLIDER_WIDGET_DEFAULT, QStringLiteral("Slider widget: Default"), -MAX_DOUBLE, MAX_DOUBLE, 0,
                      0.1, 2, f);
  root->declareDouble(CFG_SLIDER_WIDGET_MINIMUM, QStringLiteral("Slider widget: Minimum"), -MAX_DOUBLE, MAX_DOUBLE, 0,
                      0.1, 2, f);
  root->declareDouble(CFG_SLIDER_WIDGET_MAXIMUM, QStringLiteral("Slider widget: Maximum"), -MAX_DOUBLE, MAX_DOUBLE, 100,
                      0.1, 2, f);
  root->declareInt(CFG_SLIDER_WIDGET_PRECISION, QStringLiteral("Slider widget: Precision"), 0, 100, 2, 1, f);
  root->declareDouble(CFG_SLIDER_WIDGET_STEP, QStringLiteral("Slider widget: Step"), -MAX_DOUBLE, MAX_DOUBLE, 1, 1, 2,
                      f);
  root->declareDouble(CFG_SLIDER_WIDGET_TICK_INTERVAL, QStringLiteral("Slider widget: Tick interval"), -MAX_DOUBLE,
                      MAX_DOUBLE, 10, 1, 2, f);
}

void declareTemplateConfiguration(CfgNode* root)
{
  const int f = CFG_FLAGS;
  root->getCfg()->registerPage(CFG_PAGE_TEMPLATES, translate("MSysScript_cfg", "Script dialogs", "id=30496"));

  root->declareNode(CFG_SELECT_TEMPLATE, QStringLiteral("Select script dialog template"), f);
  root->declareChoice(CFG_SELECT_TEMPLATE_COMMAND_MODE, QStringLiteral("Script dialog command mode"),
                      {QStringLiteral("Execute"), QStringLiteral("Create/Show"), QStringLiteral("Open/Close")}, 0, f);

  root->declareNode(CFG_UPDATE_SCRIPT_DIALOG, QStringLiteral("Update script dialog"), f);
  root->declareInt(CFG_UPDATE_SCRIPT_DIALOG_WIDTH, QStringLiteral("Update script dialog: Width"), -1, INT_MAX, 640, 1,
                   f);
  root->declareInt(CFG_UPDATE_SCRIPT_DIALOG_HEIGHT, QStringLiteral("Update script dialog: Height"), -1, INT_MAX, 480, 1,
                   f);
  root->declareDouble(CFG_UPDATE_SCRIPT_DIALOG_SPLITTER, QStringLiteral("Update script dialog: Splitter position"), 0,
                      1, 0.5, 0.1, 1, f);
  root->declareBool(CFG_UPDATE_SCRIPT_DIALOG_BACKUP, QStringLiteral("Update script dialog: Backup original script"),
                    true, f);

  root->declareNode(CFG_TEMPLATE_DATABASE, QStringLiteral("script dialog template database"), f);
  root->declareStringVector(CFG_TEMPLATE_DATABASE_INVISIBLE, QString(), QStringList(), f);

  root->declareNode(CFG_LIST_EDITOR_DIALOG, QStringLiteral("List editor dialog"), f);
  root->declareInt(CFG_LIST_EDITOR_DIALOG_WIDTH, QStringLiteral("List editor dialog: Width"), -1, INT_MAX, -1, 1, f);
  root->declareInt(CFG_LIST_EDITOR_DIALOG_HEIGHT, QStringLiteral("List editor dialog: Height"), -1, INT_MAX, -1, 1, f);
}

}  // namespace Vel::MSysScript
