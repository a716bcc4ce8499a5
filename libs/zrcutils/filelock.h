#pragma once

#include "zrcutils/export.h"

#include <string>

/// A lock that one process at a time has on a file, and that the system takes back when the process
/// ends, however it ends. The file stays; what is in it does not matter. One thread at a time.
class ZRCUTILS_EXPORT FileLock
{
public:
    /// What lock() came to.
    enum class Result {
        locked,
        inUse, ///< another one has it
        failed ///< error() says why; nobody is known to have it
    };

    FileLock() = default;
    ~FileLock() { unlock(); }

    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Locks the file at `path` (UTF-8), which is made for this user alone where it is missing.
    /// Waits up to `timeout` milliseconds for another one to end. Gives up a lock held so far.
    Result lock(const std::string& path, int timeout);
    void unlock(); ///< nothing where none is held

    /// The system's words, UTF-8.
    const std::string& error() const { return m_error; }

private:
    Result tryLock(const std::string& path);

#ifdef _WIN32
    void* m_file = nullptr;
#else
    int m_file = -1;
#endif
    std::string m_error;
};
