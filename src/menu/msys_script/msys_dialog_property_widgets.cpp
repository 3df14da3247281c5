#include "menu/msys_script/msys_dialog_property_widgets.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTextEdit>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/prog_error.h"
#include "core/translate.h"
#include "gapp/interaction.h"
#include "gtools/file_dialog.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

namespace {

QString other(const char* text)
{
  return translate("MSysScript_DialogEditor_other", text, "");
}

QHBoxLayout* rowLayout(QWidget* panel)
{
  auto* layout = new QHBoxLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  return layout;
}

QToolButton* toolButton(QWidget* panel, const QString& objectName, const QString& text)
{
  auto* button = new QToolButton(panel);
  button->setObjectName(objectName);
  button->setText(text);
  return button;
}

}  // namespace

// ---------------------------------------------------------------------------------------------

TextPropertyWidget::TextPropertyWidget(QWidget* parent, const QFont& defaultFont)
    : QWidget(parent), _default_font(defaultFont), _preview(new QLabel(this))
{
  setObjectName(QStringLiteral("VelMSysScript_TextProperty_widget"));
  auto* layout = rowLayout(this);
  _preview->setObjectName(QStringLiteral("_preview"));
  _preview->setTextFormat(Qt::RichText);
  _preview->setFont(defaultFont);
  layout->addWidget(_preview, 1);
  QToolButton* edit = toolButton(this, QStringLiteral("_edit"), QStringLiteral("..."));
  edit->setToolTip(other("Edit text"));
  layout->addWidget(edit);
  connect(edit, &QToolButton::clicked, this, &TextPropertyWidget::slotEdit);
}

void TextPropertyWidget::setText(const QString& text)
{
  _text = text;
  _preview->setText(text);
}

void TextPropertyWidget::slotEdit()
{
  RichTextEditorDialog dialog(this, _text, _default_font);
  if (dialog.exec() != QDialog::Accepted || dialog.getText() == _text)
    return;
  setText(dialog.getText());
  Q_EMIT signalChanged();
}

RichTextEdit::RichTextEdit(QWidget* parent, const QString& text, const QFont& defaultFont)
    : QWidget(parent), _edit(new QTextEdit(this))
{
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* tools = new QToolBar(this);
  layout->addWidget(tools);
  _edit->document()->setDefaultFont(defaultFont);
  if (Qt::mightBeRichText(text))
    _edit->setHtml(text);
  else
    _edit->setPlainText(text);
  layout->addWidget(_edit);
  setFocusProxy(_edit);

  QAction* bold = tools->addAction(other("Bold"));
  bold->setCheckable(true);
  connect(bold, &QAction::toggled, this, [this](bool on) { _edit->setFontWeight(on ? QFont::Bold : QFont::Normal); });
  QAction* italic = tools->addAction(other("Italic"));
  italic->setCheckable(true);
  connect(italic, &QAction::toggled, _edit, &QTextEdit::setFontItalic);
  QAction* underline = tools->addAction(other("Underline"));
  underline->setCheckable(true);
  connect(underline, &QAction::toggled, _edit, &QTextEdit::setFontUnderline);
  connect(_edit, &QTextEdit::currentCharFormatChanged, this, [=](const QTextCharFormat& format) {
    const QSignalBlocker b1(bold), b2(italic), b3(underline);
    bold->setChecked(format.fontWeight() >= QFont::Bold);
    italic->setChecked(format.fontItalic());
    underline->setChecked(format.fontUnderline());
  });
}

// Plain text stays plain, so that simple labels do not turn into pages of markup.
QString RichTextEdit::getText() const
{
  const QString plain = _edit->toPlainText();
  QTextDocument plain_document;
  plain_document.setDefaultFont(_edit->document()->defaultFont());
  plain_document.setPlainText(plain);
  return _edit->document()->toHtml() == plain_document.toHtml() ? plain : _edit->toHtml();
}

RichTextEditorDialog::RichTextEditorDialog(QWidget* parent, const QString& text, const QFont& defaultFont)
    : QDialog(parent), _edit(new RichTextEdit(this, text, defaultFont))
{
  setWindowTitle(other("Edit Text"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(_edit);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

// ---------------------------------------------------------------------------------------------

IconPropertyWidget::IconPropertyWidget(QWidget* parent) : QWidget(parent), _preview(new QLabel(this))
{
  setObjectName(QStringLiteral("VelMSysScript_IconProperty_widget"));
  auto* layout = rowLayout(this);
  _preview->setObjectName(QStringLiteral("_preview"));
  _preview->setFixedSize(32, 20);
  _preview->setAlignment(Qt::AlignCenter);
  layout->addWidget(_preview);
  layout->addStretch(1);
  _select = toolButton(this, QStringLiteral("_select"), other("Select..."));
  _delete = toolButton(this, QStringLiteral("_delete"), other("Delete"));
  layout->addWidget(_select);
  layout->addWidget(_delete);
  connect(_select, &QToolButton::clicked, this, &IconPropertyWidget::slotSelect);
  connect(_delete, &QToolButton::clicked, this, &IconPropertyWidget::slotDelete);
  updatePreview();
}

void IconPropertyWidget::setImage(const QImage& image)
{
  _image = image;
  _file_name.clear();
  updatePreview();
}

void IconPropertyWidget::slotSelect()
{
  const QStringList files = GTools::FileDialog::getFileNames(
      this, GTools::FileDialog::Open, other("Select Icon"),
      {QStringLiteral("MSysScript::TiffFiles"), QStringLiteral("MSysScript::JPEGFiles"),
       QStringLiteral("MSysScript::PNGFiles")});
  if (files.isEmpty())
    return;
  VEL_ASSERT(files.size() == 1);
  QImage image;
  if (!image.load(files.first())) {
    GApp::ErrorDialog(QString::fromLatin1(ERR_LOAD_IMAGE),
                      errorText("Cannot load the image file \"%1\".").arg(files.first()));
    return;
  }
  setImage(image);
  _file_name = files.first();
  Q_EMIT signalChanged();
}

void IconPropertyWidget::slotDelete()
{
  setImage(QImage());
  _file_name.clear();
  Q_EMIT signalChanged();
}

void IconPropertyWidget::updatePreview()
{
  _preview->setPixmap(_image.isNull() ? QPixmap()
                                      : QPixmap::fromImage(_image.scaled(_preview->size(), Qt::KeepAspectRatio,
                                                                         Qt::SmoothTransformation)));
  _delete->setEnabled(!_image.isNull());
}

// ---------------------------------------------------------------------------------------------

FilePropertyWidget::FilePropertyWidget(QWidget* parent, int fileType)
    : QWidget(parent), _file_type(fileType), _file(new QLineEdit(this))
{
  setObjectName(QStringLiteral("VelMSysScript_FileProperty_widget"));
  auto* layout = rowLayout(this);
  _file->setObjectName(QStringLiteral("_file"));
  layout->addWidget(_file, 1);
  QToolButton* browse = toolButton(this, QStringLiteral("_browse"), QStringLiteral("..."));
  QToolButton* clear = toolButton(this, QStringLiteral("_clear"), other("Clear"));
  layout->addWidget(browse);
  layout->addWidget(clear);
  connect(_file, &QLineEdit::textEdited, this, &FilePropertyWidget::signalChanged);
  connect(browse, &QToolButton::clicked, this, &FilePropertyWidget::slotBrowse);
  connect(clear, &QToolButton::clicked, this, [this] {
    if (_file->text().isEmpty())
      return;
    _file->clear();
    Q_EMIT signalChanged();
  });
}

void FilePropertyWidget::setFileName(const QString& file)
{
  _file->setText(file);
}

QString FilePropertyWidget::getFileName() const
{
  return _file->text();
}

void FilePropertyWidget::slotBrowse()
{
  using Type = FileProperty::File;
  QStringList types;
  switch (_file_type) {
    case Type::Image:
      types = {QStringLiteral("MSysScript::PNGFiles"), QStringLiteral("MSysScript::JPEGFiles"),
               QStringLiteral("MSysScript::TiffFiles")};
      break;
    case Type::Python: types = {QStringLiteral("MSysScript::PythonFiles")}; break;
    case Type::Xml: types = {QStringLiteral("MSysScript::XmlFiles")}; break;
    default: break;
  }
  types << QStringLiteral("AllFiles");
  const QStringList files = GTools::FileDialog::getFileNames(
      this, _file_type == Type::Directory ? GTools::FileDialog::Directory : GTools::FileDialog::Open,
      other("Select File"), types, _file->text());
  if (files.isEmpty() || files.first() == _file->text())
    return;
  _file->setText(files.first());
  Q_EMIT signalChanged();
}

}  // namespace Vel::MSysScript
