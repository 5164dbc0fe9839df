// Composes Velmora's soundtrack: instruments, themes and the arrangement of every section.
#pragma once

#include "tools/composer/XmModule.h"

#include <vector>

class Song {
public:
    static constexpr int kChannels = 16;
    // 120 BPM at 6 ticks per row: 8 rows a second, four rows to the beat.
    static constexpr int kSpeed = 6;
    static constexpr int kBpm = 120;
    static constexpr int kRowsPerSecond = 8;
    // Rows of quiet release after the last section, before the song loops.
    static constexpr int kTailRows = 8;

    // First row of every section, in order, then the row where the music ends.
    static std::vector<int> sectionRows();
    static XmModule compose();
};
