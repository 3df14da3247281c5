// Feeds arbitrary bytes to the dialog definition reader. Every fault must be the reader's own
// ParseException; whatever reads must write, read again and write the same text, and every
// element read again must print, answer its attributes and check itself as the first did.

#include <QApplication>

#include <cstdio>
#include <optional>
#include <cstdlib>

#include "dialog_test_element.h"
#include "menu/msys_script/msys_dialog_definition.h"

namespace {

QApplication* application = nullptr;

[[noreturn]] void fail(const char* what, const QString& detail)
{
  std::fprintf(stderr, "%s: %s\n", what, detail.toLocal8Bit().constData());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
  qputenv("QT_QPA_PLATFORM", "offscreen");
  application = new QApplication(*argc, *argv);
  TestElement::registryWithTestElement();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  // The checker goes on past faults, so it must find at least the one that stops the reader,
  // and nothing else but element checks where the reader finds none.
  std::optional<Vel::MSysScript::Xml::ParseException> first_fault;
  try {
    Vel::MSysScript::DialogDefinition::read(text);
  } catch (const Vel::MSysScript::Xml::ParseException& fault) {
    first_fault = fault;
  } catch (const std::exception&) {
  }
  std::unique_ptr<Vel::MSysScript::DialogDefinition> checked;
  const auto faults = Vel::MSysScript::DialogDefinition::check(text, &checked);
  if (first_fault) {
    bool found = false;
    for (const auto& fault : faults)
      found = found || (fault.line == first_fault->getLine() && fault.message == first_fault->getParseMessage());
    if (!found)
      fail("the checker misses the reader's fault", first_fault->getParseMessage());
  } else if (checked) {
    size_t element_faults = 0;
    for (const auto& cell : checked->getCells())
      element_faults += cell.widget->checkConfiguration(nullptr) ? 0 : 1;
    if (element_faults != faults.size())
      fail("the checker reports faults the reader does not have", text.left(200));
  }

  try {
    const auto definition = Vel::MSysScript::DialogDefinition::read(text);
    const QString written = definition->write();
    const auto again = Vel::MSysScript::DialogDefinition::read(written);
    if (again->write() != written)
      fail("written definition changed when read back", written);
    const auto& cells = definition->getCells();
    const auto& cells_again = again->getCells();
    if (cells.size() != cells_again.size())
      fail("cells changed when read back", written);
    for (size_t i = 0; i < cells.size(); ++i) {
      const Vel::MSysScript::DialogWidget* first = cells[i].widget;
      const Vel::MSysScript::DialogWidget* second = cells_again[i].widget;
      if (first->__repr__() != second->__repr__())
        fail("element prints differently when read back", first->__repr__() + QLatin1Char('\n') + second->__repr__());
      if (first->__getattr__(QStringLiteral("attributes")) != second->__getattr__(QStringLiteral("attributes")))
        fail("element attributes changed when read back", first->__repr__());
      QString first_error;
      QString second_error;
      if (first->checkConfiguration(&first_error) != second->checkConfiguration(&second_error) ||
          first_error != second_error)
        fail("element check changed when read back", first_error + QLatin1Char('\n') + second_error);
    }
  } catch (const Vel::MSysScript::Xml::ParseException&) {
    // The expected way for bytes to fail.
  } catch (const std::exception& error) {
    fail("unexpected exception", QString::fromUtf8(error.what()));
  }
  return 0;
}
