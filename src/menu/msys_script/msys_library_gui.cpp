// The module's GUI half: the exported functions of the library that is loaded with the windows,
// and what it installs for the rest of the module.

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>

#include "gapp/app_status_manager.h"
#include "gapp/command_container.h"
#include "gscript/safe_points.h"
#include "gscript/script_database.h"
#include "menu/msys_script/msys_cmd_dialog_run.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_dialog_answers.h"
#include "menu/msys_script/msys_dialog_definition.h"
#include "menu/msys_script/msys_dialog_widgets.h"
#include "menu/msys_script/msys_dlg_break.h"
#include "menu/msys_script/msys_dlg_script_editor.h"
#include "menu/msys_script/msys_dlg_user_defined.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_exit_notifier.h"
#include "menu/msys_script/msys_gui_half.h"
#include "menu/msys_script/msys_library.h"
#include "menu/msys_script/msys_python_dump.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_script_database.h"
#include "menu/msys_script/msys_script_menu_provider.h"

namespace Vel::MSysScript {

ScriptEditorDialog* EditorCommand::getDialog() const
{
  return qobject_cast<ScriptEditorDialog*>(_dialog.data());
}

namespace {

// The object through which GUI-test automation finds the module's dialogs.
QPointer<QObject> squish_proxy;

QVariant runEditorCommand(const GApp::CommandParameters& parameters)
{
  auto* command = dynamic_cast<EditorCommand*>(
      GApp::CommandContainer::getInstance().getCommand(QStringLiteral("sys.show_script_editor")));
  if (!command)
    return QVariant();
  if (!command->hasDialog())
    command->setDialog(new ScriptEditorDialog);
  ScriptEditorDialog* dialog = command->getDialog();
  ErrorLog log;
  if (parameters.contains(QStringLiteral("file"))) {
    if (!dialog->openFile(getArgument<QString>(parameters, QStringLiteral("file")), log))
      throw GApp::CommandError(QString::fromLatin1(ERR_LOAD_SCRIPT), log);
  } else if (!dialog->isRecording() && !dialog->isModified() && !dialog->isBusy()) {
    // An editor that records, runs or holds unsaved changes is shown as it is.
    DatabaseLock database;
    const GScript::Script* current = database ? database->getCurrentScript() : nullptr;
    if (current && !dialog->openDatabaseScript(current->getFileName(), log))
      throw GApp::CommandError(QString::fromLatin1(ERR_LOAD_SCRIPT), log);
  }
  dialog->show();
  dialog->raise();
  dialog->activateWindow();
  return QVariant();
}

QVariant execute(const QString& name, const GApp::CommandParameters& parameters)
{
  if (name == QLatin1String("sys.show_script_editor"))
    return runEditorCommand(parameters);
  return runDialogCommand(name, parameters);
}

// Installed as soon as the library is there: a command may need it before the host's InitGui.
const bool installed = [] {
  installGuiHalf({execute, [](const GScript::ScriptDatabase* database) { PythonHighlighter::update(database); },
                  [](const QVariantList& answers) {
                    DialogAnswers::loadList(QJsonArray::fromVariantList(answers), QStringLiteral("zut.answer_dialogs()"));
                  }});
  return true;
}();

}  // namespace

extern "C" {

void InitGui()
{
  guarded("InitGui", [] {
    GScript::SafePoints::setObserver(&BreakDialogObserver::getInstance());
    GApp::AppStatusManager::registerExitNotifier(&ExitNotifier::getInstance());
    ScriptSpecialMenuProvider::initialize();
    if (!squish_proxy) {
      squish_proxy = new QObject(QCoreApplication::instance());
      squish_proxy->setObjectName(QStringLiteral("SquishProxy"));
    }
    DialogRegistry::initialize();
    // The colouring learns the command names of the scripts that are there already.
    DatabaseLock database;
    if (database)
      PythonHighlighter::update(database.get());
  });
}

void CloseGui()
{
  guarded("CloseGui", [] {
    ScriptSpecialMenuProvider::deinitialize();
    GApp::AppStatusManager::unregisterExitNotifier(&ExitNotifier::getInstance());
    GScript::SafePoints::setObserver(nullptr);
  });
}

char* AnalyzePythonText(const char* what, const char* text, int json)
{
  char* result = nullptr;
  guarded("AnalyzePythonText", [&] {
    const QString source = QString::fromUtf8(text);
    QString output;
    if (qstrcmp(what, "blocks") == 0) {
      const auto blocks = findBlocks(source);
      output = json ? blocksToJson(blocks) : blocksToText(blocks);
    } else if (qstrcmp(what, "highlight") == 0) {
      DatabaseLock database;
      PythonHighlighter highlighter(nullptr, database.get());
      const auto runs = colourText(source, highlighter);
      output = json ? runsToJson(runs) : runsToText(runs);
    } else {
      return;
    }
    result = qstrdup(output.toUtf8().constData());
  });
  return result;
}

char* CheckDialogDefinition(const char* text, int normalize, int* faulty)
{
  char* result = nullptr;
  guarded("CheckDialogDefinition", [&] {
    QString output;
    std::unique_ptr<DialogDefinition> definition;
    const auto faults = DialogDefinition::check(QString::fromUtf8(text), &definition);
    for (const DialogDefinition::Fault& fault : faults)
      output += QStringLiteral("%1\t%2\n").arg(fault.line).arg(fault.message);
    *faulty = faults.empty() ? 0 : 1;
    if (!*faulty && normalize)
      output = definition->write();
    result = qstrdup(output.toUtf8().constData());
  });
  return result;
}

char* PrepareDialogAnswers(const char* answers, const char* record)
{
  char* result = nullptr;
  guarded("PrepareDialogAnswers", [&] {
    QString fault;
    try {
      if (answers && *answers)
        DialogAnswers::load(QString::fromLocal8Bit(answers));
      if (record && *record)
        DialogAnswers::record(QString::fromLocal8Bit(record));
    } catch (const GApp::CommandError& error) {
      fault = error.getText();
    }
    result = qstrdup(fault.toUtf8().constData());
  });
  return result;
}

char* UnusedDialogAnswers()
{
  char* result = nullptr;
  guarded("UnusedDialogAnswers", [&] {
    QString lines;
    for (const QString& line : DialogAnswers::getUnused())
      lines += line + QLatin1Char('\n');
    result = qstrdup(lines.toUtf8().constData());
  });
  return result;
}

namespace {

QString dumpText(const QJsonArray& elements)
{
  QString text;
  for (const QJsonValue& entry : elements) {
    const QJsonObject element = entry.toObject();
    const QJsonValue value = element.value(QStringLiteral("value"));
    text += QStringLiteral("%1,%2 %3x%4 %5 %6 = %7%8\n")
                .arg(element.value(QStringLiteral("row")).toInt())
                .arg(element.value(QStringLiteral("column")).toInt())
                .arg(element.value(QStringLiteral("row_span")).toInt())
                .arg(element.value(QStringLiteral("column_span")).toInt())
                .arg(element.value(QStringLiteral("type")).toString(), element.value(QStringLiteral("name")).toString(),
                     answerText(value),
                     element.value(QStringLiteral("enabled")).toBool() ? QString() : QStringLiteral(" (disabled)"));
  }
  return text;
}

}  // namespace

char* DescribeDialog(const char* text, const char* screenshot, int json, int* faulty)
{
  char* result = nullptr;
  guarded("DescribeDialog", [&] {
    QString output;
    *faulty = 0;
    try {
      UserDefinedDialog dialog(QString::fromUtf8(text));
      dialog.show();
      // As it first appears: laid out, placed and polished.
      for (int round = 0; round < 3; ++round)
        QCoreApplication::processEvents();
      if (screenshot && *screenshot && !dialog.grab().save(QString::fromLocal8Bit(screenshot)))
        failCommand(ERR_SAVE_FILE, errorText("Cannot open file for writing: %1").arg(QString::fromLocal8Bit(screenshot)));
      QJsonArray elements;
      for (const DialogDefinition::Cell* cell : dialog.getElementCells())
        elements.append(QJsonObject{{QStringLiteral("row"), cell->row},
                                    {QStringLiteral("column"), cell->column},
                                    {QStringLiteral("row_span"), cell->row_span},
                                    {QStringLiteral("column_span"), cell->column_span},
                                    {QStringLiteral("type"), cell->widget->getCreatorId()},
                                    {QStringLiteral("name"), cell->widget->getName()},
                                    {QStringLiteral("value"), answerValue(cell->widget->getValue())},
                                    {QStringLiteral("enabled"), cell->widget->isEnabled()}});
      dialog.closeWithResult(std::nullopt);
      output = json ? QString::fromUtf8(QJsonDocument(elements).toJson()) : dumpText(elements);
    } catch (const Xml::ParseException& error) {
      *faulty = 1;
      output = error.getLine() < 0 ? error.getParseMessage()
                                   : QStringLiteral("%1: %2").arg(error.getLine()).arg(error.getParseMessage());
    } catch (const GApp::CommandError& error) {
      *faulty = 1;
      output = error.getText();
    }
    result = qstrdup(output.toUtf8().constData());
  });
  return result;
}

}  // extern "C"
}  // namespace Vel::MSysScript
