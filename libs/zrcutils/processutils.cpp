#include "zrcutils/processutils.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <tlhelp32.h>
#else
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#endif

#ifdef _WIN32

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

#else

namespace {

/// Empty for kernel threads and zombies: they have neither an executable nor arguments.
std::string executableOf(const std::filesystem::path& process)
{
    std::error_code error;
    std::string path = std::filesystem::read_symlink(process / "exe", error).string();
    if (error) {
        std::ifstream arguments(process / "cmdline", std::ios::binary);
        std::getline(arguments, path, '\0');
    } else {
        // What the system adds once the file was removed or replaced by an update.
        const std::string deleted = " (deleted)";
        if (path.size() > deleted.size()
            && path.compare(path.size() - deleted.size(), deleted.size(), deleted) == 0) {
            path.resize(path.size() - deleted.size());
        }
    }
    return path.substr(path.rfind('/') + 1);
}

} // namespace

bool ProcessUtils::processIsRunning(const std::string& executableName)
{
    if (executableName.empty()) {
        return false;
    }
    std::error_code error;
    std::filesystem::directory_iterator entry("/proc", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isdigit(c); })
            && executableOf(entry->path()) == executableName) {
            return true;
        }
    }
    return false;
}

#endif
