// Resident memory from /proc/self/status.
#include "MemoryProbe.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>

long MemoryProbe::parseKilobytes(const std::string& status, const std::string& key)
{
    size_t at = status.find(key);
    // The key must start a line, not end another key such as "XVmRSS:".
    while (at != std::string::npos && at != 0 && status[at - 1] != '\n')
        at = status.find(key, at + 1);
    if (at == std::string::npos)
        return -1;
    const char* text = status.c_str() + at + key.size();
    while (*text == ' ' || *text == '\t')
        ++text;
    if (!std::isdigit(static_cast<unsigned char>(*text)))
        return -1;
    char* end = nullptr;
    errno = 0;
    long kilobytes = std::strtol(text, &end, 10);
    if (errno != 0)
        return -1;
    while (*end == ' ' || *end == '\t')
        ++end;
    // The kernel always says kB; any other unit is not a figure we understand.
    if (std::string(end).compare(0, 2, "kB") != 0)
        return -1;
    return kilobytes;
}

namespace {

long ownStatusFigure(const std::string& key)
{
    std::ifstream file("/proc/self/status");
    if (!file)
        return -1;
    std::ostringstream text;
    text << file.rdbuf();
    return MemoryProbe::parseKilobytes(text.str(), key);
}

}  // namespace

long MemoryProbe::residentKilobytes()
{
    return ownStatusFigure("VmRSS:");
}

long MemoryProbe::peakKilobytes()
{
    return ownStatusFigure("VmHWM:");
}
