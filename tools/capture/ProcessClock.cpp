// The process's age: /proc/self/stat's start time against the boot clock.
#include "ProcessClock.h"

#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>

long long ProcessClock::parseStartTicks(const std::string& stat)
{
    // The command name ends at the last ')'; the state, field 3, follows it.
    const size_t close = stat.rfind(')');
    if (close == std::string::npos)
        return -1;
    std::istringstream fields(stat.substr(close + 1));
    std::string field;
    for (int number = 3; number < 22; ++number) {
        if (!(fields >> field))
            return -1;
    }
    if (!(fields >> field) || field.empty() || field.find_first_not_of("0123456789") != std::string::npos)
        return -1;
    errno = 0;
    const long long ticks = std::strtoll(field.c_str(), nullptr, 10);
    return errno == 0 ? ticks : -1;
}

double ProcessClock::secondsSinceStart()
{
    std::ifstream file("/proc/self/stat");
    std::ostringstream text;
    text << file.rdbuf();
    const long long ticks = parseStartTicks(text.str());
    const long perSecond = sysconf(_SC_CLK_TCK);
    timespec now{};
    if (ticks < 0 || perSecond <= 0 || clock_gettime(CLOCK_BOOTTIME, &now) != 0)
        return -1.0;
    return static_cast<double>(now.tv_sec) + now.tv_nsec * 1e-9 - static_cast<double>(ticks) / perSecond;
}
