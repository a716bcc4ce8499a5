#pragma once

#include "zrcutils/nocachefile.h"

#include <filesystem>

namespace zrcutils {

std::filesystem::path folderOf(const std::filesystem::path& target);

/// A new name beside the target. On Unix the leading dot hides it.
std::filesystem::path temporaryFor(const std::filesystem::path& target);

/// See NoCacheFile::saveToFile().
std::error_code replace(const std::filesystem::path& path, const std::string& content,
                        NoCacheFile::Access access);

/// Removes a temporary file, unless its writer lives.
void removeUnlessWritten(const std::filesystem::path& temporary);

} // namespace zrcutils
