#include "menu/msys_script/msys_dialog_display_widgets.h"

#include <QApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSaveFile>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/parse_binary.h"
#include "core/python_string.h"
#include "core/translate.h"
#include "gapp/interaction.h"
#include "gapp/progress.h"
#include "gtools/file_dialog.h"
#include "gtools/vel_separator.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

using namespace WidgetTools;

namespace {

const QString TAG_TEXT = QStringLiteral("text");
const QString TAG_TITLE = QStringLiteral("title");
// Larger spacers and images than a screen only push the dialog off it.
constexpr int MAX_SPACER_SIZE = 10000;
constexpr int MAX_IMAGE_SIZE = 10000;

int sizeArg(const QVariant& value)
{
  if (!isInteger(value) || value.toLongLong() < 0 || value.toLongLong() > MAX_SPACER_SIZE)
    throwTypeError();
  return static_cast<int>(value.toLongLong());
}

}  // namespace

const QString LabelWidget::TYPE_ID = QStringLiteral("label");

LabelWidget::LabelWidget() : DialogWidget(TYPE_ID), _label(new QLabel(this))
{
  // Rich text where the text is markup; links open as a person expects.
  _label->setTextFormat(Qt::AutoText);
  _label->setWordWrap(true);
  _label->setOpenExternalLinks(true);
  innerLayout(this)->addWidget(_label);
}

bool LabelWidget::checkConfiguration(QString* error) const
{
  if (!DialogWidget::checkConfiguration(error))
    return false;
  if (!_label->text().isEmpty())
    return true;
  if (error)
    *error = editorError("For object \"%1\" no text was entered yet.").arg(getName());
  return false;
}

void LabelWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  _label->setText(valueOr<QString>(node, TAG_TEXT, QString()));
}

void LabelWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_TEXT, _label->text()));
}

QString LabelWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.LabelWidget (name='%1')").arg(nameText(this));
}

QVariant LabelWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TEXT)
    return _label->text();
  return DialogWidget::__getattr__(name);
}

void LabelWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_TEXT)
    _label->setText(textArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> LabelWidget::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_TEXT, "str", "Label text"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

namespace {

const QString TAG_MINIMUM = QStringLiteral("minimum");
const QString TAG_MAXIMUM = QStringLiteral("maximum");
const QString TAG_PARTS = QStringLiteral("parts");
const QString TAG_STEP = QStringLiteral("step");
const QString TAG_MODE = QStringLiteral("mode");

template <typename T>
T wordOr(const Xml::Enumeration<T>& table, const QDomNode& node, const QString& tag, T fallback, const char* message)
{
  if (!Xml::hasChild(node, tag))
    return fallback;
  const QString word = Xml::getValue<QString>(node, tag);
  try {
    return table.create(word);
  } catch (const ScriptTypeException&) {
    throw Xml::ParseException(Xml::getChild(node, tag), errorText(message).arg(word));
  }
}

template <typename T>
T wordArg(const Xml::Enumeration<T>& table, const QVariant& value, const char* message)
{
  const QString word = textArg(value);
  try {
    return table.create(word);
  } catch (const ScriptTypeException&) {
    throw ScriptTypeException(errorText(message).arg(word));
  }
}

}  // namespace

const QString ProgressBarWidget::TYPE_ID = QStringLiteral("display::progressbar");

const Xml::Enumeration<ProgressBarWidget::Text::Type_t>& ProgressBarWidget::texts()
{
  static const Xml::Enumeration<Text::Type_t> table(Text::Percentage, {{Text::None, QStringLiteral("none")},
                                                                       {Text::Percentage, QStringLiteral("percentage")},
                                                                       {Text::Step, QStringLiteral("step")}});
  return table;
}

const Xml::Enumeration<ProgressBarWidget::Mode::Type_t>& ProgressBarWidget::modes()
{
  static const Xml::Enumeration<Mode::Type_t> table(
      Mode::Manual, {{Mode::System, QStringLiteral("system")}, {Mode::Manual, QStringLiteral("manual")}});
  return table;
}

ProgressBarWidget::ProgressBarWidget() : DialogWidget(TYPE_ID), _bar(new QProgressBar(this))
{
  innerLayout(this)->addWidget(_bar);
  _bar->setRange(0, 100);
  _bar->setValue(0);
  // One interface reports the application's progress; a bar in system mode follows it.
  connect(&GApp::Progress::getInstance(), &GApp::Progress::signalProgressChanged, this,
          &ProgressBarWidget::slotProgress);
  connect(&GApp::Progress::getInstance(), &GApp::Progress::signalProgressCleared, this,
          &ProgressBarWidget::slotProgress);
  updateWidget();
}

QVariant ProgressBarWidget::getValue() const
{
  return _bar->value();
}

void ProgressBarWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  const int minimum = valueOr(node, TAG_MINIMUM, 0);
  const int maximum = valueOr(node, TAG_MAXIMUM, 100);
  const int value = valueOr(node, TAG_VALUE, minimum);
  const int parts = valueOr(node, TAG_PARTS, 1);
  const int step = valueOr(node, TAG_STEP, 0);
  const auto text = wordOr(texts(), node, TAG_TEXT, Text::Percentage, "The labeling \"%1\" is invalid.");
  const auto mode = wordOr(modes(), node, TAG_MODE, Mode::Manual, "The type \"%1\" is invalid.");
  _bar->setRange(minimum, std::max(minimum, maximum));
  _bar->setValue(std::clamp(value, _bar->minimum(), _bar->maximum()));
  _parts = std::max(1, parts);
  _step = step;
  _text = text;
  _mode = mode;
  updateWidget();
}

void ProgressBarWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_VALUE, _bar->value()));
  element->appendChild(Xml::createValue(document, TAG_MINIMUM, _bar->minimum()));
  element->appendChild(Xml::createValue(document, TAG_MAXIMUM, _bar->maximum()));
  element->appendChild(Xml::createValue(document, TAG_PARTS, _parts));
  element->appendChild(Xml::createValue(document, TAG_STEP, _step));
  element->appendChild(Xml::createValue(document, TAG_TEXT, texts().getId(_text)));
  element->appendChild(Xml::createValue(document, TAG_MODE, modes().getId(_mode)));
}

QString ProgressBarWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.ProgressBarWidget (name='%1', value=%4, minimum=%5, maximum=%6, text=%2, "
                        "mode=%3, parts=%7, step=%8)")
      .arg(nameText(this), texts().getId(_text), modes().getId(_mode), QString::number(_bar->value()),
           QString::number(_bar->minimum()), QString::number(_bar->maximum()), QString::number(_parts),
           QString::number(_step));
}

QVariant ProgressBarWidget::__getattr__(const QString& name) const
{
  if (name == TAG_MINIMUM)
    return _bar->minimum();
  if (name == TAG_MAXIMUM)
    return _bar->maximum();
  if (name == TAG_PARTS)
    return _parts;
  if (name == TAG_STEP)
    return _step;
  if (name == TAG_TEXT)
    return texts().getId(_text);
  if (name == TAG_MODE)
    return modes().getId(_mode);
  return DialogWidget::__getattr__(name);
}

void ProgressBarWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE)
    _bar->setValue(std::clamp(intArg(value), _bar->minimum(), _bar->maximum()));
  else if (name == TAG_MINIMUM)
    _bar->setRange(intArg(value), std::max(intArg(value), _bar->maximum()));
  else if (name == TAG_MAXIMUM)
    _bar->setRange(std::min(_bar->minimum(), intArg(value)), intArg(value));
  else if (name == TAG_PARTS)
    _parts = std::max(1, intArg(value));
  else if (name == TAG_STEP)
    _step = intArg(value);
  else if (name == TAG_TEXT)
    _text = wordArg(texts(), value, "The text \"%1\" is invalid.");
  else if (name == TAG_MODE)
    _mode = wordArg(modes(), value, "The type \"%1\" is invalid.");
  else {
    DialogWidget::__setattr__(name, value);
    return;
  }
  updateWidget();
}

std::vector<AttributeInfo> ProgressBarWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "int");
  for (AttributeInfo& info : rows)
    if (info.name == TAG_VALUE)
      info.description = attributeText("Current value");
  rows.push_back(row(TAG_MINIMUM, "int", "Minimum value"));
  rows.push_back(row(TAG_MAXIMUM, "int", "Maximum value"));
  rows.push_back(row(TAG_PARTS, "int", "Progress bar parts"));
  rows.push_back(row(TAG_STEP, "int", "Current progress bar step"));
  const QStringList text_words = texts().getIds();
  rows.push_back({TAG_TEXT, QStringLiteral("str"),
                  attributeText("Progress bar text mode (%1, %2, %3)").arg(text_words[0], text_words[1], text_words[2]),
                  false});
  const QStringList mode_words = modes().getIds();
  rows.push_back({TAG_MODE, QStringLiteral("str"),
                  attributeText("Progress bar mode (%1, %2)").arg(mode_words[0], mode_words[1]), false});
  return rows;
}

void ProgressBarWidget::updateWidget()
{
  _bar->setTextVisible(_text != Text::None);
  _bar->setFormat(_text == Text::Step ? QStringLiteral("%1 / %2").arg(_step).arg(_parts) : QStringLiteral("%p%"));
  if (_mode == Mode::System)
    slotProgress();
}

// The application's share of work done, over the bar's range.
void ProgressBarWidget::slotProgress()
{
  if (_mode != Mode::System)
    return;
  const GApp::Progress& progress = GApp::Progress::getInstance();
  _bar->setValue(_bar->minimum() + static_cast<int>(progress.getShare() * (_bar->maximum() - _bar->minimum())));
}

// ---------------------------------------------------------------------------------------------

namespace {

QString fileDialogText(const char* text)
{
  return translate("MSysScript_DialogEditor_filedir", text, "");
}

// The file dialog offers named types; these carry the log's own filters, translated as a whole
// ("All files (*)"), so they are registered from the translated text each time.
QStringList logFileTypes()
{
  const std::pair<const char*, const char*> filters[] = {{"MSysScript::LogAllFiles", "All files (*)"},
                                                         {"MSysScript::LogTextFiles", "ASCII Text (*.txt)"}};
  QStringList types;
  for (const auto& [id, filter] : filters) {
    const QString text = fileDialogText(filter);
    const int open = text.lastIndexOf(QLatin1Char('('));
    const int close = text.lastIndexOf(QLatin1Char(')'));
    const QStringList patterns = text.mid(open + 1, close - open - 1).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    GTools::FileDialog::registerFileType(QString::fromLatin1(id), text.left(open).trimmed(), patterns);
    types << QString::fromLatin1(id);
  }
  return types;
}

}  // namespace

const QString LogWidget::TYPE_ID = QStringLiteral("display::log");
const QString LogWidget::TAG_TEXT = QStringLiteral("text");
const QString LogWidget::TAG_WORD_WRAP = QStringLiteral("word_wrap");
const QString LogWidget::TAG_SHOW_SAVE = QStringLiteral("show_save");
const QString LogWidget::TAG_SAVE_DIALOG_TITLE = QStringLiteral("save_dialog_title");
const QString LogWidget::TAG_SCROLL_AUTOMATICALLY = QStringLiteral("scroll_automatically");

LogWidget::LogWidget()
    : DialogWidget(TYPE_ID),
      _log(new QPlainTextEdit(this)),
      _save(new QPushButton(translate("MSysScript_DialogWidget_other", "Save", ""), this))
{
  _log->setObjectName(QStringLiteral("_log"));
  _log->setReadOnly(true);
  _save->setObjectName(QStringLiteral("_save"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_log, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(_save);
  layout->addLayout(buttons);
  setFocusProxy(_log);
  connect(_save, &QPushButton::clicked, this, &LogWidget::slotSave);
  updateWidget();
}

QString LogWidget::getText() const
{
  return _log->toPlainText();
}

QString LogWidget::getSaveDialogTitle() const
{
  const QString title = _save_dialog_title.trimmed();
  return title.isEmpty() ? fileDialogText("Save File") : title;
}

bool LogWidget::saveTo(const QString& file) const
{
  // Written beside the file and moved over it at the end: a failure leaves no part of the text.
  QSaveFile out(file);
  if (out.open(QIODevice::WriteOnly | QIODevice::Text)) {
    out.write(getText().toUtf8());
    if (out.commit())
      return true;
  }
  GApp::ErrorDialog(QString::fromLatin1(ERR_SAVE_FILE),
                    errorText("Cannot open file for writing: %1").arg(QDir::toNativeSeparators(file)));
  return false;
}

bool LogWidget::checkConfiguration(QString* error) const
{
  if (!DialogWidget::checkConfiguration(error))
    return false;
  if (!_show_save || !_save_dialog_title.isEmpty())
    return true;
  if (error)
    *error = editorError("The dialog title of the save dialog must not be empty.");
  return false;
}

void LogWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  const QString text = Xml::hasChild(node, TAG_TEXT) ? Xml::getCData(node, TAG_TEXT) : QString();
  const bool word_wrap = valueOr(node, TAG_WORD_WRAP, false);
  const bool show_save = valueOr(node, TAG_SHOW_SAVE, false);
  const QString title = valueOr<QString>(node, TAG_SAVE_DIALOG_TITLE, QString());
  const bool scroll = valueOr(node, TAG_SCROLL_AUTOMATICALLY, true);
  _word_wrap = word_wrap;
  _show_save = show_save;
  _save_dialog_title = title;
  _scroll_automatically = scroll;
  updateWidget();
  setText(text);
}

void LogWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  // Free text: whatever a script logged, markup and section ends included.
  element->appendChild(Xml::createCData(document, TAG_TEXT, getText()));
  element->appendChild(Xml::createValue(document, TAG_WORD_WRAP, _word_wrap));
  element->appendChild(Xml::createValue(document, TAG_SHOW_SAVE, _show_save));
  element->appendChild(Xml::createValue(document, TAG_SAVE_DIALOG_TITLE, _save_dialog_title));
  element->appendChild(Xml::createValue(document, TAG_SCROLL_AUTOMATICALLY, _scroll_automatically));
}

// The last field is named without a value; scripts written against this form rely on it.
QString LogWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.LogWidget (name='%1', show_save=%2, word_wrap=%3, scroll_automatically)")
      .arg(nameText(this), boolText(_show_save), boolText(_word_wrap));
}

QVariant LogWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TEXT)
    return getText();
  if (name == TAG_WORD_WRAP)
    return _word_wrap;
  if (name == TAG_SHOW_SAVE)
    return _show_save;
  if (name == TAG_SAVE_DIALOG_TITLE)
    return _save_dialog_title;
  if (name == TAG_SCROLL_AUTOMATICALLY)
    return _scroll_automatically;
  return DialogWidget::__getattr__(name);
}

void LogWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_TEXT) {
    setText(textArg(value));
    return;
  }
  if (name == TAG_WORD_WRAP)
    _word_wrap = boolArg(value);
  else if (name == TAG_SHOW_SAVE)
    _show_save = boolArg(value);
  else if (name == TAG_SAVE_DIALOG_TITLE)
    _save_dialog_title = textArg(value);
  else if (name == TAG_SCROLL_AUTOMATICALLY)
    _scroll_automatically = boolArg(value);
  else {
    DialogWidget::__setattr__(name, value);
    return;
  }
  updateWidget();
}

std::vector<AttributeInfo> LogWidget::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_TEXT, "str", "Log text"));
  rows.push_back(row(TAG_WORD_WRAP, "bool", "Wrap log text"));
  rows.push_back(row(TAG_SHOW_SAVE, "bool", "Show save button"));
  rows.push_back(row(TAG_SAVE_DIALOG_TITLE, "str", "Title of the save dialog"));
  rows.push_back(row(TAG_SCROLL_AUTOMATICALLY, "bool", "Scroll to end of text when new lines are added"));
  return rows;
}

void LogWidget::updateWidget()
{
  DialogWidget::updateWidget();
  _log->setLineWrapMode(_word_wrap ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
  _save->setVisible(_show_save);
}

// A script replaces the whole text; the view goes to its end when the log follows new lines, and
// otherwise stays where the person was reading.
void LogWidget::setText(const QString& text)
{
  QScrollBar* bar = _log->verticalScrollBar();
  const int position = bar->value();
  _log->setPlainText(text);
  if (_scroll_automatically) {
    // The cursor keeps the end in view when the log is laid out again; the bar shows all of it,
    // the empty line after a last line break included.
    _log->moveCursor(QTextCursor::End);
    bar->setValue(bar->maximum());
  } else {
    bar->setValue(position);
  }
}

void LogWidget::slotSave()
{
  const QStringList files =
      GTools::FileDialog::getFileNames(this, GTools::FileDialog::Save, getSaveDialogTitle(), logFileTypes());
  if (!files.isEmpty())
    saveTo(files.first());
}

// ---------------------------------------------------------------------------------------------

namespace {

QString placeholderText()
{
  return otherText("<Placeholder for an image>");
}

// Paints the element's picture at its shown size, centred; in the dialog editor an element
// without one shows where it will be.
class ImageView : public QWidget
{
public:
  explicit ImageView(ImageWidget* owner) : QWidget(owner), _owner(owner)
  {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  }

  QSize sizeHint() const override
  {
    const QSize shown = _owner->getShownSize();
    if (shown.isValid())
      return shown;
    if (!showsPlaceholder())
      return QSize(0, 0);
    const QSize text = fontMetrics().size(0, placeholderText());
    return text + QSize(24, 24);
  }

  QSize minimumSizeHint() const override { return sizeHint(); }

protected:
  void paintEvent(QPaintEvent*) override
  {
    QPainter painter(this);
    const QPixmap pixmap = _owner->getShownPixmap();
    if (!pixmap.isNull()) {
      QRect target(QPoint(0, 0), _owner->getShownSize());
      target.moveCenter(rect().center());
      painter.drawPixmap(target, pixmap);
    } else if (showsPlaceholder()) {
      painter.setPen(QPen(palette().color(QPalette::Mid), 1, Qt::DashLine));
      painter.drawRect(rect().adjusted(0, 0, -1, -1));
      painter.setPen(palette().color(QPalette::WindowText));
      painter.drawText(rect(), Qt::AlignCenter, placeholderText());
    }
  }

private:
  bool showsPlaceholder() const
  {
    return !_owner->hasImage() && _owner->getDialogMode() == DialogWidget::DialogMode::Editor;
  }

  ImageWidget* _owner;
};

QStyle::StandardPixmap standardPixmap(ImageWidget::SystemImage::Type_t type)
{
  switch (type) {
    case ImageWidget::SystemImage::Warning: return QStyle::SP_MessageBoxWarning;
    case ImageWidget::SystemImage::Critical: return QStyle::SP_MessageBoxCritical;
    case ImageWidget::SystemImage::Question: return QStyle::SP_MessageBoxQuestion;
    case ImageWidget::SystemImage::Information: break;
  }
  return QStyle::SP_MessageBoxInformation;
}

int imageSizeOr(const QDomNode& node, const QString& tag, int fallback)
{
  const int size = valueOr(node, tag, fallback);
  if (size < 1 || size > MAX_IMAGE_SIZE)
    throw Xml::ParseException(Xml::getChild(node, tag),
                              errorText("The value of tag '%1' is out of range.").arg(tag));
  return size;
}

int imageSizeArg(const QVariant& value)
{
  if (!isInteger(value) || value.toLongLong() < 1 || value.toLongLong() > MAX_IMAGE_SIZE)
    throwTypeError();
  return static_cast<int>(value.toLongLong());
}

[[noreturn]] void throwInvalidSystemImage(const QString& word)
{
  throw ScriptTypeException(editorError("The system image name \"%1\" is invalid.").arg(word));
}

}  // namespace

const QString ImageWidget::TYPE_ID = QStringLiteral("image");
const QString ImageWidget::TAG_USE_SYSTEM_IMAGE = QStringLiteral("use_system_image");
const QString ImageWidget::TAG_SYSTEM_IMAGE = QStringLiteral("system_image");
const QString ImageWidget::TAG_DATA = QStringLiteral("data");
const QString ImageWidget::TAG_FILE_NAME = QStringLiteral("file_name");
const QString ImageWidget::TAG_KEEP_ORIGINAL_SIZE = QStringLiteral("keep_original_size");
const QString ImageWidget::TAG_KEEP_ASPECT = QStringLiteral("keep_aspect");
const QString ImageWidget::TAG_WIDTH = QStringLiteral("width");
const QString ImageWidget::TAG_HEIGHT = QStringLiteral("height");
const QString ImageWidget::ATTR_SCALING = QStringLiteral("scaling");

const Xml::Enumeration<ImageWidget::SystemImage::Type_t>& ImageWidget::systemImages()
{
  static const Xml::Enumeration<SystemImage::Type_t> table(
      SystemImage::Information, {{SystemImage::Information, QStringLiteral("system_message_information")},
                                 {SystemImage::Warning, QStringLiteral("system_message_warning")},
                                 {SystemImage::Critical, QStringLiteral("system_message_critical")},
                                 {SystemImage::Question, QStringLiteral("system_message_question")}});
  return table;
}

std::vector<std::pair<QString, QString>> ImageWidget::systemImageLabels()
{
  const QStringList labels = {otherText("Information"), otherText("Warning"), otherText("Critical"),
                              otherText("Question")};
  const QStringList words = systemImages().getIds();
  std::vector<std::pair<QString, QString>> items;
  for (int index = 0; index < words.size(); ++index)
    items.emplace_back(labels[index], words[index]);
  return items;
}

QIcon ImageWidget::systemIcon(SystemImage::Type_t type)
{
  return QApplication::style()->standardIcon(standardPixmap(type));
}

int ImageWidget::systemImageExtent()
{
  return QApplication::style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
}

ImageWidget::ImageWidget() : DialogWidget(TYPE_ID), _view(new ImageView(this))
{
  _view->setObjectName(QStringLiteral("_image"));
  innerLayout(this)->addWidget(_view);
  updateWidget();
}

void ImageWidget::setImage(const QImage& image, const QString& fileName)
{
  _image = image;
  _file_name = fileName;
  updateWidget();
}

bool ImageWidget::hasImage() const
{
  return _use_system_image || !_image.isNull();
}

QSize ImageWidget::ownSize() const
{
  if (_use_system_image)
    return QSize(systemImageExtent(), systemImageExtent());
  return _image.size();
}

QSize ImageWidget::getShownSize() const
{
  if (!hasImage())
    return QSize();
  const QSize own = ownSize();
  if (_keep_original_size)
    return own;
  if (_keep_aspect)
    return own.scaled(_width, _height, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
  return QSize(_width, _height);
}

// Both ways of fitting the picture into width and height scale it by the smaller ratio; only
// the one that ignores the aspect stretches it further along the other side.
double ImageWidget::scaling() const
{
  if (!hasImage())
    throw ScriptTypeException(errorText("The image is not scaleable."));
  if (_keep_original_size)
    return 1.0;
  const QSize own = ownSize();
  return std::min(double(_width) / own.width(), double(_height) / own.height());
}

void ImageWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  const bool use_system_image = valueOr(node, TAG_USE_SYSTEM_IMAGE, false);
  auto system_image = SystemImage::Information;
  if (Xml::hasChild(node, TAG_SYSTEM_IMAGE)) {
    const QString word = Xml::getValue<QString>(node, TAG_SYSTEM_IMAGE);
    try {
      system_image = systemImages().create(word);
    } catch (const ScriptTypeException&) {
      throw Xml::ParseException(Xml::getChild(node, TAG_SYSTEM_IMAGE),
                                editorError("The system image name \"%1\" is invalid.").arg(word));
    }
  }
  // The picture travels in the definition; the file it came from is only named, and may not
  // exist where the dialog runs.
  const QImage image = imageOr(node, TAG_DATA);
  const QString file_name = valueOr<QString>(node, TAG_FILE_NAME, QString());
  const bool keep_original_size = valueOr(node, TAG_KEEP_ORIGINAL_SIZE, true);
  const bool keep_aspect = valueOr(node, TAG_KEEP_ASPECT, true);
  const int width = imageSizeOr(node, TAG_WIDTH, 100);
  const int height = imageSizeOr(node, TAG_HEIGHT, 100);

  _use_system_image = use_system_image;
  _system_image = system_image;
  _image = image;
  _file_name = file_name;
  _keep_original_size = keep_original_size;
  _keep_aspect = keep_aspect;
  _width = width;
  _height = height;
  updateWidget();
}

void ImageWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_USE_SYSTEM_IMAGE, _use_system_image));
  element->appendChild(Xml::createValue(document, TAG_SYSTEM_IMAGE, systemImages().getId(_system_image)));
  if (!_image.isNull())
    element->appendChild(createImage(document, TAG_DATA, _image));
  element->appendChild(Xml::createValue(document, TAG_FILE_NAME, _file_name));
  element->appendChild(Xml::createValue(document, TAG_KEEP_ORIGINAL_SIZE, _keep_original_size));
  element->appendChild(Xml::createValue(document, TAG_KEEP_ASPECT, _keep_aspect));
  element->appendChild(Xml::createValue(document, TAG_WIDTH, _width));
  element->appendChild(Xml::createValue(document, TAG_HEIGHT, _height));
}

QString ImageWidget::__repr__() const
{
  // One substitution for all places: a name or file name holding "%3" stays as it is.
  return QStringLiteral("zut.dialog.ImageWidget (name='%1', width=%3, height=%4, file_name='%2')")
      .arg(nameText(this), escapePythonString(_file_name), QString::number(_width), QString::number(_height));
}

QVariant ImageWidget::__getattr__(const QString& name) const
{
  if (name == TAG_USE_SYSTEM_IMAGE)
    return _use_system_image;
  if (name == TAG_SYSTEM_IMAGE)
    return systemImages().getId(_system_image);
  if (name == TAG_DATA)
    return imageBytes(_image);
  if (name == TAG_FILE_NAME)
    return _file_name;
  if (name == TAG_KEEP_ORIGINAL_SIZE)
    return _keep_original_size;
  if (name == TAG_KEEP_ASPECT)
    return _keep_aspect;
  if (name == TAG_WIDTH)
    return _width;
  if (name == TAG_HEIGHT)
    return _height;
  if (name == ATTR_SCALING)
    return scaling();
  if (name == TAG_ATTRIBUTES && !hasImage()) {
    // Without a picture the scaling is listed as None; reading it alone is the script's fault.
    QVariantMap attributes;
    for (const AttributeInfo& info : getAttributeInfo())
      if (info.name != TAG_ATTRIBUTES)
        attributes.insert(info.name, info.name == ATTR_SCALING ? QVariant() : __getattr__(info.name));
    return attributes;
  }
  return DialogWidget::__getattr__(name);
}

void ImageWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_USE_SYSTEM_IMAGE) {
    _use_system_image = boolArg(value);
  } else if (name == TAG_SYSTEM_IMAGE) {
    const QString word = textArg(value);
    try {
      _system_image = systemImages().create(word);
    } catch (const ScriptTypeException&) {
      throwInvalidSystemImage(word);
    }
  } else if (name == TAG_DATA) {
    _image = imageArg(value);
  } else if (name == TAG_FILE_NAME) {
    // The file is read before anything changes; an empty name drops the picture.
    const QString file_name = textArg(value);
    QImage image;
    if (!file_name.isEmpty() && !image.load(file_name))
      throw ScriptTypeException(errorText("Cannot load \"%1\".").arg(file_name));
    _image = image;
    _file_name = file_name;
  } else if (name == TAG_KEEP_ORIGINAL_SIZE) {
    _keep_original_size = boolArg(value);
  } else if (name == TAG_KEEP_ASPECT) {
    _keep_aspect = boolArg(value);
  } else if (name == TAG_WIDTH) {
    _width = imageSizeArg(value);
  } else if (name == TAG_HEIGHT) {
    _height = imageSizeArg(value);
  } else if (name == ATTR_SCALING) {
    // The picture's own size times the factor; the aspect stays as it is.
    if (value.typeId() != QMetaType::Double && !isInteger(value))
      throwTypeError();
    const double factor = value.toDouble();
    if (!hasImage())
      throw ScriptTypeException(errorText("The image is not scaleable."));
    const QSize own = ownSize();
    const double width = std::round(own.width() * factor);
    const double height = std::round(own.height() * factor);
    if (!std::isfinite(factor) || factor <= 0 || width < 1 || height < 1 || width > MAX_IMAGE_SIZE ||
        height > MAX_IMAGE_SIZE)
      throwTypeError();
    _width = static_cast<int>(width);
    _height = static_cast<int>(height);
    _keep_original_size = false;
  } else {
    DialogWidget::__setattr__(name, value);
    return;
  }
  updateWidget();
}

std::vector<AttributeInfo> ImageWidget::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_USE_SYSTEM_IMAGE, "bool", "Use system image instead of a user defined custom image"));
  rows.push_back({TAG_SYSTEM_IMAGE, QStringLiteral("str"),
                  attributeText("Name of the system image to display. Valid names are: %1")
                      .arg(systemImages().getIds().join(QStringLiteral(", "))),
                  false});
  rows.push_back(row(TAG_DATA, Parse::Binary::TYPE_NAME, "Custom image data to be displayed"));
  rows.push_back(row(TAG_FILE_NAME, "str", "Source file name of the image"));
  rows.push_back(row(TAG_KEEP_ORIGINAL_SIZE, "bool", "Keep original image size"));
  rows.push_back(row(TAG_KEEP_ASPECT, "bool", "Keep original image aspect ratio"));
  rows.push_back(row(TAG_WIDTH, "int", "Image width"));
  rows.push_back(row(TAG_HEIGHT, "int", "Image height"));
  rows.push_back(row(ATTR_SCALING, "float", "Ratio of the shown size to the image's own size"));
  return rows;
}

// The picture is scaled once here, smoothly, not on every paint.
void ImageWidget::updateWidget()
{
  DialogWidget::updateWidget();
  const QSize shown = getShownSize();
  if (!shown.isValid())
    _shown = QPixmap();
  else if (_use_system_image)
    _shown = systemIcon(_system_image).pixmap(shown);
  else
    _shown = QPixmap::fromImage(_image.scaled(shown, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
  _view->updateGeometry();
  _view->update();
}

// ---------------------------------------------------------------------------------------------

const QString SeparatorWidget::TYPE_ID = QStringLiteral("separator");

SeparatorWidget::SeparatorWidget() : DialogWidget(TYPE_ID), _separator(new Vel_Separator(this))
{
  innerLayout(this)->addWidget(_separator);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SeparatorWidget::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  _separator->setTitle(valueOr<QString>(node, TAG_TITLE, QString()));
}

void SeparatorWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_TITLE, _separator->getTitle()));
}

// The title stands where the others show the name; scripts rely on this form.
QString SeparatorWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.SeparatorWidget (title='%1')").arg(escapePythonString(_separator->getTitle()));
}

QVariant SeparatorWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TITLE)
    return _separator->getTitle();
  return DialogWidget::__getattr__(name);
}

void SeparatorWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_TITLE)
    _separator->setTitle(textArg(value));
  else
    DialogWidget::__setattr__(name, value);
}

std::vector<AttributeInfo> SeparatorWidget::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_TITLE, "str", "Separator title"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

const QString SpacerWidgetBase::TAG_MINIMUM_SIZE = QStringLiteral("minimum_size");

SpacerWidgetBase::SpacerWidgetBase(const QString& creatorId, Qt::Orientation orientation, const char* className)
    : DialogWidget(creatorId), _orientation(orientation), _class_name(className)
{
  updateWidget();
}

void SpacerWidgetBase::parseXml(const QDomNode& node)
{
  DialogWidget::parseXml(node);
  const int size = valueOr(node, TAG_MINIMUM_SIZE, 0);
  if (size < 0 || size > MAX_SPACER_SIZE)
    throw Xml::ParseException(Xml::getChild(node, TAG_MINIMUM_SIZE),
                              errorText("The value of tag '%1' is out of range.").arg(TAG_MINIMUM_SIZE));
  _minimum_size = size;
  updateWidget();
}

void SpacerWidgetBase::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_MINIMUM_SIZE, _minimum_size));
}

QString SpacerWidgetBase::__repr__() const
{
  return QStringLiteral("zut.dialog.%1 ()").arg(QLatin1String(_class_name));
}

QVariant SpacerWidgetBase::__getattr__(const QString& name) const
{
  if (name == TAG_MINIMUM_SIZE)
    return _minimum_size;
  return DialogWidget::__getattr__(name);
}

void SpacerWidgetBase::__setattr__(const QString& name, const QVariant& value)
{
  if (name != TAG_MINIMUM_SIZE) {
    DialogWidget::__setattr__(name, value);
    return;
  }
  _minimum_size = sizeArg(value);
  updateWidget();
}

std::vector<AttributeInfo> SpacerWidgetBase::getAttributeInfo() const
{
  auto rows = DialogWidget::getAttributeInfo();
  rows.push_back(row(TAG_MINIMUM_SIZE, "int", "Minimum spacer size"));
  return rows;
}

// Grows along its direction, takes no room across it.
void SpacerWidgetBase::updateWidget()
{
  if (_orientation == Qt::Horizontal) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    setMinimumSize(_minimum_size, 0);
  } else {
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Expanding);
    setMinimumSize(0, _minimum_size);
  }
}

const QString HorizontalSpacerWidget::TYPE_ID = QStringLiteral("spacer::horizontal");

HorizontalSpacerWidget::HorizontalSpacerWidget()
    : SpacerWidgetBase(TYPE_ID, Qt::Horizontal, "HorizontalSpacerWidget")
{}

const QString VerticalSpacerWidget::TYPE_ID = QStringLiteral("spacer::vertical");

VerticalSpacerWidget::VerticalSpacerWidget() : SpacerWidgetBase(TYPE_ID, Qt::Vertical, "VerticalSpacerWidget") {}

// ---------------------------------------------------------------------------------------------

LabelConfiguration::LabelConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Description field")));
  addProperty(new TextProperty(TAG_TEXT, otherText("Text")));
}

ProgressBarConfiguration::ProgressBarConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  const auto widgetText = [](const char* text) { return translate("MSysScript_DialogWidget_other", text, ""); };
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Progress bar")));
  addProperty(new SelectorProperty(TAG_MODE, otherText("Type"),
                                   {{otherText("Automatic"), QStringLiteral("system")},
                                    {otherText("Manual"), QStringLiteral("manual")}}));
  addProperty(new IntegerProperty(DialogWidget::TAG_VALUE, otherText("Default value")));
  addProperty(new IntegerProperty(TAG_MINIMUM, otherText("Minimum")));
  addProperty(new IntegerProperty(TAG_MAXIMUM, otherText("Maximum")));
  addProperty(new SelectorProperty(TAG_TEXT, otherText("Labeling"),
                                   {{widgetText("No labeling"), QStringLiteral("none")},
                                    {widgetText("Percent"), QStringLiteral("percentage")},
                                    {widgetText("Step"), QStringLiteral("step")}}));
}

LogConfiguration::LogConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Log")));
  addProperty(new BoolProperty(LogWidget::TAG_WORD_WRAP, otherText("Word wrap")));
  addProperty(new BoolProperty(LogWidget::TAG_SHOW_SAVE, otherText("Show \"Save\" button")));
  addProperty(new StringProperty(LogWidget::TAG_SAVE_DIALOG_TITLE, otherText("Title of save dialog")));
  addProperty(new BoolProperty(LogWidget::TAG_SCROLL_AUTOMATICALLY, otherText("Scroll automatically")));
}

namespace {

// Room for the preview of a picture in the image's panel.
constexpr int PREVIEW_EXTENT = 96;

}  // namespace

ImageConfiguration::ImageConfiguration(QWidget* parent) : ElementConfiguration(parent), _preview(new QLabel(this))
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Image")));
  _use_system_image = new BoolProperty(ImageWidget::TAG_USE_SYSTEM_IMAGE, otherText("Use system image"));
  addProperty(_use_system_image);
  SelectorProperty::Items items;
  for (const auto& [label, word] : ImageWidget::systemImageLabels())
    items.emplace_back(label, word);
  _system_image = new SelectorProperty(ImageWidget::TAG_SYSTEM_IMAGE, otherText("System image"), items);
  addProperty(_system_image);
  // Without a key: the element's file name reads the file, which the panel has done already.
  _file = new FileProperty(QString(), otherText("File"));
  _file->setFileType(FileProperty::File::Image);
  addProperty(_file);
  addProperty(new BoolProperty(ImageWidget::TAG_KEEP_ORIGINAL_SIZE, otherText("Keep original size")));
  addProperty(new BoolProperty(ImageWidget::TAG_KEEP_ASPECT, otherText("Keep aspect ratio")));
  for (const auto& [key, label] :
       {std::pair{ImageWidget::TAG_WIDTH, "Width"}, std::pair{ImageWidget::TAG_HEIGHT, "Height"}}) {
    auto* size = new IntegerProperty(key, otherText(label));
    size->setMinimumValue(1);
    size->setMaximumValue(MAX_IMAGE_SIZE);
    addProperty(size);
  }

  _preview->setObjectName(QStringLiteral("_preview"));
  _preview->setAlignment(Qt::AlignCenter);
  _preview->setMinimumHeight(PREVIEW_EXTENT + 8);
  _preview->setFrameShape(QFrame::StyledPanel);
  layout()->addWidget(_preview);
  connect(this, &ElementConfiguration::signalModified, this, &ImageConfiguration::slotChanged);
  updatePreview();
}

void ImageConfiguration::setup(const DialogWidget* widget)
{
  ElementConfiguration::setup(widget);
  const auto* image = qobject_cast<const ImageWidget*>(widget);
  _file_at_setup = image ? image->getFileName() : QString();
  _file_read = _file_at_setup;
  _image = image ? image->getImage() : QImage();
  _file->setValue(_file_at_setup);
  updatePreview();
}

// A file the person has picked or typed is read at once for the preview; one that cannot be read
// shows no picture until it can.
void ImageConfiguration::slotChanged()
{
  const QString file = _file->getValue().toString();
  if (file != _file_read) {
    _file_read = file;
    _image = QImage();
    if (!file.isEmpty())
      _image.load(file);
  }
  updatePreview();
}

void ImageConfiguration::apply(DialogWidget* widget)
{
  ElementConfiguration::apply(widget);
  auto* image = qobject_cast<ImageWidget*>(widget);
  const QString file = _file->getValue().toString();
  if (!image || file == _file_at_setup)
    return;
  if (!file.isEmpty() && _image.isNull() && !_image.load(file)) {
    // The element keeps the picture it had.
    GApp::ErrorDialog(QString::fromLatin1(ERR_LOAD_IMAGE),
                      errorText("Cannot load the image file \"%1\".").arg(QDir::toNativeSeparators(file)));
    return;
  }
  image->setImage(_image, file);
  _file_at_setup = file;
}

void ImageConfiguration::updatePreview()
{
  QPixmap picture;
  if (_use_system_image->getValue().toBool()) {
    const QString word = _system_image->getValue().toString();
    auto type = ImageWidget::SystemImage::Information;
    for (const auto& [value, id] : ImageWidget::systemImages().getValues())
      if (id == word)
        type = value;
    picture = ImageWidget::systemIcon(type).pixmap(ImageWidget::systemImageExtent());
  } else if (!_image.isNull()) {
    const QSize size = _image.size().boundedTo(QSize(PREVIEW_EXTENT, PREVIEW_EXTENT));
    picture = QPixmap::fromImage(_image.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
  }
  if (picture.isNull())
    _preview->setText(otherText("<No image selected>"));
  else
    _preview->setPixmap(picture);
}

SeparatorConfiguration::SeparatorConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText("Separator line")));
  addProperty(new StringProperty(TAG_TITLE, otherText("Title")));
}

SpacerConfiguration::SpacerConfiguration(QWidget* parent, const char* heading, const char* field)
    : ElementConfiguration(parent)
{
  addCommonProperties();
  addProperty(new SeparatorProperty(otherText(heading)));
  auto* size = new IntegerProperty(SpacerWidgetBase::TAG_MINIMUM_SIZE, otherText(field));
  size->setMinimumValue(0);
  size->setMaximumValue(MAX_SPACER_SIZE);
  addProperty(size);
}

}  // namespace Vel::MSysScript
