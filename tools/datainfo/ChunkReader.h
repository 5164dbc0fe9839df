// Checked field reading for velmora-data's walk of a chunk file: every read names the field, so a failure says what broke and where.
#pragma once

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

class ChunkReader {
public:
    // Reads from in and prints the tree on out.
    ChunkReader(std::istream& in, std::ostream& out);

    // The next four bytes must be the tag.
    bool tag(const char* expected);
    // The next four bytes without consuming them; false (no error) at the end of the file.
    bool peekTag(std::string& next);
    bool readInt(int32_t& value, const char* what);
    bool readShort(int16_t& value, const char* what);
    bool readByte(uint8_t& value, const char* what);
    bool readFloats(float* values, int count, const char* what);
    // A 16-bit length and the bytes of a name.
    bool readName(std::string& name, const char* what);
    // A 32-bit count that must not be negative and whose items must fit in what is left.
    bool readCount(int32_t& count, long long itemSize, const char* what);
    bool skip(long long bytes, const char* what);

    bool atEnd();
    long long offset();
    long long fileSize() const { return size; }

    // Names the chunk being read, for the printout's indentation and the error's path.
    void enter(const std::string& chunk);
    void leave();
    // One indented line of the printout.
    std::ostream& line();

    // Records the first problem with the chunk path; always false, so callers can return it.
    bool fail(const std::string& what);
    bool failed() const { return !problem.empty(); }
    const std::string& error() const { return problem; }

    std::ostream& output() { return out; }

private:
    bool cutShort(const char* what);

    std::istream& in;
    std::ostream& out;
    long long size;
    std::vector<std::string> path;
    std::string problem;
};
