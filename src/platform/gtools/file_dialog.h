#pragma once

#include <QString>
#include <QStringList>

#include <functional>

#include "core/vel_export.h"

class QWidget;

namespace Vel::GTools {

// The application's file dialog, with its named file types ("MSysScript::PNGFiles" and so on)
// so that every dialog offers the same filters for the same kind of file.
class VEL_EXPORT FileDialog
{
public:
  enum Mode
  {
    Open,
    OpenMany,
    Save,
    Directory,
    // An existing file or the name of a new one; nothing is going to be overwritten, so nobody
    // is asked whether to.
    AnyFile
  };

  // Registers (or replaces) a file type: a description and patterns such as "*.png".
  static void registerFileType(const QString& id, const QString& description, const QStringList& patterns);
  // The Qt filter of a registered type; empty for an unknown id.
  static QString getFilter(const QString& id);
  // A filter for file types that nobody registered ("STL files (*.stl)"); it may stand in the
  // list of types wherever an id may.
  static QString makeFilter(const QString& description, const QStringList& patterns);

  // The files the user chose; empty when cancelled. Without a person, nothing is chosen.
  // `selected` is the entry of `types` that the dialog starts with.
  static QStringList getFileNames(QWidget* parent, Mode mode, const QString& title, const QStringList& types,
                                  const QString& start = QString(), const QString& selected = QString());

  // Everything a dialog is asked with, for handlers that answer in its place.
  struct Request
  {
    Mode mode;
    QString title;
    QStringList types;
    QString start;
    QString selected;
  };

  // Replaces the dialog (tests answer through this); null restores it.
  using Handler = std::function<QStringList(Mode mode, const QString& title, const QStringList& types)>;
  static void setHandler(Handler handler);
  using RequestHandler = std::function<QStringList(const Request& request)>;
  static void setRequestHandler(RequestHandler handler);
};

}  // namespace Vel::GTools
