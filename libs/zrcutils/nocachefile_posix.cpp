#include "zrcutils/nocachefile_p.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace fs = std::filesystem;

namespace zrcutils {

namespace {

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

class Written : public Temporary
{
public:
    Written(const fs::path& name, const fs::path& target, int file)
        : m_name(name), m_target(target), m_file(file)
    {}
    ~Written() override
    {
        if (!m_isInPlace) {
            ::unlink(m_name.c_str());
        }
    }

    std::error_code takePlace() override
    {
        if (::rename(m_name.c_str(), m_target.c_str()) != 0) {
            return lastError();
        }
        m_isInPlace = true;
        flushFolder(folderOf(m_target));
        return {};
    }

private:
    fs::path m_name;
    fs::path m_target;
    Descriptor m_file; // locked
    bool m_isInPlace = false;
};

} // namespace

std::unique_ptr<Temporary> writeTemporary(const fs::path& path, const std::string& content,
                                          NoCacheFile::Access access, std::error_code& error)
{
    const auto fail = [&error](const std::error_code& why) {
        error = why;
        return nullptr;
    };
    const fs::path target = followLinks(path);
    struct stat old
    {
    };
    const bool exists = ::stat(target.c_str(), &old) == 0;
    if (!exists && errno != ENOENT) {
        return fail(lastError());
    }
    if (exists && !S_ISREG(old.st_mode)) {
        return fail(std::make_error_code(S_ISDIR(old.st_mode) ? std::errc::is_a_directory
                                                              : std::errc::invalid_argument));
    }
    if (exists && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        return fail(lastError());
    }
    const bool forOwner = exists || access == NoCacheFile::Access::owner;
    fs::path name;
    const int file = openTemporary(target, forOwner ? 0600 : 0666, name);
    if (file < 0) {
        return fail(lastError());
    }
    auto written = std::make_unique<Written>(name, target, file);
    if (exists) {
        const bool inGroup = ::fchown(file, static_cast<uid_t>(-1), old.st_gid) == 0;
        // Some file systems refuse; the file is then readable for its owner only.
        static_cast<void>(::fchmod(file, old.st_mode & (inGroup ? 0777 : 0707)));
    }
    if (!writeAll(file, content) || ::fsync(file) != 0) {
        return fail(lastError());
    }
    return written;
}

void removeUnlessWritten(const fs::path& temporary)
{
    const Descriptor file(
        ::open(temporary.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    if (file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0) {
        ::unlink(temporary.c_str());
    }
}

} // namespace zrcutils
