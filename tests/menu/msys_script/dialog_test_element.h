#pragma once

#include <QLineEdit>
#include <QVBoxLayout>

#include "gtools/dialog_widget_supplier.h"
#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_property.h"
#include "menu/msys_script/msys_dialog_widgets.h"

// An element type of the tests alone, plugged into the registry as a real one is: it has a
// value, an optional number, factor and switch, a word-valued setting, and free text in CDATA,
// so that a definition holding it exercises every kind of reader.
namespace TestElement {

using namespace Vel::MSysScript;

constexpr const char* TYPE_ID = "test::element";

struct Shape
{
  enum Type_t
  {
    Round,
    Square
  };
};

class TestWidget : public DialogWidget
{
public:
  TestWidget()
      : DialogWidget(QString::fromLatin1(TYPE_ID)),
        _shape(Shape::Round, {{Shape::Round, QStringLiteral("round")}, {Shape::Square, QStringLiteral("square")}})
  {
    auto* layout = new QVBoxLayout(this);
    _edit = new QLineEdit(this);
    layout->addWidget(_edit);
    connect(_edit, &QLineEdit::textChanged, this, &TestWidget::slotModified);
  }

  QVariant getValue() const override { return _edit->text(); }

  void parseXml(const QDomNode& node) override
  {
    DialogWidget::parseXml(node);
    _edit->setText(Xml::hasChild(node, TAG_VALUE) ? Xml::getValue<QString>(node, TAG_VALUE) : QString());
    if (Xml::hasChild(node, QStringLiteral("count")))
      _count = Xml::getValue<int>(node, QStringLiteral("count"));
    if (Xml::hasChild(node, QStringLiteral("factor")))
      _factor = Xml::getValue<double>(node, QStringLiteral("factor"));
    if (Xml::hasChild(node, QStringLiteral("read_only")))
      _read_only = Xml::getValue<bool>(node, QStringLiteral("read_only"));
    if (Xml::hasChild(node, QStringLiteral("text"))) {
      _text = Xml::getCData(node, QStringLiteral("text"));
      _rich = Xml::getAttribute<bool>(Xml::getChild(node, QStringLiteral("text")), QStringLiteral("rich"));
    }
    if (Xml::hasAttribute(node, QStringLiteral("framed")))
      _framed = Xml::getAttribute<bool>(node, QStringLiteral("framed"));
    _shape.read(node, QStringLiteral("shape"));
  }

  void createXml(QDomDocument* document, QDomElement* element) const override
  {
    DialogWidget::createXml(document, element);
    element->setAttribute(QStringLiteral("framed"), Xml::valueText(_framed));
    element->appendChild(Xml::createValue(document, TAG_VALUE, _edit->text()));
    element->appendChild(Xml::createValue(document, QStringLiteral("count"), _count));
    element->appendChild(Xml::createValue(document, QStringLiteral("factor"), _factor));
    element->appendChild(Xml::createValue(document, QStringLiteral("read_only"), _read_only));
    QDomElement text = Xml::createCData(document, QStringLiteral("text"), _text).toElement();
    text.setAttribute(QStringLiteral("rich"), Xml::valueText(_rich));
    element->appendChild(text);
    _shape.create(document, *element, QStringLiteral("shape"));
  }

  QString __repr__() const override { return QStringLiteral("zut.dialog.TestWidget (name='%1')").arg(getName()); }

  QVariant __getattr__(const QString& name) const override
  {
    if (name == QLatin1String("shape"))
      return _shape.getId();
    return DialogWidget::__getattr__(name);
  }

  void __setattr__(const QString& name, const QVariant& value) override
  {
    if (name == TAG_VALUE)
      _edit->setText(value.toString());
    else if (name == QLatin1String("shape"))
      _shape.setId(value.toString());
    else
      DialogWidget::__setattr__(name, value);
  }

  int count() const { return _count; }
  double factor() const { return _factor; }
  bool readOnly() const { return _read_only; }
  bool framed() const { return _framed; }
  const QString& text() const { return _text; }
  bool rich() const { return _rich; }
  Shape::Type_t shape() const { return _shape.get(); }

protected:
  std::vector<Vel::AttributeInfo> getAttributeInfo() const override
  {
    auto infos = DialogWidget::getAttributeInfo();
    infos.push_back({QStringLiteral("shape"), QStringLiteral("str"), QStringLiteral("Outline of the element"), false});
    return infos;
  }

private:
  QLineEdit* _edit;
  int _count = 0;
  double _factor = 1.0;
  bool _read_only = false;
  bool _framed = false;
  bool _rich = false;
  QString _text;
  Xml::Enumeration<Shape::Type_t> _shape;
};

class TestConfiguration : public ElementConfiguration
{
public:
  explicit TestConfiguration(QWidget* parent) : ElementConfiguration(parent)
  {
    addCommonProperties();
    addProperty(new SeparatorProperty(QStringLiteral("Test")));
    addProperty(new StringProperty(DialogWidget::TAG_VALUE, QStringLiteral("Value")));
    addProperty(new StringProperty(QStringLiteral("shape"), QStringLiteral("Shape")));
  }
};

class TestWidgetCreator : public DialogWidgetCreator
{
public:
  explicit TestWidgetCreator(const QString& id = QString::fromLatin1(TYPE_ID),
                             Category::Type_t category = Category::Input)
      : DialogWidgetCreator(id, category)
  {}
  QString getDisplayName() const override { return QStringLiteral("Test element"); }
  QString getKeyWord() const override { return QStringLiteral("test"); }
  DialogWidget* createWidget() const override { return new TestWidget; }
  ElementConfiguration* createConfiguration(QWidget* parent) const override { return new TestConfiguration(parent); }
};

// What the application provides to run-time dialogs; here, nothing but its presence.
class TestSupplier : public Vel::GTools::DialogWidgetSupplierInterface
{
public:
  QWidget* getDialogParent() const override { return nullptr; }
  bool canEmbed() const override { return false; }
};

// The process's registry with the standard types and the test type; once per test program.
inline DialogRegistry* registryWithTestElement()
{
  static DialogRegistry* registry = [] {
    static TestSupplier supplier;
    Vel::GTools::DialogWidgetSupplierInterface::setInstance(&supplier);
    DialogRegistry::initialize();
    DialogRegistry::getRegistry()->addWidgetCreator(new TestWidgetCreator);
    return DialogRegistry::getRegistry();
  }();
  return registry;
}

}  // namespace TestElement
