#pragma once

#include "mivohostapi/peripherals.h"
#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <list>
#include <optional>
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
    QList<Cover*> all() const;

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

    /// Shows on every cover the keys of its entry; none where it has no entry. `state` is another
    /// one whenever the table is.
    void pushTexts(const STLinkShortCutInfo& table, unsigned state);
    /// Whether no cover was given a text since they were made to show that state of the table, so
    /// that takeTexts(), whose time goes into waiting for memory, would change nothing.
    bool isAsPushed(unsigned state) const;
    /// Writes the keys that covers show into the table, with the covers' paths; adds entries where
    /// there are none. False when the table already says all that.
    bool takeTexts(STLinkShortCutInfo& table) const;

    /// Shows on the covers which controls of that kind of device are bound to them.
    static void showBindings(EnumPeripheralShortCutType kind,
                             const std::vector<peripheralcontrol::SDeviceBindInfo>& bindings,
                             const QList<Cover*>& covers);
    bool isAnyBound(EnumPeripheralShortCutType kind) const;

private:
    /// A set that is walked in the order of insertion, which is about that in which the covers lie
    /// in memory: in any other order, 10,000 of them take twice as long.
    class Set
    {
    public:
        void insert(Cover* cover)
        {
            if (!contains(cover)) {
                m_places.emplace(cover, m_covers.insert(m_covers.end(), cover));
            }
        }
        void remove(Cover* cover)
        {
            const auto found = m_places.find(cover);
            if (found != m_places.end()) {
                m_covers.erase(found->second);
                m_places.erase(found);
            }
        }
        bool contains(Cover* cover) const { return m_places.count(cover) != 0; }
        std::size_t size() const { return m_places.size(); }
        auto begin() const { return m_covers.begin(); }
        auto end() const { return m_covers.end(); }

    private:
        std::list<Cover*> m_covers;
        std::unordered_map<Cover*, std::list<Cover*>::iterator> m_places;
    };

    /// `Key` tells by what covers and entries are matched. Returns whether every cover shows just
    /// what its entry says, path included, and no two entries are for the same cover.
    template <typename Key>
    static bool pushTexts(const Set& covers, const std::vector<STShortCutItem>& items);
    template <typename Key>
    static bool takeTexts(const Set& covers, std::vector<STShortCutItem>& items);

    Set m_byIndex;
    Set m_byPath;
    struct Pushed
    {
        unsigned state; // in which the table says what the covers show
        unsigned texts; // given to covers by then
    };
    std::optional<Pushed> m_pushed;
};

} // namespace mivo::settings
