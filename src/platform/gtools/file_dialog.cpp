#include "gtools/file_dialog.h"

#include <QFileDialog>
#include <QMap>
#include <QRegularExpression>

#include "gapp/interaction.h"

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

FileDialog::RequestHandler& handler()
{
  static FileDialog::RequestHandler instance;
  return instance;
}

// A registered id, or a filter that a caller made for itself.
QString filterOf(const QString& type)
{
  if (const QString filter = FileDialog::getFilter(type); !filter.isEmpty())
    return filter;
  static const QRegularExpression madeFilter(QStringLiteral("^.*\\(.*\\)$"));
  return madeFilter.match(type).hasMatch() ? type : QString();
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

QString FileDialog::makeFilter(const QString& description, const QStringList& patterns)
{
  return QStringLiteral("%1 (%2)").arg(description, patterns.join(QLatin1Char(' ')));
}

QStringList FileDialog::getFileNames(QWidget* parent, Mode mode, const QString& title, const QStringList& types,
                                     const QString& start, const QString& selected)
{
  if (handler())
    return handler()({mode, title, types, start, selected});
  if (!GApp::isInteractive())
    return {};
  QStringList filters;
  for (const QString& type : types)
    if (const QString filter = filterOf(type); !filter.isEmpty())
      filters << filter;
  const QString filter = filters.join(QStringLiteral(";;"));
  QString selected_filter = filterOf(selected);
  const auto single = [](const QString& file) { return file.isEmpty() ? QStringList() : QStringList{file}; };
  switch (mode) {
    case Open: return single(QFileDialog::getOpenFileName(parent, title, start, filter, &selected_filter));
    case OpenMany: return QFileDialog::getOpenFileNames(parent, title, start, filter, &selected_filter);
    case Save: return single(QFileDialog::getSaveFileName(parent, title, start, filter, &selected_filter));
    case AnyFile:
      return single(QFileDialog::getSaveFileName(parent, title, start, filter, &selected_filter,
                                                 QFileDialog::DontConfirmOverwrite));
    case Directory: return single(QFileDialog::getExistingDirectory(parent, title, start));
  }
  return {};
}

void FileDialog::setHandler(Handler h)
{
  if (!h) {
    handler() = nullptr;
    return;
  }
  handler() = [h = std::move(h)](const Request& request) { return h(request.mode, request.title, request.types); };
}

void FileDialog::setRequestHandler(RequestHandler h)
{
  handler() = std::move(h);
}

}  // namespace Vel::GTools
