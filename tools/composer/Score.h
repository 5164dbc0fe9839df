// A song-long grid of pattern cells that the arrangement writes into, later cut into XM patterns.
#pragma once

#include "tools/composer/XmModule.h"

#include <cstdint>
#include <vector>

class Score {
public:
    static constexpr int kKeyOff = 97;

    Score(int rows, int channels);

    int rows() const { return rowCount; }
    int channels() const { return channelCount; }

    // Cells outside the grid read as empty and swallow writes.
    const XmCell& at(int row, int channel) const;
    XmCell& at(int row, int channel);

    // A note with its instrument; volume 0..64, or -1 for the sample's own.
    void note(int row, int channel, int note, int instrument, int volume = -1);
    void keyOff(int row, int channel);
    void volume(int row, int channel, int volume);
    void volumeColumn(int row, int channel, uint8_t value);
    void effect(int row, int channel, uint8_t effect, uint8_t param);

    // Panning (0..255) given to every note of the channel whose effect column is free.
    void setPanning(int channel, int panning);
    // A section starts here: no pattern spans this row boundary.
    void markSection(int row);
    const std::vector<int>& sections() const { return marks; }

    // Cuts the grid at every section mark and every maxRows inside a section,
    // stores identical patterns once and fills in the order list.
    void toModule(XmModule& module, int maxRows) const;

private:
    int rowCount;
    int channelCount;
    std::vector<XmCell> cells;
    std::vector<int> pans;
    std::vector<int> marks;
    XmCell outside;
};
