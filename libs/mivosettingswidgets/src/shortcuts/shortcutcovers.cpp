#include "shortcuts/shortcutcovers.h"

#include "mivosettingswidgets/shortcuttable.h"

#include <mivowidgets/shortcutcover.h>

#include <algorithm>

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

/// What the covers show that are found by their types, and by their paths.
struct Texts
{
    std::unordered_map<int, const std::string*> byType;
    std::unordered_map<std::string, const std::string*> byPath;
};

} // namespace

void ShortCutCovers::insert(ShortCutCover* cover)
{
    (cover->getShortCutType() == ShortCutModuleIndex ? m_byIndex : m_byPath).insert(cover);
}

void ShortCutCovers::remove(ShortCutCover* cover)
{
    m_byIndex.remove(cover);
    m_byPath.remove(cover);
}

ShortCutCover* ShortCutCovers::of(int type, const std::string& path) const
{
    const bool isOfPath = type == ShortCutOfPath;
    const std::string name = reportedPath(path);
    const auto& covers = isOfPath ? m_byPath : m_byIndex;
    const auto found = std::find_if(covers.begin(), covers.end(), [&](const ShortCutCover* cover) {
        return isOfPath ? reportedPath(cover->getPeripheralShortCutPath()) == name
                        : cover->getShortCutIndex() == type;
    });
    return found == covers.end() ? nullptr : *found;
}

std::unordered_map<std::string, ShortCutCover*> ShortCutCovers::byReportedPath() const
{
    std::unordered_map<std::string, ShortCutCover*> covers;
    for (ShortCutCover* cover : m_byPath) {
        covers[reportedPath(cover->getPeripheralShortCutPath())] = cover;
    }
    return covers;
}

void ShortCutCovers::pushTexts(const STLinkShortCutInfo& table) const
{
    Texts texts;
    for (const STShortCutItem& item : table.indexShortCutList) {
        texts.byType[item.type] = &item.shortCutStr;
    }
    for (const STShortCutItem& item : table.pathShortCutList) {
        texts.byPath[item.path] = &item.shortCutStr;
    }
    for (ShortCutCover* cover : m_byIndex) {
        cover->shortCutStrChanged(
            textOf(texts.byType, static_cast<int>(cover->getShortCutIndex())));
    }
    for (ShortCutCover* cover : m_byPath) {
        cover->shortCutStrChanged(textOf(texts.byPath, cover->getShortCutPath()));
    }
}

void ShortCutCovers::takeTexts(STLinkShortCutInfo& table) const
{
    std::unordered_map<int, std::size_t> byType;
    std::unordered_map<std::string, std::size_t> byPath;
    for (std::size_t i = 0; i < table.indexShortCutList.size(); ++i) {
        byType[table.indexShortCutList[i].type] = i;
    }
    for (std::size_t i = 0; i < table.pathShortCutList.size(); ++i) {
        byPath[table.pathShortCutList[i].path] = i;
    }
    const auto take = [](auto& places, const auto& key, std::vector<STShortCutItem>& items,
                         const ShortCutCover& cover) {
        const std::string shown = cover.getShortCutStr().toStdString();
        if (shown.empty()) {
            return;
        }
        const auto [place, isNew] = places.try_emplace(key, items.size());
        if (isNew) {
            items.push_back({cover.getShortCutIndex(), cover.getShortCutPath(), shown});
        } else {
            items[place->second].path = cover.getShortCutPath();
            items[place->second].shortCutStr = shown;
        }
    };
    for (const ShortCutCover* cover : m_byIndex) {
        take(byType, static_cast<int>(cover->getShortCutIndex()), table.indexShortCutList, *cover);
    }
    for (const ShortCutCover* cover : m_byPath) {
        take(byPath, cover->getShortCutPath(), table.pathShortCutList, *cover);
    }
    // Of several entries of a type the cover shows the last; nothing could clear the others.
    auto& items = table.indexShortCutList;
    for (std::size_t i = items.size(); i-- > 0;) {
        if (byType[items[i].type] != i && of(items[i].type, {}) != nullptr) {
            items.erase(items.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
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
    const auto isBound = [kind](const ShortCutCover* cover) {
        return !cover->keyText(kind).isEmpty();
    };
    return std::any_of(m_byIndex.begin(), m_byIndex.end(), isBound)
           || std::any_of(m_byPath.begin(), m_byPath.end(), isBound);
}

} // namespace mivo::settings
