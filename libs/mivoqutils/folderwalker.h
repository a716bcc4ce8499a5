#pragma once

#include <QtCore/QString>

#include <filesystem>
#include <memory>
#include <vector>

namespace mivo::qutils {

/// One place in a tree of folders. It goes from folder to folder by what it has opened and never by
/// a path that somebody could lead elsewhere meanwhile.
class FolderWalker
{
public:
    using Name = std::filesystem::path::string_type;

    enum class Outcome { removed, gone, failed, folder };

    /// The system's.
    static std::unique_ptr<FolderWalker> make();

    FolderWalker() = default;
    virtual ~FolderWalker() = default;
    Q_DISABLE_COPY(FolderWalker)

    /// Goes to the folder that the path leads to, through links too.
    virtual bool open(const QString& path) = 0;
    /// Where the opened folder really is.
    virtual QString openedPath() const = 0;
    /// Appends what is in the current folder; false when that is not all.
    virtual bool list(std::vector<Name>& names) const = 0;
    /// Removes an entry of the current folder that is no folder; "folder" when it may be one.
    virtual Outcome remove(const Name& name) const = 0;
    /// Removes an empty folder.
    virtual Outcome removeFolder(const Name& name) const = 0;
    /// Goes into a folder of the current one; not through a link, nor into another file system.
    virtual bool enter(const Name& name) = 0;
    /// Goes back to where enter() came from. When the current folder was moved elsewhere, it goes
    /// to the opened folder and returns false.
    virtual bool leave() = 0;
};

} // namespace mivo::qutils
