#include "mivoqutils/volumes.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/qt_windows.h>

#include <string>

namespace mivo::qutils {

bool isBelongToMobile(const QString& path)
{
    if (path.isEmpty() || path.startsWith("::{")) {
        return !path.isEmpty(); // the shell's path of what has no drive letter
    }
    const QString absolute = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    std::wstring root(static_cast<std::size_t>(absolute.size()) + 2, L'\0');
    if (!GetVolumePathNameW(reinterpret_cast<const wchar_t*>(absolute.utf16()), root.data(),
                            static_cast<DWORD>(root.size()))) {
        // Such as a card reader without a card.
        root = absolute.left(3).toStdWString();
    }
    const UINT type = GetDriveTypeW(root.c_str());
    return type == DRIVE_REMOVABLE || type == DRIVE_CDROM;
}

} // namespace mivo::qutils
