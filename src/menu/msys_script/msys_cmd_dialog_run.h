#pragma once

#include <QString>
#include <QVariant>

#include "gapp/command.h"

namespace Vel::MSysScript {

// What the dialog commands do, by command name: their result, or an invalid value for none.
QVariant runDialogCommand(const QString& name, const GApp::CommandParameters& parameters);

}  // namespace Vel::MSysScript
