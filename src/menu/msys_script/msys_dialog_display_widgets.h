#pragma once

#include <QImage>

#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_widgets.h"

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class Vel_Separator;

// Elements that show rather than ask, and those that only arrange the others: a label, a log, an
// image, a progress bar, a separator line and the two spacers. The continuous text field has a
// file of its own.
namespace Vel::MSysScript {

class FileProperty;
class Property;

// A bar that shows how far work has come: set by scripts ("manual"), or following the progress
// the application reports ("system"). Its label shows nothing, the percentage, or the step of
// the parts the work has.
class ProgressBarWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  struct Text
  {
    enum Type_t
    {
      None,
      Percentage,
      Step
    };
  };
  struct Mode
  {
    enum Type_t
    {
      System,
      Manual
    };
  };
  static const Xml::Enumeration<Text::Type_t>& texts();
  static const Xml::Enumeration<Mode::Type_t>& modes();

  ProgressBarWidget();

  QProgressBar* bar() const { return _bar; }
  QVariant getValue() const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;
  void updateWidget() override;

private Q_SLOTS:
  void slotProgress();

private:
  QProgressBar* _bar;
  int _parts = 1;
  int _step = 0;
  Text::Type_t _text = Text::Percentage;
  Mode::Type_t _mode = Mode::Manual;
};

class LabelWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  LabelWidget();

  QLabel* label() const { return _label; }
  QVariant getValue() const override { return QVariant(); }
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  QLabel* _label;
};

// Lines of plain text that a script fills as work goes on, and that a person may keep in a file.
class LogWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  static const QString TAG_TEXT;
  static const QString TAG_WORD_WRAP;
  static const QString TAG_SHOW_SAVE;
  static const QString TAG_SAVE_DIALOG_TITLE;
  static const QString TAG_SCROLL_AUTOMATICALLY;

  LogWidget();

  QPlainTextEdit* log() const { return _log; }
  QPushButton* saveButton() const { return _save; }
  QString getText() const;
  // The title the save dialog shows: the one set, or the standard one when that is blank.
  QString getSaveDialogTitle() const;
  // Writes the text to `file` whole or not at all; a failure is reported to the person.
  bool saveTo(const QString& file) const;

  QVariant getValue() const override { return QVariant(); }
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;
  void updateWidget() override;

private Q_SLOTS:
  void slotSave();

private:
  void setText(const QString& text);

  QPlainTextEdit* _log;
  QPushButton* _save;
  bool _word_wrap = false;
  bool _show_save = false;
  QString _save_dialog_title;
  bool _scroll_automatically = true;
};

// A picture: one of the style's message images, or one of the user's own, shown at its own size
// or at a size of the user's choice.
class ImageWidget : public DialogWidget
{
  Q_OBJECT

public:
  struct SystemImage
  {
    enum Type_t
    {
      Information,
      Warning,
      Critical,
      Question
    };
  };

  static const QString TYPE_ID;
  static const QString TAG_USE_SYSTEM_IMAGE;
  static const QString TAG_SYSTEM_IMAGE;
  static const QString TAG_DATA;
  static const QString TAG_FILE_NAME;
  static const QString TAG_KEEP_ORIGINAL_SIZE;
  static const QString TAG_KEEP_ASPECT;
  static const QString TAG_WIDTH;
  static const QString TAG_HEIGHT;
  static const QString ATTR_SCALING;

  static const Xml::Enumeration<SystemImage::Type_t>& systemImages();
  static std::vector<std::pair<QString, QString>> systemImageLabels();
  // The style's picture of that kind, and the edge at which the style shows it.
  static QIcon systemIcon(SystemImage::Type_t type);
  static int systemImageExtent();

  ImageWidget();

  QWidget* view() const { return _view; }
  const QImage& getImage() const { return _image; }
  const QString& getFileName() const { return _file_name; }
  // The user's own image with the file it came from, as the editor took it.
  void setImage(const QImage& image, const QString& fileName);
  bool hasImage() const;
  // The size at which the picture is shown; invalid when there is none.
  QSize getShownSize() const;
  // The picture at its shown size; null when there is none.
  QPixmap getShownPixmap() const { return _shown; }

  QVariant getValue() const override { return QVariant(); }
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;
  void updateWidget() override;

private:
  QSize ownSize() const;
  double scaling() const;

  QWidget* _view;
  QPixmap _shown;
  bool _use_system_image = false;
  SystemImage::Type_t _system_image = SystemImage::Information;
  QImage _image;
  QString _file_name;
  bool _keep_original_size = true;
  bool _keep_aspect = true;
  int _width = 100;
  int _height = 100;
};

class SeparatorWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;

  SeparatorWidget();

  Vel_Separator* separator() const { return _separator; }
  QVariant getValue() const override { return QVariant(); }
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  std::vector<AttributeInfo> getAttributeInfo() const override;

private:
  Vel_Separator* _separator;
};

// Empty room that grows in one direction and keeps at least its minimum size there.
class SpacerWidgetBase : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TAG_MINIMUM_SIZE;

  int getMinimumSize() const { return _minimum_size; }
  QVariant getValue() const override { return QVariant(); }
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
  QVariant __getattr__(const QString& name) const override;
  void __setattr__(const QString& name, const QVariant& value) override;

protected:
  SpacerWidgetBase(const QString& creatorId, Qt::Orientation orientation, const char* className);
  std::vector<AttributeInfo> getAttributeInfo() const override;
  void updateWidget() override;

private:
  const Qt::Orientation _orientation;
  const char* _class_name;
  int _minimum_size = 0;
};

class HorizontalSpacerWidget : public SpacerWidgetBase
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  HorizontalSpacerWidget();
};

class VerticalSpacerWidget : public SpacerWidgetBase
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  VerticalSpacerWidget();
};

class LabelConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit LabelConfiguration(QWidget* parent);
};

class ProgressBarConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit ProgressBarConfiguration(QWidget* parent);
};

class LogConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit LogConfiguration(QWidget* parent);
};

// The image's settings, with a preview of the picture. The file is read when the person picks
// it; the element takes the picture on apply.
class ImageConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit ImageConfiguration(QWidget* parent);

  QLabel* preview() const { return _preview; }

  void setup(const DialogWidget* widget) override;
  void apply(DialogWidget* widget) override;

private Q_SLOTS:
  void slotChanged();

private:
  void updatePreview();

  Property* _use_system_image;
  Property* _system_image;
  FileProperty* _file;
  QLabel* _preview;
  // The file the element had at setup, and the one last read with what it held.
  QString _file_at_setup;
  QString _file_read;
  QImage _image;
};

class SeparatorConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit SeparatorConfiguration(QWidget* parent);
};

class SpacerConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  SpacerConfiguration(QWidget* parent, const char* heading, const char* field);
};

class HorizontalSpacerConfiguration : public SpacerConfiguration
{
  Q_OBJECT

public:
  explicit HorizontalSpacerConfiguration(QWidget* parent)
      : SpacerConfiguration(parent, "Horizontal spacer", "Minimum width")
  {
  }
};

class VerticalSpacerConfiguration : public SpacerConfiguration
{
  Q_OBJECT

public:
  explicit VerticalSpacerConfiguration(QWidget* parent) : SpacerConfiguration(parent, "Vertical spacer", "Minimum height")
  {
  }
};

template <typename Widget, typename Configuration>
using DisplayWidgetCreator = CatalogueElementCreator<Widget, Configuration>;

using LabelWidgetCreator = DisplayWidgetCreator<LabelWidget, LabelConfiguration>;
using LogWidgetCreator = DisplayWidgetCreator<LogWidget, LogConfiguration>;
using ImageWidgetCreator = DisplayWidgetCreator<ImageWidget, ImageConfiguration>;
using ProgressBarWidgetCreator = DisplayWidgetCreator<ProgressBarWidget, ProgressBarConfiguration>;
using SeparatorWidgetCreator = DisplayWidgetCreator<SeparatorWidget, SeparatorConfiguration>;
using HorizontalSpacerWidgetCreator = DisplayWidgetCreator<HorizontalSpacerWidget, HorizontalSpacerConfiguration>;
using VerticalSpacerWidgetCreator = DisplayWidgetCreator<VerticalSpacerWidget, VerticalSpacerConfiguration>;

}  // namespace Vel::MSysScript
