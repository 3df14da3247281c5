#include "menu/msys_script/msys_script_archive.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <set>

#include "menu/msys_script/msys_cmd_export_script.h"

namespace Vel::MSysScript {
namespace {

const QByteArray MAGIC = "ZUT-SCRIPT-ARCHIVE 1\n";

QString sha256(const QByteArray& bytes)
{
  return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

// Base64 that must decode completely; a single changed character is caught by the checksum.
bool decode(const QJsonValue& value, QByteArray& out)
{
  if (!value.isString())
    return false;
  const auto result =
      QByteArray::fromBase64Encoding(value.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
  if (!result)
    return false;
  out = *result;
  return true;
}

}  // namespace

QByteArray ScriptArchive::write(const std::vector<ArchivedScript>& scripts)
{
  QJsonArray list;
  for (const ArchivedScript& script : scripts) {
    QJsonObject entry{{QStringLiteral("file_name"), script.file_name},
                      {QStringLiteral("code"), QString::fromLatin1(script.code.toBase64())},
                      {QStringLiteral("code_sha256"), sha256(script.code)},
                      {QStringLiteral("display_name"), script.metadata.display_name},
                      {QStringLiteral("show_in_menu"), script.metadata.show_in_menu},
                      {QStringLiteral("icon_name"), script.metadata.icon}};
    if (!script.metadata.replaces.isEmpty())
      entry.insert(QStringLiteral("replaces"), QJsonArray::fromStringList(script.metadata.replaces));
    if (!script.icon.isEmpty()) {
      entry.insert(QStringLiteral("icon"), QString::fromLatin1(script.icon.toBase64()));
      entry.insert(QStringLiteral("icon_sha256"), sha256(script.icon));
    }
    list.append(entry);
  }
  const QJsonObject document{{QStringLiteral("scripts"), list}, {QStringLiteral("count"), int(scripts.size())}};
  return MAGIC + QJsonDocument(document).toJson(QJsonDocument::Indented);
}

bool ScriptArchive::read(const QByteArray& bytes, std::vector<ArchivedScript>& scripts, ErrorLog& log)
{
  if (!bytes.startsWith(MAGIC)) {
    log.addLine(QStringLiteral("The file is not a script archive."));
    return false;
  }
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(bytes.mid(MAGIC.size()), &error);
  if (error.error != QJsonParseError::NoError || !document.isObject()) {
    log.addLine(QStringLiteral("The script archive is damaged or incomplete (%1 at byte %2).")
                    .arg(error.errorString())
                    .arg(MAGIC.size() + error.offset));
    return false;
  }
  const QJsonObject root = document.object();
  const QJsonArray list = root.value(QStringLiteral("scripts")).toArray();
  if (root.value(QStringLiteral("count")).toInt(-1) != list.size()) {
    log.addLine(QStringLiteral("The script archive is damaged: its list of scripts is incomplete."));
    return false;
  }
  std::vector<ArchivedScript> result;
  std::set<QString> seen;
  for (int i = 0; i < list.size(); ++i) {
    const QJsonObject entry = list[i].toObject();
    ArchivedScript script;
    script.file_name = entry.value(QStringLiteral("file_name")).toString();
    script.metadata.display_name = entry.value(QStringLiteral("display_name")).toString();
    script.metadata.show_in_menu = entry.value(QStringLiteral("show_in_menu")).toBool(true);
    script.metadata.icon = entry.value(QStringLiteral("icon_name")).toString();
    for (const QJsonValue& name : entry.value(QStringLiteral("replaces")).toArray())
      if (name.isString())
        script.metadata.replaces << name.toString();
    const bool has_icon = entry.contains(QStringLiteral("icon"));
    // Names are checked before anything is written: one that the file system would cut short
    // (a NUL) or the database would never list (a leading dot) refuses the whole archive.
    QString reason;
    if (!isStorableScriptName(script.file_name, reason) ||
        (!script.metadata.icon.isEmpty() && !isStorableIconName(script.metadata.icon, reason))) {
      log.addLine(QStringLiteral("The script archive cannot be imported: entry %1: %2").arg(i + 1).arg(reason));
      return false;
    }
    if (!seen.insert(script.file_name).second || !decode(entry.value(QStringLiteral("code")), script.code) ||
        entry.value(QStringLiteral("code_sha256")).toString() != sha256(script.code) ||
        (has_icon && (!decode(entry.value(QStringLiteral("icon")), script.icon) ||
                      entry.value(QStringLiteral("icon_sha256")).toString() != sha256(script.icon)))) {
      log.addLine(QStringLiteral("The script archive is damaged: entry %1 ('%2') is not intact.")
                      .arg(i + 1)
                      .arg(script.file_name));
      return false;
    }
    result.push_back(std::move(script));
  }
  scripts = std::move(result);
  return true;
}

}  // namespace Vel::MSysScript
