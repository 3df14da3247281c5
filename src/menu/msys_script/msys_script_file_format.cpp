#include "menu/msys_script/msys_script_file_format.h"

#include <QList>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QStringEncoder>
#include <QStringView>

namespace Vel::MSysScript {
namespace {

const QByteArray UTF8_BOM("\xEF\xBB\xBF");

// Python's own normalisation of the names it knows best, and the spellings of Latin-1 that
// the converter would not find.
QByteArray normalEncodingName(const QByteArray& name)
{
  const QByteArray e = name.left(12).toLower().replace('_', '-');
  if (e == "utf-8" || e.startsWith("utf-8-") || e == "utf8")
    return "utf-8";
  if (e == "latin-1" || e == "iso-8859-1" || e == "iso-latin-1" || e.startsWith("latin-1-") ||
      e.startsWith("iso-8859-1-") || e.startsWith("iso-latin-1-") || e == "latin1" || e == "l1" || e == "iso8859-1")
    return "iso-8859-1";
  return name;
}

QStringConverter::Flags converterFlags()
{
  // A byte-order mark is the format's business; a second one is text.
  return QStringConverter::Flag::ConvertInitialBom;
}

QString encodingTitle(const QByteArray& encoding)
{
  return encoding == "utf-8" ? QStringLiteral("UTF-8") : QString::fromLatin1(encoding);
}

}  // namespace

QByteArray ScriptFileFormat::declaredEncoding(const QByteArray& head)
{
  static const QRegularExpression declaration(QStringLiteral("^[ \\t\\f]*#.*?coding[:=][ \\t]*([-\\w.]+)"));
  static const QRegularExpression blank_or_comment(QStringLiteral("^[ \\t\\f]*(?:[#\\r\\n]|$)"));
  const QList<QByteArray> lines = head.left(4096).split('\n');
  for (int i = 0; i < qMin(2, int(lines.size())); ++i) {
    const QString line = QString::fromLatin1(lines[i]);
    const QRegularExpressionMatch match = declaration.match(line);
    if (match.hasMatch())
      return normalEncodingName(match.captured(1).toLatin1());
    // The second line counts only below a blank or comment line.
    if (!blank_or_comment.match(line).hasMatch())
      break;
  }
  return QByteArray();
}

bool ScriptFileFormat::decode(const QByteArray& bytes, QString& text, ScriptFileFormat& format, QString& error)
{
  ScriptFileFormat found;
  QByteArray body = bytes;
  if (body.startsWith(UTF8_BOM)) {
    found.bom = true;
    body.remove(0, UTF8_BOM.size());
  }
  const QByteArray declared = declaredEncoding(body);
  if (found.bom && !declared.isEmpty() && declared != "utf-8") {
    error = QStringLiteral("it begins with a UTF-8 byte-order mark but declares the encoding '%1'")
                .arg(QString::fromLatin1(declared));
    return false;
  }
  if (!declared.isEmpty())
    found.encoding = declared;
  QStringDecoder decoder(found.encoding.constData(), converterFlags());
  if (!decoder.isValid()) {
    error = QStringLiteral("the encoding '%1' that it declares is not known").arg(QString::fromLatin1(declared));
    return false;
  }
  QString decoded = decoder.decode(body);
  // What does not decode comes back different when written again: that is where it fails.
  QStringEncoder encoder(found.encoding.constData(), converterFlags());
  const QByteArray again = encoder.encode(decoded);
  if (decoder.hasError() || again != body) {
    qsizetype at = 0;
    while (at < body.size() && at < again.size() && body[at] == again[at])
      ++at;
    const int line = int(body.left(at).count('\n')) + 1;
    error = declared.isEmpty()
                ? QStringLiteral(
                      "line %1 is not valid UTF-8, and the file declares no other encoding (a first line "
                      "such as '# -*- coding: latin-1 -*-' names the encoding it is written in)")
                      .arg(line)
                : QStringLiteral("line %1 is not valid %2, the encoding the file declares")
                      .arg(line)
                      .arg(encodingTitle(found.encoding));
    return false;
  }
  const int break_at = int(decoded.indexOf(QRegularExpression(QStringLiteral("[\r\n]"))));
  if (break_at >= 0 && decoded[break_at] == QLatin1Char('\r'))
    found.line_ending = break_at + 1 < decoded.size() && decoded[break_at + 1] == QLatin1Char('\n') ? "\r\n" : "\r";
  decoded.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  decoded.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  text = decoded;
  format = found;
  return true;
}

bool ScriptFileFormat::encode(const QString& text, QByteArray& bytes, QString& error) const
{
  const QByteArray declared = declaredEncoding(text.left(4096).toUtf8());
  if (bom && !declared.isEmpty() && declared != "utf-8") {
    error = QStringLiteral("the file begins with a UTF-8 byte-order mark, so it cannot declare the encoding '%1'")
                .arg(QString::fromLatin1(declared));
    return false;
  }
  const QByteArray target = declared.isEmpty() ? QByteArray("utf-8") : declared;
  QStringEncoder encoder(target.constData(), converterFlags());
  if (!encoder.isValid()) {
    error = QStringLiteral("the encoding '%1' that the text declares is not known").arg(QString::fromLatin1(target));
    return false;
  }
  QString lines = text;
  if (line_ending != "\n")
    lines.replace(QLatin1Char('\n'), QString::fromLatin1(line_ending));
  QByteArray encoded = encoder.encode(lines);
  // What cannot be written comes back different: say where, rather than write a substitute.
  QStringDecoder decoder(target.constData(), converterFlags());
  const QString back = decoder.decode(encoded);
  if (encoder.hasError() || back != lines) {
    int at = 0;
    while (at < lines.size() && at < back.size() && lines[at] == back[at])
      ++at;
    const int line = int(QStringView(lines).left(at).count(QLatin1Char('\n'))) + 1;
    const char32_t code = at < lines.size() ? lines[at].unicode() : 0;
    error = QStringLiteral(
                "line %1: the character U+%2 cannot be written in %3 (the coding declaration names the "
                "file's encoding)")
                .arg(line)
                .arg(uint(code), 4, 16, QLatin1Char('0'))
                .arg(encodingTitle(target));
    return false;
  }
  bytes = bom ? UTF8_BOM + encoded : encoded;
  return true;
}

}  // namespace Vel::MSysScript
