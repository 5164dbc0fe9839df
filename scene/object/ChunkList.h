// Reading and writing of counted lists: a tag, an i32 count, then that many child records.
#pragma once

#include "scene/object/Chunk.h"

#include <cstdint>
#include <istream>
#include <ostream>

class ChunkList {
public:
    // Reads the tag and the count; a count of zero or less reads as an empty list.
    static bool readHead(std::istream& in, const char* tag, int32_t& count);
    static bool writeHead(std::ostream& out, const char* tag, int32_t count);

    // Reads count children one at a time: make(in) builds each one (null stops the
    // load), the child reads its own record, and keep(child) takes it. A child whose
    // load fails is destroyed; the ones kept before it stay kept. Each child is built
    // only while the stream still holds smallestRecord bytes, so a count past the end
    // of the file costs no more than the file holds.
    template <class Make, class Keep>
    static bool readItems(std::istream& in, int32_t count, long long smallestRecord, Make make, Keep keep)
    {
        for (int32_t i = 0; i < count; ++i) {
            if (!Chunk::fits(in, 1, smallestRecord))
                return false;
            auto* item = make(in);
            if (!item)
                return false;
            if (!item->load(in)) {
                delete item;
                return false;
            }
            keep(item);
        }
        return Chunk::good(in);
    }
};
