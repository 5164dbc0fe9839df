// Test helpers: run a program of the build directory, temporary directories, reading files and PNGs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ProgramRun {
    int status = -1;
    std::string out;
    std::string err;
};

// `command` runs from the build directory; `environment` is prefixed as is (e.g. "env -u DISPLAY").
ProgramRun runInBuildDir(const std::string& command, const std::string& environment = "");
// A fresh empty directory below /tmp, and its removal with whatever is in it.
std::string makeTemporaryDir();
void removeTree(const std::string& dir);
std::string readWholeFile(const std::string& path);
// Reads a PNG as tightly packed RGB, top row first; false when it is not a readable PNG.
bool readPng(const std::string& path, int& width, int& height, std::vector<uint8_t>& rgb);
