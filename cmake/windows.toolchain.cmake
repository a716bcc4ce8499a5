# Cross-compiles for Windows with MinGW-w64. MIVO_WINDOWS_ROOT, in the environment, is the folder
# into which scripts/windows has built Qt and the other libraries.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(compiler x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${compiler}-gcc-posix)
set(CMAKE_CXX_COMPILER ${compiler}-g++-posix)
set(CMAKE_RC_COMPILER ${compiler}-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)

set(CMAKE_FIND_ROOT_PATH ${CMAKE_PREFIX_PATH} $ENV{MIVO_WINDOWS_ROOT} /usr/${compiler})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} $ENV{MIVO_WINDOWS_ROOT}/lib/pkgconfig)
# lrelease writes the same files on every system.
set(Qt5LinguistTools_DIR /usr/lib/x86_64-linux-gnu/cmake/Qt5LinguistTools)
