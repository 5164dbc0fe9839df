// Reads how much memory the process keeps resident, for the soak figures.
#pragma once

#include <string>

class MemoryProbe {
public:
    // The VmRSS figure in kB from the text of a /proc/<pid>/status file; -1 when it holds none.
    static long parseResident(const std::string& status);
    // This process's resident set now, in kB; -1 where /proc cannot tell.
    static long residentKilobytes();
};
