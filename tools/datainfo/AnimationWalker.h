// Walks a CANI chunk: frames per second, the name, and one track (a mesh path) or two (a camera's position and target).
#pragma once

#include "ChunkFacts.h"
#include "ChunkReader.h"

class AnimationWalker {
public:
    AnimationWalker(ChunkReader& reader, ChunkFacts& facts);

    bool walk();

private:
    bool walkTrack(const char* role);
    bool walkKey(int index, int32_t& frame);

    ChunkReader& reader;
    ChunkFacts& facts;
};
