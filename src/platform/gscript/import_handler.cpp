#include "gscript/import_handler.h"

#include <algorithm>

namespace Vel::GScript {
namespace {
// Never destroyed: sources of plug-ins live until the process ends.
std::vector<ImportHandlerSource*>& sources()
{
  static auto* list = new std::vector<ImportHandlerSource*>;
  return *list;
}
}  // namespace

ImportHandlerSource::ImportHandlerSource()
{
  sources().push_back(this);
}

ImportHandlerSource::~ImportHandlerSource()
{
  sources().erase(std::remove(sources().begin(), sources().end(), this), sources().end());
}

const std::vector<ImportHandlerSource*>& ImportHandlerSource::getSources()
{
  return sources();
}

}  // namespace Vel::GScript
