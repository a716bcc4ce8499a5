#pragma once

#include "mivoqutils/export.h"

#include <QtCore/QString>

// On any thread. Both ask the system, which may take long for a network folder that is gone.

namespace mivo::qutils {

/// Whether the path lies on removable media (stick, memory card, disc), on a disk that the system
/// calls removable, or on a portable device (camera, telephone). A path that does not exist counts
/// as its nearest parent that does; a relative one is taken from the current folder. False for an
/// empty path and where the system does not tell.
MIVOQUTILS_EXPORT bool isBelongToMobile(const QString& path);

/// The bytes that this user may still write to the volume of an existing path; -1 when unknown, as
/// for a path that does not exist.
MIVOQUTILS_EXPORT qint64 bytesAvailable(const QString& root);

} // namespace mivo::qutils
