// The frame clock over times() and the clock tick rate.
#include "runtime/TimerLinux.h"

#include <sys/times.h>
#include <unistd.h>

TimerLinux::TimerLinux() : lastTicks(0), ticksPerSecond(static_cast<int32_t>(sysconf(_SC_CLK_TCK)))
{
    // A system that cannot tell its tick rate still gets a usable clock.
    if (ticksPerSecond <= 0)
        ticksPerSecond = 100;
}

void TimerLinux::setup()
{
    Timer::setup();
    getUpdateSecs();
}

double TimerLinux::getUpdateSecs()
{
    struct tms unused;
    uint32_t now = static_cast<uint32_t>(times(&unused));
    // Unsigned subtraction then a signed view keeps a wrapped counter right.
    int32_t ticks = static_cast<int32_t>(now - lastTicks);
    lastTicks = now;
    return static_cast<double>(ticks) / ticksPerSecond;
}
