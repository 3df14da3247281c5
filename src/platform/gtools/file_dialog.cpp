#include "gtools/file_dialog.h"

#include <QFileDialog>
#include <QMap>

#include "gtools/error_dialog.h"

namespace Vel::GTools {

namespace {

struct FileType
{
  QString description;
  QStringList patterns;
};

QMap<QString, FileType>& fileTypes()
{
  static QMap<QString, FileType> types = {
      {QStringLiteral("MSysScript::TiffFiles"), {QStringLiteral("TIFF images"), {"*.tif", "*.tiff"}}},
      {QStringLiteral("MSysScript::JPEGFiles"), {QStringLiteral("JPEG images"), {"*.jpg", "*.jpeg"}}},
      {QStringLiteral("MSysScript::PNGFiles"), {QStringLiteral("PNG images"), {"*.png"}}},
      {QStringLiteral("MSysScript::PythonFiles"), {QStringLiteral("Python scripts"), {"*.py"}}},
      {QStringLiteral("MSysScript::XmlFiles"), {QStringLiteral("XML files"), {"*.xml"}}},
      {QStringLiteral("AllFiles"), {QStringLiteral("All files"), {"*"}}},
  };
  return types;
}

FileDialog::Handler& handler()
{
  static FileDialog::Handler instance;
  return instance;
}

}  // namespace

void FileDialog::registerFileType(const QString& id, const QString& description, const QStringList& patterns)
{
  fileTypes()[id] = {description, patterns};
}

QString FileDialog::getFilter(const QString& id)
{
  const auto pos = fileTypes().constFind(id);
  if (pos == fileTypes().constEnd())
    return QString();
  return QStringLiteral("%1 (%2)").arg(pos->description, pos->patterns.join(QLatin1Char(' ')));
}

QStringList FileDialog::getFileNames(QWidget* parent, Mode mode, const QString& title, const QStringList& types,
                                     const QString& start)
{
  if (handler())
    return handler()(mode, title, types);
  if (!isInteractive())
    return {};
  QStringList filters;
  for (const QString& type : types)
    if (const QString filter = getFilter(type); !filter.isEmpty())
      filters << filter;
  const QString filter = filters.join(QStringLiteral(";;"));
  switch (mode) {
    case Open: {
      const QString file = QFileDialog::getOpenFileName(parent, title, start, filter);
      return file.isEmpty() ? QStringList() : QStringList{file};
    }
    case OpenMany: return QFileDialog::getOpenFileNames(parent, title, start, filter);
    case Save: {
      const QString file = QFileDialog::getSaveFileName(parent, title, start, filter);
      return file.isEmpty() ? QStringList() : QStringList{file};
    }
    case Directory: {
      const QString folder = QFileDialog::getExistingDirectory(parent, title, start);
      return folder.isEmpty() ? QStringList() : QStringList{folder};
    }
  }
  return {};
}

void FileDialog::setHandler(Handler h)
{
  handler() = std::move(h);
}

}  // namespace Vel::GTools
