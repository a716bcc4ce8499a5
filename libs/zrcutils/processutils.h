#pragma once

#include "zrcutils/export.h"

#include <string>

/// The processes of this machine.
class ZRCUTILS_EXPORT ProcessUtils
{
public:
    /// Whether a process runs whose executable's file name is exactly this one: UTF-8, without
    /// folders, with its suffix (on Windows "name.exe", where the case of letters does not matter).
    /// A process whose executable this user may not ask for counts by the name that it was started
    /// with. False for an empty name, for one with a folder in it, and when the system does not
    /// tell. Any thread; takes a walk over all processes.
    static bool processIsRunning(const std::string& executableName);
};
