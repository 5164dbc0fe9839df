// Checks a CTX1 texture container completely: header fields and a zlib stream holding exactly the pixels.
#pragma once

#include <ostream>
#include <string>

class CtxReport {
public:
    explicit CtxReport(std::ostream& out);

    bool inspect(const std::string& file);
    const std::string& error() const { return problem; }
    int getFormat() const { return format; }

private:
    bool fail(const std::string& what);
    bool inflateAll(const unsigned char* data, long long length, long long expected);

    std::ostream& out;
    std::string problem;
    int format;
};
