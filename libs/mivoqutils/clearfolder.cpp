#include "mivoqutils/folders.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <filesystem>
#include <utility>
#include <vector>

#ifdef Q_OS_WIN
#include <QtCore/qt_windows.h>
#else
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace mivo::qutils {

namespace {

using Name = std::filesystem::path::string_type;

enum class Outcome { removed, gone, failed, folder };

/// One place in a tree of folders. It goes from folder to folder by what it has opened and never by
/// a path that somebody could lead elsewhere meanwhile.
class Walker
{
public:
    Walker() = default;
    ~Walker();
    Q_DISABLE_COPY(Walker)

    /// Goes to the folder that the path leads to, through links too.
    bool open(const QString& path);
    /// Where the opened folder really is.
    QString openedPath() const;
    /// Appends what is in the current folder; false when that is not all.
    bool list(std::vector<Name>& names) const;
    /// Removes an entry of the current folder that is no folder; "folder" when it may be one.
    Outcome remove(const Name& name) const;
    /// Removes an empty folder.
    Outcome removeFolder(const Name& name) const;
    /// Goes into a folder of the current one; not through a link, nor into another file system.
    bool enter(const Name& name);
    /// Goes back to where enter() came from. When the current folder was moved elsewhere, it goes
    /// to the opened folder and returns false.
    bool leave();

private:
#ifdef Q_OS_WIN
    // The handles do not share deletion: while they are open nothing above can be replaced.
    std::vector<HANDLE> m_folders;
    std::vector<std::wstring> m_paths; // of the same folders, in the form without a limit
#else
    using Identity = std::pair<dev_t, ino_t>;
    int m_opened = -1;
    int m_folder = -1;
    std::vector<Identity> m_above; // not kept open: nesting has no limit, open files have
    Identity m_identity;
#endif
};

#ifdef Q_OS_WIN

Walker::~Walker()
{
    while (!m_folders.empty()) {
        leave();
    }
}

bool Walker::open(const QString& path)
{
    const HANDLE folder = CreateFileW(QDir::toNativeSeparators(path).toStdWString().c_str(),
                                      FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE) {
        return false;
    }
    std::wstring real(32768, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(
        folder, real.data(), static_cast<DWORD>(real.size()), FILE_NAME_NORMALIZED);
    real.resize(length < real.size() ? length : 0);
    m_folders.push_back(folder);
    m_paths.push_back(real);
    return !real.empty();
}

QString Walker::openedPath() const
{
    const QString path = QString::fromStdWString(m_paths.front());
    const QString share = R"(\\?\UNC\)";
    return path.startsWith(share) ? R"(\\)" + path.mid(share.size()) : path.mid(4);
}

bool Walker::list(std::vector<Name>& names) const
{
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((m_paths.back() + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    do {
        const std::wstring name = entry.cFileName;
        if (name != L"." && name != L"..") {
            names.push_back(name);
        }
    } while (FindNextFileW(search, &entry));
    const bool all = GetLastError() == ERROR_NO_MORE_FILES;
    FindClose(search);
    return all;
}

Outcome Walker::remove(const Name& name) const
{
    const std::wstring path = m_paths.back() + L'\\' + name;
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW(path.c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        return GetLastError() == ERROR_FILE_NOT_FOUND ? Outcome::gone : Outcome::failed;
    }
    FindClose(search);
    // Other reparse points, such as a folder of a synchronised disk, are no links.
    const bool link = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
                      && IsReparseTagNameSurrogate(entry.dwReserved0);
    const bool folder = entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
    if (folder && !link) {
        return Outcome::folder;
    }
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_READONLY) {
        SetFileAttributesW(path.c_str(), entry.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    }
    return (folder ? RemoveDirectoryW(path.c_str()) : DeleteFileW(path.c_str())) ? Outcome::removed
                                                                                 : Outcome::failed;
}

Outcome Walker::removeFolder(const Name& name) const
{
    const std::wstring path = m_paths.back() + L'\\' + name;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY)) {
        SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    }
    if (RemoveDirectoryW(path.c_str())) {
        return Outcome::removed;
    }
    return GetLastError() == ERROR_FILE_NOT_FOUND ? Outcome::gone : Outcome::failed;
}

bool Walker::enter(const Name& name)
{
    const std::wstring path = m_paths.back() + L'\\' + name;
    const HANDLE folder = CreateFileW(
        path.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (folder == INVALID_HANDLE_VALUE) {
        return false;
    }
    FILE_ATTRIBUTE_TAG_INFO info{};
    if (!GetFileInformationByHandleEx(folder, FileAttributeTagInfo, &info, sizeof info)
        || !(info.FileAttributes & FILE_ATTRIBUTE_DIRECTORY)
        || ((info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
            && IsReparseTagNameSurrogate(info.ReparseTag))) {
        CloseHandle(folder);
        return false;
    }
    m_folders.push_back(folder);
    m_paths.push_back(path);
    return true;
}

bool Walker::leave()
{
    CloseHandle(m_folders.back());
    m_folders.pop_back();
    m_paths.pop_back();
    return true;
}

#else

constexpr int openAsFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

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

Outcome Walker::remove(const Name& name) const
{
    if (::unlinkat(m_folder, name.c_str(), 0) == 0) {
        return Outcome::removed;
    }
    // The error for a folder depends on the file system; enter() tells.
    return errno == ENOENT ? Outcome::gone : Outcome::folder;
}

Outcome Walker::removeFolder(const Name& name) const
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

#endif

struct Level
{
    Name name;
    std::vector<Name> left;
    bool incomplete = false; // something in it was not removed
};

QString fullPath(const QString& root, const std::vector<Level>& levels, const Name& name)
{
    Name below;
    for (std::size_t level = 1; level < levels.size(); ++level) {
        below += levels[level].name + std::filesystem::path::preferred_separator;
    }
    below += name;
#ifdef Q_OS_WIN
    const QString text = QString::fromStdWString(below);
#else
    const QString text = QFile::decodeName(below.c_str());
#endif
    return root + QDir::separator() + text;
}

} // namespace

ClearResult clearFolder(const QString& path, const std::function<bool(int removed)>& goOn)
{
    ClearResult result;
    if (!mayBeCleared(path)) {
        result.refused = true;
        return result;
    }
    Walker walker;
    if (!walker.open(path)) {
        result.notRemoved << QDir::toNativeSeparators(path);
        return result;
    }
    // Again, for what was really opened.
    const QString root = walker.openedPath();
    if (!mayBeCleared(root)) {
        result.refused = true;
        return result;
    }

    std::vector<Level> levels(1);
    const auto keep = [&](const Name& name) {
        levels.back().incomplete = true;
        result.notRemoved << fullPath(root, levels, name);
    };
    if (!walker.list(levels.back().left)) {
        result.notRemoved << root;
    }
    while (true) {
        Name name;
        Outcome outcome;
        bool explained = false; // something in the folder is in notRemoved already
        if (!levels.back().left.empty()) {
            name = std::move(levels.back().left.back());
            levels.back().left.pop_back();
            outcome = walker.remove(name);
            if (outcome == Outcome::folder && walker.enter(name)) {
                levels.push_back({std::move(name), {}, false});
                // What could not be listed keeps the folder from being removed, and so is named.
                walker.list(levels.back().left);
                continue;
            }
            if (outcome == Outcome::folder) {
                outcome = walker.removeFolder(name);
            }
        } else if (levels.size() > 1) {
            if (!walker.leave()) {
                levels.front().left.push_back(std::move(levels[1].name));
                levels.resize(1);
                continue;
            }
            name = std::move(levels.back().name);
            explained = levels.back().incomplete;
            levels.pop_back();
            levels.back().incomplete |= explained;
            outcome = walker.removeFolder(name);
        } else {
            break;
        }
        if (outcome == Outcome::removed) {
            ++result.removed;
        } else if (outcome == Outcome::failed && !explained) {
            keep(name);
        }
        if (goOn && !goOn(result.removed)) {
            result.cancelled = true;
            break;
        }
    }
    // After a folder was moved, the others are tried again.
    result.notRemoved.removeDuplicates();
    return result;
}

} // namespace mivo::qutils
