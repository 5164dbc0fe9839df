// A one-line progress bar on standard error for long runs.
#pragma once

#include <cstdio>
#include <string>

class ProgressBar {
public:
    // Runs shorter than this many steps show no bar, nor does a stream that is not a terminal.
    static const size_t MIN_STEPS = 50;

    explicit ProgressBar(FILE* out = stderr);

    void start(const std::string& label, size_t total);
    // One step done; redraws only when the shown percentage changes, so logs stay short.
    void advance();
    // Ends the line; does nothing when no bar was shown.
    void finish();

    // The bar's text for `done` of `total` steps, without the carriage return.
    static std::string render(const std::string& label, size_t done, size_t total);

private:
    void draw();

    FILE* out;
    std::string label;
    size_t total;
    size_t done;
    int shownPercent;
    bool visible;
};
