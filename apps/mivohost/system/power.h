#pragma once

#include "system/timedactions.h"

#include <QtCore/QString>

#include <functional>

namespace mivohost {

/// Shuts the machine down or restarts it, through the system's own command; unless `allowed` it
/// only says on the standard output and in the log that it would. A failure of the command is
/// logged, and told to `failed` later while `context` lives. GUI thread.
void carryOut(PowerAction action, bool allowed, QObject* context,
              const std::function<void(const QString& reason)>& failed);

} // namespace mivohost
