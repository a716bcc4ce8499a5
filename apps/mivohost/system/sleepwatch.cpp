#include "system/sleepwatch.h"

#include "base/hostlog.h"

namespace mivohost {

void SleepWatch::take(bool isGoing)
{
    hostLog()->info("the machine {}", isGoing ? "goes to sleep" : "is awake");
    isGoing ? emit goingToSleep() : emit awake();
    holdSleep(!isGoing);
}

} // namespace mivohost
