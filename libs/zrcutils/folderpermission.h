#pragma once

#include "zrcutils/export.h"

#include <string>

/// Whether this process can write into the folder, a path in UTF-8, found out by writing: a file of
/// a new name is made in it, one byte written, and the file removed; nothing that is there is
/// touched. False for an empty path, one that is missing or no folder, and also when the disk is
/// full or the file could not be removed again. Any thread; takes as long as the disk does.
ZRCUTILS_EXPORT bool folderWritePermission(const std::string& folder);
