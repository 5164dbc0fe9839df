// Opens files for whole-file chunk reading and writing, so every owner of a
// load(file)/save(file) pair opens them the same way.
#pragma once

#include <fstream>

class ChunkFile {
public:
    // Binary read; false when the name is null or the file cannot be opened.
    static bool openIn(const char* file, std::ifstream& in);
    // Binary write, truncating; false when the name is null or it cannot be created.
    static bool openOut(const char* file, std::ofstream& out);

    // Opens the file and hands the stream to object.load(std::istream&).
    template <class T>
    static bool load(T& object, const char* file)
    {
        std::ifstream in;
        return openIn(file, in) && object.load(static_cast<std::istream&>(in));
    }

    // Opens the file and hands the stream to object.save(std::ostream&).
    template <class T>
    static bool save(T& object, const char* file)
    {
        std::ofstream out;
        return openOut(file, out) && object.save(static_cast<std::ostream&>(out));
    }
};
