#pragma once

#include "zrcutils/export.h"

#include <string>
#include <system_error>

/// Files whose content outlives a power cut. Paths are in UTF-8. Any thread; takes as long as the
/// disk does.
class ZRCUTILS_EXPORT NoCacheFile
{
public:
    /// Who may open a file that is new; one that is replaced keeps its permissions and its group.
    enum class Access {
        owner, ///< only the user of this process
        umask, ///< as the process's umask says, as for files that the user saves somewhere
    };

    /// Replaces the file at `path`, whose folder must exist, by one of that content. When this
    /// returns true the content is on the device, in its place as far as the file system can
    /// promise it; until then, and when it returns false, the file is as it was. A symbolic link is
    /// followed. False also for a file that this user may not write, and for what is no file
    /// (folder, device, pipe). `error` says why it failed, and is cleared on success.
    static bool saveToFile(const std::string& path, const std::string& content,
                           std::error_code& error, Access access = Access::owner);
    static bool saveToFile(const std::string& path, const std::string& content);

    /// Removes what killed writers left in this folder: ".<name>.<6 characters>.saving". The file
    /// of a writer that still runs stays, also on another thread or in another process.
    static void removeLeftovers(const std::string& folder);
};
