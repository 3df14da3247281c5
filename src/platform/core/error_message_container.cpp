#include "core/error_message_container.h"

#include <QHash>

namespace Vel {
namespace {

struct Registry
{
  QHash<QString, QString> messages;
  QStringList order;
};

Registry& registry()
{
  static Registry instance;
  return instance;
}

}  // namespace

void ErrorMessageContainer::registerError(const char* code, const QString& message)
{
  const QString key = QString::fromLatin1(code);
  Registry& r = registry();
  if (!r.messages.contains(key))
    r.order << key;
  r.messages.insert(key, message);
}

bool ErrorMessageContainer::hasError(const QString& code)
{
  return registry().messages.contains(code);
}

QString ErrorMessageContainer::getMessage(const QString& code)
{
  return registry().messages.value(code);
}

QStringList ErrorMessageContainer::getCodes()
{
  return registry().order;
}

}  // namespace Vel
