#include "shortcuts/shortcutcovers.h"

#include "mivosettingswidgets/shortcuttable.h"

#include <mivowidgets/shortcutcover.h>

#include <algorithm>
#include <iterator>
#include <memory_resource>
#include <string_view>

namespace mivo::settings {

using mivo::peripheralcontrol::SDeviceBindInfo;
using mivo::widgets::ShortCutCover;

namespace {

template <typename Texts, typename Key>
QString textOf(const Texts& texts, const Key& key)
{
    const auto found = texts.find(key);
    return found == texts.end() ? QString() : QString::fromStdString(*found->second);
}

/// The texts for covers that are found by their types, and for those found by their paths.
struct Texts
{
    std::pmr::monotonic_buffer_resource memory; // of all at once: the texts are thrown away soon
    std::pmr::unordered_map<int, const std::string*> byType{&memory};
    std::pmr::unordered_map<std::string, const std::string*> byPath{&memory};
};

bool isAscii(const std::string& bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= 0; });
}

/// False also where both are the same, but not ASCII alone.
bool isSameAscii(const QString& text, const std::string& bytes)
{
    return std::equal(
        text.begin(), text.end(), bytes.begin(), bytes.end(),
        [](QChar character, char byte) { return byte >= 0 && character == QLatin1Char(byte); });
}

struct ByType
{
    using Value = int;
    static int of(const STShortCutItem& item) { return item.type; }
    static int of(const ShortCutCover& cover) { return cover.getShortCutIndex(); }
};

struct ByPath
{
    using Value = std::string_view;
    static Value of(const STShortCutItem& item) { return item.path; }
    static Value of(const ShortCutCover& cover) { return cover.getShortCutPath(); }
};

} // namespace

void ShortCutCovers::insert(ShortCutCover* cover)
{
    (cover->getShortCutType() == ShortCutModuleIndex ? m_byIndex : m_byPath).insert(cover);
    m_pushed.reset(); // this one shows what it did before
}

void ShortCutCovers::remove(ShortCutCover* cover)
{
    m_byIndex.remove(cover);
    m_byPath.remove(cover);
}

QList<ShortCutCover*> ShortCutCovers::all() const
{
    QList<Cover*> covers;
    for (const Set* set : {&m_byIndex, &m_byPath}) {
        std::copy(set->begin(), set->end(), std::back_inserter(covers));
    }
    return covers;
}

ShortCutCover* ShortCutCovers::of(int type, const std::string& path) const
{
    const bool isOfPath = type == ShortCutOfPath;
    const std::string name = reportedPath(path);
    const auto& covers = isOfPath ? m_byPath : m_byIndex;
    const auto found = std::find_if(covers.begin(), covers.end(), [&](const Cover* cover) {
        return isOfPath ? reportedPath(cover->getPeripheralShortCutPath()) == name
                        : cover->getShortCutIndex() == type;
    });
    return found == covers.end() ? nullptr : *found;
}

std::unordered_map<std::string, ShortCutCover*> ShortCutCovers::byReportedPath() const
{
    std::unordered_map<std::string, ShortCutCover*> covers;
    for (Cover* cover : m_byPath) {
        covers[reportedPath(cover->getPeripheralShortCutPath())] = cover;
    }
    return covers;
}

void ShortCutCovers::pushTexts(const STLinkShortCutInfo& table, unsigned state)
{
    const bool isIndexSame = pushTexts<ByType>(m_byIndex, table.indexShortCutList);
    const bool isPathSame = pushTexts<ByPath>(m_byPath, table.pathShortCutList);
    m_pushed.reset();
    if (isIndexSame && isPathSame) {
        m_pushed = {state, Cover::givenTexts()};
    }
}

template <typename Key>
bool ShortCutCovers::pushTexts(const Set& covers, const std::vector<STShortCutItem>& items)
{
    std::pmr::monotonic_buffer_resource memory; // of all at once: it is thrown away soon
    std::pmr::unordered_map<typename Key::Value, const STShortCutItem*> last(items.size(), &memory);
    for (const STShortCutItem& item : items) {
        last[Key::of(item)] = &item;
    }
    bool isSame = last.size() == items.size();
    // In a loop of its own, which does not wait for the memory of one cover after the other.
    std::pmr::vector<std::pair<Cover*, const STShortCutItem*>> shown(&memory);
    shown.reserve(covers.size());
    for (Cover* cover : covers) {
        const auto found = last.find(Key::of(*cover));
        const STShortCutItem* item = found == last.end() ? nullptr : found->second;
        isSame &= item == nullptr
                  || (item->type == cover->getShortCutIndex()
                      && item->path == cover->getShortCutPath() && isAscii(item->shortCutStr));
        shown.emplace_back(cover, item);
    }
    for (const auto& [cover, item] : shown) {
        cover->shortCutStrChanged(item == nullptr ? QString()
                                                  : QString::fromStdString(item->shortCutStr));
    }
    return isSame;
}

bool ShortCutCovers::isAsPushed(unsigned state) const
{
    return m_pushed && m_pushed->state == state && m_pushed->texts == Cover::givenTexts();
}

bool ShortCutCovers::takeTexts(STLinkShortCutInfo& table) const
{
    const bool isIndexOther = takeTexts<ByType>(m_byIndex, table.indexShortCutList);
    const bool isPathOther = takeTexts<ByPath>(m_byPath, table.pathShortCutList);
    return isIndexOther || isPathOther;
}

template <typename Key>
bool ShortCutCovers::takeTexts(const Set& covers, std::vector<STShortCutItem>& items)
{
    struct Place
    {
        std::size_t last = 0; // the index of the last entry with that key
        bool hasCover = false;
    };
    std::pmr::monotonic_buffer_resource memory;
    std::pmr::unordered_map<typename Key::Value, Place> places(items.size(), &memory);
    for (std::size_t i = 0; i < items.size(); ++i) {
        places[Key::of(items[i])].last = i;
    }
    const bool areAllDifferent = places.size() == items.size();
    bool isOther = !areAllDifferent;
    std::vector<STShortCutItem> added; // not yet to `items`, as keys refer to these
    for (const Cover* cover : covers) {
        const QString shown = cover->getShortCutStr();
        const auto found = places.find(Key::of(*cover));
        if (found != places.end()) {
            found->second.hasCover = true;
        }
        if (shown.isEmpty()) {
            continue;
        }
        if (found == places.end()) {
            places[Key::of(*cover)] = {items.size() + added.size(), true};
            added.push_back(
                {cover->getShortCutIndex(), cover->getShortCutPath(), shown.toStdString()});
            continue;
        }
        const std::size_t at = found->second.last;
        STShortCutItem& item = at < items.size() ? items[at] : added[at - items.size()];
        isOther |= item.type != cover->getShortCutIndex();
        item.type = cover->getShortCutIndex();
        if (item.path != cover->getShortCutPath()) { // a key that refers to it stays good
            item.path = cover->getShortCutPath();
            isOther = true;
        }
        if (!isSameAscii(shown, item.shortCutStr)) {
            item.shortCutStr = shown.toStdString();
            isOther = true;
        }
    }
    // Of several entries with one key the cover shows the last one. The others are removed, as no
    // cover could clear them.
    if (!areAllDifferent) {
        std::size_t at = 0;
        const auto isHidden = [&](const STShortCutItem& item) {
            const Place& place = places[Key::of(item)];
            return at++ != place.last && place.hasCover;
        };
        std::vector<STShortCutItem> kept;
        std::remove_copy_if(items.begin(), items.end(), std::back_inserter(kept), isHidden);
        items = std::move(kept);
    }
    items.insert(items.end(), added.begin(), added.end());
    return isOther || !added.empty();
}

void ShortCutCovers::showBindings(EnumPeripheralShortCutType kind,
                                  const std::vector<SDeviceBindInfo>& bindings,
                                  const QList<ShortCutCover*>& covers)
{
    Texts texts;
    for (const SDeviceBindInfo& info : bindings) {
        if (info.type == ShortCutOfPath) {
            texts.byPath[reportedPath(info.oprKey)] = &info.keyValue;
        } else {
            texts.byType[info.type] = &info.keyValue;
        }
    }
    for (ShortCutCover* cover : covers) {
        cover->updateShortCutCoverKey(
            kind, cover->getShortCutType() == ShortCutModuleIndex
                      ? textOf(texts.byType, static_cast<int>(cover->getShortCutIndex()))
                      : textOf(texts.byPath, reportedPath(cover->getPeripheralShortCutPath())));
    }
}

bool ShortCutCovers::isAnyBound(EnumPeripheralShortCutType kind) const
{
    const auto isBound = [kind](const Cover* cover) { return !cover->keyText(kind).isEmpty(); };
    return std::any_of(m_byIndex.begin(), m_byIndex.end(), isBound)
           || std::any_of(m_byPath.begin(), m_byPath.end(), isBound);
}

} // namespace mivo::settings
