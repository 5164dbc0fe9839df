// Mesh generation: which way faces point, how winding is written, and what a build refuses.
#include "MeshBuilder.h"

#include "scene/Mesh.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

Vec3 at(const Mesh& mesh, const Face& face, int k)
{
    const Vector3& p = (*mesh.getVertices())[(int)face.indices[k]].position;
    return Vec3{p.x, p.y, p.z};
}

// Cross product of a face's edges in index order.
Vec3 winding(const Mesh& mesh, int f)
{
    const Face& face = (*mesh.getFaces())[f];
    return (at(mesh, face, 1) - at(mesh, face, 0)).cross(at(mesh, face, 2) - at(mesh, face, 0));
}

Vec3 stored(const Mesh& mesh, int f)
{
    const Vector3& n = (*mesh.getFaces())[f].normal;
    return Vec3{n.x, n.y, n.z};
}

TEST(MeshBuilder, TubeSidesAndCapsFaceOutwardsAndDegenerateTrianglesAreDropped)
{
    MeshBuilder b;
    b.tube({Vec3{0, 0, 0}, Vec3{0, 2, 0}}, {0.5, 0.5}, 8, 0);
    std::unique_ptr<Mesh> mesh(b.build(false, {}));
    ASSERT_TRUE(mesh);
    ASSERT_EQ(mesh->getFaces()->getNumFaces(), 8 * 2 + 8 * 2);
    for (int f = 0; f < mesh->getFaces()->getNumFaces(); ++f) {
        const Face& face = (*mesh->getFaces())[f];
        const Vec3 out = (at(*mesh, face, 0) + at(*mesh, face, 1) + at(*mesh, face, 2)) * (1.0 / 3.0) - Vec3{0, 1, 0};
        EXPECT_GT(winding(*mesh, f).dot(out), 0.0) << f;
        EXPECT_GT(stored(*mesh, f).dot(out), 0.0) << f;
    }
    MeshBuilder flat;
    const int first = flat.vertex(Vec3{0, 0, 0});
    const int second = flat.vertex(Vec3{1, 0, 0});
    flat.triangle(first, second, flat.vertex(Vec3{2, 0, 0}), 0);
    flat.triangle(first, first, second, 0);
    EXPECT_EQ(flat.triangleCount(), 0);
    EXPECT_EQ(flat.build(false, {}), nullptr);
}

}  // namespace
