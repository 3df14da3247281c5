#include "menu/msys_script/msys_dialog_templates.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QResource>

#include <map>

#include "cfg/cfg.h"
#include "core/error_log.h"
#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_config.h"
#include "menu/msys_script/msys_error_codes.h"

// The resource's registration function, generated from dialog_templates.qrc.
int qInitResources_dialog_templates();

namespace Vel::MSysScript {

namespace {

const QString RESOURCE_FOLDER = QStringLiteral(":/VelMSysScript/dialog_templates");

[[noreturn]] void failDatabase(const QString& detail)
{
  failCommand(ERR_TEMPLATE_DATABASE, detail);
}

void collect(const QString& folder, const QString& origin, std::map<QString, DialogTemplate>& found)
{
  const QDir dir(folder);
  if (!dir.exists())
    return;
  if (!QFileInfo(folder).isReadable())
    failDatabase(errorText("The folder \"%1\" cannot be read.").arg(QDir::toNativeSeparators(folder)));
  const QString suffix = QString::fromLatin1(DialogTemplateDatabase::SUFFIX);
  for (const QFileInfo& file : dir.entryInfoList({QLatin1Char('*') + suffix}, QDir::Files, QDir::Name)) {
    const QString name = file.fileName().chopped(suffix.size());
    found[name] = {name, origin, file.filePath()};
  }
}

}  // namespace

void DialogTemplateDatabase::registerResource()
{
  qInitResources_dialog_templates();
}

QString DialogTemplateDatabase::installationFolder()
{
  const QString base = QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QDir::currentPath();
  return QDir::cleanPath(base + QStringLiteral("/../share/zut/dialog_templates"));
}

QString DialogTemplateDatabase::userFolder()
{
  QString base = qEnvironmentVariable("XDG_DATA_HOME");
  if (base.isEmpty())
    base = QDir::homePath() + QStringLiteral("/.local/share");
  return base + QStringLiteral("/zut/dialog_templates");
}

std::vector<DialogTemplate> DialogTemplateDatabase::list()
{
  std::map<QString, DialogTemplate> found;
  collect(RESOURCE_FOLDER, QStringLiteral("module"), found);
  collect(installationFolder(), QStringLiteral("installation"), found);
  collect(userFolder(), QStringLiteral("user"), found);
  QStringList hidden;
  if (configurationRoot())
    hidden = configurationRoot()->getStringVector(QString::fromLatin1(CFG_TEMPLATE_DATABASE_INVISIBLE));
  std::vector<DialogTemplate> templates;
  for (const auto& [name, entry] : found)
    if (!hidden.contains(name))
      templates.push_back(entry);
  return templates;
}

QString DialogTemplateDatabase::read(const QString& name)
{
  for (const DialogTemplate& entry : list()) {
    if (entry.name != name)
      continue;
    QFile file(entry.path);
    if (!file.open(QIODevice::ReadOnly))
      failDatabase(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(entry.path), file.errorString()));
    return QString::fromUtf8(file.readAll());
  }
  failDatabase(errorText("There is no dialog template \"%1\".").arg(name));
}

}  // namespace Vel::MSysScript
