// Loads a file through the engine's own load operations, as the demo does, and prints what the engine ends up holding.
#pragma once

#include "ChunkFacts.h"
#include "FileKind.h"

#include <ostream>
#include <string>

class Texture;

class EngineCheck {
public:
    explicit EngineCheck(std::ostream& out);

    bool checkChunks(const std::string& file, const ChunkFacts& facts);
    // Loads an image with the requested format code through the loader the engine picks for its name,
    // or with anyName through the loader for what the file holds. With keep, the texture is handed
    // over instead of destroyed.
    bool checkImage(const std::string& file, FileKind::Kind kind, int format, Texture** keep = nullptr,
                    bool anyName = false);
    const std::string& error() const { return problem; }

    // Empties the material, camera, light and texture registries that loads fill, so the next file starts clean.
    static void clearRegistries();

private:
    bool fail(const std::string& what);
    bool checkMesh(const std::string& file);
    bool checkOctree(const std::string& file);
    bool checkCameraAnimation(const std::string& file);
    bool checkMeshAnimation(const std::string& file);
    bool checkBezier(const std::string& file);
    bool checkTerrain(const std::string& file);
    bool checkSets(const std::string& file, ChunkFacts::Kind kind);
    // Mipmapped textures and lights call GL while loading.
    bool needsGL(const ChunkFacts& facts) const;
    static bool mipmapped(const std::string& textureName);

    std::ostream& out;
    std::string problem;
};
