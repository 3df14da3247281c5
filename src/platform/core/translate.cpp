#include "core/translate.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QTranslator>

namespace Vel {
namespace {
QString& language()
{
  static QString name;
  return name;
}
}  // namespace

QString Translator::getLanguage()
{
  return language().isEmpty() ? QLocale().name() : language();
}

void Translator::setLanguage(const QString& name)
{
  language() = name;
}

QString translate(const char* context, const char* text, const char* key)
{
  return QCoreApplication::translate(context, text, key);
}

QStringList translationFolders()
{
  QStringList folders;
  const QString env = qEnvironmentVariable("ZUT_TRANSLATIONS");
  if (!env.isEmpty())
    folders << env.split(QLatin1Char(':'), Qt::SkipEmptyParts);
  if (QCoreApplication::instance())
    folders
        << QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(QStringLiteral("../share/zut/translations"));
  return folders;
}

bool installTranslator(const QString& name)
{
  if (!QCoreApplication::instance())
    return false;
  for (const QString& folder : translationFolders()) {
    // Owned by the application object: catalogues stay installed for the process lifetime.
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(QLocale(), name, QStringLiteral("_"), folder)) {
      QCoreApplication::installTranslator(translator);
      Translator::setLanguage(translator->language().replace(QLatin1Char('-'), QLatin1Char('_')));
      return true;
    }
    delete translator;
  }
  return false;
}

}  // namespace Vel
