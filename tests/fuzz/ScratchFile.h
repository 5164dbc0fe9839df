// A per-process scratch file for readers that take a file name rather than a stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

class ScratchFile {
public:
    // Writes the bytes to this process's scratch file with the given extension
    // (it picks the texture loader) and returns the path; empty on failure.
    // One path per extension, reused for every input, removed at exit.
    static std::string write(const char* extension, const uint8_t* data, size_t size);

    // Writes a whole file atomically: concurrent fuzzers preparing the same
    // shared file never see it half written.
    static bool publish(const std::string& path, const std::string& bytes);
};
