#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <string>
#include <vector>

namespace mivo::settings {

/// The keys that are bound to actions, and the file in which they are kept. GUI thread.
class KeyTable
{
public:
    STLinkShortCutInfo lists;

    bool isEmpty() const
    {
        return lists.indexShortCutList.empty() && lists.pathShortCutList.empty();
    }

    /// Reads the file. Without one, or with one that cannot be read, the table is empty; the latter
    /// is logged, and the next save puts the file aside.
    void load();

    /// Writes the file. Errors of the file system are logged; the result of the write is not looked
    /// at. Returns the path to which a file that could not be read was renamed, or nothing.
    std::string save();

    /// Adds an entry, and removes all others of that type and path.
    void put(EnumShortCutType type, const std::string& path, const std::string& keys,
             ShortCutModuleType module);
    /// Removes the first entry of that type and path; false where there is none.
    bool remove(EnumShortCutType type, const std::string& path, ShortCutModuleType module);

    /// The first entry that holds the keys, or null.
    const STShortCutItem* holderOf(const std::string& keys) const;
    /// Removes all entries that hold the keys, and returns them.
    std::vector<STShortCutItem> takeHoldersOf(const std::string& keys);

    static bool matches(const STShortCutItem& item, EnumShortCutType type, const std::string& path)
    {
        return item.type == type && item.path == path;
    }

private:
    std::vector<STShortCutItem>& listOf(ShortCutModuleType module)
    {
        return module != ShortCutModulePath ? lists.indexShortCutList : lists.pathShortCutList;
    }

    bool m_fileIsUnreadable = false;
};

} // namespace mivo::settings
