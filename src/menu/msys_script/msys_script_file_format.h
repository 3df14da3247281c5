#pragma once

#include <QByteArray>
#include <QString>

namespace Vel::MSysScript {

// How a script file is laid out in bytes, so that saving gives back what was read: its encoding
// (decided as Python decides it: a UTF-8 byte-order mark, else a coding declaration in the first
// two lines, else UTF-8), its line endings and its byte-order mark.
struct ScriptFileFormat
{
  QByteArray encoding = "utf-8";  // as Python normalises the name
  QByteArray line_ending = "\n";
  bool bom = false;

  // The text of `bytes` with line feeds only. False (the reason, with the line, in `error`) when
  // the bytes are not valid in their encoding: nothing is replaced silently.
  static bool decode(const QByteArray& bytes, QString& text, ScriptFileFormat& format, QString& error);
  // The bytes of `text` in this format; the encoding is the one the text itself declares (else
  // UTF-8), as Python will read it. False with the reason when a character cannot be written.
  bool encode(const QString& text, QByteArray& bytes, QString& error) const;
  // The encoding a coding declaration in the first two lines names, normalised; empty if none.
  static QByteArray declaredEncoding(const QByteArray& head);
};

}  // namespace Vel::MSysScript
