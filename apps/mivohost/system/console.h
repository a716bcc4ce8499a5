#pragma once

#include <QtCore/QtGlobal>

namespace mivohost {

/// A program with windows gets no console on Windows: what it prints is to be seen in the one from
/// which it was started, if any, unless it goes elsewhere. At the start of the program.
#ifdef Q_OS_WIN
void useConsole();
#else
inline void useConsole() {}
#endif

} // namespace mivohost
