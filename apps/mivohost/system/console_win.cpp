#include "system/console.h"

#include <QtCore/qt_windows.h>

#include <cstdio>
#include <cstdlib>

namespace mivohost {

void useConsole()
{
    const bool hasOutput = GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) != FILE_TYPE_UNKNOWN;
    const bool hasErrors = GetFileType(GetStdHandle(STD_ERROR_HANDLE)) != FILE_TYPE_UNKNOWN;
    if ((hasOutput && hasErrors) || !AttachConsole(ATTACH_PARENT_PROCESS)) {
        return;
    }
    // What this program prints is UTF-8; the console is given back as it was.
    static const UINT codePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    std::atexit([] { SetConsoleOutputCP(codePage); });
    if (!hasOutput) {
        std::freopen("CONOUT$", "w", stdout);
    }
    if (!hasErrors) {
        std::freopen("CONOUT$", "w", stderr);
    }
}

void useNoSystemBoxes()
{
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
}

} // namespace mivohost
