#include "system/endrequests.h"

#include "base/hostlog.h"
#include "base/hosttext.h"

#include <QtGui/QGuiApplication>
#include <QtWidgets/QWidget>

#include <cstdlib>

namespace mivohost {

namespace {

EndRequests* alive = nullptr;

/// Qt calls exit() when the connection to the display breaks.
void atExit()
{
    if (alive != nullptr) {
        emit alive->requested();
        finishLog();
        std::_Exit(EXIT_FAILURE); // other threads still use what exit() destroys next
    }
}

} // namespace

EndRequests::EndRequests(const QWidget& window)
{
    alive = this;
    [[maybe_unused]] static const int registered = std::atexit(atExit);
    watch();
    // Else Qt closes the windows that are shown, and so the program, though that may be called off.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, [this, &window] {
        m_sessionEnds = true;
        explainDelay(window.winId(), hostText("SavingBeforeEnd"));
        emit sessionEnds();
    });
}

EndRequests::~EndRequests()
{
    unwatch();
    alive = nullptr;
}

} // namespace mivohost
