#pragma once

#include "system/timedactions.h"

#include <QtCore/QString>

#include <functional>

namespace mivohost {

/// Shuts the machine down or restarts it, by the system's own command or call; unless `allowed` it
/// only says on the standard output and in the log that it would. A failure is logged, and told to
/// `failed` later while `context` lives. GUI thread.
void carryOut(PowerAction action, bool allowed, QObject* context,
              const std::function<void(const QString& reason)>& failed);

/// The part of carryOut() that differs per system.
void askSystem(PowerAction action, QObject* context,
               const std::function<void(const QString& reason)>& failed);

} // namespace mivohost
