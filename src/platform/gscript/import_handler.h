#pragma once

#include <QByteArray>

#include <QString>
#include <QStringList>

#include <vector>

#include "core/vel_export.h"

namespace Vel::GScript {

// A source of Python modules that are not files on sys.path. While an instance exists, an
// `import a.b` that Python's own finders cannot satisfy asks the sources for the name "a/b.py"
// (and treats "a" as a package when some name begins with "a/").
class VEL_EXPORT ImportHandlerSource
{
public:
  ImportHandlerSource();
  virtual ~ImportHandlerSource();
  ImportHandlerSource(const ImportHandlerSource&) = delete;
  ImportHandlerSource& operator=(const ImportHandlerSource&) = delete;

  // The importable names ("tools/helpers.py").
  virtual QStringList getNames() const = 0;
  // The source of one name as the file holds it (Python decodes it as the file declares);
  // empty when there is none.
  virtual QByteArray getSource(const QString& name) const = 0;

  static const std::vector<ImportHandlerSource*>& getSources();
};

}  // namespace Vel::GScript
