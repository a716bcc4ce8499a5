#pragma once

#include "mivohostapi/shortcuttypes.h"
#include "mivosettingswidgets/export.h"

#include <QtCore/QString>

#include <string>
#include <vector>

namespace mivo::settings {

/// Where the shortcuts are kept: beside the application's data folder, under that folder's name
/// with "_Display" at its end.
MIVOSETTINGSWIDGETS_EXPORT QString shortCutFilePath();

/// The shortcuts of a file's text, which a NUL ends. Throws std::runtime_error for the first error:
/// "error at line :L col :C msg:...", lines from 1, columns counting the characters taken, without
/// carriage returns.
MIVOSETTINGSWIDGETS_EXPORT std::vector<STShortCutItem> parseShortCuts(const std::string& json);

/// The same as text, without any whitespace.
MIVOSETTINGSWIDGETS_EXPORT std::string formatShortCuts(const std::vector<STShortCutItem>& items);

} // namespace mivo::settings
