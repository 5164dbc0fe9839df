// Test helpers: run velmora-data as a subprocess, scratch directories and whole-file bytes.
#pragma once

#include <string>
#include <vector>

struct ProgramRun {
    int status = -1;  // exit status; -1 when the program did not exit normally
    std::string out;
    std::string err;

    // Sanitizer reports get exit statuses of their own, so they never pass for a refused file.
    static ProgramRun run(const std::vector<std::string>& args);
    int errLines() const;
};

// A fresh directory below the build directory, removed afterwards.
struct ScratchDir {
    std::string path;
    explicit ScratchDir(const std::string& name);
    ~ScratchDir();
    std::string file(const std::string& name) const { return path + "/" + name; }
};

std::vector<unsigned char> readBytes(const std::string& file);
void writeBytes(const std::string& file, const std::vector<unsigned char>& bytes);
// Every regular file below data/, sorted.
std::vector<std::string> generatedFiles();
