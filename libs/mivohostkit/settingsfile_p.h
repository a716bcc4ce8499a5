#pragma once

#include "mivohostkit/settingsfile.h"

namespace mivohost {

constexpr const char* schemaName = "mivo-settings";
constexpr int formatVersion = 1;

} // namespace mivohost
