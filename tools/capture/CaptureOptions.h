// The capture program's command line: what to render, at which size and rate, and where to.
#pragma once

#include <string>
#include <vector>

class CaptureOptions {
public:
    CaptureOptions();

    // False with a one-line reason in `error` for an unknown option, a missing or
    // malformed value, a value out of range or a contradictory combination.
    bool parse(int argc, const char* const* argv, std::string& error);

    // True when some option asks for output or figures; --help alone asks for neither.
    bool hasWork() const;
    // True when frames are drawn for every step between --from and --to.
    bool rendersRange() const { return !framesDir.empty() || !videoFile.empty() || bench || memoryEvery > 0.0; }

    static const char* usage();

    // Limits that keep a mistyped value from asking for absurd work or memory.
    static const int MAX_SIZE = 8192;
    static const int MAX_FPS = 1000;
    static constexpr double MAX_TIME = 86400.0;

    bool help;
    bool hasSize;
    int width;
    int height;
    int fps;
    double from;
    bool hasTo;
    double to;
    std::string framesDir;
    std::vector<double> shots;
    std::string shotDir;
    std::string videoFile;
    std::string sheetFile;
    bool bench;
    // With --bench: every timed frame as a CSV row.
    std::string csvFile;
    // Seconds of scene time between resident-memory lines; 0 for none.
    double memoryEvery;
    bool list;

private:
    bool parseOne(const std::string& name, const char* value, std::string& error);
    bool checkCombination(std::string& error) const;
};
