// The blast's content: its camera rises clear of every building and keeps ground zero ahead; the debris is solid.
#include "BlowUpContent.h"
#include "CityBlockMesh.h"

#include "scene/Mesh.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <set>

TEST(BlowUpContent, TheCameraRisesClearOfTheBuildingsAndTheDebrisIsClosedAndFacesOut)
{
    const CityBlockMesh block;
    for (double t = 0.0; t <= BlowUpLayout::SECONDS; t += 0.05) {
        const Vec3 eye = BlowUpContent::cameraAt(t);
        ASSERT_FALSE(block.inside(eye, 1.5)) << t;
        const Vec3 look = BlowUpContent::targetAt(t) - eye;
        ASSERT_GT(look.x, 0.0) << t;
    }
    // Down at the street at the start, high above the towers by the crash.
    EXPECT_LT(BlowUpContent::cameraAt(0.0).y, 3.0);
    EXPECT_GT(BlowUpContent::cameraAt(BlowUpLayout::CRASH).y, 200.0);
    for (int kind = 0; kind < BlowUpLayout::DEBRIS_KINDS; ++kind) {
        MeshBuilder builder;
        BlowUpContent::debris(builder, kind);
        std::unique_ptr<Mesh> mesh(builder.build(false, {}));
        ASSERT_TRUE(mesh);
        const VertexArray& v = *mesh->getVertices();
        const FaceArray& f = *mesh->getFaces();
        // Closed: every edge is walked once each way. Facing out: the enclosed volume is positive.
        std::multiset<std::array<float, 6>> edges;
        double volume = 0.0;
        for (int i = 0; i < f.getNumFaces(); ++i) {
            const Vector3 p[3] = {v[f[i].indices[0]].position, v[f[i].indices[1]].position,
                                  v[f[i].indices[2]].position};
            volume += p[0].dot(p[1].cross(p[2])) / 6.0;
            for (int k = 0; k < 3; ++k) {
                const Vector3& a = p[k];
                const Vector3& b = p[(k + 1) % 3];
                edges.insert({a.x, a.y, a.z, b.x, b.y, b.z});
            }
        }
        for (const std::array<float, 6>& e : edges)
            ASSERT_EQ(edges.count({e[3], e[4], e[5], e[0], e[1], e[2]}), edges.count(e)) << kind;
        EXPECT_GT(volume, 0.1) << kind;
    }
}
