// A one-line progress bar on standard error for long runs: where the run is, how fast it goes, how long it has left.
#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>

class ProgressBar {
public:
    // Runs shorter than this many steps show no bar, nor does a stream that is not a terminal.
    static const size_t MIN_STEPS = 50;
    // While the percentage stands still the bar is redrawn this often, so the rate and the time left stay fresh.
    static constexpr double REDRAW_SECONDS = 0.5;

    explicit ProgressBar(FILE* out = stderr);

    // `detail`, when given, is asked for the text shown after the bar (the scene time and name) at each redraw.
    void start(const std::string& label, size_t total, std::function<std::string()> detail = nullptr);
    // One step done; redraws when the shown percentage changes or the bar has stood still a while.
    void advance();
    // Work that is no step of its own (the clock stepped without drawing): only refreshes the detail now and then.
    void tick();
    // Ends the line; does nothing when no bar was shown.
    void finish();

    // The bar's text for `done` of `total` steps, without the carriage return: label, bar, percentage,
    // detail, the recent steps per second and the time left (negative when not known yet).
    static std::string render(const std::string& label, size_t done, size_t total, double stepsPerSecond,
                              double secondsLeft, const std::string& detail);
    // "m:ss" for a duration in seconds, "--:--" when it is not known yet.
    static std::string minutes(double seconds);

private:
    void draw(bool force);
    bool due() const;
    double elapsed() const;

    FILE* out;
    std::string label;
    std::function<std::string()> detail;
    size_t total;
    size_t done;
    int shownPercent;
    double shownAt;
    size_t shownDone;
    // When the first step was done: work before it (stepping up to the first frame) is no step's.
    double firstStepAt;
    // Steps per second between recent redraws, smoothed: scenes differ widely in cost.
    double recentRate;
    bool visible;
    std::chrono::steady_clock::time_point started;
};
