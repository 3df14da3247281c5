#include "menu/msys_script/msys_dialog_text_field_widget.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLayout>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTextBrowser>
#include <QTextDocument>
#include <QVBoxLayout>
#include <QtMath>

#include <algorithm>
#include <memory>

#include "core/prog_error.h"
#include "core/python_string.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_property_widgets.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"

namespace Vel::MSysScript {

using namespace WidgetTools;

const QString TextFieldWidget::TYPE_ID = QStringLiteral("display::text");
const QString TextFieldWidget::TAG_TEXT = QStringLiteral("text");
const QString TextFieldWidget::TAG_WORDWRAP = QStringLiteral("wordwrap");
const QString TextFieldWidget::ATTR_WORD_WRAP = QStringLiteral("word_wrap");

TextFieldWidget::TextFieldWidget() : DialogWidget(TYPE_ID), _browser(new QTextBrowser(this))
{
  _browser->setOpenExternalLinks(true);
  innerLayout(this)->addWidget(_browser);
  setFocusProxy(_browser);
  // A new browser already shows the empty text, wrapped at its width.
  DialogWidget::updateWidget();
}

// As high as the text needs at the usual width, from a few lines to the browser's own height: a
// short note takes no more room than it fills, a long text scrolls.
QSize TextFieldWidget::sizeHint() const
{
  const QSize usual = _browser->sizeHint();
  const int frame = 2 * _browser->frameWidth();
  const std::unique_ptr<QTextDocument> document(_browser->document()->clone());
  document->setDefaultFont(_browser->font());
  document->setTextWidth(usual.width() - frame);
  const int few_lines = 3 * _browser->fontMetrics().lineSpacing() + 2 * qRound(document->documentMargin());
  const int needed = std::max(qCeil(document->size().height()), few_lines) + frame;
  return QSize(usual.width(), std::min(needed, usual.height()));
}

void TextFieldWidget::parseXml(const QDomNode& node)
{
  {
    // The text is laid out once, when all is read: a browser lays out every text it is given.
    const QScopedValueRollback reading(_reading, true);
    DialogWidget::parseXml(node);
  }
  const QString text = Xml::hasChild(node, TAG_TEXT) ? Xml::getCData(node, TAG_TEXT) : QString();
  const bool word_wrap = valueOr(node, TAG_WORDWRAP, true);
  _text = text;
  _word_wrap = word_wrap;
  updateWidget();
}

void TextFieldWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createCData(document, TAG_TEXT, _text));
  element->appendChild(Xml::createValue(document, TAG_WORDWRAP, _word_wrap));
}

// Neither an opening parenthesis nor the name: scripts written against this form rely on it.
QString TextFieldWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.TextFieldWidget text='%2', word_wrap=%1)")
      .arg(boolText(_word_wrap), escapePythonString(_text));
}

QVariant TextFieldWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TEXT)
    return _text;
  if (name == ATTR_WORD_WRAP)
    return _word_wrap;
  return DialogWidget::__getattr__(name);
}

void TextFieldWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_TEXT)
    _text = textArg(value);
  else if (name == ATTR_WORD_WRAP)
    _word_wrap = boolArg(value);
  else {
    DialogWidget::__setattr__(name, value);
    return;
  }
  updateWidget();
}

std::vector<AttributeInfo> TextFieldWidget::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_TEXT, "str", "Text of the field (may be rich text)"));
  rows.push_back(row(ATTR_WORD_WRAP, "bool", "Wrap lines at the border of the field"));
  return rows;
}

void TextFieldWidget::updateWidget()
{
  DialogWidget::updateWidget();
  if (_reading)
    return;
  _browser->setLineWrapMode(_word_wrap ? QTextEdit::WidgetWidth : QTextEdit::NoWrap);
  // Markup is shown formatted, anything else as it was written.
  if (Qt::mightBeRichText(_text))
    _browser->setHtml(_text);
  else
    _browser->setPlainText(_text);
}

// ---------------------------------------------------------------------------------------------

TextFieldEditDialog::TextFieldEditDialog(QWidget* parent, const QString& text, const QFont& defaultFont)
    : QDialog(parent)
{
  setObjectName(QStringLiteral("VelMSysScript_EditTextField_dlg"));
  setWindowTitle(otherText("Edit continuous text"));
  auto* layout = new QVBoxLayout(this);
  auto* frame = new QFrame(this);
  frame->setObjectName(QStringLiteral("_frame"));
  frame->setFrameShape(QFrame::StyledPanel);
  auto* frame_layout = new QVBoxLayout(frame);
  _edit = new RichTextEdit(frame, text, defaultFont);
  frame_layout->addWidget(_edit);
  layout->addWidget(frame, 1);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  auto* close = new QPushButton(otherText("Close"), this);
  close->setObjectName(QStringLiteral("_close"));
  close->setDefault(true);
  buttons->addWidget(close);
  layout->addLayout(buttons);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  resize(520, 360);
  _edit->setFocus();
}

QString TextFieldEditDialog::getText() const
{
  return _edit->getText();
}

// ---------------------------------------------------------------------------------------------

TextFieldInterface* TextFieldInterface::_instance = nullptr;

TextFieldInterface::TextFieldInterface()
{
  if (_instance)
    throw ProgError(QStringLiteral("TextFieldInterface::TextFieldInterface"), QStringLiteral(__FILE__),
                    QStringLiteral("Interface already registered"));
  _instance = this;
}

TextFieldInterface::~TextFieldInterface()
{
  if (_instance == this)
    _instance = nullptr;
}

TextFieldInterface& TextFieldInterface::getInstance()
{
  if (!_instance)
    static TextFieldInterface module_own;
  return *_instance;
}

TextFieldEditDialog* TextFieldInterface::createEditDialog(QWidget* parent, const QString& text,
                                                          const QFont& defaultFont) const
{
  return new TextFieldEditDialog(parent, text, defaultFont);
}

// ---------------------------------------------------------------------------------------------

TextFieldConfiguration::TextFieldConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Continuous text")));
  addProperty(new BoolProperty(TextFieldWidget::ATTR_WORD_WRAP, otherText("Word wrap")));
  auto* edit = new QPushButton(otherText("Edit text..."), this);
  edit->setObjectName(QStringLiteral("_edit_text"));
  layout()->addWidget(edit);
  connect(edit, &QPushButton::clicked, this, &TextFieldConfiguration::slotEdit);
}

void TextFieldConfiguration::setup(const DialogWidget* widget)
{
  ElementConfiguration::setup(widget);
  _text = widget->__getattr__(TextFieldWidget::TAG_TEXT).toString();
  _font = widget->font();
}

void TextFieldConfiguration::apply(DialogWidget* widget)
{
  ElementConfiguration::apply(widget);
  widget->__setattr__(TextFieldWidget::TAG_TEXT, _text);
}

// The element takes the text at once: a double click edits it where it stands.
void TextFieldConfiguration::doubleClicked(DialogWidget* widget)
{
  setup(widget);
  if (editText())
    widget->__setattr__(TextFieldWidget::TAG_TEXT, _text);
}

void TextFieldConfiguration::slotEdit()
{
  editText();
}

bool TextFieldConfiguration::editText()
{
  const std::unique_ptr<TextFieldEditDialog> dialog(
      TextFieldInterface::getInstance().createEditDialog(this, _text, _font));
  dialog->exec();
  const QString text = dialog->getText();
  if (text == _text)
    return false;
  _text = text;
  Q_EMIT signalModified();
  return true;
}

}  // namespace Vel::MSysScript
