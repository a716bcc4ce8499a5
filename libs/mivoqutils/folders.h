#pragma once

#include "mivoqutils/export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

// On any thread, except openFolder() and answeringFolder(). A folder may be on a network drive that
// is gone, and each call hang for minutes; FileTask keeps that away from the GUI thread.

namespace mivo::qutils {

/// Makes the sub-folder "suffix" in the folder "path" unless it is there, and leaves its full path
/// in "path", with "/" between. The suffix may begin with "/" and may name several folders, one in
/// the other; "path" itself is not made. False, and "path" as it was, when either is empty, the
/// suffix has a part "." or "..", "path" is gone, a file is in the way, or the system refuses.
MIVOQUTILS_EXPORT bool addFolderSuffix(QString& path, const QString& suffix);

/// Shows the folder in the system's file manager, without waiting for it. False when there is no
/// such folder, or nothing that could be started. Only for the GUI thread.
MIVOQUTILS_EXPORT bool openFolder(const QString& path);

/// The folder, where a dialog is to begin; the user's home when it does not answer within 2 s. Only
/// for the GUI thread, whose events are handled meanwhile, except the user's input.
MIVOQUTILS_EXPORT QString answeringFolder(const QString& path);

/// Whether clearFolder() would take the folder. False for what is empty, relative, or no folder,
/// for the root of a drive or mounted file system, for the user's home and all that it lies in;
/// whatever the path reaches it through ("..", links).
MIVOQUTILS_EXPORT bool mayBeCleared(const QString& path);

/// What clearFolder() came to.
struct ClearResult
{
    /// Native and complete paths of what is still there. A folder that stays only because of
    /// something in it is not among them. Where a name is no valid text, signs stand in for parts.
    QStringList notRemoved;
    /// Files, links and folders that are gone.
    int removed = 0;
    /// goOn said so; the rest is still there and is not in notRemoved.
    bool cancelled = false;
    /// mayBeCleared() said no, and nothing was touched.
    bool refused = false;
};

/// Removes all that is in the folder, but not the folder. A link or junction in it is removed
/// itself, what it points to is not touched, also when somebody puts one in a folder's place
/// meanwhile. What another file system is mounted on stays (on Windows, only its mount is removed),
/// and so does what the system refuses to remove; the rest goes all the same.
///
/// "goOn" is called on the same thread after every entry, removed or not, with the number removed
/// so far; the first false ends it.
MIVOQUTILS_EXPORT ClearResult clearFolder(const QString& path,
                                          const std::function<bool(int removed)>& goOn = {});

} // namespace mivo::qutils
