// How long this process has run, from the kernel's record of its start: the start-up figure.
#pragma once

#include <string>

class ProcessClock {
public:
    // The start time in clock ticks after boot from the text of a /proc/<pid>/stat file (its 22nd field, counted
    // after the command name, which may hold spaces and parentheses); -1 when it cannot be read.
    static long long parseStartTicks(const std::string& stat);
    // Seconds since this process started; a negative figure where /proc cannot tell.
    static double secondsSinceStart();
};
