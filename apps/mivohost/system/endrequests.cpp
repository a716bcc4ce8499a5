#include "system/endrequests.h"

#include "base/hostlog.h"

#include <cstdlib>

namespace mivohost {

namespace {

EndRequests* alive = nullptr;

/// Qt calls exit() when the connection to the display breaks.
void atExit()
{
    if (alive != nullptr) {
        emit alive->requested();
        hostLog()->flush();
        std::_Exit(EXIT_FAILURE); // other threads still use what exit() destroys next
    }
}

} // namespace

EndRequests::EndRequests()
{
    alive = this;
    [[maybe_unused]] static const int registered = std::atexit(atExit);
    watch();
}

EndRequests::~EndRequests()
{
    unwatch();
    alive = nullptr;
}

} // namespace mivohost
