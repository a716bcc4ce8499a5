#include "system/endrequests.h"

#include "base/hostlog.h"
#include "system/windowsmessages.h"

#include <mivoqutils/post.h>

#include <mutex>
#include <utility>

namespace mivohost {

namespace {

std::mutex mutex; // the system calls on a thread of its own
EndRequests* watching = nullptr;
bool isAsked = false;

BOOL WINAPI onControl(DWORD event)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (watching == nullptr || isAsked) {
            return FALSE; // the system ends the program
        }
        isAsked = true;
        mivo::qutils::post(watching, [event, requests = watching] {
            hostLog()->info("ending by the console's event {}", event);
            emit requests->requested();
        });
    }
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        Sleep(INFINITE); // the program is ended when this returns
    }
    return TRUE;
}

} // namespace

void EndRequests::watch()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        watching = this;
        isAsked = false;
    }
    // It stays: taking it back waits for it, and it does not return when the console closes.
    [[maybe_unused]] static const BOOL registered = SetConsoleCtrlHandler(onControl, TRUE);
    new WindowsMessages(this, [this](const MSG& message) {
        if (message.message == WM_ENDSESSION && message.wParam == FALSE) {
            ShutdownBlockReasonDestroy(message.hwnd);
            if (std::exchange(m_sessionEnds, false)) { // each window is told
                emit sessionGoesOn();
            }
        }
    });
}

void EndRequests::unwatch()
{
    const std::lock_guard<std::mutex> lock(mutex);
    watching = nullptr;
}

void EndRequests::explainDelay(WId window, const QString& reason)
{
    ShutdownBlockReasonCreate(reinterpret_cast<HWND>(window),
                              reinterpret_cast<const wchar_t*>(reason.utf16()));
}

} // namespace mivohost
