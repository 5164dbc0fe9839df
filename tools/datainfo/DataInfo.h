// The velmora-data command line: "info FILE..." prints what data files hold, "convert IN OUT [--format N]" writes a CTX1 container.
#pragma once

#include <ostream>
#include <string>

class DataInfo {
public:
    DataInfo(std::ostream& out, std::ostream& err);

    // The exit status: 0 when every file is sound, 1 when one is not, 2 for a wrong command line.
    int run(int argc, const char* const* argv);

    // One file: the printout on out, and on failure one line naming the file and what is wrong on err.
    bool info(const std::string& file, int format);

private:
    int usage();
    int convert(int argc, const char* const* argv);
    bool infoChunks(const std::string& file, std::string& problem);
    bool infoImage(const std::string& file, int kind, int format, std::string& problem);
    bool report(const std::string& file, const std::string& problem);
    // Puts the file's own diagnosis (sound or not) and the engine's load (loaded or not) together:
    // true only when both pass; problem is the one line to report.
    bool verdicts(bool sound, bool loaded, const std::string& engineProblem, std::string& problem);
    // The directory holding the file's data/ folder: texture names inside chunk files are relative to it.
    static std::string dataRoot(const std::string& absoluteFile);
    static bool parseFormat(const char* text, int& format);

    std::ostream& out;
    std::ostream& err;
};
