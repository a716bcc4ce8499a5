#pragma once

#include "zrcutils/export.h"

#include <memory>
#include <string>
#include <system_error>

namespace zrcutils {
class Temporary;
}

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
    /// The same for the owner alone, without the reason of a failure.
    static bool saveToFile(const std::string& path, const std::string& content);

    /// saveToFile() in two steps, for what else is to happen only when there is room for the file.
    class ZRCUTILS_EXPORT Replacement
    {
    public:
        /// The content is on the device, beside the file. `error` says why not, as above.
        Replacement(const std::string& path, const std::string& content, std::error_code& error,
                    Access access = Access::owner);
        /// Removes the content, unless it is in its place.
        ~Replacement();
        Replacement(const Replacement&) = delete;
        Replacement& operator=(const Replacement&) = delete;

        /// Has the content take the file's place, once and only after success above; takes long
        /// where another program holds the file. False: the file is as it was.
        bool commit(std::error_code& error);

    private:
        std::unique_ptr<zrcutils::Temporary> m_temporary;
    };

    /// Removes what killed writers left in this folder: ".<name>.<6 characters>.saving". The file
    /// of a writer that still runs stays, also on another thread or in another process.
    static void removeLeftovers(const std::string& folder);
};
