// Writes a tiny FastTracker 2 module for the player tests: known orders, rows and tempo.
#pragma once

#include <string>

struct TinyModule {
    int orders = 4;        // order list cycles through the two patterns
    int rows = 16;         // rows of every pattern
    int speed = 3;         // ticks per row
    int bpm = 125;         // tempo
    int restart = 0;       // order the song loops back to

    // Writes the module to the file; false when it cannot be written.
    bool write(const std::string& path) const;
    // Seconds of one full pass through the order list.
    double seconds() const;
};

// A path in a directory of this test process's own, made on first use.
std::string scratchPath(const std::string& name);
