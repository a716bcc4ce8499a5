#include "shortcuts/keytable.h"

#include "mivosettingswidgets/shortcutfile.h"
#include "mivosettingswidgets/storeaccess.h"
#include "zrcutils/heldfile.h"
#include "zrcutils/nocachefile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

namespace mivo::settings {

namespace {

/// Removes the entries for which the predicate holds, and returns them.
template <typename Predicate>
std::vector<STShortCutItem> takeOut(std::vector<STShortCutItem>& items, Predicate isTaken)
{
    const auto end = std::stable_partition(items.begin(), items.end(),
                                           [&](const auto& item) { return !isTaken(item); });
    std::vector<STShortCutItem> taken(end, items.end());
    items.erase(end, items.end());
    return taken;
}

/// The content of a file, or none where there is no file that can be opened.
std::optional<std::string> contentOf(const std::filesystem::path& path)
{
    std::error_code error;
    std::ifstream file;
    if (!std::filesystem::is_other(path, error)) { // opening a pipe waits for its writer
        // Without the keys of a file that is held for a moment, the next save would lose them.
        zrcutils::tryWhileHeld(zrcutils::heldFor, [&] {
            file.open(path, std::ios::binary);
            return file.is_open() || !std::filesystem::exists(path, error);
        });
    }
    if (!file.is_open()) {
        return {};
    }
    std::string content(std::filesystem::file_size(path), '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(file.gcount()));
    return content;
}

/// Renames a file that is about to be replaced, to a name that is free. Returns that name, or
/// nothing where the file is gone by now.
std::filesystem::path putAside(const std::filesystem::path& file)
{
    const auto bad = file.u8string() + ".bad";
    auto aside = std::filesystem::u8path(bad);
    for (int n = 2; std::filesystem::exists(std::filesystem::symlink_status(aside)); ++n) {
        aside = std::filesystem::u8path(bad + '-' + std::to_string(n));
    }
    if (!std::filesystem::exists(std::filesystem::symlink_status(file))) {
        return {};
    }
    std::filesystem::rename(file, aside);
    return aside;
}

std::filesystem::path shortCutFile()
{
    return std::filesystem::u8path(shortCutFilePath().toStdString());
}

} // namespace

void KeyTable::load()
{
    listAll(); // it stays as it was when the file cannot be read
    m_lists.indexShortCutList.clear();
    m_lists.pathShortCutList.clear();
    noteChange();
    m_fileIsUnreadable = false;
    Items items;
    const CallSite site("loadShortCutInfoList");
    try {
        const auto path = shortCutFile();
        m_fileIsUnreadable = true; // also where nobody can tell whether it is there
        m_fileIsUnreadable = std::filesystem::exists(path);
        const auto content = contentOf(path);
        if (!content) {
            return; // a first run
        }
        items = parseShortCuts(*content);
        m_fileIsUnreadable = false;
    } catch (const std::filesystem::filesystem_error& error) {
        logAt(spdlog::level::err, site, "filesystem_error error msg: {}", error.what());
        return;
    } catch (const std::exception& error) {
        logAt(spdlog::level::err, site, "std::exception error msg: {}", error.what());
        return;
    }
    const auto isOfType = [](const STShortCutItem& item) { return item.type != ShortCutOfPath; };
    if (std::is_partitioned(items.begin(), items.end(), isOfType)) { // as save() writes them
        const auto paths = std::partition_point(items.begin(), items.end(), isOfType);
        m_lists.pathShortCutList.assign(std::make_move_iterator(paths),
                                        std::make_move_iterator(items.end()));
        items.erase(paths, items.end());
        m_lists.indexShortCutList = std::move(items);
        m_isListDue = true;
        return;
    }
    m_lists.shortCutInfoList = std::move(items);
    for (const STShortCutItem& item : m_lists.shortCutInfoList) {
        (isOfType(item) ? m_lists.indexShortCutList : m_lists.pathShortCutList).push_back(item);
    }
}

void KeyTable::listAll() const
{
    if (!std::exchange(m_isListDue, false)) {
        return;
    }
    m_listed = m_state;
    Items& items = m_lists.shortCutInfoList;
    // Assigned one by one, the entries keep the memory of their texts.
    items.resize(m_lists.indexShortCutList.size() + m_lists.pathShortCutList.size());
    std::copy(m_lists.pathShortCutList.begin(), m_lists.pathShortCutList.end(),
              std::copy(m_lists.indexShortCutList.begin(), m_lists.indexShortCutList.end(),
                        items.begin()));
}

std::string KeyTable::save()
{
    m_isListDue |= m_listed != m_state;
    listAll();
    const CallSite site("saveShortCutInfoList");
    std::filesystem::path aside;
    m_isWritten = false;
    try {
        const auto path = shortCutFile();
        if (m_fileIsUnreadable) {
            aside = putAside(path);
            m_fileIsUnreadable = false;
        }
        m_isWritten =
            NoCacheFile::saveToFile(path.u8string(), formatShortCuts(m_lists.shortCutInfoList));
    } catch (const std::filesystem::filesystem_error& error) {
        logAt(spdlog::level::err, site, "filesystem_error error msg: {}", error.what());
    } catch (const std::exception& error) {
        logAt(spdlog::level::err, site, "std::exception error msg: {}", error.what());
    }
    return aside.u8string();
}

void KeyTable::put(EnumShortCutType type, const std::string& path, const std::string& keys,
                   ShortCutModuleType module)
{
    listAll();
    const auto taken = takeOut(
        listOf(module), [&](const STShortCutItem& item) { return matches(item, type, path); });
    ++m_state;
    if (!taken.empty()) {
        noteChange();
    }
    (module == ShortCutModuleIndex ? m_lists.indexShortCutList : m_lists.pathShortCutList)
        .push_back({type, path, keys});
}

bool KeyTable::remove(EnumShortCutType type, const std::string& path, ShortCutModuleType module)
{
    listAll();
    auto& items = listOf(module);
    const auto found = std::find_if(items.begin(), items.end(), [&](const STShortCutItem& item) {
        return matches(item, type, path);
    });
    if (found == items.end()) {
        return false;
    }
    items.erase(found);
    noteChange();
    return true;
}

const STShortCutItem* KeyTable::holderOf(const std::string& keys) const
{
    const STShortCutItem* holder = m_indexHolders.find(m_lists.indexShortCutList, keys);
    return holder != nullptr ? holder : m_pathHolders.find(m_lists.pathShortCutList, keys);
}

std::vector<STShortCutItem> KeyTable::takeHoldersOf(const std::string& keys)
{
    listAll();
    std::vector<STShortCutItem> holders;
    for (Items* items : {&m_lists.indexShortCutList, &m_lists.pathShortCutList}) {
        const auto taken = takeOut(
            *items, [&keys](const STShortCutItem& item) { return item.shortCutStr == keys; });
        holders.insert(holders.end(), taken.begin(), taken.end());
    }
    noteChange();
    return holders;
}

const STShortCutItem* KeyTable::Holders::find(const Items& items, const std::string& keys)
{
    if (items.empty()) {
        return nullptr;
    }
    if (noted == 0) {
        places.reserve(items.size());
    }
    for (; noted < items.size(); ++noted) {
        places.try_emplace(items[noted].shortCutStr, noted);
    }
    const auto found = places.find(keys);
    return found == places.end() ? nullptr : &items[found->second];
}

} // namespace mivo::settings
