#include "system/console.h"

#include <QtCore/qt_windows.h>

#include <cstdio>

namespace mivohost {

void useConsole()
{
    const bool hasOutput = GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) != FILE_TYPE_UNKNOWN;
    const bool hasErrors = GetFileType(GetStdHandle(STD_ERROR_HANDLE)) != FILE_TYPE_UNKNOWN;
    if ((hasOutput && hasErrors) || !AttachConsole(ATTACH_PARENT_PROCESS)) {
        return;
    }
    if (!hasOutput) {
        std::freopen("CONOUT$", "w", stdout);
    }
    if (!hasErrors) {
        std::freopen("CONOUT$", "w", stderr);
    }
}

} // namespace mivohost
