#include "menu/msys_script/msys_dialog_definition.h"

#include <QDomDocument>
#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <functional>

#include <algorithm>

#include "core/prog_error.h"
#include "core/translate.h"
#include "gtools/dialog_widget_supplier.h"
#include "menu/msys_script/msys_dialog_styles.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

namespace {

const QString TAG_DIALOG = QStringLiteral("dialog");
const QString TAG_TITLE = QStringLiteral("title");
const QString TAG_CONTROL = QStringLiteral("control");
const QString TAG_POSITION = QStringLiteral("position");
const QString TAG_EMBEDDING = QStringLiteral("embedding");
const QString TAG_SIZEMODE = QStringLiteral("sizemode");
const QString TAG_SIZE = QStringLiteral("size");
const QString TAG_STYLE = QStringLiteral("style");
const QString TAG_CONTENT = QStringLiteral("content");
const QString TAG_WIDGET = QStringLiteral("widget");
const QString ATTR_ID = QStringLiteral("id");
const QString ATTR_WIDTH = QStringLiteral("width");
const QString ATTR_HEIGHT = QStringLiteral("height");
const QString ATTR_ROWS = QStringLiteral("rows");
const QString ATTR_COLUMNS = QStringLiteral("columns");
const QString ATTR_TYPE = QStringLiteral("type");
const QString ATTR_ROW = QStringLiteral("row");
const QString ATTR_COLUMN = QStringLiteral("column");
const QString ATTR_ROWSPAN = QStringLiteral("rowspan");
const QString ATTR_COLUMNSPAN = QStringLiteral("columnspan");

// Words of older definitions, converted while reading and never written.
const QString EMBEDDING_OLD_EMBEDDED = QStringLiteral("embedded");
const QString EMBEDDING_OLD_FULLSIZE = QStringLiteral("fullsize_embedded");

QString dialogErr(const char* text)
{
  return translate("MSysScript_Dialog_err", text, "");
}

// Cells of the grid covered so far.
class Coverage
{
public:
  Coverage(int rows, int columns) : _columns(columns), _covered(static_cast<size_t>(rows) * columns, false) {}
  bool isCovered(int row, int column) const { return _covered[index(row, column)]; }
  void cover(int row, int column) { _covered[index(row, column)] = true; }

private:
  size_t index(int row, int column) const { return static_cast<size_t>(row) * _columns + column; }
  int _columns;
  std::vector<bool> _covered;
};

int optionalSpan(const QDomElement& element, const QString& name)
{
  return Xml::hasAttribute(element, name) ? Xml::getAttribute<int>(element, name) : 1;
}

// Where reading faults go: the reader stops at the first, the checker collects them all.
using FaultSink = std::function<void(const Xml::ParseException&)>;

template <typename Step>
bool guarded(const FaultSink& sink, Step step)
{
  try {
    step();
    return true;
  } catch (const Xml::ParseException& fault) {
    sink(fault);
    return false;
  }
}

void readHeader(const QDomElement& root, DialogHeader& header, const FaultSink& sink)
{
  guarded(sink, [&] { header.title = Xml::getValue<QString>(root, TAG_TITLE); });
  guarded(sink, [&] { header.control_id = Xml::getAttribute<QString>(Xml::getChild(root, TAG_CONTROL), ATTR_ID); });
  guarded(sink, [&] { header.position.read(root, TAG_POSITION); });

  guarded(sink, [&] {
    if (!Xml::hasChild(root, TAG_EMBEDDING))
      return;
    const QString word = Xml::getValue<QString>(root, TAG_EMBEDDING);
    if (word == EMBEDDING_OLD_EMBEDDED) {
      header.embedding.set(DialogEmbedding::EmbeddedInKiosk);
      header.position.set(DialogPosition::Left);
    } else if (word == EMBEDDING_OLD_FULLSIZE) {
      header.embedding.set(DialogEmbedding::EmbeddedInKiosk);
      header.position.set(DialogPosition::Center);
    } else {
      header.embedding.read(root, TAG_EMBEDDING);
    }
  });

  guarded(sink, [&] { header.size_mode.read(root, TAG_SIZEMODE); });

  guarded(sink, [&] {
    if (!Xml::hasChild(root, TAG_SIZE))
      return;
    const QDomElement size = Xml::getChild(root, TAG_SIZE);
    const int width = Xml::getAttribute<int>(size, ATTR_WIDTH);
    const int height = Xml::getAttribute<int>(size, ATTR_HEIGHT);
    header.size = width < 1 || height < 1 ? QSize() : QSize(width, height);
  });

  guarded(sink, [&] {
    if (!Xml::hasChild(root, TAG_STYLE))
      return;
    const QDomElement style = Xml::getChild(root, TAG_STYLE);
    const QString name = style.text();
    const DialogStyle* found = DialogStyleDatabase::findStyle(name);
    if (!found)
      throw Xml::ParseException(style, dialogErr("The dialog style \"%1\" is unknown.").arg(name));
    header.style = found->getId();
  });
}

void readGrid(const QDomElement& root, DialogDefinition& definition, DialogWidget::DialogMode::Type_t mode,
              const FaultSink& sink)
{
  const QDomElement content = Xml::getChild(root, TAG_CONTENT);
  const int rows = Xml::getAttribute<int>(content, ATTR_ROWS);
  const int columns = Xml::getAttribute<int>(content, ATTR_COLUMNS);
  if (rows < 0 || rows > DialogDefinition::MAX_ROWS)
    throw Xml::ParseException(content, dialogErr("Invalid row %1").arg(rows));
  if (columns < 0 || columns > DialogDefinition::MAX_COLUMNS ||
      static_cast<long long>(rows) * columns > DialogDefinition::MAX_CELLS)
    throw Xml::ParseException(content, dialogErr("Invalid column %1").arg(columns));
  definition.rows = rows;
  definition.columns = columns;

  DialogRegistry* registry = DialogRegistry::getRegistry();
  Coverage coverage(rows, columns);
  for (const QDomElement& element : Xml::getChildren(content, TAG_WIDGET)) guarded(sink, [&] {
    const QString type = Xml::getAttribute<QString>(element, ATTR_TYPE);
    const DialogWidgetCreator* creator = type == DialogWidgetCreator::EMPTY_WIDGET_ID
                                             ? DialogRegistry::getEmptyWidgetCreator()
                                             : registry->getWidgetCreator(type);
    if (!creator)
      throw Xml::ParseException(element, dialogErr("The GUI element type \"%1\" is expected.").arg(type));

    const int row = Xml::getAttribute<int>(element, ATTR_ROW);
    const int column = Xml::getAttribute<int>(element, ATTR_COLUMN);
    const int row_span = optionalSpan(element, ATTR_ROWSPAN);
    const int column_span = optionalSpan(element, ATTR_COLUMNSPAN);
    // A span must stay inside the grid as its first cell must.
    if (row < 0 || row >= rows)
      throw Xml::ParseException(element, dialogErr("Invalid row %1").arg(row));
    // The last cell in 64 bits: a span near the int limits must not overflow.
    if (row_span < 1 || row_span > rows - row)
      throw Xml::ParseException(element, dialogErr("Invalid row %1").arg(qint64(row) + row_span - 1));
    if (column < 0 || column >= columns)
      throw Xml::ParseException(element, dialogErr("Invalid column %1").arg(column));
    if (column_span < 1 || column_span > columns - column)
      throw Xml::ParseException(element, dialogErr("Invalid column %1").arg(qint64(column) + column_span - 1));
    for (int r = row; r < row + row_span; ++r)
      for (int c = column; c < column + column_span; ++c)
        if (coverage.isCovered(r, c))
          throw Xml::ParseException(element, dialogErr("Duplicate cell entry in (%1, %2).").arg(r).arg(c));

    std::unique_ptr<DialogWidget> widget(creator->createWidget());
    widget->setObjectName(type);
    widget->setDialogMode(mode);
    widget->setSourceLine(element.lineNumber());
    widget->parseXml(element);
    // An element that could not be read leaves its cells to the placeholders.
    for (int r = row; r < row + row_span; ++r)
      for (int c = column; c < column + column_span; ++c)
        coverage.cover(r, c);
    definition.addCell(widget.release(), row, column, row_span, column_span);
  });

  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < columns; ++c)
      if (!coverage.isCovered(r, c)) {
        DialogWidget* placeholder = DialogRegistry::getEmptyWidgetCreator()->createWidget();
        placeholder->setObjectName(DialogWidgetCreator::EMPTY_WIDGET_ID);
        placeholder->setDialogMode(mode);
        definition.addCell(placeholder, r, c);
      }
}

void checkNames(const DialogDefinition& definition, const FaultSink& sink)
{
  QSet<QString> names;
  for (const DialogDefinition::Cell& cell : definition.getCells()) {
    const QString name = cell.widget->getName();
    // Placeholders have no name to collide.
    if (cell.widget->getCreatorId() == DialogWidgetCreator::EMPTY_WIDGET_ID)
      continue;
    if (names.contains(name))
      sink(Xml::ParseException(errorText("The name \"%1\" of the GUI element exists twice.").arg(name),
                               cell.widget->getSourceLine()));
    names.insert(name);
  }
}

// Attributes in a fixed order, those of the format first: the DOM keeps them unordered, and a
// definition must come out the same every time it is written.
void writeNode(QXmlStreamWriter& writer, const QDomNode& node)
{
  static const QStringList order = {ATTR_ID,         ATTR_TYPE,  ATTR_ROW,    ATTR_COLUMN, ATTR_ROWSPAN,
                                    ATTR_COLUMNSPAN, ATTR_WIDTH, ATTR_HEIGHT, ATTR_ROWS,   ATTR_COLUMNS};
  if (node.isCDATASection()) {
    writer.writeCDATA(node.nodeValue());
  } else if (node.isText()) {
    writer.writeCharacters(node.nodeValue());
  } else if (node.isElement()) {
    const QDomElement element = node.toElement();
    writer.writeStartElement(element.tagName());
    const QDomNamedNodeMap attributes = element.attributes();
    std::vector<QString> names;
    for (int i = 0; i < attributes.count(); ++i)
      names.push_back(attributes.item(i).nodeName());
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
      const auto rank = [](const QString& name) {
        const int index = order.indexOf(name);
        return index < 0 ? order.size() : index;
      };
      return rank(a) != rank(b) ? rank(a) < rank(b) : a < b;
    });
    for (const QString& name : names)
      writer.writeAttribute(name, element.attribute(name));
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling())
      writeNode(writer, child);
    writer.writeEndElement();
  }
}

}  // namespace

DialogHeader::DialogHeader()
    : position(DialogPosition::Automatic, {{DialogPosition::Automatic, QStringLiteral("automatic")},
                                           {DialogPosition::Center, QStringLiteral("center")},
                                           {DialogPosition::Left, QStringLiteral("left")},
                                           {DialogPosition::Right, QStringLiteral("right")},
                                           {DialogPosition::Bottom, QStringLiteral("bottom")},
                                           {DialogPosition::TopLeft, QStringLiteral("top_left")},
                                           {DialogPosition::TopRight, QStringLiteral("top_right")},
                                           {DialogPosition::BottomLeft, QStringLiteral("bottom_left")},
                                           {DialogPosition::BottomRight, QStringLiteral("bottom_right")}}),
      embedding(DialogEmbedding::AlwaysTopLevel,
                {{DialogEmbedding::AlwaysTopLevel, QStringLiteral("always_toplevel")},
                 {DialogEmbedding::EmbeddedInKiosk, QStringLiteral("embedded_in_kiosk")}}),
      size_mode(DialogSizeMode::Automatic, {{DialogSizeMode::Automatic, QStringLiteral("automatic")},
                                            {DialogSizeMode::Fixed, QStringLiteral("fixed")},
                                            {DialogSizeMode::Maximized, QStringLiteral("maximized")}}),
      style(DialogStyleDatabase::getStyles().front().getId())
{}

DialogDefinition::DialogDefinition() = default;

DialogDefinition::~DialogDefinition()
{
  for (const Cell& cell : _cells)
    delete cell.widget;
}

DialogWidget* DialogDefinition::getWidget(int row, int column) const
{
  for (const Cell& cell : _cells)
    if (row >= cell.row && row < cell.row + cell.row_span && column >= cell.column &&
        column < cell.column + cell.column_span)
      return cell.widget;
  return nullptr;
}

DialogWidget* DialogDefinition::findWidget(const QString& name) const
{
  for (const Cell& cell : _cells)
    if (cell.widget->getCreatorId() != DialogWidgetCreator::EMPTY_WIDGET_ID && cell.widget->getName() == name)
      return cell.widget;
  return nullptr;
}

void DialogDefinition::addCell(DialogWidget* widget, int row, int column, int rowSpan, int columnSpan)
{
  _cells.push_back({widget, row, column, rowSpan, columnSpan});
}

namespace {

// Nesting and size far beyond any dialog: refused before the DOM parser spends its time on them.
constexpr int MAX_DEPTH = 256;
constexpr qsizetype MAX_TEXT_LENGTH = 64 * 1024 * 1024;

// True when the elements are certainly nested no deeper than MAX_DEPTH, from a glance at the
// tags. It counts as the reader does up to the reader's first fault, after which the reader
// counts no more; a doctype, whose entities may hold elements, leaves it unsure.
bool surelyShallow(QStringView text)
{
  const auto skipPast = [&text](qsizetype from, QStringView end) {
    const qsizetype at = text.indexOf(end, from);
    return at < 0 ? text.size() : at + end.size();
  };
  int depth = 0;
  for (qsizetype at = text.indexOf(u'<'); at >= 0; at = text.indexOf(u'<', at)) {
    const QStringView tag = text.mid(at + 1);
    if (tag.startsWith(u'/')) {
      --depth;
      at += 2;
    } else if (tag.startsWith(u'?')) {
      at = skipPast(at + 2, u"?>");
    } else if (tag.startsWith(u"!--")) {
      at = skipPast(at + 4, u"-->");
    } else if (tag.startsWith(u"![CDATA[")) {
      at = skipPast(at + 9, u"]]>");
    } else if (tag.startsWith(u'!')) {
      return false;
    } else {
      // A start tag ends at the first '>' outside its quoted values; an empty one is entered too.
      QChar quote;
      qsizetype end = at + 1;
      for (; end < text.size(); ++end) {
        const QChar c = text[end];
        if (!quote.isNull())
          quote = c == quote ? QChar() : quote;
        else if (c == u'"' || c == u'\'')
          quote = c;
        else if (c == u'>')
          break;
      }
      if (depth + 1 > MAX_DEPTH)
        return false;
      if (end < text.size() && text[end - 1] != u'/')
        ++depth;
      at = end;
    }
  }
  return true;
}

void checkShape(const QString& text)
{
  if (text.size() > MAX_TEXT_LENGTH)
    throw Xml::ParseException(
        errorText("Parse error: %1").arg(QStringLiteral("the definition is larger than %1 MB").arg(MAX_TEXT_LENGTH >> 20)),
        1);
  if (surelyShallow(text))
    return;
  QXmlStreamReader reader(text);
  int depth = 0;
  while (!reader.atEnd()) {
    const QXmlStreamReader::TokenType token = reader.readNext();
    if (token == QXmlStreamReader::StartElement && ++depth > MAX_DEPTH)
      throw Xml::ParseException(
          errorText("Parse error: %1").arg(QStringLiteral("elements are nested deeper than %1 levels").arg(MAX_DEPTH)),
          static_cast<int>(reader.lineNumber()));
    if (token == QXmlStreamReader::EndElement)
      --depth;
  }
  // Syntax errors are left to the DOM parser, whose messages the reader reports.
}

// The reading steps, each fault handed to `sink`; the definition holds what could be read.
std::unique_ptr<DialogDefinition> readWith(const QString& text, DialogWidget::DialogMode::Type_t mode,
                                           const FaultSink& sink)
{
  if (!GTools::DialogWidgetSupplierInterface::getInstance())
    throw ProgError(QStringLiteral("DialogDefinition::read"), QStringLiteral(__FILE__),
                    QStringLiteral("Script dialog supplier interface not instantiated"));

  auto definition = std::make_unique<DialogDefinition>();
  checkShape(text);
  QDomDocument document;
  QString message;
  int line = -1;
  int column = -1;
  if (!document.setContent(text, &message, &line, &column))
    throw Xml::ParseException(errorText("Parse error: %1").arg(message), line);

  const QDomElement root = document.documentElement();
  Xml::checkTag(root, TAG_DIALOG);

  readHeader(root, definition->header, sink);
  guarded(sink, [&] { readGrid(root, *definition, mode, sink); });
  guarded(sink, [&] {
    if (Xml::hasChild(root, TAG_CONTROL) &&
        !DialogRegistry::getRegistry()->getControlCreator(definition->header.control_id))
      throw Xml::ParseException(Xml::getChild(root, TAG_CONTROL),
                                errorText("Unknown dialog type: %1").arg(definition->header.control_id));
  });
  checkNames(*definition, sink);
  return definition;
}

}  // namespace

std::unique_ptr<DialogDefinition> DialogDefinition::read(const QString& text, DialogWidget::DialogMode::Type_t mode)
{
  return readWith(text, mode, [](const Xml::ParseException& fault) { throw fault; });
}

std::vector<DialogDefinition::Fault> DialogDefinition::check(const QString& text,
                                                             std::unique_ptr<DialogDefinition>* definition)
{
  std::vector<Fault> faults;
  const auto collect = [&faults](const Xml::ParseException& fault) {
    faults.push_back({fault.getLine(), fault.getParseMessage()});
  };
  std::unique_ptr<DialogDefinition> result;
  // Faults of the whole text (syntax, root) end the check; the rest are collected.
  guarded(collect, [&] { result = readWith(text, DialogWidget::DialogMode::Editor, collect); });
  if (result) {
    for (const Cell& cell : result->getCells()) {
      QString error;
      if (!cell.widget->checkConfiguration(&error))
        faults.push_back({cell.widget->getSourceLine(), error});
    }
  }
  std::stable_sort(faults.begin(), faults.end(), [](const Fault& a, const Fault& b) { return a.line < b.line; });
  if (definition)
    *definition = std::move(result);
  return faults;
}

QString DialogDefinition::write() const
{
  QDomDocument document;
  QDomElement root = document.createElement(TAG_DIALOG);
  document.appendChild(root);

  root.appendChild(Xml::createValue(&document, TAG_TITLE, header.title));
  root.appendChild(Xml::createValue(&document, TAG_STYLE, header.style));
  QDomElement control = document.createElement(TAG_CONTROL);
  control.setAttribute(ATTR_ID, header.control_id);
  root.appendChild(control);
  header.position.create(&document, root, TAG_POSITION);
  header.embedding.create(&document, root, TAG_EMBEDDING);
  header.size_mode.create(&document, root, TAG_SIZEMODE);
  QDomElement size = document.createElement(TAG_SIZE);
  size.setAttribute(ATTR_WIDTH, header.size.isValid() ? header.size.width() : 0);
  size.setAttribute(ATTR_HEIGHT, header.size.isValid() ? header.size.height() : 0);
  root.appendChild(size);

  QDomElement content = document.createElement(TAG_CONTENT);
  content.setAttribute(ATTR_ROWS, rows);
  content.setAttribute(ATTR_COLUMNS, columns);
  for (const Cell& cell : _cells) {
    QDomElement element = document.createElement(TAG_WIDGET);
    element.setAttribute(ATTR_TYPE, cell.widget->getCreatorId());
    element.setAttribute(ATTR_ROW, cell.row);
    element.setAttribute(ATTR_COLUMN, cell.column);
    element.setAttribute(ATTR_ROWSPAN, cell.row_span);
    element.setAttribute(ATTR_COLUMNSPAN, cell.column_span);
    cell.widget->createXml(&document, &element);
    content.appendChild(element);
  }
  root.appendChild(content);

  QString text;
  QXmlStreamWriter writer(&text);
  writer.setAutoFormatting(true);
  writer.setAutoFormattingIndent(2);
  writer.writeStartDocument();
  writeNode(writer, root);
  writer.writeEndDocument();
  return text;
}

}  // namespace Vel::MSysScript
