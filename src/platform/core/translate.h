#pragma once

#include <QString>

#include "core/vel_export.h"

namespace Vel {

// Looks `text` up in the installed catalogues; `key` ("id=NNN", optionally "#flags") is the
// disambiguation. Falls back to the English text.
VEL_EXPORT QString translate(const char* context, const char* text, const char* key);

// Installs the Qt catalogue `<name>_<locale>.qm` for the current locale from the
// translation folders. Returns false when there is none (English is then used).
VEL_EXPORT bool installTranslator(const QString& name);
// Installs the catalogues installed so far into a new application object, which replaced the
// one they were installed in.
VEL_EXPORT void reinstallTranslators();

// Folders searched for catalogues: $ZUT_TRANSLATIONS, then share/zut/translations next to
// the program's installation.
VEL_EXPORT QStringList translationFolders();

// The language the user interface speaks: that of the installed catalogue, else the system's.
class VEL_EXPORT Translator
{
public:
  // A locale name such as "de_DE".
  static QString getLanguage();
  static void setLanguage(const QString& language);
};

}  // namespace Vel
