#pragma once

#include <QDomDocument>
#include <QDomElement>
#include <QDomNode>
#include <QMap>
#include <QPixmap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <map>
#include <memory>
#include <vector>

#include "core/script_type.h"
#include "core/translate.h"

class Vel_ToolTipLabel;
class QPushButton;
class QTreeView;

namespace Vel::MSysScript {

class Property;
class PropertyEditorModel;
class ValueLimits;

// One element of a user-defined dialog's grid. Each element type reads and writes its own part
// of the definition and answers the script's attribute requests.
class DialogWidget : public QWidget
{
  Q_OBJECT

public:
  struct DialogMode
  {
    enum Type_t
    {
      RunTime,  // in a running dialog
      Editor    // in the dialog editor
    };
  };

  static const QString TAG_NAME;
  static const QString TAG_TOOLTIP;
  static const QString TAG_ENABLED;
  static const QString TAG_VALUE;
  static const QString TAG_ATTRIBUTES;
  static const QString TAG_FOCUS;
  // The values an element allows, as scripts give them with a plain Python object.
  static const QString TAG_LIMITS;

  explicit DialogWidget(const QString& creatorId);

  const QString& getCreatorId() const { return _creator_id; }
  QString getName() const { return objectName(); }
  void setName(const QString& name) { setObjectName(name); }
  const QString& getTooltip() const { return _tooltip; }
  void setTooltip(const QString& tooltip);
  DialogMode::Type_t getDialogMode() const { return _dialog_mode; }
  void setDialogMode(DialogMode::Type_t mode) { _dialog_mode = mode; }

  // The element's value as scripts see it (null for elements without one).
  virtual QVariant getValue() const = 0;
  virtual bool checkConfiguration(QString* error) const;
  // Reads "name" (required) and "tooltip"; overrides call this first.
  virtual void parseXml(const QDomNode& node) = 0;
  // Writes "name" and "tooltip"; overrides call this first.
  virtual void createXml(QDomDocument* document, QDomElement* element) const = 0;
  virtual void takeFocus();
  // "zut.dialog.<Class> (name='...')".
  virtual QString __repr__() const = 0;
  virtual QString __doc__() const;
  virtual QVariant __getattr__(const QString& name) const;
  virtual void __setattr__(const QString& name, const QVariant& value);
  // Takes limits of the element's own kind (numbers, list entries, file types) and refuses any
  // other with the script error of a wrong value; types without limits have no such attribute.
  virtual void setValueLimits(const ValueLimits& limits);
  // The limits a script's own Python object describes, ready for the "limits" attribute; an
  // object that matches no rule is a wrong value. Reading it may run the script's code.
  static QVariant readValueLimits(const QVariant& scriptObject);

  // The line of the definition that the element was read from; -1 when not read.
  int getSourceLine() const { return _source_line; }
  void setSourceLine(int line) { _source_line = line; }

Q_SIGNALS:
  void signalModified(Vel::MSysScript::DialogWidget* widget);

protected Q_SLOTS:
  void slotModified();

protected:
  virtual std::vector<Vel::AttributeInfo> getAttributeInfo() const;
  virtual void updateWidget();

  // The script's refusal of an attribute it may not write.
  [[noreturn]] static void throwNotWritable(const QString& name);

private:
  QString _creator_id;
  QString _tooltip;
  DialogMode::Type_t _dialog_mode = DialogMode::RunTime;
  int _source_line = -1;
};

// The row of buttons at the bottom of a dialog that closes or steps it.
class DialogControl : public QWidget
{
  Q_OBJECT

public:
  DialogControl(const QString& creatorId, const QString& formName);

  const QString& getCreatorId() const { return _creator_id; }

  virtual void updateEnabledState(bool enabled);
  // The words by which scripts address the buttons of this row.
  virtual QStringList getButtonIds() const = 0;
  virtual void setButtonEnabled(const QString& buttonId, bool enabled) = 0;
  virtual void setButtonText(const QString& buttonId, const QString& text) = 0;
  // The button that Return triggers; null for none.
  virtual QPushButton* getDefaultButton() const = 0;
  virtual Vel_ToolTipLabel* getStatusLabel() const;

Q_SIGNALS:
  void signalAccept();
  void signalReject();
  void signalControlEvent(QString event);

protected:
  // Lays out the status label and then the buttons, right-aligned.
  void addButtons(const std::vector<QPushButton*>& buttons);
  [[noreturn]] static void throwInvalidButton(const QString& buttonId);

private:
  QString _creator_id;
  Vel_ToolTipLabel* _status = nullptr;
};

class ElementConfiguration;

class DialogWidgetCreator
{
public:
  struct Category
  {
    enum Type_t
    {
      Output,
      Input,
      Buttons,
      Selection,
      Layout,
      Other
    };
    static QString getTitle(Type_t category);
  };

  static const QString EMPTY_WIDGET_ID;

  virtual ~DialogWidgetCreator();

  const QString& getId() const { return _id; }
  Category::Type_t getCategory() const { return _category; }

  virtual QString getDisplayName() const = 0;
  virtual QString getKeyWord() const = 0;
  virtual DialogWidget* createWidget() const = 0;
  virtual ElementConfiguration* createConfiguration(QWidget* parent) const = 0;
  virtual QPixmap createDragPixmap() const;

protected:
  DialogWidgetCreator(const QString& id, Category::Type_t category);

private:
  QString _id;
  Category::Type_t _category;
};

// One creator class serves every element type: they differ only in their id, names and classes.
template <typename Widget, typename Configuration>
class ElementCreator : public DialogWidgetCreator
{
public:
  ElementCreator(Category::Type_t category, const char* context, const char* displayName, const char* keyWord)
      : DialogWidgetCreator(Widget::TYPE_ID, category), _context(context), _display_name(displayName), _key_word(keyWord)
  {
  }
  QString getDisplayName() const override { return translate(_context, _display_name, ""); }
  QString getKeyWord() const override { return QString::fromLatin1(_key_word); }
  DialogWidget* createWidget() const override { return new Widget; }
  ElementConfiguration* createConfiguration(QWidget* parent) const override { return new Configuration(parent); }

private:
  const char* _context;
  const char* _display_name;
  const char* _key_word;
};

// Most element types are named in the element context and given their category where they are
// registered.
template <typename Widget, typename Configuration>
class CatalogueElementCreator : public ElementCreator<Widget, Configuration>
{
public:
  CatalogueElementCreator(DialogWidgetCreator::Category::Type_t category, const char* displayName,
                          const char* keyWord)
      : ElementCreator<Widget, Configuration>(category, "MSysScript_DialogElement_other", displayName, keyWord)
  {
  }
};

class DialogControlCreator
{
public:
  static const QString EMPTY_ID;
  static const QString KIOSK_ID;

  virtual ~DialogControlCreator();

  const QString& getId() const { return _id; }

  virtual QString getDisplayName() const = 0;
  virtual DialogControl* createControl() const = 0;
  // Entries that only structure the editor's list of control types and cannot be chosen.
  virtual bool isSeparator() const { return false; }

protected:
  explicit DialogControlCreator(const QString& id);

private:
  QString _id;
};

// The dialog editor's panel for one element: its properties, filled from the element and
// written back to it.
class ElementConfiguration : public QWidget
{
  Q_OBJECT

public:
  explicit ElementConfiguration(QWidget* parent);

  // Each property takes the element's attribute of its key.
  virtual void setup(const DialogWidget* widget);
  // Each property is assigned to the element's attribute of its key; a refusal is reported and
  // the other properties are still applied.
  virtual void apply(DialogWidget* widget);
  virtual void doubleClicked(DialogWidget* widget);
  // Gives an element that the user has just added its starting values; most types have none.
  virtual void initializeNew(DialogWidget* widget) const;

  const std::vector<Property*>& getProperties() const { return _properties; }
  // The faults of the last apply, one message each.
  const QStringList& getApplyErrors() const { return _apply_errors; }

Q_SIGNALS:
  void signalModified();

protected Q_SLOTS:
  void slotModified();

protected:
  virtual void updateWidget();
  // Takes ownership; properties are shown in the order they are added.
  void addProperty(Property* property);
  // The block every element has: its name and tooltip.
  void addCommonProperties();

private:
  std::vector<Property*> _properties;
  QStringList _apply_errors;
  PropertyEditorModel* _model;
  QTreeView* _view;
};

// The process-wide table of element and control-row types, looked up by type id.
class DialogRegistry
{
public:
  using WidgetCreatorMap = std::map<QString, DialogWidgetCreator*>;

  DialogRegistry();
  ~DialogRegistry();
  DialogRegistry(const DialogRegistry&) = delete;
  DialogRegistry& operator=(const DialogRegistry&) = delete;

  static DialogRegistry* getRegistry();
  // Registers the standard types; once, at module start-up.
  static void initialize();

  void addWidgetCreator(DialogWidgetCreator* creator);
  void addControlCreator(DialogControlCreator* creator);
  const DialogWidgetCreator* getWidgetCreator(const QString& id) const;
  const DialogControlCreator* getControlCreator(const QString& id) const;
  WidgetCreatorMap::const_iterator getWidgetCreatorBegin() const { return _widget_creators.begin(); }
  WidgetCreatorMap::const_iterator getWidgetCreatorEnd() const { return _widget_creators.end(); }
  std::vector<DialogWidgetCreator*> getSortedWidgetCreators(DialogWidgetCreator::Category::Type_t category) const;
  std::vector<DialogControlCreator*> getSortedControlCreators() const;
  QString getDefaultControlId() const;
  void setDefaultControlId(const QString& id) { _default_control_id = id; }
  bool isCreatorDeletionAllowed() const { return _creator_deletion_allowed; }

  // The placeholder of an empty cell; not one of the types a user picks.
  static const DialogWidgetCreator* getEmptyWidgetCreator();

private:
  WidgetCreatorMap _widget_creators;
  std::map<QString, int> _widget_priorities;
  std::vector<DialogControlCreator*> _control_creators;
  std::map<QString, DialogControlCreator*> _control_creator_map;
  QString _default_control_id;
  bool _creator_deletion_allowed = true;
  bool _initialized = false;
};

// The placeholder that fills a grid cell without an element.
class EmptyWidget : public DialogWidget
{
  Q_OBJECT

public:
  EmptyWidget();

  QVariant getValue() const override { return QVariant(); }
  bool checkConfiguration(QString* error) const override;
  void parseXml(const QDomNode& node) override;
  void createXml(QDomDocument* document, QDomElement* element) const override;
  QString __repr__() const override;
};

}  // namespace Vel::MSysScript
