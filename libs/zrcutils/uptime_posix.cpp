#include "zrcutils/uptime.h"

#include <ctime>

std::chrono::milliseconds zrcutils::uptime()
{
    timespec time{};
    ::clock_gettime(CLOCK_BOOTTIME, &time); // CLOCK_MONOTONIC stands still in a sleep
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}
