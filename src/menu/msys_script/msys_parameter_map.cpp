#include "menu/msys_script/msys_parameter_map.h"

#include <QRegularExpression>
#include <QStringList>

#include <charconv>
#include <cmath>
#include <limits>

#include "gapp/trait.h"
#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {
namespace {

// Deeper values are refused before the reader's recursion can exhaust the stack.
constexpr int MAX_DEPTH = 200;

bool isIdentifierStart(QChar c)
{
  return c.isLetter() || c == QLatin1Char('_');
}
bool isIdentifierChar(QChar c)
{
  return c.isLetterOrNumber() || c == QLatin1Char('_');
}
bool isQuote(QChar c)
{
  return c == QLatin1Char('\'') || c == QLatin1Char('"');
}

class Reader
{
public:
  Reader(const QString& text, int first_line) : _text(text), _first_line(first_line) {}

  QString position(int at) const
  {
    int line = _first_line;
    int line_start = 0;
    for (int i = 0; i < at && i < _text.size(); ++i)
      if (_text[i] == QLatin1Char('\n')) {
        ++line;
        line_start = i + 1;
      }
    return QStringLiteral("line %1, column %2").arg(line).arg(at - line_start + 1);
  }
  [[noreturn]] void fail(int at, const QString& what) const
  {
    failCommand(ERR_PARSE_PARAMETERS, QStringLiteral("%1: %2").arg(position(at), what));
  }
  [[noreturn]] void expected(const QString& what) const { fail(_pos, QStringLiteral("expected %1").arg(what)); }

  QChar peek(int ahead = 0) const { return _pos + ahead < _text.size() ? _text[_pos + ahead] : QChar(); }
  bool atEnd() const { return _pos >= _text.size(); }
  bool at(const char* word) const { return QStringView(_text).mid(_pos).startsWith(QLatin1String(word)); }

  // Blanks and line continuations; inside brackets also line ends and comments.
  void skip(bool inside)
  {
    while (!atEnd()) {
      const QChar c = peek();
      if (c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\f')) {
        ++_pos;
      } else if (c == QLatin1Char('\\') && peek(1) == QLatin1Char('\n')) {
        _pos += 2;
      } else if (c == QLatin1Char('\\') && peek(1) == QLatin1Char('\r') && peek(2) == QLatin1Char('\n')) {
        _pos += 3;
      } else if (inside && (c == QLatin1Char('\n') || c == QLatin1Char('\r'))) {
        ++_pos;
      } else if (inside && c == QLatin1Char('#')) {
        skipComment();
      } else {
        return;
      }
    }
  }
  void skipComment()
  {
    while (!atEnd() && peek() != QLatin1Char('\n'))
      ++_pos;
  }

  QString identifier()
  {
    const int start = _pos;
    if (!isIdentifierStart(peek()))
      return QString();
    while (isIdentifierChar(peek()))
      ++_pos;
    return _text.mid(start, _pos - start);
  }

  // Optional "TARGET =" before the call: names, attributes and tuples of them.
  void target()
  {
    if (at("zut") && !isIdentifierChar(peek(3)))
      return;
    for (;;) {
      if (identifier().isEmpty())
        expected(QStringLiteral("'zut.script.' or 'zut.interactive.'"));
      skip(false);
      if (peek() == QLatin1Char('.') || peek() == QLatin1Char(',')) {
        ++_pos;
        skip(false);
        continue;
      }
      if (peek() != QLatin1Char('=') || peek(1) == QLatin1Char('='))
        expected(QStringLiteral("'=' after the assignment target"));
      ++_pos;
      skip(false);
      return;
    }
  }

  CommandCall call()
  {
    CommandCall result;
    result.begin = _pos;
    if (!at("zut") || isIdentifierChar(peek(3)))
      expected(QStringLiteral("'zut.script.' or 'zut.interactive.'"));
    _pos += 3;
    skip(false);
    if (peek() != QLatin1Char('.'))
      expected(QStringLiteral("'.script' or '.interactive' after 'zut'"));
    ++_pos;
    skip(false);
    const QString form = identifier();
    if (form != QLatin1String("script") && form != QLatin1String("interactive")) {
      _pos -= int(form.size());
      expected(QStringLiteral("'script' or 'interactive' after 'zut.'"));
    }
    result.interactive = form == QLatin1String("interactive");
    QStringList parts;
    skip(false);
    while (peek() == QLatin1Char('.')) {
      ++_pos;
      skip(false);
      if (parts.isEmpty())
        result.name_begin = _pos;
      const QString part = identifier();
      if (part.isEmpty())
        expected(QStringLiteral("a command name"));
      parts << part;
      result.name_end = _pos;
      skip(false);
    }
    if (parts.isEmpty())
      expected(QStringLiteral("'.' and a command name"));
    result.command = parts.join(QLatin1Char('.'));
    if (peek() != QLatin1Char('('))
      expected(QStringLiteral("'(' after the command name"));
    ++_pos;
    result.arguments_begin = _pos;
    for (;;) {
      skip(true);
      if (peek() == QLatin1Char(')'))
        break;
      CallArgument argument;
      argument.name_begin = _pos;
      argument.name = identifier();
      if (argument.name.isEmpty())
        expected(result.arguments.isEmpty() ? QStringLiteral("an argument name or ')'")
                                            : QStringLiteral("an argument name"));
      if (result.find(argument.name))
        fail(argument.name_begin, QStringLiteral("argument '%1' is given twice").arg(argument.name));
      skip(true);
      if (peek() != QLatin1Char('=') || peek(1) == QLatin1Char('='))
        expected(QStringLiteral("'=' after the argument name"));
      ++_pos;
      skip(true);
      argument.value_begin = _pos;
      if (_tolerant) {
        try {
          argument.value = value(0);
          argument.value_end = _pos;
          skip(true);
          if (peek() != QLatin1Char(',') && peek() != QLatin1Char(')'))
            expected(QStringLiteral("',' or ')'"));
        } catch (const GApp::CommandError&) {
          _pos = argument.value_begin;
          expression();
          argument.value = QVariant();
          argument.literal = false;
          argument.value_end = _pos;
          while (argument.value_end > argument.value_begin && _text[argument.value_end - 1].isSpace())
            --argument.value_end;
        }
      } else {
        argument.value = value(0);
        argument.value_end = _pos;
      }
      result.arguments << argument;
      skip(true);
      if (peek() == QLatin1Char(','))
        ++_pos;
      else if (peek() != QLatin1Char(')'))
        expected(QStringLiteral("',' or ')'"));
    }
    result.arguments_end = _pos;
    ++_pos;
    result.end = _pos;
    return result;
  }

  // Any expression, passed over up to the ',' or ')' that ends it.
  void expression()
  {
    int depth = 0;
    for (;;) {
      if (atEnd())
        expected(QStringLiteral("')'"));
      const QChar c = peek();
      if (stringStarts() && (_pos == 0 || !isIdentifierChar(_text[_pos - 1]))) {
        bool bytes = false;
        string(bytes, true);
        continue;
      }
      if (c == QLatin1Char('#')) {
        skipComment();
        continue;
      }
      if (c == QLatin1Char('(') || c == QLatin1Char('[') || c == QLatin1Char('{')) {
        ++depth;
      } else if (c == QLatin1Char(')') || c == QLatin1Char(']') || c == QLatin1Char('}')) {
        if (depth == 0)
          return;
        --depth;
      } else if (c == QLatin1Char(',') && depth == 0) {
        return;
      }
      ++_pos;
    }
  }

  // After the call: a comment, then nothing but blank and comment lines.
  void rest()
  {
    skip(true);
    if (!atEnd())
      expected(QStringLiteral("the end of the line"));
  }

  QVariant value(int depth)
  {
    if (depth > MAX_DEPTH)
      fail(_pos, QStringLiteral("values nested deeper than %1 levels are not read").arg(MAX_DEPTH));
    const QChar c = peek();
    if (c == QLatin1Char('['))
      return QVariant(sequence(QLatin1Char(']'), depth).first);
    if (c == QLatin1Char('(')) {
      auto [items, comma] = sequence(QLatin1Char(')'), depth);
      // A parenthesised value, not a tuple.
      if (items.size() == 1 && !comma)
        return items.first();
      return QVariant::fromValue(PythonTuple{items});
    }
    if (c == QLatin1Char('{'))
      return dictionary(depth);
    if (c == QLatin1Char('-') || c == QLatin1Char('+')) {
      ++_pos;
      skip(true);
      if (!peek().isDigit() && !(peek() == QLatin1Char('.') && peek(1).isDigit()))
        expected(QStringLiteral("a number after '%1'").arg(c));
      return number(c == QLatin1Char('-'));
    }
    if (c.isDigit() || (c == QLatin1Char('.') && peek(1).isDigit()))
      return number(false);
    if (stringStarts())
      return strings();
    const int start = _pos;
    const QString word = identifier();
    if (word == QLatin1String("True"))
      return QVariant(true);
    if (word == QLatin1String("False"))
      return QVariant(false);
    if (word == QLatin1String("None"))
      return QVariant();
    _pos = start;
    expected(QStringLiteral("a value (a number, a string, True, False, None, a list, a tuple or a dictionary)"));
  }

  std::pair<QVariantList, bool> sequence(QChar close, int depth)
  {
    ++_pos;
    QVariantList items;
    bool comma = false;
    for (;;) {
      skip(true);
      if (peek() == close)
        break;
      items << value(depth + 1);
      skip(true);
      if (peek() == QLatin1Char(',')) {
        ++_pos;
        comma = true;
      } else if (peek() != close) {
        expected(QStringLiteral("',' or '%1'").arg(close));
      }
    }
    ++_pos;
    return {items, comma};
  }

  QVariant dictionary(int depth)
  {
    ++_pos;
    QVariantMap map;
    for (;;) {
      skip(true);
      if (peek() == QLatin1Char('}'))
        break;
      const int key_at = _pos;
      if (!stringStarts())
        expected(QStringLiteral("a string key or '}'"));
      const QVariant key = strings();
      if (key.typeId() != QMetaType::QString)
        fail(key_at, QStringLiteral("expected a string key, not bytes"));
      skip(true);
      if (peek() != QLatin1Char(':'))
        expected(QStringLiteral("':' after the key"));
      ++_pos;
      skip(true);
      map.insert(key.toString(), value(depth + 1));
      skip(true);
      if (peek() == QLatin1Char(','))
        ++_pos;
      else if (peek() != QLatin1Char('}'))
        expected(QStringLiteral("',' or '}'"));
    }
    ++_pos;
    return map;
  }

  // Digits of a base with single underscores between them.
  void digits(int base, bool leading_underscore)
  {
    const int start = _pos;
    bool last_underscore = leading_underscore;
    bool any = false;
    for (;;) {
      const QChar c = peek();
      if (c == QLatin1Char('_')) {
        if (last_underscore || (!any && !leading_underscore))
          expected(QStringLiteral("a digit"));
        last_underscore = true;
      } else if (c.unicode() < 128 && c.isDigit() && c.digitValue() < base) {
        last_underscore = false;
        any = true;
      } else if (base == 16 && QStringLiteral("abcdefABCDEF").contains(c)) {
        last_underscore = false;
        any = true;
      } else {
        break;
      }
      ++_pos;
    }
    if (last_underscore || (!any && _pos == start && base != 10))
      expected(QStringLiteral("a digit"));
  }

  QVariant number(bool negative)
  {
    const int start = _pos;
    int base = 10;
    if (peek() == QLatin1Char('0')) {
      const QChar kind = peek(1).toLower();
      base = kind == QLatin1Char('x') ? 16 : kind == QLatin1Char('o') ? 8 : kind == QLatin1Char('b') ? 2 : 10;
    }
    bool is_float = false;
    if (base != 10) {
      _pos += 2;
      digits(base, true);
    } else {
      if (peek().isDigit())
        digits(10, false);
      if (peek() == QLatin1Char('.')) {
        is_float = true;
        ++_pos;
        if (peek().isDigit())
          digits(10, false);
      }
      if (peek() == QLatin1Char('e') || peek() == QLatin1Char('E')) {
        is_float = true;
        ++_pos;
        if (peek() == QLatin1Char('+') || peek() == QLatin1Char('-'))
          ++_pos;
        if (!peek().isDigit())
          expected(QStringLiteral("the digits of the exponent"));
        digits(10, false);
      }
    }
    if (peek() == QLatin1Char('j') || peek() == QLatin1Char('J'))
      fail(_pos, QStringLiteral("complex numbers are not read"));
    if (isIdentifierChar(peek()) || peek() == QLatin1Char('.'))
      expected(QStringLiteral("the end of the number"));
    QString digits_text = _text.mid(start, _pos - start).remove(QLatin1Char('_'));
    if (is_float) {
      const QByteArray bytes = digits_text.toLatin1();
      double value = 0;
      const auto [end, error] = std::from_chars(bytes.constData(), bytes.constData() + bytes.size(), value);
      if (error == std::errc::result_out_of_range) {
        // As Python reads them: too large is infinite, too small is zero.
        const QString exponent = digits_text.section(QRegularExpression(QStringLiteral("[eE]")), 1);
        value = exponent.startsWith(QLatin1Char('-')) ? 0.0 : std::numeric_limits<double>::infinity();
      } else if (error != std::errc() || end != bytes.constData() + bytes.size()) {
        fail(start, QStringLiteral("expected a number"));
      }
      return QVariant(negative ? -value : value);
    }
    if (base == 10 && digits_text.size() > 1 && digits_text.startsWith(QLatin1Char('0')) &&
        digits_text.count(QLatin1Char('0')) != digits_text.size())
      fail(start, QStringLiteral("leading zeros in a decimal integer are not allowed; use 0o for octal"));
    bool ok = false;
    const qulonglong magnitude = (base == 10 ? digits_text : digits_text.mid(2)).toULongLong(&ok, base);
    const qulonglong limit = qulonglong(std::numeric_limits<qlonglong>::max()) + (negative ? 1 : 0);
    if (!ok || magnitude > limit)
      fail(start, QStringLiteral("the integer does not fit in 64 bits"));
    return QVariant(negative ? qlonglong(0 - magnitude) : qlonglong(magnitude));
  }

  // A string prefix (r, b, u, f and their pairs) followed by a quote, or a quote.
  bool stringStarts() const
  {
    int i = 0;
    while (i < 2 && QStringLiteral("rRbBuUfF").contains(peek(i)))
      ++i;
    return isQuote(peek(i));
  }

  // Adjacent literals are one string.
  QVariant strings()
  {
    bool bytes = false;
    QString text = string(bytes);
    for (;;) {
      const int before = _pos;
      skip(true);
      if (!stringStarts()) {
        _pos = before;
        break;
      }
      const int next_at = _pos;
      bool next_bytes = false;
      text += string(next_bytes);
      if (next_bytes != bytes)
        fail(next_at, QStringLiteral("bytes and str literals cannot be joined"));
    }
    return bytes ? QVariant(text.toLatin1()) : QVariant(text);
  }

  // `skipping`: the string is passed over, not read as a value; an f-string is then no fault.
  QString string(bool& bytes, bool skipping = false)
  {
    const int start = _pos;
    bool raw = false;
    while (!isQuote(peek())) {
      const QChar c = peek().toLower();
      if (c == QLatin1Char('f') && !skipping)
        fail(start, QStringLiteral("f-strings are not literals"));
      raw = raw || c == QLatin1Char('r');
      bytes = bytes || c == QLatin1Char('b');
      ++_pos;
    }
    if (bytes && QStringView(_text).mid(start, _pos - start).contains(QLatin1Char('u'), Qt::CaseInsensitive))
      fail(start, QStringLiteral("expected a string prefix (r, b, u, rb)"));
    const QChar quote = peek();
    const bool triple = peek(1) == quote && peek(2) == quote;
    _pos += triple ? 3 : 1;
    QString result;
    const auto unterminated = [&] {
      expected(QStringLiteral("the closing quote of the string at %1").arg(position(start)));
    };
    for (;;) {
      if (atEnd())
        unterminated();
      const QChar c = peek();
      if (c == quote && (!triple || (peek(1) == quote && peek(2) == quote))) {
        _pos += triple ? 3 : 1;
        break;
      }
      if (!triple && (c == QLatin1Char('\n') || c == QLatin1Char('\r')))
        unterminated();
      if (bytes && c.unicode() > 127)
        fail(_pos, QStringLiteral("bytes can only hold ASCII characters"));
      if (c != QLatin1Char('\\')) {
        result += c;
        ++_pos;
        continue;
      }
      if (_pos + 1 >= _text.size())
        unterminated();
      if (raw) {
        // A raw string keeps the backslash, and the quote after it does not end the string.
        result += c;
        result += peek(1);
        _pos += 2;
        continue;
      }
      escape(result, bytes);
    }
    return result;
  }

  void escape(QString& result, bool bytes)
  {
    const int at = _pos;
    ++_pos;
    const QChar c = peek();
    ++_pos;
    static const QString simple = QStringLiteral("\\'\"abfnrtv");
    static const QString meaning = QStringLiteral("\\'\"\a\b\f\n\r\t\v");
    if (simple.contains(c)) {
      result += meaning[simple.indexOf(c)];
    } else if (c == QLatin1Char('\n')) {
    } else if (c == QLatin1Char('\r')) {
      if (peek() == QLatin1Char('\n'))
        ++_pos;
    } else if (c >= QLatin1Char('0') && c <= QLatin1Char('7')) {
      uint code = uint(c.digitValue());
      for (int i = 0; i < 2 && peek() >= QLatin1Char('0') && peek() <= QLatin1Char('7'); ++i, ++_pos)
        code = code * 8 + uint(peek().digitValue());
      if (bytes && code > 0xFF)
        fail(at, QStringLiteral("an octal escape in bytes must be below \\400"));
      result += QChar(char16_t(code));
    } else if (c == QLatin1Char('x') || (!bytes && (c == QLatin1Char('u') || c == QLatin1Char('U')))) {
      const int count = c == QLatin1Char('x') ? 2 : c == QLatin1Char('u') ? 4 : 8;
      const QString hex = _text.mid(_pos, count);
      static const QRegularExpression hex_digits(QStringLiteral("^[0-9a-fA-F]*$"));
      if (hex.size() != count || !hex_digits.match(hex).hasMatch())
        fail(at, QStringLiteral("expected %1 hexadecimal digits after \\%2").arg(count).arg(c));
      const uint code = hex.toUInt(nullptr, 16);
      if (code > 0x10FFFF)
        fail(at, QStringLiteral("\\%1 escapes a character beyond U+10FFFF").arg(c));
      _pos += count;
      if (code > 0xFFFF)
        result += QString::fromUcs4(reinterpret_cast<const char32_t*>(&code), 1);
      else
        result += QChar(char16_t(code));
    } else if (c == QLatin1Char('N') && !bytes) {
      fail(at, QStringLiteral("named character escapes (\\N{...}) are not read"));
    } else {
      // Python keeps an unknown escape as it stands.
      result += QLatin1Char('\\');
      result += c;
    }
  }

  QVariant literal()
  {
    skip(true);
    const QVariant result = value(0);
    rest();
    return result;
  }

  const QString& _text;
  int _first_line;
  int _pos = 0;
  bool _tolerant = false;
};

QString escapeCharacter(char16_t c)
{
  switch (c) {
    case '\\': return QStringLiteral("\\\\");
    case '\n': return QStringLiteral("\\n");
    case '\r': return QStringLiteral("\\r");
    case '\t': return QStringLiteral("\\t");
    default: break;
  }
  if (c < 0x100)
    return QStringLiteral("\\x%1").arg(uint(c), 2, 16, QLatin1Char('0'));
  return QStringLiteral("\\u%1").arg(uint(c), 4, 16, QLatin1Char('0'));
}

QString writeString(const QString& text)
{
  // As Python's repr chooses: double quotes only for text with single quotes and no double ones.
  const QChar quote =
      text.contains(QLatin1Char('\'')) && !text.contains(QLatin1Char('"')) ? QLatin1Char('"') : QLatin1Char('\'');
  QString result = quote;
  for (int i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      result += c;
      result += text[++i];
    } else if (c == quote) {
      result += QLatin1Char('\\');
      result += c;
    } else if (c == QLatin1Char('\\') || c.isSurrogate() || !c.isPrint()) {
      result += escapeCharacter(c.unicode());
    } else {
      result += c;
    }
  }
  return result + quote;
}

QString writeBytes(const QByteArray& bytes)
{
  const char quote = bytes.contains('\'') && !bytes.contains('"') ? '"' : '\'';
  QString result = QStringLiteral("b") + QLatin1Char(quote);
  for (const char byte : bytes) {
    const auto c = static_cast<unsigned char>(byte);
    if (c == quote)
      result += QString(QLatin1Char('\\')) + QLatin1Char(quote);
    else if (c == '\\' || c < 0x20 || c >= 0x7f)
      result += escapeCharacter(c);
    else
      result += QLatin1Char(char(c));
  }
  return result + QLatin1Char(quote);
}

QString writeDouble(double value)
{
  if (std::isnan(value))
    failCommand(ERR_GENERATE_SCRIPT, QStringLiteral("NaN has no Python literal"));
  // Python reads a literal too large for a float as infinity.
  if (std::isinf(value))
    return value < 0 ? QStringLiteral("-1e999") : QStringLiteral("1e999");
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof(buffer), value);
  QString text = QString::fromLatin1(buffer, int(result.ptr - buffer));
  if (!text.contains(QLatin1Char('.')) && !text.contains(QLatin1Char('e')))
    text += QStringLiteral(".0");
  return text;
}

QString writeItems(const QVariantList& items)
{
  QStringList texts;
  for (const QVariant& item : items)
    texts << writeLiteral(item);
  return texts.join(QStringLiteral(", "));
}

}  // namespace

bool PythonTuple::operator==(const PythonTuple& other) const
{
  return sameValue(QVariant(items), QVariant(other.items));
}

const CallArgument* CommandCall::find(const QString& name) const
{
  for (const CallArgument& argument : arguments)
    if (argument.name == name)
      return &argument;
  return nullptr;
}

CommandCall readCommandCall(const QString& text, int first_line)
{
  Reader reader(text, first_line);
  reader.skip(true);
  reader.target();
  CommandCall call = reader.call();
  reader.rest();
  return call;
}

CommandCall readCommandCallAt(const QString& text, int offset, bool tolerant)
{
  Reader reader(text, 1);
  reader._pos = offset;
  reader._tolerant = tolerant;
  return reader.call();
}

QList<int> findCommandCalls(const QString& text)
{
  QList<int> starts;
  Reader reader(text, 1);
  while (!reader.atEnd()) {
    const QChar c = reader.peek();
    if (c == QLatin1Char('#')) {
      reader.skipComment();
    } else if (reader.stringStarts() && (reader._pos == 0 || !isIdentifierChar(text[reader._pos - 1]))) {
      bool bytes = false;
      try {
        reader.string(bytes, true);
      } catch (const GApp::CommandError&) {
        // An unterminated string hides nothing after it that could be a call.
        break;
      }
    } else if (isIdentifierStart(c)) {
      const int start = reader._pos;
      reader.identifier();
      if (text.mid(start, reader._pos - start) == QLatin1String("zut") &&
          (start == 0 || text[start - 1] != QLatin1Char('.'))) {
        const QStringView after = QStringView(text).mid(reader._pos);
        if (after.startsWith(QLatin1String(".script.")) || after.startsWith(QLatin1String(".interactive.")))
          starts << start;
      }
    } else {
      ++reader._pos;
    }
  }
  return starts;
}

QVariant readLiteral(const QString& text)
{
  return Reader(text, 1).literal();
}

QString writeLiteral(const QVariant& value)
{
  if (!value.isValid() || value.typeId() == QMetaType::Nullptr)
    return QStringLiteral("None");
  if (value.typeId() == qMetaTypeId<PythonTuple>()) {
    const QVariantList& items = value.value<PythonTuple>().items;
    return items.size() == 1 ? QStringLiteral("(%1,)").arg(writeLiteral(items.first()))
                             : QStringLiteral("(%1)").arg(writeItems(items));
  }
  if (value.typeId() == Trait::fileTypeId())
    return writeString(value.value<Parse::File>().getName());
  switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Short: return QString::number(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::UShort: return QString::number(value.toULongLong());
    case QMetaType::Double:
    case QMetaType::Float: return writeDouble(value.toDouble());
    case QMetaType::QString: return writeString(value.toString());
    case QMetaType::QByteArray: return writeBytes(value.toByteArray());
    case QMetaType::QStringList:
    case QMetaType::QVariantList: return QStringLiteral("[%1]").arg(writeItems(value.toList()));
    case QMetaType::QVariantMap: {
      const QVariantMap map = value.toMap();
      QStringList entries;
      for (auto it = map.begin(); it != map.end(); ++it)
        entries << writeString(it.key()) + QStringLiteral(": ") + writeLiteral(it.value());
      return QStringLiteral("{%1}").arg(entries.join(QStringLiteral(", ")));
    }
    default: break;
  }
  failCommand(ERR_GENERATE_SCRIPT,
              QStringLiteral("A value of type '%1' has no Python literal.").arg(QString::fromLatin1(value.typeName())));
}

bool sameValue(const QVariant& a, const QVariant& b)
{
  if (a.isValid() != b.isValid())
    return false;
  if (!a.isValid())
    return true;
  if (a.typeId() != b.typeId())
    return false;
  if (a.typeId() == qMetaTypeId<PythonTuple>())
    return a.value<PythonTuple>() == b.value<PythonTuple>();
  if (a.typeId() == QMetaType::QVariantList) {
    const QVariantList x = a.toList();
    const QVariantList y = b.toList();
    if (x.size() != y.size())
      return false;
    for (int i = 0; i < x.size(); ++i)
      if (!sameValue(x[i], y[i]))
        return false;
    return true;
  }
  if (a.typeId() == QMetaType::QVariantMap) {
    const QVariantMap x = a.toMap();
    const QVariantMap y = b.toMap();
    if (x.keys() != y.keys())
      return false;
    for (auto it = x.begin(); it != x.end(); ++it)
      if (!sameValue(it.value(), y.value(it.key())))
        return false;
    return true;
  }
  if (a.typeId() == QMetaType::Double)
    return a.toDouble() == b.toDouble() && std::signbit(a.toDouble()) == std::signbit(b.toDouble());
  return a == b;
}

QString rewriteCall(const QString& text, const ArgumentList& arguments, const QString& command)
{
  const CommandCall call = readCommandCall(text);
  // The same arguments in the same order: only the values that changed are written, so that
  // comments and the layout between them stay.
  bool same_names = arguments.size() == call.arguments.size();
  for (qsizetype i = 0; same_names && i < arguments.size(); ++i)
    same_names = arguments[i].first == call.arguments[i].name;
  if (same_names) {
    QString result = text;
    for (qsizetype i = arguments.size() - 1; i >= 0; --i) {
      const CallArgument& old = call.arguments[i];
      if (!sameValue(old.value, arguments[i].second))
        result.replace(old.value_begin, old.value_end - old.value_begin, writeLiteral(arguments[i].second));
    }
    if (!command.isEmpty())
      result.replace(call.name_begin, call.name_end - call.name_begin, command);
    return result;
  }
  QStringList parts;
  for (const auto& [name, value] : arguments) {
    const CallArgument* old = call.find(name);
    parts << name + QLatin1Char('=') +
                 (old && sameValue(old->value, value) ? text.mid(old->value_begin, old->value_end - old->value_begin)
                                                      : writeLiteral(value));
  }
  // A call whose arguments stood one a line keeps that layout; short ones stay on one line.
  QString list;
  const QString old_list = text.mid(call.arguments_begin, call.arguments_end - call.arguments_begin);
  const int first_name = call.arguments.isEmpty() ? -1 : call.arguments.first().name_begin;
  const int line_start = first_name < 0 ? 0 : int(text.lastIndexOf(QLatin1Char('\n'), first_name)) + 1;
  if (!parts.isEmpty() && old_list.contains(QLatin1Char('\n')) && first_name > call.arguments_begin &&
      text.mid(line_start, first_name - line_start).trimmed().isEmpty()) {
    const QString indent = text.mid(line_start, first_name - line_start);
    const int close_line = int(text.lastIndexOf(QLatin1Char('\n'), call.arguments_end - 1)) + 1;
    const QString before_close = text.mid(close_line, call.arguments_end - close_line);
    const CallArgument& last = call.arguments.last();
    const bool trailing_comma = text.mid(last.value_end, call.arguments_end - last.value_end)
                                    .section(QLatin1Char('#'), 0, 0)
                                    .contains(QLatin1Char(','));
    list = QLatin1Char('\n') + indent + parts.join(QStringLiteral(",\n") + indent);
    if (trailing_comma)
      list += QLatin1Char(',');
    if (before_close.trimmed().isEmpty())
      list += QLatin1Char('\n') + before_close;
  } else {
    list = parts.join(QStringLiteral(", "));
  }
  QString result = text;
  result.replace(call.arguments_begin, call.arguments_end - call.arguments_begin, list);
  if (!command.isEmpty())
    result.replace(call.name_begin, call.name_end - call.name_begin, command);
  return result;
}

}  // namespace Vel::MSysScript
