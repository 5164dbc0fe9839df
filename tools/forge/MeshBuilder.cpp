// Geometry is assembled from a few generators (grids, tubes, cones, fans) and converted once at the end.
#include "MeshBuilder.h"

#include "Maths.h"

#include "scene/FaceArray.h"
#include "scene/Mesh.h"
#include "scene/VertexArray.h"

#include <cmath>

double Vec3::length() const
{
    return std::sqrt(x * x + y * y + z * z);
}

Vec3 Vec3::normalised() const
{
    const double l = length();
    return l > 1e-12 ? *this * (1.0 / l) : Vec3{0.0, 1.0, 0.0};
}

int MeshBuilder::vertex(const Vec3& position, double u, double v)
{
    points.push_back(Point{position, u, v});
    return (int)points.size() - 1;
}

void MeshBuilder::triangle(int a, int b, int c, int material)
{
    const Vec3 n = (points[b].position - points[a].position).cross(points[c].position - points[a].position);
    if (n.length() < 1e-10)
        return;
    triangles.push_back(Triangle{{a, b, c}, material});
}

void MeshBuilder::quad(int a, int b, int c, int d, int material)
{
    triangle(a, b, c, material);
    triangle(a, c, d, material);
}

void MeshBuilder::surface(int rows, int columns, bool closeColumns, int material,
                          const std::function<Vec3(int, int)>& point)
{
    const int first = (int)points.size();
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c)
            vertex(point(r, c), (double)c / (columns - 1), (double)r / (rows - 1));
    const int spans = closeColumns ? columns : columns - 1;
    for (int r = 0; r + 1 < rows; ++r) {
        for (int c = 0; c < spans; ++c) {
            const int c1 = (c + 1) % columns;
            quad(first + r * columns + c, first + r * columns + c1, first + (r + 1) * columns + c1,
                 first + (r + 1) * columns + c, material);
        }
    }
}

void MeshBuilder::twoSided(int rows, int columns, int material, const std::function<Vec3(int, int)>& point)
{
    surface(rows, columns, false, material, point);
    // The back: the same points with the columns mirrored, which reverses the winding.
    surface(rows, columns, false, material, [&](int r, int c) { return point(r, columns - 1 - c); });
}

void MeshBuilder::frame(const Vec3& axis, Vec3& side, Vec3& up)
{
    const Vec3 a = axis.normalised();
    const Vec3 helper = std::fabs(a.y) < 0.9 ? Vec3{0.0, 1.0, 0.0} : Vec3{1.0, 0.0, 0.0};
    side = a.cross(helper).normalised();
    up = side.cross(a).normalised();
}

void MeshBuilder::tube(const std::vector<Vec3>& spine, const std::vector<double>& radii, int sides, int material)
{
    const int n = (int)spine.size();
    if (n < 2 || (int)radii.size() != n || sides < 3)
        return;
    std::vector<Vec3> sideAxis(n), upAxis(n);
    for (int i = 0; i < n; ++i) {
        const Vec3 along = spine[std::min(i + 1, n - 1)] - spine[std::max(i - 1, 0)];
        frame(along, sideAxis[i], upAxis[i]);
    }
    const int first = (int)points.size();
    // Turning against the frame's sense makes the sides face out.
    surface(n, sides, true, material, [&](int r, int c) {
        const double a = -2.0 * Maths::pi * c / sides;
        return spine[r] + sideAxis[r] * (radii[r] * Maths::cos(a)) + upAxis[r] * (radii[r] * Maths::sin(a));
    });
    // Caps: fans over the end rings, turned to face away from the tube.
    std::vector<Vec3> start, end;
    for (int c = 0; c < sides; ++c) {
        start.push_back(points[first + c].position);
        end.push_back(points[first + (n - 1) * sides + c].position);
    }
    fanFacing(start, spine[0] - spine[1], material);
    fanFacing(end, spine[n - 1] - spine[n - 2], material);
}

void MeshBuilder::fanFacing(const std::vector<Vec3>& polygon, const Vec3& outward, int material)
{
    if (polygon.size() < 3)
        return;
    // Newell's normal tells which way the polygon winds.
    Vec3 normal;
    for (size_t i = 0; i < polygon.size(); ++i) {
        const Vec3& a = polygon[i];
        const Vec3& b = polygon[(i + 1) % polygon.size()];
        normal = normal + Vec3{(a.y - b.y) * (a.z + b.z), (a.z - b.z) * (a.x + b.x), (a.x - b.x) * (a.y + b.y)};
    }
    if (normal.dot(outward) >= 0.0) {
        fan(polygon, material);
        return;
    }
    fan(std::vector<Vec3>(polygon.rbegin(), polygon.rend()), material);
}

void MeshBuilder::cone(const Vec3& base, const Vec3& tip, double radius, int sides, int material)
{
    Vec3 side, up;
    frame(tip - base, side, up);
    std::vector<int> ring;
    for (int c = 0; c < sides; ++c) {
        const double a = 2.0 * Maths::pi * c / sides;
        ring.push_back(vertex(base + side * (radius * Maths::cos(a)) + up * (radius * Maths::sin(a))));
    }
    // Each slope gets its own apex so the point stays sharp in the normals.
    for (int c = 0; c < sides; ++c) {
        const int apex = vertex(tip);
        const int a = ring[c];
        const int b = ring[(c + 1) % sides];
        const Vec3 n = (points[b].position - points[a].position).cross(tip - points[a].position);
        if (n.dot(points[a].position - base) > 0.0)
            triangle(a, b, apex, material);
        else
            triangle(b, a, apex, material);
    }
}

void MeshBuilder::fan(const std::vector<Vec3>& polygon, int material)
{
    if (polygon.size() < 3)
        return;
    Vec3 centre;
    for (const Vec3& p : polygon)
        centre = centre + p;
    centre = centre * (1.0 / polygon.size());
    const int middle = vertex(centre);
    std::vector<int> ring;
    for (const Vec3& p : polygon)
        ring.push_back(vertex(p));
    for (size_t i = 0; i < ring.size(); ++i)
        triangle(middle, ring[i], ring[(i + 1) % ring.size()], material);
}

Mesh* MeshBuilder::build(bool clockwise, const std::vector<Material*>& materials) const
{
    if (triangles.empty())
        return nullptr;
    // Area-weighted face normals summed into the vertices they touch.
    std::vector<Vec3> normals(points.size());
    std::vector<Vec3> faceNormals;
    for (const Triangle& t : triangles) {
        const Vec3& a = points[t.index[0]].position;
        const Vec3 n = (points[t.index[1]].position - a).cross(points[t.index[2]].position - a);
        faceNormals.push_back(n.normalised());
        for (int i : t.index)
            normals[i] = normals[i] + n;
    }
    VertexArray* vertices = new VertexArray();
    FaceArray* faces = new FaceArray();
    vertices->create((int)points.size());
    faces->create((int)triangles.size());
    for (size_t i = 0; i < points.size(); ++i) {
        const Point& p = points[i];
        const Vec3 n = normals[i].normalised();
        vertices->addVertex(Vector3((float)p.position.x, (float)p.position.y, (float)p.position.z),
                            Vector2((float)p.u, (float)p.v), Vector3((float)n.x, (float)n.y, (float)n.z));
    }
    for (size_t i = 0; i < triangles.size(); ++i) {
        const Triangle& t = triangles[i];
        Face face;
        face.create(3);
        face.indices[0] = (uint32_t)t.index[0];
        face.indices[1] = (uint32_t)(clockwise ? t.index[2] : t.index[1]);
        face.indices[2] = (uint32_t)(clockwise ? t.index[1] : t.index[2]);
        face.normal = Vector3((float)faceNormals[i].x, (float)faceNormals[i].y, (float)faceNormals[i].z);
        if (t.material >= 0 && t.material < (int)materials.size())
            face.setMaterial(materials[t.material]);
        faces->addFace(face);
    }
    Mesh* mesh = new Mesh();
    if (!mesh->create(vertices, faces)) {
        delete vertices;
        delete faces;
        delete mesh;
        return nullptr;
    }
    return mesh;
}
