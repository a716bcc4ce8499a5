#include "mivoqutils/folders.h"
#include "mivoqutils/folderwalker.h"

#include <QtCore/QDir>

#include <utility>

namespace mivo::qutils {

namespace {

using Name = FolderWalker::Name;
using Outcome = FolderWalker::Outcome;

struct Level
{
    Name name;
    std::vector<Name> left;
    bool incomplete = false; // something in it was not removed
};

QString fullPath(const QString& root, const std::vector<Level>& levels, const Name& name)
{
    Name below;
    for (std::size_t level = 1; level < levels.size(); ++level) {
        below += levels[level].name + std::filesystem::path::preferred_separator;
    }
    below += name;
    return root + QDir::separator() + FolderWalker::textOf(below);
}

} // namespace

ClearResult clearFolder(const QString& path, const std::function<bool(int removed)>& goOn)
{
    ClearResult result;
    if (!mayBeCleared(path)) {
        result.refused = true;
        return result;
    }
    FolderWalker walker;
    if (!walker.open(path)) {
        result.notRemoved << QDir::toNativeSeparators(path);
        return result;
    }
    // Again, for what was really opened.
    const QString root = walker.openedPath();
    if (!mayBeCleared(root)) {
        result.refused = true;
        return result;
    }

    std::vector<Level> levels(1);
    const auto keep = [&](const Name& name) {
        levels.back().incomplete = true;
        result.notRemoved << fullPath(root, levels, name);
    };
    if (!walker.list(levels.back().left)) {
        result.notRemoved << root;
    }
    while (true) {
        Name name;
        Outcome outcome;
        bool explained = false; // something in the folder is in notRemoved already
        if (!levels.back().left.empty()) {
            name = std::move(levels.back().left.back());
            levels.back().left.pop_back();
            outcome = walker.remove(name);
            if (outcome == Outcome::folder && walker.enter(name)) {
                levels.push_back({std::move(name), {}, false});
                // What could not be listed keeps the folder from being removed, and so is named.
                walker.list(levels.back().left);
                continue;
            }
            if (outcome == Outcome::folder) {
                outcome = walker.removeFolder(name);
            }
        } else if (levels.size() > 1) {
            if (!walker.leave()) {
                levels.front().left.push_back(std::move(levels[1].name));
                levels.resize(1);
                continue;
            }
            name = std::move(levels.back().name);
            explained = levels.back().incomplete;
            levels.pop_back();
            levels.back().incomplete |= explained;
            outcome = walker.removeFolder(name);
        } else {
            break;
        }
        if (outcome == Outcome::removed) {
            ++result.removed;
        } else if (outcome == Outcome::failed && !explained) {
            keep(name);
        }
        if (goOn && !goOn(result.removed)) {
            result.cancelled = true;
            break;
        }
    }
    // After a folder was moved, the others are tried again.
    result.notRemoved.removeDuplicates();
    return result;
}

} // namespace mivo::qutils
