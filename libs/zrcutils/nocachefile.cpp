#include "zrcutils/nocachefile.h"

#include <filesystem>

#ifdef _WIN32
#define NOMINMAX
#include <windows.h>

#include <algorithm>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#endif

namespace fs = std::filesystem;

#ifdef _WIN32

namespace {

bool writeThrough(const fs::path& path, const std::string& content)
{
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    bool written = true;
    for (std::size_t done = 0; written && done < content.size();) {
        const auto part =
            static_cast<DWORD>(std::min<std::size_t>(content.size() - done, 1U << 30));
        DWORD count = 0;
        written = ::WriteFile(file, content.data() + done, part, &count, nullptr) && count > 0;
        done += count;
    }
    written = ::FlushFileBuffers(file) && written;
    return ::CloseHandle(file) && written;
}

} // namespace

bool NoCacheFile::saveToFile(const std::string& path, const std::string& content)
{
    const fs::path target = fs::u8path(path);
    fs::path fresh = target;
    fresh += L"." + std::to_wstring(::GetCurrentProcessId()) + L".new";
    if (writeThrough(fresh, content)
        && ::MoveFileExW(fresh.c_str(), target.c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        return true;
    }
    ::DeleteFileW(fresh.c_str());
    return false;
}

#else

namespace {

bool writeAll(int file, const std::string& content)
{
    for (std::size_t done = 0; done < content.size();) {
        const ssize_t count = ::write(file, content.data() + done, content.size() - done);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return true;
}

/// Without it a power cut may bring the old content back; not every file system can do it.
void flushFolder(const fs::path& folder)
{
    const int descriptor =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

} // namespace

bool NoCacheFile::saveToFile(const std::string& path, const std::string& content)
{
    std::string fresh = path + ".XXXXXX";
    const int file = ::mkostemp(fresh.data(), O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    struct stat old
    {
    };
    const mode_t mode = ::stat(path.c_str(), &old) == 0 ? old.st_mode & 07777 : 0644;
    bool saved = ::fchmod(file, mode) == 0 && writeAll(file, content) && ::fsync(file) == 0;
    saved = ::close(file) == 0 && saved;
    if (!saved || ::rename(fresh.c_str(), path.c_str()) != 0) {
        ::unlink(fresh.c_str());
        return false;
    }
    flushFolder(fs::path(path).parent_path());
    return true;
}

#endif
