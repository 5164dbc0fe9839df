// The car: bumpers, a low body, a glasshouse narrowing to the roof, four dark wheels showing below the body.
#include "CarMesh.h"

#include "effects/CityLayout.h"

namespace {

// Four fresh corners, so every face keeps its own flat normal.
void face(MeshBuilder& mesh, const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, int material)
{
    mesh.quad(mesh.vertex(a, 0.0, 0.0), mesh.vertex(b, 1.0, 0.0), mesh.vertex(c, 1.0, 1.0), mesh.vertex(d, 0.0, 1.0),
              material);
}

}  // namespace

void CarMesh::box(MeshBuilder& mesh, double x, const Section& bottom, const Section& top, int sides, int lid)
{
    const Vec3 b0{x - bottom.halfWidth, bottom.y, bottom.back};
    const Vec3 b1{x + bottom.halfWidth, bottom.y, bottom.back};
    const Vec3 b2{x + bottom.halfWidth, bottom.y, bottom.front};
    const Vec3 b3{x - bottom.halfWidth, bottom.y, bottom.front};
    const Vec3 t0{x - top.halfWidth, top.y, top.back};
    const Vec3 t1{x + top.halfWidth, top.y, top.back};
    const Vec3 t2{x + top.halfWidth, top.y, top.front};
    const Vec3 t3{x - top.halfWidth, top.y, top.front};
    face(mesh, b3, b2, t2, t3, sides);
    face(mesh, b1, b0, t0, t1, sides);
    face(mesh, b2, b1, t1, t2, sides);
    face(mesh, b0, b3, t3, t0, sides);
    face(mesh, t3, t2, t1, t0, lid);
}

void CarMesh::build(MeshBuilder& mesh) const
{
    const double half = CityLayout::CAR_LENGTH * 0.5;
    const double side = CityLayout::CAR_WIDTH * 0.5;
    box(mesh, 0.0, {side - 0.02, -half, half, 0.3}, {side - 0.02, -half, half, 0.52}, Trim, Trim);
    // The body slopes in to the bonnet and the boot.
    box(mesh, 0.0, {side, -half + 0.05, half - 0.05, 0.52}, {side - 0.04, -half + 0.15, half - 0.2, 0.82}, Paint,
        Paint);
    box(mesh, 0.0, {side - 0.06, -half + 1.0, half - 1.25, 0.82},
        {side - 0.2, -half + 1.35, half - 1.9, CityLayout::CAR_HEIGHT}, Glass, Paint);
    for (int k = 0; k < 4; ++k) {
        const double x = k % 2 ? side - 0.14 : -(side - 0.14);
        const double z = k / 2 ? half - 0.85 : -(half - 0.85);
        const Section wheel{0.13, z - 0.32, z + 0.32, 0.0};
        box(mesh, x, wheel, {0.13, z - 0.32, z + 0.32, 0.64}, Trim, Trim);
    }
}
