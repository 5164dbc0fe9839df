// Reads how much memory the process keeps resident, now and at its peak, for the soak and bench figures.
#pragma once

#include <string>

class MemoryProbe {
public:
    // The figure in kB of a key such as "VmRSS:" from the text of a /proc/<pid>/status file; -1 when it holds none.
    static long parseKilobytes(const std::string& status, const std::string& key);
    static long parseResident(const std::string& status) { return parseKilobytes(status, "VmRSS:"); }
    // This process's resident set now, and the most it has held so far (VmHWM), in kB; -1 where /proc cannot tell.
    static long residentKilobytes();
    static long peakKilobytes();
};
