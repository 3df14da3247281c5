#include "menu/msys_script/msys_dialog_file_widget.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <functional>
#include <optional>
#include <set>

#include "core/prog_error.h"
#include "core/translate.h"
#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_widget_tools.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_value_limits.h"

namespace Vel::MSysScript {

using namespace WidgetTools;

namespace {

const QString TAG_TYPE = QStringLiteral("type");
const QString TAG_TITLE = QStringLiteral("title");
const QString TAG_DEFAULT = QStringLiteral("default");
const QString TAG_LIMITED = QStringLiteral("limited");
const QString TAG_FILE_TYPES = QStringLiteral("file_types");
const QString TAG_FILE_TYPE = QStringLiteral("file_type");
const QString TAG_TYPE_NAME = QStringLiteral("name");
const QString TAG_DESCRIPTION = QStringLiteral("description");
const QString TAG_FILE_TYPES_DEFAULT = QStringLiteral("file_types_default");
const QString KEY_EXTENSIONS = QStringLiteral("extensions");

using Mode = Vel_FileSelect::Mode;
using FileType = Vel_FileSelect::FileType;

// In the order the editor offers them, with the editor's labels.
struct ModeEntry
{
  Mode mode;
  const char* word;
  const char* label;
};

const ModeEntry MODES[] = {
    {Vel_FileSelect::AnyFile, "any", "Any file"},
    {Vel_FileSelect::NewFile, "new", "New file"},
    {Vel_FileSelect::ExistingFile, "file", "Existing file"},
    {Vel_FileSelect::ExistingDirectory, "directory", "Existing folder"},
};

QString modeWord(Mode mode)
{
  for (const ModeEntry& entry : MODES)
    if (entry.mode == mode)
      return QString::fromLatin1(entry.word);
  throw ProgError(QStringLiteral("modeWord"), QStringLiteral(__FILE__), QStringLiteral("Unhandled file mode"));
}

std::optional<Mode> modeOf(const QString& word)
{
  for (const ModeEntry& entry : MODES)
    if (word == QLatin1String(entry.word))
      return entry.mode;
  return std::nullopt;
}

QString modeError(const QString& word)
{
  return editorError("The file mode \"%1\" is invalid.").arg(word);
}

QString patternError(const QString& part)
{
  return editorError("The file extension %1 is invalid. Make sure that an asterisk was entered directly before the "
                     "file extension. Enter one file extension only or separate several file extensions by a space.")
      .arg(part);
}

// A dialog without a title of its own still says what it is for.
QString defaultTitle()
{
  return otherText("Select File");
}

QVariantList fileTypeList(const QList<FileType>& types)
{
  QVariantList list;
  for (const FileType& type : types)
    list << QVariant(QVariantList{type.pattern, type.description});
  return list;
}

// Lists and tuples both arrive as lists; each entry must be a pair of texts.
QList<FileType> fileTypesArg(const QVariant& value)
{
  if (value.typeId() != QMetaType::QVariantList)
    throwTypeError();
  QList<FileType> types;
  for (const QVariant& entry : value.toList()) {
    const QVariantList pair = entry.toList();
    if (entry.typeId() != QMetaType::QVariantList || pair.size() != 2 || pair[0].typeId() != QMetaType::QString ||
        pair[1].typeId() != QMetaType::QString)
      throw ScriptTypeException(editorError("A tuple is expected."));
    types.push_back({pair[0].toString(), pair[1].toString()});
  }
  return types;
}

// The script's form of the limits names extensions without "*.".
QVariantList extensionsOf(const QList<FileType>& types)
{
  QVariantList extensions;
  for (const FileType& type : types)
    for (const QString& part : type.pattern.split(QLatin1Char(' '), Qt::SkipEmptyParts))
      extensions << QVariant(part.startsWith(QLatin1String("*.")) ? part.mid(2) : part);
  return extensions;
}

}  // namespace

// ---------------------------------------------------------------------------------------------

const QString FileWidget::TYPE_ID = QStringLiteral("input::file");

FileWidget::FileWidget() : DialogWidget(TYPE_ID), _select(new Vel_FileSelect(this))
{
  innerLayout(this)->addWidget(_select);
  setFocusProxy(_select);
  _select->setTitle(defaultTitle());
  connect(_select, &Vel_FileSelect::fileNameChanged, this, &FileWidget::slotModified);
}

QString FileWidget::invalidPattern(const QString& pattern)
{
  static const QRegularExpression rule(QStringLiteral("\\*\\.[^\\s,;]*$"));
  for (const QString& part : pattern.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
    const QRegularExpressionMatch match =
        rule.match(part, 0, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption);
    // '$' also matches before a closing line break, which is no extension character either.
    if (!match.hasMatch() || match.capturedLength() != part.size())
      return part;
  }
  return QString();
}

QVariant FileWidget::getValue() const
{
  return _select->getFileName();
}

bool FileWidget::checkConfiguration(QString* error) const
{
  if (!DialogWidget::checkConfiguration(error))
    return false;
  const auto fail = [error](const QString& message) {
    if (error)
      *error = message;
    return false;
  };
  if (_select->isLimited() && _select->getFileTypes().isEmpty())
    return fail(editorError("The object \"%1\" is limited but you have not yet specified the file types.")
                    .arg(getName()));
  if (_select->getTitle().trimmed().isEmpty())
    return fail(
        editorError("For the object \"%1\", the title of the file selection dialog is empty.").arg(getName()));
  for (const FileType& type : _select->getFileTypes())
    if (const QString part = invalidPattern(type.pattern); !part.isEmpty())
      return fail(patternError(part));
  return true;
}

void FileWidget::parseXml(const QDomNode& node)
{
  const QString old_name = getName();
  const QString old_tooltip = getTooltip();
  DialogWidget::parseXml(node);
  // Everything is read before anything changes, so that a fault leaves the element as it was.
  try {
    const QString word = valueOr<QString>(node, TAG_TYPE, modeWord(Vel_FileSelect::AnyFile));
    const std::optional<Mode> mode = modeOf(word);
    if (!mode)
      throw Xml::ParseException(Xml::getChild(node, TAG_TYPE), modeError(word));
    const QString title = valueOr<QString>(node, TAG_TITLE, defaultTitle());
    const QString file = valueOr<QString>(node, TAG_DEFAULT, QString());
    const bool limited = valueOr(node, TAG_LIMITED, false);
    QList<FileType> types;
    if (Xml::hasChild(node, TAG_FILE_TYPES))
      for (const QDomElement& entry : Xml::getChildren(Xml::getChild(node, TAG_FILE_TYPES), TAG_FILE_TYPE))
        types.push_back(
            {Xml::getValue<QString>(entry, TAG_TYPE_NAME), valueOr<QString>(entry, TAG_DESCRIPTION, QString())});
    const QString default_type = valueOr<QString>(node, TAG_FILE_TYPES_DEFAULT, QString());

    _select->setMode(*mode);
    _select->setTitle(title);
    _select->setLimited(limited);
    _select->setFileTypes(types);
    _select->setDefaultFileType(default_type);
    _default_file = file;
    _select->setFileName(file);
  } catch (...) {
    setName(old_name);
    setTooltip(old_tooltip);
    throw;
  }
}

void FileWidget::createXml(QDomDocument* document, QDomElement* element) const
{
  DialogWidget::createXml(document, element);
  element->appendChild(Xml::createValue(document, TAG_TYPE, modeWord(_select->getMode())));
  element->appendChild(Xml::createValue(document, TAG_TITLE, _select->getTitle()));
  element->appendChild(Xml::createValue(document, TAG_DEFAULT, _default_file));
  element->appendChild(Xml::createValue(document, TAG_LIMITED, _select->isLimited()));
  QDomElement types = document->createElement(TAG_FILE_TYPES);
  for (const FileType& type : _select->getFileTypes()) {
    QDomElement entry = document->createElement(TAG_FILE_TYPE);
    entry.appendChild(Xml::createValue(document, TAG_TYPE_NAME, type.pattern));
    entry.appendChild(Xml::createValue(document, TAG_DESCRIPTION, type.description));
    types.appendChild(entry);
  }
  element->appendChild(types);
  element->appendChild(Xml::createValue(document, TAG_FILE_TYPES_DEFAULT, _select->getDefaultFileType()));
}

QString FileWidget::__repr__() const
{
  return QStringLiteral("zut.dialog.FileWidget (name='%1')").arg(nameText(this));
}

QVariant FileWidget::__getattr__(const QString& name) const
{
  if (name == TAG_TYPE)
    return modeWord(_select->getMode());
  if (name == TAG_TITLE)
    return _select->getTitle();
  if (name == TAG_DEFAULT)
    return _default_file;
  if (name == TAG_LIMITED)
    return _select->isLimited();
  if (name == TAG_FILE_TYPES)
    return fileTypeList(_select->getFileTypes());
  if (name == TAG_LIMITS)
    return QVariantMap{{TAG_LIMITED, _select->isLimited()},
                       {KEY_EXTENSIONS, extensionsOf(_select->getFileTypes())}};
  return DialogWidget::__getattr__(name);
}

void FileWidget::__setattr__(const QString& name, const QVariant& value)
{
  if (name == TAG_VALUE) {
    _select->setFileName(textArg(value));
  } else if (name == TAG_TYPE) {
    const QString word = textArg(value);
    const std::optional<Mode> mode = modeOf(word);
    if (!mode)
      throw ScriptTypeException(modeError(word));
    _select->setMode(*mode);
  } else if (name == TAG_TITLE) {
    _select->setTitle(textArg(value));
  } else if (name == TAG_DEFAULT) {
    _default_file = textArg(value);
    _select->setFileName(_default_file);
  } else if (name == TAG_LIMITED) {
    _select->setLimited(boolArg(value));
  } else if (name == TAG_FILE_TYPES) {
    _select->setFileTypes(fileTypesArg(value));
  } else {
    DialogWidget::__setattr__(name, value);
  }
}

void FileWidget::setValueLimits(const ValueLimits& limits)
{
  const auto* files = dynamic_cast<const FileTypeValueLimits*>(&limits);
  if (!files)
    throwTypeError();
  QList<FileType> types;
  for (QString extension : files->getExtensions()) {
    // "stl", ".stl" and "*.stl" all name the same extension; "*" is any extension and the empty
    // one none, as the limits read back give them.
    if (extension.startsWith(QLatin1String("*.")))
      extension.remove(0, 2);
    else if (extension.startsWith(QLatin1Char('.')))
      extension.remove(0, 1);
    const QString pattern = QStringLiteral("*.") + extension;
    if (const QString part = invalidPattern(pattern); !part.isEmpty() || pattern.contains(QLatin1Char(' ')))
      throw ScriptTypeException(patternError(part.isEmpty() ? pattern : part));
    const QString description = extension == QLatin1String("*") ? attributeText("All files")
                                : extension.isEmpty()              ? attributeText("Files without extension")
                                                                   : attributeText("%1 files").arg(extension.toUpper());
    types.push_back({pattern, description});
  }
  _select->setFileTypes(types);
  _select->setLimited(files->isLimited());
}

std::vector<AttributeInfo> FileWidget::getAttributeInfo() const
{
  auto rows = withValueType(DialogWidget::getAttributeInfo(), "str");
  for (AttributeInfo& info : rows)
    if (info.name == TAG_VALUE)
      info.description = attributeText("Selected file");
  rows.push_back({TAG_TYPE, QStringLiteral("str"),
                  attributeText("File selector type (%1, %2, %3, %4)")
                      .arg(modeWord(Vel_FileSelect::AnyFile), modeWord(Vel_FileSelect::NewFile),
                           modeWord(Vel_FileSelect::ExistingFile), modeWord(Vel_FileSelect::ExistingDirectory)),
                  false});
  rows.push_back(row(TAG_TITLE, "str", "File selector dialog title"));
  rows.push_back(row(TAG_DEFAULT, "str", "Default value"));
  rows.push_back(row(TAG_LIMITED, "bool", "Flag for limited file types"));
  rows.push_back(row(TAG_FILE_TYPES, "list", "List of allowed file types"));
  rows.push_back(row(TAG_LIMITS, "dict", "Allowed file types"));
  return rows;
}

// ---------------------------------------------------------------------------------------------

FileConfiguration::FileConfiguration(QWidget* parent) : ElementConfiguration(parent)
{
  SelectorProperty::Items items;
  for (const ModeEntry& entry : MODES)
    items.emplace_back(otherText(entry.label), QString::fromLatin1(entry.word));

  addCommonProperties();
  addProperty(new SeparatorProperty(panelText("File")));
  addProperty(_mode = new SelectorProperty(TAG_TYPE, panelText("Type"), items));
  addProperty(new StringProperty(TAG_TITLE, panelText("Dialog title")));
  addProperty(_default = new FileProperty(TAG_DEFAULT, panelText("Default file")));
  addProperty(_file_types = new FileLimitProperty(TAG_FILE_TYPES, panelText("Edit file types")));
  connect(_mode, &Property::signalModified, this, &FileConfiguration::updateDefaultFileKind);
}

void FileConfiguration::setup(const DialogWidget* widget)
{
  _file_types->setLimited(widget->__getattr__(TAG_LIMITED).toBool());
  ElementConfiguration::setup(widget);
  updateDefaultFileKind();
}

// The flag rides with the file types; it is the element's own attribute all the same.
void FileConfiguration::apply(DialogWidget* widget)
{
  ElementConfiguration::apply(widget);
  widget->__setattr__(TAG_LIMITED, _file_types->isLimited());
}

// A folder's default is picked as a folder.
void FileConfiguration::updateDefaultFileKind()
{
  _default->setFileType(_mode->getValue().toString() == QLatin1String("directory") ? FileProperty::File::Directory
                                                                                     : FileProperty::File::Any);
}

// ---------------------------------------------------------------------------------------------

FileLimitProperty::FileLimitProperty(const QString& key, const QString& name) : Property(key, name)
{
  setValue(QVariantList());
}

Property* FileLimitProperty::clone() const
{
  auto* copy = new FileLimitProperty(getKey(), getName());
  copy->_limited = _limited;
  copyTo(copy);
  return copy;
}

QWidget* FileLimitProperty::createEditor(QWidget* parent)
{
  auto* panel = new FileLimitPropertyWidget(parent);
  connect(panel, &FileLimitPropertyWidget::signalChanged, this, &Property::slotModified);
  return panel;
}

void FileLimitProperty::updateEditorValue(QWidget* editor, const QVariant& value)
{
  auto* widget = qobject_cast<FileLimitPropertyWidget*>(editor);
  VEL_ASSERT(widget != 0);
  widget->setFileTypes(value.toList());
  widget->setLimited(_limited);
}

QVariant FileLimitProperty::commitEditorValue(const QWidget* editor)
{
  const auto* widget = qobject_cast<const FileLimitPropertyWidget*>(editor);
  VEL_ASSERT(widget != 0);
  _limited = widget->isLimited();
  return widget->getFileTypes();
}

FileLimitPropertyWidget::FileLimitPropertyWidget(QWidget* parent) : QWidget(parent), _preview(new QLabel(this))
{
  setObjectName(QStringLiteral("VelMSysScript_FileLimit_widget"));
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  _preview->setObjectName(QStringLiteral("_preview"));
  // A long list must not widen the property editor; the tooltip shows all of it.
  _preview->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  layout->addWidget(_preview, 1);
  auto* edit = new QToolButton(this);
  edit->setObjectName(QStringLiteral("_edit"));
  edit->setText(QStringLiteral("..."));
  edit->setToolTip(otherText("Edit file types"));
  layout->addWidget(edit);
  connect(edit, &QToolButton::clicked, this, &FileLimitPropertyWidget::slotEdit);
}

// As the property editor shows the list when no editor is open.
QString FileLimitPropertyWidget::previewText(const QVariantList& types)
{
  return PropertyEditorModel::valueText(types);
}

void FileLimitPropertyWidget::setFileTypes(const QVariantList& types)
{
  _types = types;
  _preview->setText(previewText(types));
  _preview->setToolTip(_preview->text());
}

void FileLimitPropertyWidget::slotEdit()
{
  FileTypeTableDialog dialog(this, _types, _limited);
  if (dialog.exec() != QDialog::Accepted)
    return;
  const QVariantList types = dialog.getFileTypes();
  if (types == _types && dialog.isLimited() == _limited)
    return;
  setFileTypes(types);
  _limited = dialog.isLimited();
  Q_EMIT signalChanged();
}

// ---------------------------------------------------------------------------------------------

FileTypeTableDialog::FileTypeTableDialog(QWidget* parent, const QVariantList& types, bool limited)
    : QDialog(parent), _table(new QTableWidget(0, 2, this)), _limited(new QCheckBox(this))
{
  setObjectName(QStringLiteral("VelMSysScript_FileTypes_dialog"));
  setWindowTitle(otherText("File Types"));
  auto* layout = new QVBoxLayout(this);

  _table->setObjectName(QStringLiteral("_table"));
  _table->setHorizontalHeaderLabels({otherText("File extension pattern"), otherText("Description")});
  _table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Interactive);
  _table->horizontalHeader()->setStretchLastSection(true);
  _table->verticalHeader()->hide();
  _table->setSelectionBehavior(QAbstractItemView::SelectRows);
  _table->setColumnWidth(0, 180);
  for (const QVariant& type : types) {
    const QVariantList pair = type.toList();
    if (pair.size() == 2)
      addRow(pair[0].toString(), pair[1].toString());
  }
  layout->addWidget(_table, 1);

  auto* rows = new QHBoxLayout;
  auto* add = new QPushButton(otherText("Add"), this);
  add->setObjectName(QStringLiteral("_add"));
  auto* remove = new QPushButton(otherText("Remove"), this);
  remove->setObjectName(QStringLiteral("_remove"));
  rows->addWidget(add);
  rows->addWidget(remove);
  rows->addStretch(1);
  layout->addLayout(rows);
  connect(add, &QPushButton::clicked, this, &FileTypeTableDialog::slotAdd);
  connect(remove, &QPushButton::clicked, this, &FileTypeTableDialog::slotRemove);

  _limited->setObjectName(QStringLiteral("_limited"));
  _limited->setText(otherText("Offer only these file types"));
  _limited->setChecked(limited);
  layout->addWidget(_limited);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->setObjectName(QStringLiteral("_buttons"));
  // Return finishes typing in the table rather than closing the dialog.
  for (QAbstractButton* button : buttons->buttons())
    if (auto* push = qobject_cast<QPushButton*>(button))
      push->setAutoDefault(false);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  resize(460, 300);
}

void FileTypeTableDialog::addRow(const QString& pattern, const QString& description)
{
  const int row = _table->rowCount();
  _table->insertRow(row);
  _table->setItem(row, 0, new QTableWidgetItem(pattern));
  _table->setItem(row, 1, new QTableWidgetItem(description));
}

// The new row is ready for its pattern to be typed.
void FileTypeTableDialog::slotAdd()
{
  addRow(QString(), QString());
  const int row = _table->rowCount() - 1;
  _table->setCurrentCell(row, 0);
  _table->editItem(_table->item(row, 0));
}

// The selected rows, or the current one when none is selected.
void FileTypeTableDialog::slotRemove()
{
  std::set<int, std::greater<int>> rows;
  for (const QModelIndex& index : _table->selectionModel()->selectedIndexes())
    rows.insert(index.row());
  if (rows.empty() && _table->currentRow() >= 0)
    rows.insert(_table->currentRow());
  for (int row : rows)
    _table->removeRow(row);
}

QVariantList FileTypeTableDialog::getFileTypes() const
{
  QVariantList types;
  for (int row = 0; row < _table->rowCount(); ++row) {
    const QTableWidgetItem* pattern = _table->item(row, 0);
    const QTableWidgetItem* description = _table->item(row, 1);
    const QString text = pattern ? pattern->text().trimmed() : QString();
    if (text.isEmpty())
      continue;
    types << QVariant(QVariantList{text, description ? description->text().trimmed() : QString()});
  }
  return types;
}

bool FileTypeTableDialog::isLimited() const
{
  return _limited->isChecked();
}

}  // namespace Vel::MSysScript
