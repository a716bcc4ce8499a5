#include "zrcutils/filelock.h"

#include "zrcutils/winsystem.h"

FileLock::Result FileLock::tryLock(const std::string& path)
{
    unlock();
    // Who only reads it, as a virus scanner or a backup does, has no lock. The handle is not
    // inherited by programs that this one starts.
    const HANDLE file = ::CreateFileW(
        zrcutils::longPath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    OVERLAPPED place{};
    if (file != INVALID_HANDLE_VALUE
        && ::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                        &place)) {
        m_file = file;
        return Result::locked;
    }
    const DWORD code = ::GetLastError();
    if (file != INVALID_HANDLE_VALUE) {
        ::CloseHandle(file);
    }
    m_error = zrcutils::systemText(code);
    return code == ERROR_LOCK_VIOLATION || code == ERROR_SHARING_VIOLATION ? Result::inUse
                                                                           : Result::failed;
}

void FileLock::unlock()
{
    if (m_file != nullptr) {
        ::CloseHandle(m_file);
        m_file = nullptr;
    }
}
