#pragma once

namespace mivo::projectfilemgr {

/// The host's side of the open project's file. Called on the GUI thread.
class IProjectFileMgr
{
public:
    virtual ~IProjectFileMgr() = default;

    /// A save has been asked for and carried out: the file's list of recent files and its window
    /// title may follow.
    virtual void saveCompleted() = 0;
};

} // namespace mivo::projectfilemgr
