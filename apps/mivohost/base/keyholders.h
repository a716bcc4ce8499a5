#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QHash>
#include <QtCore/QString>

#include <vector>

namespace mivohost {

/// The entries of each sequence of keys, but for sequences that belong to the program itself. The
/// first one has it: of the actions of this version the one that is shown first, whatever the order
/// of `items`, which is another one on each machine of a show. Any thread.
QHash<QString, std::vector<STShortCutItem>> keyHolders(const std::vector<STShortCutItem>& items);

/// Whether this version has that action.
bool isAction(int type);

} // namespace mivohost
