// Every quad gets four vertices of its own, so the builder's normals stay flat and edges stay hard.
#include "PlateBuilder.h"

PlateBuilder::PlateBuilder(MeshBuilder& mesh, double pictureScale, uint64_t seed)
    : builder(mesh), scale(pictureScale), random(seed)
{
}

void PlateBuilder::face(const Vec3 (&p)[4], const Vec3& outward, const double (&st)[4][2], int material)
{
    int v[4];
    for (int i = 0; i < 4; ++i)
        v[i] = builder.vertex(p[i], st[i][0], st[i][1]);
    const Vec3 normal = (p[1] - p[0]).cross(p[2] - p[0]) + (p[2] - p[0]).cross(p[3] - p[0]);
    if (normal.dot(outward) >= 0.0)
        builder.quad(v[0], v[1], v[2], v[3], material);
    else
        builder.quad(v[0], v[3], v[2], v[1], material);
}

void PlateBuilder::plate(const Frame& f, double u0, double u1, double v0, double v1, double h, int material,
                         bool inward)
{
    const Vec3 p[4] = {f.at(u0, v0, h), f.at(u1, v0, h), f.at(u1, v1, h), f.at(u0, v1, h)};
    const double s = scale;
    const double st[4][2] = {{u0 * s, v0 * s}, {u1 * s, v0 * s}, {u1 * s, v1 * s}, {u0 * s, v1 * s}};
    face(p, inward ? f.n * -1.0 : f.n, st, material);
}

void PlateBuilder::decal(const Frame& f, double u0, double u1, double v0, double v1, double h, double s0, double t0,
                         double s1, double t1, int material)
{
    const Vec3 p[4] = {f.at(u0, v0, h), f.at(u1, v0, h), f.at(u1, v1, h), f.at(u0, v1, h)};
    const double st[4][2] = {{s0, t0}, {s1, t0}, {s1, t1}, {s0, t1}};
    face(p, f.n, st, material);
}

void PlateBuilder::box(const Frame& f, double u0, double u1, double v0, double v1, double h0, double h1, int material)
{
    // Each box takes the picture from a place of its own, so neighbours do not repeat.
    const double du = random.uniform();
    const double dv = random.uniform();
    const double s = scale;
    const auto side = [&](const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, const Vec3& out, double a0,
                          double a1) {
        const Vec3 p[4] = {a, b, c, d};
        const double st[4][2] = {{a0 * s + du, h0 * s + dv},
                                 {a1 * s + du, h0 * s + dv},
                                 {a1 * s + du, h1 * s + dv},
                                 {a0 * s + du, h1 * s + dv}};
        face(p, out, st, material);
    };
    const Vec3 top[4] = {f.at(u0, v0, h1), f.at(u1, v0, h1), f.at(u1, v1, h1), f.at(u0, v1, h1)};
    const double st[4][2] = {
        {u0 * s + du, v0 * s + dv}, {u1 * s + du, v0 * s + dv}, {u1 * s + du, v1 * s + dv}, {u0 * s + du, v1 * s + dv}};
    face(top, f.n, st, material);
    side(f.at(u0, v0, h0), f.at(u1, v0, h0), f.at(u1, v0, h1), f.at(u0, v0, h1), f.v * -1.0, u0, u1);
    side(f.at(u0, v1, h0), f.at(u1, v1, h0), f.at(u1, v1, h1), f.at(u0, v1, h1), f.v, u0, u1);
    side(f.at(u0, v0, h0), f.at(u0, v1, h0), f.at(u0, v1, h1), f.at(u0, v0, h1), f.u * -1.0, v0, v1);
    side(f.at(u1, v0, h0), f.at(u1, v1, h0), f.at(u1, v1, h1), f.at(u1, v0, h1), f.u, v0, v1);
}
