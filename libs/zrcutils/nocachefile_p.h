#pragma once

#include "zrcutils/nocachefile.h"

#include <filesystem>

namespace zrcutils {

std::filesystem::path folderOf(const std::filesystem::path& target);

/// A new name beside the target, of whose name it has as much as there is room for. On Unix the
/// leading dot hides it.
std::filesystem::path temporaryFor(const std::filesystem::path& target);

/// A file with the new content of another one beside that. Its end removes it, unless it has taken
/// the other one's place.
class Temporary
{
public:
    virtual ~Temporary() = default;

    virtual std::error_code takePlace() = 0;
};

/// Null, and why, when the content could not be brought to the device.
std::unique_ptr<Temporary> writeTemporary(const std::filesystem::path& path,
                                          const std::string& content, NoCacheFile::Access access,
                                          std::error_code& error);

/// Removes a temporary file, unless its writer lives.
void removeUnlessWritten(const std::filesystem::path& temporary);

} // namespace zrcutils
