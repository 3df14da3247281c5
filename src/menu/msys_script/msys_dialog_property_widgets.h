#pragma once

#include <QDialog>
#include <QFont>
#include <QImage>
#include <QString>
#include <QWidget>

class QLabel;
class QLineEdit;
class QTextEdit;
class QToolButton;

namespace Vel::MSysScript {

// Rich text with a preview and a button that opens the rich-text editor.
class TextPropertyWidget : public QWidget
{
  Q_OBJECT

public:
  explicit TextPropertyWidget(QWidget* parent, const QFont& defaultFont);

  void setText(const QString& text);
  const QString& getText() const { return _text; }

Q_SIGNALS:
  void signalChanged();

private Q_SLOTS:
  void slotEdit();

private:
  QString _text;
  QFont _default_font;
  QLabel* _preview;
};

// Rich text with the formats a dialog's texts use: bold, italic, underline.
class RichTextEdit : public QWidget
{
  Q_OBJECT

public:
  RichTextEdit(QWidget* parent, const QString& text, const QFont& defaultFont);
  // The edited text as HTML; the plain text when it has no formatting.
  QString getText() const;
  QTextEdit* textEdit() const { return _edit; }

private:
  QTextEdit* _edit;
};

// The small editor window for rich text: bold, italic, underline, and the text.
class RichTextEditorDialog : public QDialog
{
  Q_OBJECT

public:
  RichTextEditorDialog(QWidget* parent, const QString& text, const QFont& defaultFont);
  QString getText() const { return _edit->getText(); }

private:
  RichTextEdit* _edit;
};

// An image with a preview and the buttons select and delete.
class IconPropertyWidget : public QWidget
{
  Q_OBJECT

public:
  explicit IconPropertyWidget(QWidget* parent);

  void setImage(const QImage& image);
  const QImage& getImage() const { return _image; }
  // The file the user picked the image from; empty when it came from elsewhere or was deleted.
  const QString& getFileName() const { return _file_name; }

Q_SIGNALS:
  void signalChanged();

private Q_SLOTS:
  void slotSelect();
  void slotDelete();

private:
  void updatePreview();

  QImage _image;
  QString _file_name;
  QLabel* _preview;
  QToolButton* _select;
  QToolButton* _delete;
};

// A file name field with a browse and a clear button.
class FilePropertyWidget : public QWidget
{
  Q_OBJECT

public:
  FilePropertyWidget(QWidget* parent, int fileType);

  void setFileName(const QString& file);
  QString getFileName() const;

Q_SIGNALS:
  void signalChanged();

private Q_SLOTS:
  void slotBrowse();

private:
  int _file_type;
  QLineEdit* _file;
};

}  // namespace Vel::MSysScript
