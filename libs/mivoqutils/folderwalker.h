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

    /// A name as people read it, also one that is no text.
    static QString textOf(const Name& name);

    enum class Outcome { removed, gone, failed, folder };

    FolderWalker();
    ~FolderWalker();
    Q_DISABLE_COPY(FolderWalker)

    /// Goes to the folder that the path leads to, through links too.
    bool open(const QString& path);
    /// Where the opened folder really is.
    QString openedPath() const;
    /// Appends what is in the current folder; false when that is not all.
    bool list(std::vector<Name>& names) const;
    /// Removes an entry of the current folder that is no folder; "folder" when it may be one.
    Outcome remove(const Name& name) const;
    /// Removes an empty folder.
    Outcome removeFolder(const Name& name) const;
    /// Goes into a folder of the current one; not through a link, nor into another file system.
    bool enter(const Name& name);
    /// Goes back to where enter() came from. When the current folder was moved elsewhere, it goes
    /// to the opened folder and returns false.
    bool leave();

private:
    struct State; // what the system opens a folder as
    std::unique_ptr<State> m_state;
};

} // namespace mivo::qutils
