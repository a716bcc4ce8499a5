#include "zrcutils/heldfile.h"
#include "zrcutils/nocachefile_p.h"
#include "zrcutils/winsystem.h"

#include <algorithm>
#include <vector>

namespace fs = std::filesystem;

namespace zrcutils {

namespace {

/// The program's own files are replaced on the thread of its windows, and again where that fails;
/// those that the user saves somewhere on threads of their own.
constexpr std::chrono::milliseconds ownHeldFor(200);

std::error_code systemError(DWORD code)
{
    return {static_cast<int>(code), std::system_category()};
}

class Handle
{
public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    ~Handle()
    {
        if (isValid()) {
            ::CloseHandle(m_handle);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool isValid() const { return m_handle != INVALID_HANDLE_VALUE; }
    operator HANDLE() const { return m_handle; }

private:
    HANDLE m_handle;
};

/// Where the links of a path lead; the path itself where nothing is at their end.
std::wstring followLinks(const std::wstring& path)
{
    const Handle file(::CreateFileW(path.c_str(), 0,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file.isValid()) {
        return path;
    }
    std::wstring real(32768, L'\0'); // the system's longest path
    const DWORD length = ::GetFinalPathNameByHandleW(
        file, real.data(), static_cast<DWORD>(real.size()), FILE_NAME_NORMALIZED);
    real.resize(length < real.size() ? length : 0);
    return real.empty() ? path : real;
}

bool writeAll(HANDLE file, const std::string& content)
{
    for (std::size_t done = 0; done < content.size();) {
        const auto part =
            static_cast<DWORD>(std::min<std::size_t>(content.size() - done, 1U << 30));
        DWORD count = 0;
        if (!::WriteFile(file, content.data() + done, part, &count, nullptr) || count == 0) {
            return false;
        }
        done += count;
    }
    return ::FlushFileBuffers(file);
}

/// Who may open the file, as it was said for the one that it replaces. Not every file system can.
void keepAccess(const std::wstring& from, HANDLE to)
{
    DWORD size = 0;
    ::GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<unsigned char> descriptor(size);
    if (size > 0
        && ::GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size,
                              &size)) {
        ::SetKernelObjectSecurity(to, DACL_SECURITY_INFORMATION, descriptor.data());
    }
}

/// Gives an open file another one's name and place. Returns the system's code.
DWORD renameOpen(HANDLE file, const std::wstring& target, std::chrono::milliseconds most)
{
    const std::size_t bytes = target.size() * sizeof(wchar_t);
    std::vector<unsigned char> buffer(sizeof(FILE_RENAME_INFO) + bytes);
    auto* info = reinterpret_cast<FILE_RENAME_INFO*>(buffer.data());
    info->ReplaceIfExists = TRUE;
    info->FileNameLength = static_cast<DWORD>(bytes);
    std::copy(target.begin(), target.end(), info->FileName);
    DWORD code = ERROR_SUCCESS;
    tryWhileHeld(most, [&] {
        const bool isDone = ::SetFileInformationByHandle(file, FileRenameInfo, info,
                                                         static_cast<DWORD>(buffer.size()));
        code = isDone ? ERROR_SUCCESS : ::GetLastError();
        return !isHeld(code);
    });
    return code;
}

class Written : public Temporary
{
public:
    Written(const std::wstring& target, HANDLE file, std::chrono::milliseconds most)
        : m_target(target), m_file(file), m_most(most)
    {}
    ~Written() override
    {
        if (!m_isInPlace) {
            FILE_DISPOSITION_INFO removal{TRUE};
            ::SetFileInformationByHandle(m_file, FileDispositionInfo, &removal, sizeof removal);
        }
    }

    std::error_code takePlace() override
    {
        if (const DWORD code = renameOpen(m_file, m_target, m_most)) {
            return systemError(code);
        }
        m_isInPlace = true;
        ::FlushFileBuffers(m_file); // its new name, too
        return {};
    }

private:
    std::wstring m_target;
    Handle m_file;
    std::chrono::milliseconds m_most; // to wait for who holds the target
    bool m_isInPlace = false;
};

} // namespace

// A new file may be opened by whom the folder says.
std::unique_ptr<Temporary> writeTemporary(const fs::path& path, const std::string& content,
                                          NoCacheFile::Access access, std::error_code& error)
{
    const auto fail = [&error](DWORD code) {
        error = systemError(code);
        return nullptr;
    };
    const std::wstring named = longPath(path.u8string());
    if (named.empty()) {
        return fail(ERROR_INVALID_NAME);
    }
    const std::wstring target = followLinks(named);
    const DWORD attributes = ::GetFileAttributesW(target.c_str());
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (exists && (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        return fail(ERROR_CANNOT_MAKE);
    }
    if (exists && (attributes & FILE_ATTRIBUTE_READONLY)) {
        return fail(ERROR_ACCESS_DENIED);
    }
    // Shared with nobody until it is in its place: so removeLeftovers() of another process leaves
    // it.
    const fs::path temporary = temporaryFor(target);
    const auto make = [&](DWORD moreRights) {
        return ::CreateFileW(
            temporary.c_str(), GENERIC_WRITE | DELETE | moreRights, 0, nullptr, CREATE_NEW,
            exists ? attributes & FILE_ATTRIBUTE_HIDDEN : FILE_ATTRIBUTE_NORMAL, nullptr);
    };
    HANDLE file = make(exists ? WRITE_DAC : 0);
    if (file == INVALID_HANDLE_VALUE && exists && ::GetLastError() == ERROR_ACCESS_DENIED) {
        file = make(0); // a share on which nobody may say who opens a file: the folder says it
    }
    if (file == INVALID_HANDLE_VALUE) {
        return fail(::GetLastError());
    }
    auto written = std::make_unique<Written>(
        target, file, access == NoCacheFile::Access::owner ? ownHeldFor : heldFor);
    if (exists) {
        keepAccess(target, file);
    }
    if (!writeAll(file, content)) {
        return fail(::GetLastError());
    }
    return written;
}

void removeUnlessWritten(const fs::path& temporary)
{
    ::DeleteFileW(temporary.c_str());
}

} // namespace zrcutils
