#include "zrcutils/filelock.h"

#include "zrcutils/winsystem.h"

FileLock::Result FileLock::tryLock(const std::string& path)
{
    unlock();
    // Shared with nobody, and not inherited by programs that this one starts.
    const HANDLE file = ::CreateFileW(zrcutils::longPath(path).c_str(), GENERIC_READ, 0, nullptr,
                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        m_file = file;
        return Result::locked;
    }
    const DWORD code = ::GetLastError();
    m_error = zrcutils::systemText(code);
    return code == ERROR_SHARING_VIOLATION ? Result::inUse : Result::failed;
}

void FileLock::unlock()
{
    if (m_file != nullptr) {
        ::CloseHandle(m_file);
        m_file = nullptr;
    }
}
