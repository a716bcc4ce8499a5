#include "system/power.h"

#include "base/hostlog.h"

#include <cstdio>

namespace mivohost {

void carryOut(PowerAction action, bool allowed, QObject* context,
              const std::function<void(const QString& reason)>& failed)
{
    const bool shutdown = action == PowerAction::shutdown;
    const auto logger = hostLog();
    if (!allowed) {
        const char* text =
            shutdown ? "would shut down the machine now" : "would restart the machine now";
        std::puts(text);
        std::fflush(stdout);
        logger->info(text);
        return;
    }
    logger->info(shutdown ? "shutting down the machine" : "restarting the machine");
    askSystem(action, context, [failed](const QString& reason) {
        hostLog()->error("the system does not do so: {}", reason.toStdString());
        failed(reason);
    });
}

} // namespace mivohost
