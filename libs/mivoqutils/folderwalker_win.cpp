#include "mivoqutils/folderwalker.h"

#include <QtCore/QDir>
#include <QtCore/qt_windows.h>

namespace mivo::qutils {

struct FolderWalker::State
{
    // The handles do not share deletion: while they are open nothing above can be replaced.
    std::vector<HANDLE> folders;
    std::vector<std::wstring> paths; // of the same folders, in the form without a limit
};

QString FolderWalker::textOf(const Name& name)
{
    return QString::fromStdWString(name);
}

FolderWalker::FolderWalker() : m_state(std::make_unique<State>()) {}

FolderWalker::~FolderWalker()
{
    while (!m_state->folders.empty()) {
        leave();
    }
}

bool FolderWalker::open(const QString& path)
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
    m_state->folders.push_back(folder);
    m_state->paths.push_back(real);
    return !real.empty();
}

QString FolderWalker::openedPath() const
{
    const QString path = QString::fromStdWString(m_state->paths.front());
    const QString share = R"(\\?\UNC\)";
    return path.startsWith(share) ? R"(\\)" + path.mid(share.size()) : path.mid(4);
}

bool FolderWalker::list(std::vector<Name>& names) const
{
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((m_state->paths.back() + L"\\*").c_str(), &entry);
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

FolderWalker::Outcome FolderWalker::remove(const Name& name) const
{
    const std::wstring path = m_state->paths.back() + L'\\' + name;
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

FolderWalker::Outcome FolderWalker::removeFolder(const Name& name) const
{
    const std::wstring path = m_state->paths.back() + L'\\' + name;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY)) {
        SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    }
    if (RemoveDirectoryW(path.c_str())) {
        return Outcome::removed;
    }
    return GetLastError() == ERROR_FILE_NOT_FOUND ? Outcome::gone : Outcome::failed;
}

bool FolderWalker::enter(const Name& name)
{
    const std::wstring path = m_state->paths.back() + L'\\' + name;
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
    m_state->folders.push_back(folder);
    m_state->paths.push_back(path);
    return true;
}

bool FolderWalker::leave()
{
    CloseHandle(m_state->folders.back());
    m_state->folders.pop_back();
    m_state->paths.pop_back();
    return true;
}

} // namespace mivo::qutils
