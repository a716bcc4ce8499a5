#pragma once

#include "mivoqutils/export.h"

#include <QtCore/QString>

// The parts of isBelongToMobile() that a test can reach without hardware, but on Windows, where
// the system itself knows; not installed.

namespace mivo::qutils {

/// Whether a file system of this type, or this path in it, is one of a camera or telephone.
MIVOQUTILS_TEST_EXPORT bool isPortableDevice(const QString& fileSystemType, const QString& path);

/// Whether a block device, as "sdb1" or "dm-0", is removable, or the disk that it is on; "sysfs" is
/// the folder that is /sys on a running system.
MIVOQUTILS_TEST_EXPORT bool isRemovableDisk(const QString& sysfs, const QString& device);

} // namespace mivo::qutils
