#include "system/sleepwatch.h"

#include "system/windowsmessages.h"

#include <QtCore/QLibrary>
#include <QtWidgets/QWidget>

namespace mivohost {

SleepWatch::SleepWatch(const QWidget& window)
{
    const auto handle = reinterpret_cast<HWND>(window.winId());
    new WindowsMessages(this, [this, handle](const MSG& message) {
        // Every window gets it.
        if (message.message != WM_POWERBROADCAST || message.hwnd != handle) {
            return;
        }
        if (message.wParam == PBT_APMSUSPEND) {
            take(true);
        } else if (message.wParam == PBT_APMRESUMEAUTOMATIC) {
            take(false);
        }
    });
    // A machine in modern standby tells only those that ask; before Windows 8 nobody can.
    using Ask = HANDLE(WINAPI*)(HANDLE, DWORD);
    using Stop = BOOL(WINAPI*)(HANDLE);
    const auto ask = reinterpret_cast<Ask>(
        QLibrary::resolve(QStringLiteral("user32"), "RegisterSuspendResumeNotification"));
    const auto stop = reinterpret_cast<Stop>(
        QLibrary::resolve(QStringLiteral("user32"), "UnregisterSuspendResumeNotification"));
    if (ask != nullptr && stop != nullptr) {
        m_request.reset(ask(handle, DEVICE_NOTIFY_WINDOW_HANDLE), stop);
    }
}

void SleepWatch::holdSleep(bool /*hold*/) {} // it waits while the message is handled

} // namespace mivohost
