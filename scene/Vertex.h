// One interleaved mesh vertex: 32 bytes, the same layout in memory and in VARR chunks.
#pragma once

#include "math/Vector2.h"
#include "math/Vector3.h"

#include <istream>
#include <ostream>

class Vertex {
public:
    Vector3 position;
    Vector3 normal;
    Vector2 uv;

    Vertex() {}
    Vertex(const Vector3& position_, const Vector2& uv_, const Vector3& normal_)
        : position(position_), normal(normal_), uv(uv_)
    {
    }

    // Position x, y, z; normal x, y, z; u, v; each a little-endian float.
    bool load(std::istream& in);
    bool save(std::ostream& out) const;

    static const int fileSize = 32;
};

// Vertex arrays hand this layout to OpenGL with a stride of 32 bytes.
static_assert(sizeof(Vertex) == 32, "Vertex must stay 32 packed bytes");
