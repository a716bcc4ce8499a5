#include "base/keyholders.h"

#include <mivosettingswidgets/shortcuttable.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <tuple>

namespace mivohost {

using mivo::settings::peripheralActions;

namespace {

/// Where the action is shown; of one that this version has not, behind all.
auto placeOf(int type)
{
    return std::find_if(peripheralActions.begin(), peripheralActions.end(),
                        [type](const auto& action) { return action.type == type; })
           - peripheralActions.begin();
}

bool goesBefore(const STShortCutItem& one, const STShortCutItem& other)
{
    return std::tuple(placeOf(one.type), one.type, std::string_view(one.path))
           < std::tuple(placeOf(other.type), other.type, std::string_view(other.path));
}

} // namespace

QHash<QString, std::vector<STShortCutItem>> keyHolders(const std::vector<STShortCutItem>& items)
{
    QHash<QString, std::vector<STShortCutItem>> holders;
    for (const STShortCutItem& item : items) {
        const QString keys = QString::fromStdString(item.shortCutStr);
        if (!keys.isEmpty() && !mivo::settings::isReservedKeySequence(keys)) {
            std::vector<STShortCutItem>& all = holders[keys];
            all.insert(std::upper_bound(all.begin(), all.end(), item, goesBefore), item);
        }
    }
    return holders;
}

bool isAction(int type)
{
    return placeOf(type) < static_cast<std::ptrdiff_t>(peripheralActions.size());
}

} // namespace mivohost
