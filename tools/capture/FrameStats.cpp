// Order statistics of frame times.
#include "FrameStats.h"

#include <algorithm>
#include <cmath>

std::vector<double> FrameStats::sorted() const
{
    std::vector<double> copy(samples);
    std::sort(copy.begin(), copy.end());
    return copy;
}

double FrameStats::getMinimum() const
{
    if (samples.empty())
        return 0.0;
    return *std::min_element(samples.begin(), samples.end());
}

double FrameStats::getMaximum() const
{
    if (samples.empty())
        return 0.0;
    return *std::max_element(samples.begin(), samples.end());
}

double FrameStats::getMedian() const
{
    if (samples.empty())
        return 0.0;
    std::vector<double> order = sorted();
    size_t middle = order.size() / 2;
    if (order.size() % 2)
        return order[middle];
    return (order[middle - 1] + order[middle]) / 2.0;
}

double FrameStats::getPercentile(double percent) const
{
    if (samples.empty())
        return 0.0;
    if (!(percent > 0.0))
        percent = 0.0;
    if (percent > 100.0)
        percent = 100.0;
    std::vector<double> order = sorted();
    double rank = std::ceil(percent / 100.0 * static_cast<double>(order.size()));
    size_t index = rank < 1.0 ? 0 : static_cast<size_t>(rank) - 1;
    return order[std::min(index, order.size() - 1)];
}
