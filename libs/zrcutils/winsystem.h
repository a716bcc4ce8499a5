#pragma once

// What the Windows parts of this library share; not installed.

#include <windows.h>

#include <string>

namespace zrcutils {

/// The absolute path of one in UTF-8, in the form that has no limit of MAX_PATH. Empty for what is
/// no path, for a device such as NUL, which may take any name and any byte, and for a named stream
/// of a file.
std::wstring longPath(const std::string& path);

/// Whether a file could not be renamed, replaced or removed as another program holds it; the system
/// says the latter where there is no right, too.
constexpr bool isHeld(DWORD code)
{
    return code == ERROR_SHARING_VIOLATION || code == ERROR_ACCESS_DENIED;
}

/// The system's words for one of its codes, UTF-8.
std::string systemText(DWORD code);

} // namespace zrcutils
