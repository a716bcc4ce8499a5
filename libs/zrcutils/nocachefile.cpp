#include "zrcutils/nocachefile_p.h"

#include <random>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t randomLength = 6;
constexpr char suffix[] = ".saving";
constexpr std::size_t longestName = 255; // that file systems take; bytes on many shares, too

/// Whether a character in UTF-8 goes on with this byte.
bool goesOn(char byte)
{
    return (byte & 0xc0) == 0x80;
}

bool isTemporary(const fs::path& file)
{
    const auto name = file.filename().native();
    return name.size() > randomLength + 2 && name[0] == '.' && file.extension() == suffix
           && file.stem().extension().native().size() == randomLength + 1;
}

} // namespace

fs::path zrcutils::folderOf(const fs::path& target)
{
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

fs::path zrcutils::temporaryFor(const fs::path& target)
{
    static const char characters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::string kept = target.filename().u8string();
    constexpr std::size_t room = longestName - randomLength - sizeof suffix - 1; // and two dots
    if (kept.size() > room) {
        std::size_t end = room;
        while (end > 0 && goesOn(kept[end])) {
            --end;
        }
        kept.resize(end);
    }
    fs::path name = ".";
    name += fs::u8path(kept);
    name += ".";
    for (std::size_t i = 0; i < randomLength; ++i) {
        name += characters[random() % (sizeof characters - 1)];
    }
    name += suffix;
    return folderOf(target) / name;
}

NoCacheFile::Replacement::Replacement(const std::string& path, const std::string& content,
                                      std::error_code& error, Access access)
{
    error.clear();
    if (path.empty() || path.find('\0') != std::string::npos) {
        error = std::make_error_code(std::errc::invalid_argument);
    } else {
        m_temporary = zrcutils::writeTemporary(fs::u8path(path), content, access, error);
    }
}

NoCacheFile::Replacement::~Replacement() = default;

bool NoCacheFile::Replacement::commit(std::error_code& error)
{
    error = m_temporary->takePlace();
    if (!error) {
        m_temporary.reset(); // lets go of the file, which may be replaced again at once
    }
    return !error;
}

bool NoCacheFile::saveToFile(const std::string& path, const std::string& content,
                             std::error_code& error, Access access)
{
    Replacement replacement(path, content, error, access);
    return !error && replacement.commit(error);
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
            zrcutils::removeUnlessWritten(entry->path());
        }
    }
}
