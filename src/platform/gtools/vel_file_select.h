#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

#include "core/vel_export.h"

class QLineEdit;
class QToolButton;

// A file name field with a browse button that opens the application's file dialog, offering
// the selector's own file types.
class VEL_EXPORT Vel_FileSelect : public QWidget
{
  Q_OBJECT

public:
  enum Mode
  {
    AnyFile,           // an existing file or a new name
    NewFile,           // a file to be written
    ExistingFile,      // a file that is there
    ExistingDirectory  // a folder that is there
  };

  // One entry of the dialog's list of types: patterns separated by spaces ("*.txt *.csv") and
  // the text shown for them.
  struct FileType
  {
    QString pattern;
    QString description;
    bool operator==(const FileType& other) const
    {
      return pattern == other.pattern && description == other.description;
    }
  };

  explicit Vel_FileSelect(QWidget* parent = nullptr);

  void setMode(Mode mode) { _mode = mode; }
  Mode getMode() const { return _mode; }
  void setTitle(const QString& title) { _title = title; }
  const QString& getTitle() const { return _title; }
  void setFileName(const QString& file);
  QString getFileName() const;

  void setFileTypes(const QList<FileType>& types) { _file_types = types; }
  const QList<FileType>& getFileTypes() const { return _file_types; }
  // Limited: only the listed types are offered; otherwise every file may be chosen as well.
  void setLimited(bool limited) { _limited = limited; }
  bool isLimited() const { return _limited; }
  // The pattern of the entry the dialog starts with; one that no entry has selects none.
  void setDefaultFileType(const QString& pattern) { _default_file_type = pattern; }
  const QString& getDefaultFileType() const { return _default_file_type; }

  // The dialog's filters in the order offered, as the file dialog takes them.
  QStringList getFilters() const;

  QLineEdit* lineEdit() const { return _edit; }
  QToolButton* browseButton() const { return _browse; }

public Q_SLOTS:
  // Opens the file dialog at the current file; a choice replaces the file name.
  void slotBrowse();

Q_SIGNALS:
  // Typed, chosen or set: whenever the file name changes.
  void fileNameChanged(const QString& file);

private:
  QString filterOf(const FileType& type) const;

  QLineEdit* _edit;
  QToolButton* _browse;
  Mode _mode = AnyFile;
  QString _title;
  QList<FileType> _file_types;
  bool _limited = false;
  QString _default_file_type;
};
