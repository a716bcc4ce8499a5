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
    /// Also of one that is just ending.
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
    /// Those that are found by their paths, by them as they are reported.
    std::unordered_map<std::string, Cover*> byReportedPath() const;

    /// Has every cover show the keys of its entry, or none.
    void pushTexts(const STLinkShortCutInfo& table) const;
    /// Has the table hold the keys that covers show under the covers' paths, as new entries where
    /// there are none.
    void takeTexts(STLinkShortCutInfo& table) const;

    /// Has the covers show which controls of that kind of device are bound to them, or none.
    static void showBindings(EnumPeripheralShortCutType kind,
                             const std::vector<peripheralcontrol::SDeviceBindInfo>& bindings,
                             const QList<Cover*>& covers);
    bool isAnyBound(EnumPeripheralShortCutType kind) const;

private:
    template <typename KeyOf>
    static void takeTexts(const QSet<Cover*>& covers, std::vector<STShortCutItem>& items,
                          KeyOf keyOf);

    QSet<Cover*> m_byIndex;
    QSet<Cover*> m_byPath;
};

} // namespace mivo::settings
