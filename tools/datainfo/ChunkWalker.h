// Walks a whole chunk file, printing its tree: which top-level chunks, the materials, cameras, lights, texture lists and terrain grids.
#pragma once

#include "ChunkFacts.h"
#include "ChunkReader.h"

#include <string>

class ChunkWalker {
public:
    ChunkWalker(ChunkReader& reader, ChunkFacts& facts);

    // The whole file: its top-level chunks in one of the known orders and nothing after them.
    bool walk();

private:
    bool walkMaterials();
    bool walkMaterial(const std::string& tag);
    bool walkColourMaterial();
    bool walkTextureRef(const char* what);
    bool walkCameras();
    bool walkLights();
    bool walkLight(const std::string& tag);
    bool walkTextureList();
    bool walkBezier();
    bool walkTerrain();
    bool checkEnd();

    ChunkReader& reader;
    ChunkFacts& facts;
};
