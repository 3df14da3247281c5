#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

#include "core/error_log.h"
#include "gscript/script_database.h"

namespace Vel::MSysScript {

// One script in a ".scriptar" archive: its text byte for byte, its metadata and icon, and its
// folder as part of its file name.
struct ArchivedScript
{
  QString file_name;
  QByteArray code;
  GScript::ScriptMetadata metadata;
  QByteArray icon;
};

// The archive: a first line "ZUT-SCRIPT-ARCHIVE 1", then a JSON document that lists the
// scripts with their bytes in base64 and a SHA-256 of each text and icon, so that a damaged or
// cut-off archive is recognised before anything is written.
class ScriptArchive
{
public:
  static QByteArray write(const std::vector<ArchivedScript>& scripts);
  // False (reason in `log`) for anything that is not a complete, intact archive.
  static bool read(const QByteArray& bytes, std::vector<ArchivedScript>& scripts, ErrorLog& log);
};

}  // namespace Vel::MSysScript
