#pragma once

#include <string>

namespace zrcutils {

/// Makes a file of that new name in the folder, writes a byte and removes it again. Paths are
/// UTF-8.
bool writeAndRemove(const std::string& folder, const std::string& name);

} // namespace zrcutils
