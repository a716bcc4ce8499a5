#pragma once

// Not installed.

#include <chrono>
#include <thread>

namespace zrcutils {

/// How long to wait for another program that holds a file, as one that looks for viruses or makes
/// backups does for a moment.
constexpr std::chrono::milliseconds heldFor(1000);

/// Tries until it is done, or for so long; once where no program can keep another one from a file,
/// which is everywhere but on Windows.
template <typename Attempt>
void tryWhileHeld(std::chrono::milliseconds most, Attempt isDone)
{
#ifdef _WIN32
    const auto end = std::chrono::steady_clock::now() + most;
    while (!isDone() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
#else
    static_cast<void>(most);
    isDone();
#endif
}

} // namespace zrcutils
