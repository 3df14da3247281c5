#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

#include <vector>

namespace Vel::MSysScript {

// One visual style of user-defined dialogs: the name users pick it by, the name definitions
// store, and the style sheet a dialog is shown with.
class DialogStyle
{
public:
  explicit DialogStyle(const QString& name) : _name(name) {}

  const QString& getName() const { return _name; }
  const QString& getId() const { return _id; }
  const QString& getStyleSheet() const { return _style_sheet; }
  // The height of buttons and input fields, in pixels.
  int getControlHeight() const { return _control_height; }

  void setId(const QString& id) { _id = id; }
  // Older names that definitions may still use.
  void setAliases(const QStringList& aliases) { _aliases = aliases; }
  const QStringList& getAliases() const { return _aliases; }
  void setStyleSheet(const QString& sheet) { _style_sheet = sheet; }
  void setControlHeight(int height) { _control_height = height; }

private:
  QString _name;
  QString _id;
  QStringList _aliases;
  QString _style_sheet;
  int _control_height = 0;
};

// The process-wide list of dialog styles, "Standard" first.
class DialogStyleDatabase
{
public:
  static const std::vector<DialogStyle>& getStyles();
  // By the untranslated name that definitions store (or an older one), else by the name users read; null for an
  // unknown one.
  static const DialogStyle* findStyle(const QString& id);

private:
  DialogStyleDatabase();
  static DialogStyleDatabase& instance();
  void addStyle(const QString& name, const QString& id, const QString& sheet, int controlHeight,
                const QStringList& aliases = {});

  std::vector<DialogStyle> _styles;
};

// A plain widget whose background, border and image follow the style sheet, as Qt's own
// widgets' do.
class DialogStyleWidget : public QWidget
{
  Q_OBJECT

public:
  explicit DialogStyleWidget(QWidget* parent = nullptr);

protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace Vel::MSysScript
