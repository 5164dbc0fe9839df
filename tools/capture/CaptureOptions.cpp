// Parsing and checking of the capture program's options.
#include "CaptureOptions.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

// A whole decimal number and nothing else.
bool startsLikeANumber(const char* text)
{
    // strtol and strtod would skip leading blanks and take a '+': neither is a number here.
    return text && (std::isdigit(static_cast<unsigned char>(text[0])) || text[0] == '-' || text[0] == '.');
}

bool readInteger(const char* text, long& value)
{
    if (!startsLikeANumber(text))
        return false;
    char* end = nullptr;
    errno = 0;
    value = std::strtol(text, &end, 10);
    return errno == 0 && *end == '\0' && end != text;
}

// A finite decimal number and nothing else ("inf", "nan" and hex floats are refused).
bool readSeconds(const char* text, double& value)
{
    if (!startsLikeANumber(text) || std::strpbrk(text, "xXnNiI"))
        return false;
    char* end = nullptr;
    errno = 0;
    value = std::strtod(text, &end);
    return errno == 0 && *end == '\0' && end != text && std::isfinite(value);
}

bool readTime(const std::string& name, const char* text, double& value, std::string& error)
{
    if (!readSeconds(text, value) || value < 0.0 || value > CaptureOptions::MAX_TIME) {
        error = name + " expects seconds from 0 to 86400, not '" + text + "'";
        return false;
    }
    return true;
}

bool readSize(const char* text, int& width, int& height, std::string& error)
{
    const char* cross = std::strchr(text, 'x');
    std::string first(text, cross ? static_cast<size_t>(cross - text) : std::strlen(text));
    long w = 0, h = 0;
    if (!cross || !readInteger(first.c_str(), w) || !readInteger(cross + 1, h)) {
        error = std::string("--size expects WIDTHxHEIGHT, e.g. 640x480, not '") + text + "'";
        return false;
    }
    if (w < 1 || h < 1 || w > CaptureOptions::MAX_SIZE || h > CaptureOptions::MAX_SIZE) {
        error = std::string("--size must be 1 to 8192 pixels each way, not '") + text + "'";
        return false;
    }
    width = static_cast<int>(w);
    height = static_cast<int>(h);
    return true;
}

bool readShots(const char* text, std::vector<double>& shots, std::string& error)
{
    std::string list(text);
    size_t begin = 0;
    while (true) {
        size_t comma = list.find(',', begin);
        std::string item = list.substr(begin, comma == std::string::npos ? std::string::npos : comma - begin);
        double time = 0.0;
        if (!readTime("--shot", item.c_str(), time, error))
            return false;
        shots.push_back(time);
        if (comma == std::string::npos)
            return true;
        begin = comma + 1;
    }
}

bool isFlagOption(const std::string& name)
{
    return name == "--bench" || name == "--list" || name == "--help" || name == "-h";
}

bool isValueOption(const std::string& name)
{
    for (const char* known : {"--size", "--fps", "--from", "--to", "--frames", "--shot", "--shot-dir", "--video",
                              "--sheet", "--memory", "--csv"}) {
        if (name == known)
            return true;
    }
    return false;
}

}  // namespace

CaptureOptions::CaptureOptions()
    : help(false), hasSize(false), width(0), height(0), fps(30), from(0.0), hasTo(false), to(0.0), shotDir("."),
      bench(false), memoryEvery(0.0), list(false)
{
}

const char* CaptureOptions::usage()
{
    return "usage: velmora-capture [options]\n"
           "  --size WxH        window size in pixels (default: Width and Height of velmora.cfg)\n"
           "  --fps N           frames per second of scene time (default 30)\n"
           "  --from S          first scene second drawn (default 0); earlier frames are only stepped\n"
           "  --to S            scene second to stop before (default: the end of the schedule)\n"
           "  --frames DIR      write one PNG per frame into DIR\n"
           "  --shot T[,T...]   write PNG stills at these scene times\n"
           "  --shot-dir DIR    where the stills go (default: the working directory)\n"
           "  --video FILE      encode the frames and the soundtrack with ffmpeg\n"
           "  --sheet FILE      write one PNG with a labelled still of every schedule entry\n"
           "  --bench           print frame times per schedule entry, judged against the budget for the size\n"
           "  --csv FILE        with --bench: write every timed frame to FILE as CSV\n"
           "  --memory S        draw every frame, write nothing; print resident memory every S scene seconds\n"
           "  --list            print the schedule and stop\n"
           "  --help            print this text\n";
}

bool CaptureOptions::parse(int argc, const char* const* argv, std::string& error)
{
    for (int i = 1; i < argc; ++i) {
        std::string name(argv[i]);
        const char* value = nullptr;
        size_t equals = name.find('=');
        if (name.compare(0, 2, "--") == 0 && equals != std::string::npos) {
            value = argv[i] + equals + 1;
            name.erase(equals);
        }
        bool takesValue = isValueOption(name);
        if (!takesValue && !isFlagOption(name)) {
            error = "unknown option '" + name + "'";
            return false;
        }
        if (takesValue && !value) {
            if (i + 1 >= argc) {
                error = name + " needs a value";
                return false;
            }
            value = argv[++i];
        } else if (!takesValue && value) {
            error = name + " takes no value";
            return false;
        }
        if (!parseOne(name, value, error))
            return false;
    }
    return checkCombination(error);
}

bool CaptureOptions::parseOne(const std::string& name, const char* value, std::string& error)
{
    if (name == "--help" || name == "-h") {
        help = true;
    } else if (name == "--bench") {
        bench = true;
    } else if (name == "--list") {
        list = true;
    } else if (name == "--size") {
        hasSize = readSize(value, width, height, error);
        return hasSize;
    } else if (name == "--fps") {
        long rate = 0;
        if (!readInteger(value, rate) || rate < 1 || rate > MAX_FPS) {
            error = std::string("--fps expects a whole number from 1 to 1000, not '") + value + "'";
            return false;
        }
        fps = static_cast<int>(rate);
    } else if (name == "--from") {
        return readTime(name, value, from, error);
    } else if (name == "--to") {
        hasTo = readTime(name, value, to, error);
        return hasTo;
    } else if (name == "--memory") {
        if (!readTime(name, value, memoryEvery, error))
            return false;
        if (memoryEvery <= 0.0) {
            error = "--memory expects seconds above 0, not '" + std::string(value) + "'";
            return false;
        }
    } else if (name == "--shot") {
        return readShots(value, shots, error);
    } else if (name == "--frames" || name == "--video" || name == "--sheet" || name == "--shot-dir" ||
               name == "--csv") {
        if (!*value) {
            error = name + " needs a non-empty path";
            return false;
        }
        std::string& target = name == "--frames"  ? framesDir
                              : name == "--video" ? videoFile
                              : name == "--sheet" ? sheetFile
                              : name == "--csv"   ? csvFile
                                                  : shotDir;
        target = value;
    }
    return true;
}

bool CaptureOptions::checkCombination(std::string& error) const
{
    if (hasTo && to <= from) {
        error = "--to must lie after --from";
        return false;
    }
    if (bench && (!framesDir.empty() || !videoFile.empty() || !shots.empty())) {
        error = "--bench writes no pictures: leave out --frames, --video and --shot";
        return false;
    }
    if (!csvFile.empty() && !bench) {
        error = "--csv writes the frame times of --bench: add --bench";
        return false;
    }
    if (memoryEvery > 0.0 && !shots.empty()) {
        error = "--memory samples every frame of a range: leave out --shot";
        return false;
    }
    // Stills jump between their times without drawing the frames in between.
    if (!shots.empty() && rendersRange()) {
        error = "--shot cannot be combined with --frames or --video";
        return false;
    }
    // The sheet draws every frame from the start up to its last still on its own.
    if (!sheetFile.empty() && (rendersRange() || !shots.empty() || list)) {
        error = "--sheet makes one picture only: leave out the other outputs";
        return false;
    }
    if (!sheetFile.empty() && (hasTo || from > 0.0)) {
        error = "--sheet covers the whole schedule: leave out --from and --to";
        return false;
    }
    if (list && (rendersRange() || !shots.empty())) {
        error = "--list prints the schedule only: leave out the other outputs";
        return false;
    }
    if (!videoFile.empty() && hasSize && (width % 2 || height % 2)) {
        error = "--video needs an even width and height";
        return false;
    }
    return true;
}

bool CaptureOptions::hasWork() const
{
    return rendersRange() || !shots.empty() || !sheetFile.empty() || list;
}
