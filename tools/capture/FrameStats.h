// Frame-time figures of one group of frames: count, minimum, median and upper percentiles.
#pragma once

#include <cstddef>
#include <vector>

class FrameStats {
public:
    void add(double milliseconds) { samples.push_back(milliseconds); }
    size_t getCount() const { return samples.size(); }

    // Every figure is 0 for an empty group.
    double getMinimum() const;
    double getMaximum() const;
    // The mean of the two middle samples for an even count.
    double getMedian() const;
    // Nearest rank: the smallest sample at or above `percent` of the group (clamped to 0..100).
    double getPercentile(double percent) const;

private:
    std::vector<double> sorted() const;

    std::vector<double> samples;
};
