#pragma once

#include <QDialog>
#include <QFont>

#include "menu/msys_script/msys_dialog_display_widgets.h"

class QTextBrowser;

// The continuous text element: formatted text that a dialog shows and a person reads, with the
// window in which the dialog editor's user writes it.
namespace Vel::MSysScript {

class RichTextEdit;

class TextFieldWidget : public DialogWidget
{
  Q_OBJECT

public:
  static const QString TYPE_ID;
  static const QString TAG_TEXT;
  // The definition spells the switch as one word, scripts with an underscore.
  static const QString TAG_WORDWRAP;
  static const QString ATTR_WORD_WRAP;

  TextFieldWidget();

  QTextBrowser* browser() const { return _browser; }
  const QString& getText() const { return _text; }
  bool getWordWrap() const { return _word_wrap; }

  QSize sizeHint() const override;
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
  QTextBrowser* _browser;
  // As given: the browser would hand back its own, much longer markup.
  QString _text;
  bool _word_wrap = true;
  // While the common part is read: the text follows with the rest.
  bool _reading = false;
};

// The window in which a person edits a text field's text: a frame holding the rich-text editor,
// and a close button. Closing keeps what was written.
class TextFieldEditDialog : public QDialog
{
  Q_OBJECT

public:
  TextFieldEditDialog(QWidget* parent, const QString& text, const QFont& defaultFont);

  QString getText() const;
  RichTextEdit* editor() const { return _edit; }

private:
  RichTextEdit* _edit;
};

// The host's text editing as the text field uses it. One per process: the host may register its
// own before the first text field is edited; otherwise the module's own serves.
class TextFieldInterface
{
public:
  TextFieldInterface();
  virtual ~TextFieldInterface();
  TextFieldInterface(const TextFieldInterface&) = delete;
  TextFieldInterface& operator=(const TextFieldInterface&) = delete;

  static TextFieldInterface& getInstance();

  // A new editing window for `text`, owned by `parent`.
  virtual TextFieldEditDialog* createEditDialog(QWidget* parent, const QString& text, const QFont& defaultFont) const;

private:
  static TextFieldInterface* _instance;
};

// Word wrap in the property list; the text in the editing window, opened by the panel's button
// or by a double click on the element.
class TextFieldConfiguration : public ElementConfiguration
{
  Q_OBJECT

public:
  explicit TextFieldConfiguration(QWidget* parent);

  const QString& getText() const { return _text; }

  void setup(const DialogWidget* widget) override;
  void apply(DialogWidget* widget) override;
  void doubleClicked(DialogWidget* widget) override;

private Q_SLOTS:
  void slotEdit();

private:
  // True when the person changed the text.
  bool editText();

  QString _text;
  QFont _font;
};

using TextFieldWidgetCreator = DisplayWidgetCreator<TextFieldWidget, TextFieldConfiguration>;

}  // namespace Vel::MSysScript
