#include "zrcutils/folderpermission.h"

#include <random>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

std::string probeName()
{
    static const char digits[] = "0123456789abcdef";
    std::random_device random;
    std::string name = ".write-probe-";
    for (int digit = 0; digit < 16; ++digit) {
        name += digits[random() % 16];
    }
    return name;
}

} // namespace

#ifdef _WIN32

namespace {

/// The absolute path in the form that has no limit of MAX_PATH; empty when it names no folder.
std::wstring longPath(const std::string& path)
{
    const int bytes = static_cast<int>(path.size());
    std::wstring wide(path.size(), L'\0'); // UTF-16 takes no more units than UTF-8 takes bytes
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(
        CP_UTF8, MB_ERR_INVALID_CHARS, path.data(), bytes, wide.data(), bytes)));
    if (wide.empty()) {
        return {};
    }
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    if (full.empty()) {
        return {};
    }
    full.resize(
        GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    if (full.compare(0, 4, LR"(\\.\)") == 0) {
        return {}; // a device, such as NUL, which may take any name and any byte
    }
    if (full.compare(0, 4, LR"(\\?\)") == 0) {
        return full;
    }
    return full.compare(0, 2, LR"(\\)") == 0 ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

} // namespace

bool folderWritePermission(const std::string& folder)
{
    std::wstring path = longPath(folder.find('\0') == std::string::npos ? folder : std::string());
    if (path.empty()) {
        return false;
    }
    if (path.back() != L'\\') {
        path += L'\\';
    }
    const std::string name = probeName();
    path.append(name.begin(), name.end());
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    DWORD written = 0;
    const bool wrote = WriteFile(file, "x", 1, &written, nullptr) && written == 1;
    return CloseHandle(file) && wrote;
}

#else

bool folderWritePermission(const std::string& folder)
{
    if (folder.find('\0') != std::string::npos) {
        return false; // the system would take what stands before it for the path
    }
    // Held open, so that the file is removed where it was made, whatever is renamed meanwhile.
    const int directory = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0) {
        return false;
    }
    const std::string name = probeName();
    const int file =
        ::openat(directory, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    bool can = file >= 0;
    if (can) {
        can = ::write(file, "x", 1) == 1;
        can = ::close(file) == 0 && can;
        can = ::unlinkat(directory, name.c_str(), 0) == 0 && can;
    }
    ::close(directory);
    return can;
}

#endif
