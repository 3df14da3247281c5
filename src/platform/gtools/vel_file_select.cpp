#include "gtools/vel_file_select.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>

#include "gtools/file_dialog.h"

using Vel::GTools::FileDialog;

Vel_FileSelect::Vel_FileSelect(QWidget* parent)
    : QWidget(parent), _edit(new QLineEdit(this)), _browse(new QToolButton(this))
{
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  _edit->setObjectName(QStringLiteral("_file"));
  layout->addWidget(_edit, 1);
  _browse->setObjectName(QStringLiteral("_browse"));
  _browse->setText(QStringLiteral("..."));
  layout->addWidget(_browse);
  setFocusProxy(_edit);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  connect(_edit, &QLineEdit::textChanged, this, &Vel_FileSelect::fileNameChanged);
  connect(_browse, &QToolButton::clicked, this, &Vel_FileSelect::slotBrowse);
}

void Vel_FileSelect::setFileName(const QString& file)
{
  _edit->setText(file);
}

QString Vel_FileSelect::getFileName() const
{
  return _edit->text();
}

// An entry without a description is shown by its patterns.
QString Vel_FileSelect::filterOf(const FileType& type) const
{
  const QStringList patterns = type.pattern.split(QLatin1Char(' '), Qt::SkipEmptyParts);
  return FileDialog::makeFilter(type.description.isEmpty() ? patterns.join(QLatin1Char(' ')) : type.description,
                                patterns);
}

QStringList Vel_FileSelect::getFilters() const
{
  QStringList filters;
  for (const FileType& type : _file_types)
    filters << filterOf(type);
  if (!_limited)
    filters << FileDialog::getFilter(QStringLiteral("AllFiles"));
  return filters;
}

void Vel_FileSelect::slotBrowse()
{
  FileDialog::Mode mode = FileDialog::AnyFile;
  switch (_mode) {
    case AnyFile: mode = FileDialog::AnyFile; break;
    case NewFile: mode = FileDialog::Save; break;
    case ExistingFile: mode = FileDialog::Open; break;
    case ExistingDirectory: mode = FileDialog::Directory; break;
  }
  QString selected;
  for (const FileType& type : _file_types)
    if (type.pattern == _default_file_type) {
      selected = filterOf(type);
      break;
    }
  const QStringList files = FileDialog::getFileNames(this, mode, _title, getFilters(), getFileName(), selected);
  if (!files.isEmpty())
    setFileName(files.first());
}
