#include "zrcutils/filelock.h"

#include <chrono>
#include <thread>

FileLock::Result FileLock::lock(const std::string& path, int timeout)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(timeout);
    Result result = tryLock(path);
    while (result == Result::inUse && Clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        result = tryLock(path);
    }
    return result;
}
