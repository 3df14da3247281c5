// Feeds arbitrary bytes to the dialog definition reader. Every fault must be the reader's own
// ParseException; whatever reads must write, read again and write the same text.

#include <QApplication>

#include <cstdio>
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
  try {
    const auto definition = Vel::MSysScript::DialogDefinition::read(text);
    const QString written = definition->write();
    const auto again = Vel::MSysScript::DialogDefinition::read(written);
    if (again->write() != written)
      fail("written definition changed when read back", written);
  } catch (const Vel::MSysScript::Xml::ParseException&) {
    // The expected way for bytes to fail.
  } catch (const std::exception& error) {
    fail("unexpected exception", QString::fromUtf8(error.what()));
  }
  return 0;
}
