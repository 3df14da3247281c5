#include "core/translate.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QTranslator>

#include <vector>

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

namespace {
// Catalogues stay for the process lifetime, across a change of the application object; never
// destroyed, as text may be translated until the very end.
std::vector<QTranslator*>& installedTranslators()
{
  static auto* translators = new std::vector<QTranslator*>;
  return *translators;
}
}  // namespace

void reinstallTranslators()
{
  for (QTranslator* translator : installedTranslators())
    QCoreApplication::installTranslator(translator);
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
    auto* translator = new QTranslator;
    if (translator->load(QLocale(), name, QStringLiteral("_"), folder)) {
      installedTranslators().push_back(translator);
      QCoreApplication::installTranslator(translator);
      Translator::setLanguage(translator->language().replace(QLatin1Char('-'), QLatin1Char('_')));
      return true;
    }
    delete translator;
  }
  return false;
}

}  // namespace Vel
