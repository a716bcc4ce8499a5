#include "system/power.h"

#include <mivoqutils/post.h>

#include <QtCore/QObject>
#include <QtCore/qt_windows.h>

namespace mivohost {

namespace {

/// The right to shut down, which users have, but which is off until it is asked for. Returns the
/// system's code.
DWORD takePrivilege()
{
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token)) {
        return GetLastError();
    }
    TOKEN_PRIVILEGES wanted{};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    DWORD code = ERROR_SUCCESS;
    if (!LookupPrivilegeValueW(nullptr, L"SeShutdownPrivilege", &wanted.Privileges[0].Luid)) {
        code = GetLastError();
    } else {
        AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr);
        code = GetLastError(); // it succeeds also where the user does not have the right
    }
    CloseHandle(token);
    return code;
}

} // namespace

void askSystem(PowerAction action, QObject* context,
               const std::function<void(const QString& reason)>& failed)
{
    const UINT how = action == PowerAction::shutdown ? EWX_POWEROFF : EWX_REBOOT;
    DWORD code = takePrivilege();
    // Programs may save and ask; only one that does not answer at all is ended.
    if (code == ERROR_SUCCESS
        && !ExitWindowsEx(how | EWX_FORCEIFHUNG,
                          SHTDN_REASON_MAJOR_APPLICATION | SHTDN_REASON_FLAG_PLANNED)) {
        code = GetLastError();
    }
    if (code != ERROR_SUCCESS) {
        const QString reason = qt_error_string(static_cast<int>(code));
        mivo::qutils::post(context, [failed, reason] { failed(reason); });
    }
}

} // namespace mivohost
