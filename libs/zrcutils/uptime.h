#pragma once

// Not installed.

#include "zrcutils/export.h"

#include <chrono>

namespace zrcutils {

/// Since the machine was started, also while it slept. Nobody sets it, as the clock on the wall.
ZRCUTILS_EXPORT std::chrono::milliseconds uptime();

} // namespace zrcutils
