#include "zrcutils/filelock.h"

#include <chrono>
#include <system_error>
#include <thread>

#ifdef _WIN32
#define NOMINMAX
#include <windows.h>

#include <filesystem>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#endif

FileLock::Result FileLock::lock(const std::string& path, int timeout)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(timeout);
    Result result = tryLock(path);
    while (result == Result::inUse && Clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        result = tryLock(path);
    }
    return result;
}

#ifdef _WIN32

FileLock::Result FileLock::tryLock(const std::string& path)
{
    unlock();
    const HANDLE file = ::CreateFileW(std::filesystem::u8path(path).c_str(), GENERIC_READ, 0,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        m_file = file;
        return Result::locked;
    }
    const DWORD code = ::GetLastError();
    m_error = std::system_category().message(static_cast<int>(code));
    return code == ERROR_SHARING_VIOLATION ? Result::inUse : Result::failed;
}

void FileLock::unlock()
{
    if (m_file != nullptr) {
        ::CloseHandle(m_file);
        m_file = nullptr;
    }
}

#else

FileLock::Result FileLock::tryLock(const std::string& path)
{
    unlock();
    m_file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_file < 0) { // a file that exists can be locked without the right to write
        const int code = errno;
        m_file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        errno = code;
    }
    if (m_file >= 0 && ::flock(m_file, LOCK_EX | LOCK_NB) == 0) {
        return Result::locked;
    }
    const bool inUse = m_file >= 0 && errno == EWOULDBLOCK;
    m_error = std::generic_category().message(errno);
    unlock();
    return inUse ? Result::inUse : Result::failed;
}

void FileLock::unlock()
{
    if (m_file >= 0) {
        ::close(m_file);
        m_file = -1;
    }
}

#endif
