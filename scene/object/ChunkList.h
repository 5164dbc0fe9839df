// Reading and writing of counted lists: a tag, an i32 count, then that many child records.
#pragma once

#include "scene/object/Chunk.h"

#include <cstdint>
#include <istream>
#include <ostream>

class ChunkList {
public:
    // Reads the tag and the count. A negative count reads as an empty list; a
    // positive one must leave room for that many records of smallestRecord bytes.
    static bool readHead(std::istream& in, const char* tag, long long smallestRecord, int32_t& count);
    static bool writeHead(std::ostream& out, const char* tag, int32_t count);

    // Reads count children: make(in) builds each one (null stops the load),
    // the child reads its own record, and keep(child) takes it. A child whose
    // load fails is destroyed; the ones kept before it stay kept.
    template <class Make, class Keep>
    static bool readItems(std::istream& in, int32_t count, Make make, Keep keep)
    {
        for (int32_t i = 0; i < count; ++i) {
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
