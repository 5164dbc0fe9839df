// Writes a frame as an 8-bit RGB PNG file.
#pragma once

#include <string>

class Frame;

class PngWriter {
public:
    // False when the frame is empty or the file cannot be written; `error` then says why.
    static bool write(const std::string& path, const Frame& frame, std::string& error);
};
