#pragma once

namespace mivo::projectfilemgr {

/// The host's side of the open project's file. Called on the GUI thread.
class IProjectFileMgr
{
public:
    virtual ~IProjectFileMgr() = default;

    /// A save has been asked for, and may still be going on: the list of recent files and the
    /// window title follow when it has ended. Must not wait for the file.
    virtual void saveCompleted() = 0;
};

} // namespace mivo::projectfilemgr
