// One mesh face: up to four vertex indices, a normal and the material it is drawn with.
#pragma once

#include "math/Vector3.h"

#include <cstdint>
#include <istream>
#include <ostream>

class Material;

class Face {
public:
    // Flag bit: the face carries a material (its name follows in FARR records).
    enum { HAS_MATERIAL = 4 };
    enum { MAX_INDICES = 4 };

    uint16_t flags;
    uint16_t numIndices;
    uint32_t indices[MAX_INDICES];
    Vector3 normal;
    Material* material;  // not owned; null when the face has none

    Face();

    // Sets the index count; false above four.
    bool create(int count);
    void clear();
    // Keeps the material flag in step with the pointer.
    void setMaterial(Material* newMaterial);

    // One FARR face record; the material is found by name in the material registry.
    bool load(std::istream& in);
    bool save(std::ostream& out) const;
};
