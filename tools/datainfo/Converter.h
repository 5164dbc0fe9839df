// velmora-data convert: any image the engine reads, through its own loader and format conversion, into a CTX1 container.
#pragma once

#include <ostream>
#include <string>

class Converter {
public:
    explicit Converter(std::ostream& out);

    // format 0 keeps what the image holds (RGBA with alpha, RGB without, luminance for SGI; a CTX1 keeps its own).
    bool convert(const std::string& input, const std::string& output, int format);
    const std::string& error() const { return problem; }
    // Which file the error is about.
    const std::string& culprit() const { return file; }

private:
    bool fail(const std::string& which, const std::string& what);

    std::ostream& out;
    std::string problem;
    std::string file;
};
