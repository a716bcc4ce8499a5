#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace mivo::settings {

/// The keys that are bound to actions, and the file in which they are kept. GUI thread.
class KeyTable
{
public:
    const STLinkShortCutInfo& lists() const
    {
        listAll();
        return m_lists;
    }
    /// The same for who does not look at shortCutInfoList, which may not have been filled yet.
    const STLinkShortCutInfo& splitLists() const { return m_lists; }
    /// Another number after each change of the entries.
    unsigned state() const { return m_state; }

    /// Lets `change` do what it will with the lists; it returns whether it has changed any. Who
    /// does not save right after it calls lists() before, as else what shortCutInfoList held is
    /// lost.
    template <typename Change>
    void edit(Change change)
    {
        if (change(m_lists)) {
            noteChange();
        }
    }
    /// Replaces the lists, and returns what they were.
    STLinkShortCutInfo exchange(STLinkShortCutInfo lists)
    {
        listAll();
        std::swap(m_lists, lists);
        noteChange();
        return lists;
    }

    bool isEmpty() const
    {
        return m_lists.indexShortCutList.empty() && m_lists.pathShortCutList.empty();
    }

    /// Reads the file. Without one, or with one that cannot be read, the table is empty; what is
    /// wrong in the latter is logged, and the next save puts the file aside.
    void load();

    /// Writes the file. Errors of the file system are logged, and the table stays as it is. Returns
    /// the path to which a file that could not be read was renamed, or nothing.
    std::string save();
    /// Whether the last save() could write.
    bool isWritten() const { return m_isWritten; }

    /// Adds an entry, and removes all others of that type and path.
    void put(EnumShortCutType type, const std::string& path, const std::string& keys,
             ShortCutModuleType module);
    /// Removes the first entry of that type and path; false where there is none.
    bool remove(EnumShortCutType type, const std::string& path, ShortCutModuleType module);

    /// The first entry that holds the keys, or null; at a cost that does not grow with the table.
    const STShortCutItem* holderOf(const std::string& keys) const;
    /// Removes all entries that hold the keys, and returns them.
    std::vector<STShortCutItem> takeHoldersOf(const std::string& keys);

    static bool matches(const STShortCutItem& item, EnumShortCutType type, const std::string& path)
    {
        return item.type == type && item.path == path;
    }

private:
    using Items = std::vector<STShortCutItem>;

    /// Where the first entry of each key sequence stands in a list. What is appended is noted; all
    /// else has the places worked out again when one is asked for next.
    struct Holders
    {
        std::unordered_map<std::string, std::size_t> places;
        std::size_t noted = 0; // so many entries, from the first on

        const STShortCutItem* find(const Items& items, const std::string& keys);
    };

    Items& listOf(ShortCutModuleType module)
    {
        return module != ShortCutModulePath ? m_lists.indexShortCutList : m_lists.pathShortCutList;
    }
    void noteChange()
    {
        m_indexHolders = m_pathHolders = {};
        ++m_state;
    }
    /// Fills shortCutInfoList where that is due.
    void listAll() const;

    mutable STLinkShortCutInfo m_lists;
    mutable Holders m_indexHolders;
    mutable Holders m_pathHolders;
    mutable bool m_isListDue = false; // shortCutInfoList is to hold what the other two lists do
    mutable std::optional<unsigned> m_listed; // the state that shortCutInfoList was filled from
    unsigned m_state = 0;
    bool m_fileIsUnreadable = false;
    bool m_isWritten = false;
};

} // namespace mivo::settings
