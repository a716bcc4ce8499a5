#include "zrcutils/filelock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

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
