#pragma once

// What the Windows parts of this library share; not installed.

#include <windows.h>

#include <string>

namespace zrcutils {

/// The absolute path of one in UTF-8, in the form that has no limit of MAX_PATH. Empty for what is
/// no path, for a device such as NUL, which may take any name and any byte, and for a named stream
/// of a file.
std::wstring longPath(const std::string& path);

/// The system's words for one of its codes, UTF-8.
std::string systemText(DWORD code);

} // namespace zrcutils
