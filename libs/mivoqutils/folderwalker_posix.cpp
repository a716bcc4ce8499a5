#include "mivoqutils/folderwalker.h"

#include <QtCore/QFile>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace mivo::qutils {

namespace {

constexpr int openAsFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

} // namespace

struct FolderWalker::State
{
    using Identity = std::pair<dev_t, ino_t>;
    int opened = -1;
    int folder = -1;
    std::vector<Identity> above; // not kept open: nesting has no limit, open files have
    Identity identity;

    ~State()
    {
        for (const int descriptor : {opened, folder}) {
            if (descriptor >= 0) {
                ::close(descriptor);
            }
        }
    }
};

QString FolderWalker::textOf(const Name& name)
{
    return QString::fromStdString(name);
}

FolderWalker::FolderWalker() : m_state(std::make_unique<State>()) {}

FolderWalker::~FolderWalker() = default;

bool FolderWalker::open(const QString& path)
{
    m_state->opened = ::open(QFile::encodeName(path).constData(), openAsFolder);
    m_state->folder = ::fcntl(m_state->opened, F_DUPFD_CLOEXEC, 0);
    struct stat status;
    if (m_state->folder < 0 || ::fstat(m_state->folder, &status) != 0) {
        return false;
    }
    m_state->identity = {status.st_dev, status.st_ino};
    return true;
}

QString FolderWalker::openedPath() const
{
    std::error_code error;
    return QFile::decodeName(
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(m_state->folder), error)
            .c_str());
}

bool FolderWalker::list(std::vector<Name>& names) const
{
    const int folder = ::fcntl(m_state->folder, F_DUPFD_CLOEXEC, 0); // the reader closes its own
    DIR* reader = folder < 0 ? nullptr : ::fdopendir(folder);
    if (!reader) {
        if (folder >= 0) {
            ::close(folder);
        }
        return false;
    }
    errno = 0;
    while (const dirent* entry = ::readdir(reader)) {
        const Name name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
        errno = 0;
    }
    const bool all = errno == 0;
    ::closedir(reader);
    return all;
}

FolderWalker::Outcome FolderWalker::remove(const Name& name) const
{
    if (::unlinkat(m_state->folder, name.c_str(), 0) == 0) {
        return Outcome::removed;
    }
    // The error for a folder depends on the file system; enter() tells.
    return errno == ENOENT ? Outcome::gone : Outcome::folder;
}

FolderWalker::Outcome FolderWalker::removeFolder(const Name& name) const
{
    if (::unlinkat(m_state->folder, name.c_str(), AT_REMOVEDIR) == 0) {
        return Outcome::removed;
    }
    return errno == ENOENT ? Outcome::gone : Outcome::failed;
}

bool FolderWalker::enter(const Name& name)
{
    const int folder = ::openat(m_state->folder, name.c_str(), openAsFolder | O_NOFOLLOW);
    if (folder < 0) {
        return false;
    }
    struct stat status;
    struct stat parent;
    struct statx more = {};
    // ".." is asked beforehand, since without the right to search the folder there is no way back.
    if (::fstat(folder, &status) != 0 || status.st_dev != m_state->identity.first
        || ::fstatat(folder, "..", &parent, 0) != 0
        || State::Identity(parent.st_dev, parent.st_ino) != m_state->identity
        || (::statx(folder, "", AT_EMPTY_PATH, STATX_TYPE, &more) == 0
            && (more.stx_attributes & STATX_ATTR_MOUNT_ROOT))) {
        ::close(folder);
        return false;
    }
    ::close(std::exchange(m_state->folder, folder));
    m_state->above.push_back(std::exchange(m_state->identity, {status.st_dev, status.st_ino}));
    return true;
}

bool FolderWalker::leave()
{
    // Not for reading, which may have been forbidden meanwhile; it has been listed already.
    int folder = ::openat(m_state->folder, "..", O_PATH | O_DIRECTORY | O_CLOEXEC);
    struct stat status;
    const bool back = folder >= 0 && ::fstat(folder, &status) == 0
                      && State::Identity(status.st_dev, status.st_ino) == m_state->above.back();
    if (!back) {
        if (folder >= 0) {
            ::close(folder);
        }
        folder = ::fcntl(m_state->opened, F_DUPFD_CLOEXEC, 0);
        m_state->above.resize(1);
    }
    ::close(std::exchange(m_state->folder, folder));
    m_state->identity = m_state->above.back();
    m_state->above.pop_back();
    return back;
}

} // namespace mivo::qutils
