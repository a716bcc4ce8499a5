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

class Walker : public FolderWalker
{
public:
    ~Walker() override;

    bool open(const QString& path) override;
    QString openedPath() const override;
    bool list(std::vector<Name>& names) const override;
    Outcome remove(const Name& name) const override;
    Outcome removeFolder(const Name& name) const override;
    bool enter(const Name& name) override;
    bool leave() override;

private:
    using Identity = std::pair<dev_t, ino_t>;
    int m_opened = -1;
    int m_folder = -1;
    std::vector<Identity> m_above; // not kept open: nesting has no limit, open files have
    Identity m_identity;
};

Walker::~Walker()
{
    for (const int folder : {m_opened, m_folder}) {
        if (folder >= 0) {
            ::close(folder);
        }
    }
}

bool Walker::open(const QString& path)
{
    m_opened = ::open(QFile::encodeName(path).constData(), openAsFolder);
    m_folder = ::fcntl(m_opened, F_DUPFD_CLOEXEC, 0);
    struct stat status;
    if (m_folder < 0 || ::fstat(m_folder, &status) != 0) {
        return false;
    }
    m_identity = {status.st_dev, status.st_ino};
    return true;
}

QString Walker::openedPath() const
{
    std::error_code error;
    return QFile::decodeName(
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(m_folder), error).c_str());
}

bool Walker::list(std::vector<Name>& names) const
{
    const int folder = ::fcntl(m_folder, F_DUPFD_CLOEXEC, 0); // the reader closes its own
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

FolderWalker::Outcome Walker::remove(const Name& name) const
{
    if (::unlinkat(m_folder, name.c_str(), 0) == 0) {
        return Outcome::removed;
    }
    // The error for a folder depends on the file system; enter() tells.
    return errno == ENOENT ? Outcome::gone : Outcome::folder;
}

FolderWalker::Outcome Walker::removeFolder(const Name& name) const
{
    if (::unlinkat(m_folder, name.c_str(), AT_REMOVEDIR) == 0) {
        return Outcome::removed;
    }
    return errno == ENOENT ? Outcome::gone : Outcome::failed;
}

bool Walker::enter(const Name& name)
{
    const int folder = ::openat(m_folder, name.c_str(), openAsFolder | O_NOFOLLOW);
    if (folder < 0) {
        return false;
    }
    struct stat status;
    struct stat parent;
    struct statx more = {};
    // ".." is asked beforehand, since without the right to search the folder there is no way back.
    if (::fstat(folder, &status) != 0 || status.st_dev != m_identity.first
        || ::fstatat(folder, "..", &parent, 0) != 0
        || Identity(parent.st_dev, parent.st_ino) != m_identity
        || (::statx(folder, "", AT_EMPTY_PATH, STATX_TYPE, &more) == 0
            && (more.stx_attributes & STATX_ATTR_MOUNT_ROOT))) {
        ::close(folder);
        return false;
    }
    ::close(std::exchange(m_folder, folder));
    m_above.push_back(std::exchange(m_identity, {status.st_dev, status.st_ino}));
    return true;
}

bool Walker::leave()
{
    // Not for reading, which may have been forbidden meanwhile; it has been listed already.
    int folder = ::openat(m_folder, "..", O_PATH | O_DIRECTORY | O_CLOEXEC);
    struct stat status;
    const bool back = folder >= 0 && ::fstat(folder, &status) == 0
                      && Identity(status.st_dev, status.st_ino) == m_above.back();
    if (!back) {
        if (folder >= 0) {
            ::close(folder);
        }
        folder = ::fcntl(m_opened, F_DUPFD_CLOEXEC, 0);
        m_above.resize(1);
    }
    ::close(std::exchange(m_folder, folder));
    m_identity = m_above.back();
    m_above.pop_back();
    return back;
}

} // namespace

std::unique_ptr<FolderWalker> FolderWalker::make()
{
    return std::make_unique<Walker>();
}

} // namespace mivo::qutils
