// Reads the headers and structure of the standard image files the engine loads (PNG, JPEG, TIFF, PCX, SGI, Targa) and notes what the engine will refuse.
#pragma once

#include "FileKind.h"

#include <ostream>
#include <string>
#include <vector>

class ImageReport {
public:
    explicit ImageReport(std::ostream& out);

    bool inspect(const std::string& file, FileKind::Kind kind);
    const std::string& error() const { return problem; }
    // The format code that keeps what the image holds: RGBA with alpha, RGB without, luminance for SGI.
    int naturalFormat() const { return natural; }

private:
    bool fail(const std::string& what);
    bool inspectPng();
    bool inspectJpeg();
    bool inspectTiff(const std::string& file);
    bool inspectPcx();
    bool inspectSgi();
    bool inspectTga();
    unsigned bigEndian(size_t at, int bytes) const;
    unsigned littleEndian(size_t at, int bytes) const;

    std::ostream& out;
    std::vector<unsigned char> bytes;
    std::string problem;
    int natural;
};
