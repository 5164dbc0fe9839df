// Writes a tiny FastTracker 2 module for the player tests: known orders, rows and tempo.
#pragma once

#include <string>

struct TinyModule {
    int orders = 4;   // the order list alternates the two patterns
    int restart = 0;  // the order the song loops back to

    // Writes the module to the file; false when it cannot be written.
    bool write(const std::string& path) const;
    // Seconds of one pass: 16 rows at speed 3 and 125 bpm per order.
    double seconds() const { return orders * 16 * 3 * 2.5 / 125; }
};

// A path in a directory of this test process's own, made on first use.
std::string scratchPath(const std::string& name);
