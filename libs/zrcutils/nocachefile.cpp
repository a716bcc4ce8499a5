#include "zrcutils/nocachefile.h"

#include <filesystem>
#include <random>

#ifdef _WIN32
#define NOMINMAX
#include <windows.h>

#include <algorithm>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace fs = std::filesystem;

namespace {

constexpr std::size_t randomLength = 6;
constexpr char suffix[] = ".saving";

fs::path folderOf(const fs::path& target)
{
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

/// A new name beside the target. On Unix the leading dot hides it.
fs::path temporaryFor(const fs::path& target)
{
    static const char characters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    fs::path name = ".";
    name += target.filename();
    name += ".";
    for (std::size_t i = 0; i < randomLength; ++i) {
        name += characters[random() % (sizeof characters - 1)];
    }
    name += suffix;
    return folderOf(target) / name;
}

bool isTemporary(const fs::path& file)
{
    const auto name = file.filename().native();
    return name.size() > randomLength + 2 && name[0] == '.' && file.extension() == suffix
           && file.stem().extension().native().size() == randomLength + 1;
}

/// Where a file of that path is or would be; the path as it is when links lead in a circle.
fs::path followLinks(const fs::path& path)
{
    fs::path target = path;
    std::error_code error;
    for (int link = 0; link < 40 && fs::is_symlink(target, error); ++link) {
        target = target.parent_path() / fs::read_symlink(target, error);
    }
    return target;
}

#ifdef _WIN32

std::error_code lastError()
{
    return {static_cast<int>(::GetLastError()), std::system_category()};
}

/// Nobody else can open the file while it is written, nor remove it.
std::error_code writeThrough(const fs::path& path, const std::string& content)
{
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return lastError();
    }
    bool written = true;
    for (std::size_t done = 0; written && done < content.size();) {
        const auto part =
            static_cast<DWORD>(std::min<std::size_t>(content.size() - done, 1U << 30));
        DWORD count = 0;
        written = ::WriteFile(file, content.data() + done, part, &count, nullptr) && count > 0;
        done += count;
    }
    const std::error_code error =
        written && ::FlushFileBuffers(file) ? std::error_code() : lastError();
    ::CloseHandle(file);
    return error;
}

std::error_code replace(const fs::path& target, const std::string& content,
                        NoCacheFile::Access /*access: by the folder*/)
{
    const DWORD attributes = ::GetFileAttributesW(target.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES
        && (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY))) {
        return std::make_error_code(std::errc::permission_denied);
    }
    const fs::path temporary = temporaryFor(target);
    std::error_code error = writeThrough(temporary, content);
    if (!error
        && !::MoveFileExW(temporary.c_str(), target.c_str(),
                          MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        error = lastError();
    }
    if (error) {
        ::DeleteFileW(temporary.c_str());
    }
    return error;
}

void removeUnlessWritten(const fs::path& temporary)
{
    ::DeleteFileW(temporary.c_str());
}

#else

std::error_code lastError()
{
    return {errno, std::system_category()};
}

class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor()
    {
        if (m_number >= 0) {
            ::close(m_number);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    operator int() const { return m_number; }

private:
    int m_number;
};

/// Makes the temporary file and locks it, which tells removeLeftovers() that its writer lives. -1
/// and errno when that fails.
int openTemporary(const fs::path& target, mode_t mode, fs::path& temporary)
{
    while (true) {
        temporary = temporaryFor(target);
        const int file =
            ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        if (file < 0 && errno == EEXIST) {
            continue;
        }
        struct stat status
        {
        };
        // It may have been taken for a leftover before it was locked.
        if (file < 0 || ::flock(file, LOCK_EX) != 0 || ::fstat(file, &status) != 0
            || status.st_nlink > 0) {
            return file;
        }
        ::close(file);
    }
}

bool writeAll(int file, const std::string& content)
{
    for (std::size_t done = 0; done < content.size();) {
        const ssize_t count = ::write(file, content.data() + done, content.size() - done);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return true;
}

/// Without it a power cut may bring the old content back; not every file system can do it.
void flushFolder(const fs::path& folder)
{
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor >= 0) {
        ::fsync(descriptor);
    }
}

std::error_code replace(const fs::path& target, const std::string& content,
                        NoCacheFile::Access access)
{
    struct stat old
    {
    };
    const bool exists = ::stat(target.c_str(), &old) == 0;
    if (!exists && errno != ENOENT) {
        return lastError();
    }
    if (exists && !S_ISREG(old.st_mode)) {
        return std::make_error_code(S_ISDIR(old.st_mode) ? std::errc::is_a_directory
                                                         : std::errc::invalid_argument);
    }
    if (exists && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        return lastError();
    }
    const bool forOwner = exists || access == NoCacheFile::Access::owner;
    fs::path temporary;
    const Descriptor file(openTemporary(target, forOwner ? 0600 : 0666, temporary));
    if (file < 0) {
        return lastError();
    }
    if (exists) {
        const bool inGroup = ::fchown(file, static_cast<uid_t>(-1), old.st_gid) == 0;
        // Some file systems refuse; the file is then readable for its owner only.
        static_cast<void>(::fchmod(file, old.st_mode & (inGroup ? 0777 : 0707)));
    }
    if (!writeAll(file, content) || ::fsync(file) != 0
        || ::rename(temporary.c_str(), target.c_str()) != 0) {
        const std::error_code error = lastError();
        ::unlink(temporary.c_str());
        return error;
    }
    flushFolder(folderOf(target));
    return {};
}

void removeUnlessWritten(const fs::path& temporary)
{
    const Descriptor file(
        ::open(temporary.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    if (file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0) {
        ::unlink(temporary.c_str());
    }
}

#endif

} // namespace

bool NoCacheFile::saveToFile(const std::string& path, const std::string& content,
                             std::error_code& error, Access access)
{
    error = path.empty() || path.find('\0') != std::string::npos
                ? std::make_error_code(std::errc::invalid_argument)
                : replace(followLinks(fs::u8path(path)), content, access);
    return !error;
}

bool NoCacheFile::saveToFile(const std::string& path, const std::string& content)
{
    std::error_code error;
    return saveToFile(path, content, error);
}

void NoCacheFile::removeLeftovers(const std::string& folder)
{
    std::error_code error;
    for (fs::directory_iterator entry(fs::u8path(folder), error);
         !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (isTemporary(entry->path())) {
            removeUnlessWritten(entry->path());
        }
    }
}
