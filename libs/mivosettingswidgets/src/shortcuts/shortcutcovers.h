#pragma once

#include "mivohostapi/peripherals.h"
#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QList>
#include <QtCore/QSet>

#include <string>
#include <unordered_map>
#include <vector>

namespace mivo::widgets {
class ShortCutCover;
}

namespace mivo::settings {

/// The covers of a shortcut manager, which borrows them, and what they show. Those of actions that
/// their types identify are found by the type, all others by the path. GUI thread.
class ShortCutCovers
{
public:
    using Cover = mivo::widgets::ShortCutCover;

    void insert(Cover* cover);
    /// Also called for a cover that is being destroyed.
    void remove(Cover* cover);
    bool contains(Cover* cover) const
    {
        return m_byIndex.contains(cover) || m_byPath.contains(cover);
    }
    QList<Cover*> all() const { return (m_byIndex + m_byPath).values(); }

    /// Calls it with every cover; it may insert and remove covers.
    template <typename Function>
    void forEach(Function function) const
    {
        for (Cover* cover : all()) {
            function(*cover);
        }
    }

    /// Null where there is none.
    Cover* of(int type, const std::string& path) const;
    /// The covers that are found by their paths; the key is reportedPath().
    std::unordered_map<std::string, Cover*> byReportedPath() const;

    /// Shows on every cover the keys of its entry; none where it has no entry.
    void pushTexts(const STLinkShortCutInfo& table) const;
    /// Writes the keys that covers show into the table, with the covers' paths; adds entries where
    /// there are none.
    void takeTexts(STLinkShortCutInfo& table) const;

    /// Shows on the covers which controls of that kind of device are bound to them.
    static void showBindings(EnumPeripheralShortCutType kind,
                             const std::vector<peripheralcontrol::SDeviceBindInfo>& bindings,
                             const QList<Cover*>& covers);
    bool isAnyBound(EnumPeripheralShortCutType kind) const;

private:
    template <typename Key, typename OfItem, typename OfCover>
    static void takeTexts(const QSet<Cover*>& covers, std::vector<STShortCutItem>& items,
                          OfItem keyOfItem, OfCover keyOfCover);

    QSet<Cover*> m_byIndex;
    QSet<Cover*> m_byPath;
};

} // namespace mivo::settings
