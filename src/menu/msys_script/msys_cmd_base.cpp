#include "menu/msys_script/msys_cmd_base.h"

#include "core/translate.h"
#include "gapp/interaction.h"

namespace Vel::MSysScript {

QString CatalogueText::toString() const
{
  if (!text)
    return QString();
  return key ? translate(context, text, key) : QString::fromUtf8(text);
}

MSysCommand::MSysCommand(const QString& name, CatalogueText title,
                         const GApp::CommandMetaInfo::ArgumentTypes& arguments, CatalogueText menu_title)
    : GApp::Command(name), _title(title), _menu_title(menu_title)
{
  getMetaInfo().setArgumentTypes(arguments);
}

void failCommand(const char* code, const ErrorLog& log)
{
  throw GApp::CommandError(QString::fromLatin1(code), log);
}

void failCommand(const char* code, const QString& line)
{
  failCommand(code, ErrorLog(line));
}

bool askForFile(GApp::CommandParameters& parameters, const QString& argument, const QString& title,
                const QString& filter, bool save)
{
  if (parameters.contains(argument) || !GApp::isInteractive())
    return true;
  const QString file =
      GApp::askFileNames(save ? GApp::FileQuestion::Save : GApp::FileQuestion::Open, title, filter).value(0);
  if (file.isEmpty())
    return false;
  parameters.set(argument, QVariant::fromValue(Parse::File(file)));
  return true;
}

QVariant getArgumentValue(const GApp::CommandParameters& parameters, const QString& name, int type_id)
{
  if (!parameters.contains(name))
    throw GApp::CommandError(QStringLiteral("command argument '%1' is missing").arg(name));
  const Trait value = parameters.get(name);
  QVariant converted;
  if (!value.convertTo(StageIdentifier::NO_STAGE, type_id, converted))
    throw GApp::CommandError(
        QStringLiteral("command argument '%1' of type '%2' cannot be converted to required type '%3'")
            .arg(name, GApp::CommandParameters::generateReadableTypeName(value.getTypeId()),
                 GApp::CommandParameters::generateReadableTypeName(type_id)));
  return converted;
}

}  // namespace Vel::MSysScript
