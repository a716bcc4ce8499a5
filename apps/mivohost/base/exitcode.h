#pragma once

namespace mivohost {

/// What the program's end says to a script; --help lists them.
enum ExitCode {
    finished = 0,
    badArgument = 1,
    storeInUse = 2,
    storeFailed = 3,
    notWritten = 4,
    notRead = 5,
    notAllTaken = 6
};

} // namespace mivohost
