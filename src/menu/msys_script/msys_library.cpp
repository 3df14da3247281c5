#include "menu/msys_script/msys_library.h"

#include <QCoreApplication>
#include <QDate>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QObject>
#include <QPointer>

#include "core/color.h"
#include "core/prog_error.h"
#include "core/translate.h"
#include "gapp/app_status_manager.h"
#include "gscript/script_database.h"
#include "gscript/gui_handler.h"
#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_cmd_delay.h"
#include "menu/msys_script/msys_cmd_dialog.h"
#include "menu/msys_script/msys_cmd_editor.h"
#include "menu/msys_script/msys_cmd_execute.h"
#include "menu/msys_script/msys_cmd_export_archive.h"
#include "menu/msys_script/msys_cmd_export_script.h"
#include "menu/msys_script/msys_cmd_test_timeout.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_dialog_answers.h"
#include "menu/msys_script/msys_dialog_handles.h"
#include "menu/msys_script/msys_dialog_templates.h"
#include "menu/msys_script/msys_dialog_definition.h"
#include "menu/msys_script/msys_dialog_widgets.h"
#include "menu/msys_script/msys_dlg_break.h"
#include "menu/msys_script/msys_dlg_user_defined.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_exit_notifier.h"
#include "menu/msys_script/msys_python_dump.h"
#include "menu/msys_script/msys_python_highlighter.h"
#include "menu/msys_script/msys_python_script_creator.h"
#include "menu/msys_script/msys_python_script_database.h"
#include "menu/msys_script/msys_script_menu_provider.h"
#include "menu/msys_script/msys_script_update.h"

namespace Vel::MSysScript {
namespace {

// The object through which GUI-test automation finds the module's dialogs.
QPointer<QObject> squish_proxy;

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

void createCommands()
{
  // Each command registers itself with the host's container, which owns it from now on.
  new DelayCommand;
  new EditorCommand;
  new ExecuteScriptCommand;
  new ExecutePythonCodeCommand;
  new ImportScriptCommand;
  new ExportScriptCommand;
  new ImportScriptArchiveCommand;
  new ExportScriptArchiveCommand;
  new SetTestTimeoutCommand;
  new CreateDialogCommand;
  new ExecuteDialogCommand;
  new ShowDialogCommand;
  new OpenDialogCommand;
  new CloseDialogCommand;
}

}  // namespace

extern "C" {

void InitLibrary(Vel::CfgNode* root)
{
  guarded("InitLibrary", [root] {
    VEL_ASSERT(root);
    installTranslator(QStringLiteral("VelMSysScript"));
    Color::registerMetaType();
    createCommands();
    declareHandleTypes();
    DialogTemplateDatabase::registerResource();
    setConfigurationRoot(root);
    declareConfiguration(root);
    declareTemplateConfiguration(root);
    registerErrorCodes();
    installDatabaseImportHandler();
    GScript::SafePoints::setObserver(&BreakDialogObserver::getInstance());
  });
}

void CloseLibrary()
{
  // Commands and configuration items belong to the host once registered.
}

void InitDefaults()
{
  guarded("InitDefaults", [] {
    GApp::AppStatusManager::registerExitNotifier(&ExitNotifier::getInstance());
    ScriptSpecialMenuProvider::initialize();
    if (!squish_proxy) {
      squish_proxy = new QObject(QCoreApplication::instance());
      squish_proxy->setObjectName(QStringLiteral("SquishProxy"));
    }
    DialogRegistry::initialize();
    GScript::setDialogAnswersHandler([](const QVariantList& answers) {
      DialogAnswers::loadList(QJsonArray::fromVariantList(answers), QStringLiteral("zut.answer_dialogs()"));
    });
  });
}

void CloseDefaults()
{
  guarded("CloseDefaults", [] {
    ScriptSpecialMenuProvider::deinitialize();
    GScript::setDialogAnswersHandler(nullptr);
    GApp::AppStatusManager::unregisterExitNotifier(&ExitNotifier::getInstance());
  });
}

void InitScriptDatabase()
{
  guarded("InitScriptDatabase", [] {
    PythonScriptDatabase::getDatabase(false);
    PythonScriptDatabase::releaseDatabase();
  });
}

void CloseScriptDatabase() {}

void UpdateRegisteredCommands()
{
  // The script commands follow the database, and the editors' command names follow both.
  guarded("UpdateRegisteredCommands", [] {
    DatabaseLock database;
    if (database)
      database->getCreator()->update(database.get());
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

GApp::CommandParameters* CreateParameterDelay(double seconds)
{
  auto* parameters = new GApp::CommandParameters;
  parameters->set(QStringLiteral("time"), seconds);
  return parameters;
}

char* DialogTemplates(const char* name, int* faulty)
{
  char* result = nullptr;
  guarded("DialogTemplates", [&] {
    QString output;
    *faulty = 0;
    try {
      if (name && *name) {
        output = DialogTemplateDatabase::read(QString::fromUtf8(name));
      } else {
        for (const DialogTemplate& entry : DialogTemplateDatabase::list())
          output += QStringLiteral("%1\t%2\t%3\n").arg(entry.name, entry.origin, entry.path);
      }
    } catch (const GApp::CommandError& error) {
      *faulty = 1;
      output = error.getText();
    }
    result = qstrdup(output.toUtf8().constData());
  });
  return result;
}

int UpdateScripts(const char* const* files, int count, int dry_run, void (*out)(const char*), void (*err)(const char*))
{
  int status = -1;
  guarded("UpdateScripts", [&] {
    QStringList paths;
    for (int i = 0; i < count; ++i)
      paths << QString::fromLocal8Bit(files[i]);
    const auto say = [](void (*stream)(const char*), const QString& line) {
      stream((line + QLatin1Char('\n')).toUtf8().constData());
    };
    status = 0;
    for (const FileUpdate& update : updateScripts(paths, dry_run != 0, backupWanted(), UpdateRules::fromCommands())) {
      for (const ScriptChange& change : update.changes)
        say(out,
            QStringLiteral("%1:%2: %3 -> %4").arg(update.file).arg(change.line).arg(change.old_text, change.new_text));
      for (const QString& problem : update.problems)
        say(err, QStringLiteral("%1: warning: %2").arg(update.file, problem));
      if (!update.backup.isEmpty())
        say(err, QStringLiteral("%1: the original is kept as %2").arg(update.file, update.backup));
      if (!update.error_code.isEmpty()) {
        status = 1;
        say(err,
            QStringLiteral("%1: %2").arg(update.file, GApp::CommandError(update.error_code, update.log).getText()));
      }
    }
  });
  return status;
}

void FreeAnalysis(char* analysis)
{
  delete[] analysis;
}

}  // extern "C"
}  // namespace Vel::MSysScript
