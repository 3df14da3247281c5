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
    Directory
  };

  // Registers (or replaces) a file type: a description and patterns such as "*.png".
  static void registerFileType(const QString& id, const QString& description, const QStringList& patterns);
  // The Qt filter of a registered type; empty for an unknown id.
  static QString getFilter(const QString& id);

  // The files the user chose; empty when cancelled. Without a person, nothing is chosen.
  static QStringList getFileNames(QWidget* parent, Mode mode, const QString& title, const QStringList& types,
                                  const QString& start = QString());

  // Replaces the dialog (tests answer through this); null restores it.
  using Handler = std::function<QStringList(Mode mode, const QString& title, const QStringList& types)>;
  static void setHandler(Handler handler);
};

}  // namespace Vel::GTools
