// Collects frame times of a benchmark run and prints them per schedule entry beside an empty-frame baseline.
#pragma once

#include "FrameStats.h"

#include <ostream>
#include <string>
#include <utility>
#include <vector>

class Schedule;

class BenchReport {
public:
    void addFrame(double sceneSeconds, double milliseconds);
    void addBaseline(double milliseconds) { baseline.add(milliseconds); }

    // The frames whose scene time lies in the closed span, as the timeline counts them.
    FrameStats statsBetween(double start, double end) const;
    FrameStats allFrames() const;
    const FrameStats& getBaseline() const { return baseline; }

    void print(std::ostream& out, const Schedule& schedule, const std::string& renderer, int width,
               int height, int fps) const;

private:
    std::vector<std::pair<double, double>> frames;
    FrameStats baseline;
};
