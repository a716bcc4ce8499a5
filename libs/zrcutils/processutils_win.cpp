#include "zrcutils/processutils.h"

#include "zrcutils/winsystem.h"

#include <tlhelp32.h>

bool ProcessUtils::processIsRunning(const std::string& executableName)
{
    // No file name is longer than MAX_PATH characters; a longer one fails to convert.
    wchar_t wanted[MAX_PATH];
    const int length =
        executableName.size() > MAX_PATH * 3
            ? 0
            : MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, executableName.data(),
                                  static_cast<int>(executableName.size()), wanted, MAX_PATH);
    if (length == 0) {
        return false;
    }
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) {
        return false;
    }
    bool found = false;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more && !found;
         more = Process32NextW(snapshot, &entry)) {
        // A process that has ended stays listed, without a thread, while somebody holds a handle.
        found = entry.cntThreads > 0
                && CompareStringOrdinal(entry.szExeFile, -1, wanted, length, TRUE) == CSTR_EQUAL;
    }
    CloseHandle(snapshot);
    return found;
}
