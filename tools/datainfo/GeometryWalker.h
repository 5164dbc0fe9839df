// Walks the geometry chunks of mesh and octree files: limits, vertex and face arrays, the node tree and its leaf statistics.
#pragma once

#include "ChunkFacts.h"
#include "ChunkReader.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class GeometryWalker {
public:
    GeometryWalker(ChunkReader& reader, ChunkFacts& facts);

    bool walkMesh();
    bool walkOctree();

private:
    // What the node walk gathers over the whole tree.
    struct TreeStats {
        int nodes = 0;
        int leaves = 0;
        int emptyLeaves = 0;
        int depth = 0;
        long long leafFaceRefs = 0;
        int fewestInLeaf = -1;
        int mostInLeaf = 0;
        int interiorWithFaces = 0;
        std::vector<bool> reached;
    };

    bool walkVertices();
    bool walkFaces();
    bool walkFace(int index, std::map<std::string, int>& materialUse, int shapes[5]);
    bool walkBox(bool meshImage);
    bool walkNode(int depth, TreeStats& stats);
    void printTree(const TreeStats& stats);

    ChunkReader& reader;
    ChunkFacts& facts;
};
