#pragma once

#include <QString>
#include <QStringList>

#include "core/vel_export.h"

namespace Vel {

// Maps the short error codes that users and support see to their (translated) messages.
class VEL_EXPORT ErrorMessageContainer
{
public:
  // A code registered again gets the new message (a reloaded module re-registers its codes).
  static void registerError(const char* code, const QString& message);
  static bool hasError(const QString& code);
  // The registered message, or an empty text for an unknown code.
  static QString getMessage(const QString& code);
  // Codes in the order of their first registration.
  static QStringList getCodes();
};

}  // namespace Vel
