#include "zrcutils/uptime.h"

#include "zrcutils/winsystem.h"

std::chrono::milliseconds zrcutils::uptime()
{
    return std::chrono::milliseconds(GetTickCount64());
}
