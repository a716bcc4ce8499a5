#pragma once

#include "zrcutils/export.h"

#include <string>

/// Files whose content outlives a power cut. Any thread.
class ZRCUTILS_EXPORT NoCacheFile
{
public:
    /// Replaces the file at `path` (UTF-8), whose folder must exist, by one of that content. When
    /// this returns true the content is on the device, in its place as far as the file system can
    /// promise it; until then, and when it returns false, the file is as it was. A symbolic link is
    /// replaced, not followed.
    static bool saveToFile(const std::string& path, const std::string& content);
};
