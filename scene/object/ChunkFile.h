// Opens files for whole-file chunk reading and writing, so every owner of a
// load(file)/save(file) pair opens them the same way.
#pragma once

#include <fstream>
#include <sstream>

class ChunkFile {
public:
    // Binary read; false when the name is null or the file cannot be opened.
    static bool openIn(const char* file, std::ifstream& in);
    // The whole file read into memory, for the loaders: they ask how much is left before each counted read,
    // which on a file stream costs a seek and a refill of its buffer every time. False when it cannot be opened.
    static bool readIn(const char* file, std::stringstream& in);
    // Binary write, truncating; false when the name is null or it cannot be created.
    static bool openOut(const char* file, std::ofstream& out);

    // Reads the file and hands the stream to object.load(std::istream&).
    template <class T>
    static bool load(T& object, const char* file)
    {
        std::stringstream in;
        return readIn(file, in) && object.load(static_cast<std::istream&>(in));
    }

    // Opens the file and hands the stream to object.save(std::ostream&).
    template <class T>
    static bool save(T& object, const char* file)
    {
        std::ofstream out;
        return openOut(file, out) && object.save(static_cast<std::ostream&>(out));
    }
};
