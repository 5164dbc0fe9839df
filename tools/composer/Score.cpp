// A song-long grid of pattern cells that the arrangement writes into, later cut into XM patterns.
#include "tools/composer/Score.h"

#include <algorithm>

namespace {
const uint8_t kSetPanning = 0x08;
}

Score::Score(int rows, int channels)
    : rowCount(rows < 0 ? 0 : rows), channelCount(channels < 0 ? 0 : channels),
      cells(static_cast<size_t>(rowCount) * channelCount), pans(channelCount, -1)
{
}

const XmCell& Score::at(int row, int channel) const
{
    if (row < 0 || row >= rowCount || channel < 0 || channel >= channelCount)
        return outside;
    return cells[static_cast<size_t>(row) * channelCount + channel];
}

XmCell& Score::at(int row, int channel)
{
    if (row < 0 || row >= rowCount || channel < 0 || channel >= channelCount) {
        outside = XmCell();
        return outside;
    }
    return cells[static_cast<size_t>(row) * channelCount + channel];
}

void Score::note(int row, int channel, int note, int instrument, int volume)
{
    if (note < 1 || note > 96)
        return;
    XmCell& cell = at(row, channel);
    cell.note = static_cast<uint8_t>(note);
    cell.instrument = static_cast<uint8_t>(instrument);
    if (volume >= 0)
        this->volume(row, channel, volume);
}

void Score::keyOff(int row, int channel)
{
    XmCell& cell = at(row, channel);
    cell.note = kKeyOff;
    cell.instrument = 0;
}

void Score::volume(int row, int channel, int volume)
{
    volumeColumn(row, channel, static_cast<uint8_t>(0x10 + std::clamp(volume, 0, 64)));
}

void Score::volumeColumn(int row, int channel, uint8_t value)
{
    at(row, channel).volume = value;
}

void Score::effect(int row, int channel, uint8_t effect, uint8_t param)
{
    XmCell& cell = at(row, channel);
    cell.effect = effect;
    cell.param = param;
}

void Score::setPanning(int channel, int panning)
{
    if (channel >= 0 && channel < channelCount)
        pans[channel] = std::clamp(panning, 0, 255);
}

void Score::markSection(int row)
{
    if (row <= 0 || row >= rowCount)
        return;
    if (std::find(marks.begin(), marks.end(), row) == marks.end()) {
        marks.push_back(row);
        std::sort(marks.begin(), marks.end());
    }
}

void Score::toModule(XmModule& module, int maxRows) const
{
    maxRows = std::clamp(maxRows, 1, 256);
    module.channels = channelCount;
    module.patterns.clear();
    module.orders.clear();

    std::vector<int> bounds = {0};
    bounds.insert(bounds.end(), marks.begin(), marks.end());
    bounds.push_back(rowCount);

    for (size_t s = 0; s + 1 < bounds.size(); ++s) {
        for (int start = bounds[s]; start < bounds[s + 1]; start += maxRows) {
            XmPattern pattern;
            pattern.rows = std::min(maxRows, bounds[s + 1] - start);
            for (int r = start; r < start + pattern.rows; ++r) {
                for (int c = 0; c < channelCount; ++c) {
                    XmCell cell = at(r, c);
                    if (cell.instrument && !cell.effect && !cell.param && pans[c] >= 0) {
                        cell.effect = kSetPanning;
                        cell.param = static_cast<uint8_t>(pans[c]);
                    }
                    pattern.cells.push_back(cell);
                }
            }
            auto same = std::find_if(module.patterns.begin(), module.patterns.end(), [&](const XmPattern& p) {
                return p.rows == pattern.rows && p.cells == pattern.cells;
            });
            if (same == module.patterns.end()) {
                module.patterns.push_back(std::move(pattern));
                same = module.patterns.end() - 1;
            }
            module.orders.push_back(static_cast<uint8_t>(same - module.patterns.begin()));
        }
    }
}
