// What velmora-data's chunk walk learnt about a file, handed to the engine check that follows.
#pragma once

#include <string>
#include <utility>
#include <vector>

struct ChunkFacts {
    enum Kind {
        UNKNOWN,
        MESH_FILE,         // MMGR, MESH
        OCTREE_FILE,       // MMGR, OCTT
        MATERIAL_SET,      // MMGR
        CAMERA_ANIMATION,  // CANI with two tracks
        MESH_ANIMATION,    // CANI with one track
        CAMERA_SET,        // CMGR
        LIGHT_SET,         // LMGR
        TEXTURE_SET,       // TMGR
        BEZIER_MESH,       // BMSH
        TERRAIN            // TERA
    };

    Kind kind = UNKNOWN;
    // Texture file names with the format codes the file asks for them in.
    std::vector<std::pair<std::string, int>> textures;
    std::vector<std::string> materials;
    int vertices = 0;
    int faces = 0;

    static const char* describe(Kind kind)
    {
        switch (kind) {
            case MESH_FILE:
                return "mesh file (MMGR, MESH)";
            case OCTREE_FILE:
                return "octree file (MMGR, OCTT)";
            case MATERIAL_SET:
                return "material set (MMGR)";
            case CAMERA_ANIMATION:
                return "camera animation (CANI, two tracks)";
            case MESH_ANIMATION:
                return "mesh animation (CANI, one track)";
            case CAMERA_SET:
                return "camera set (CMGR)";
            case LIGHT_SET:
                return "light set (LMGR)";
            case TEXTURE_SET:
                return "texture list (TMGR)";
            case BEZIER_MESH:
                return "Bezier mesh (BMSH)";
            case TERRAIN:
                return "height-map terrain (TERA)";
            default:
                return "chunk file";
        }
    }
};
