// Collects triangles in double precision and turns them into an engine Mesh with smooth vertex normals.
#pragma once

#include <functional>
#include <vector>

class Material;
class Mesh;

struct Vec3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    Vec3 operator+(const Vec3& o) const { return Vec3{x + o.x, y + o.y, z + o.z}; }
    Vec3 operator-(const Vec3& o) const { return Vec3{x - o.x, y - o.y, z - o.z}; }
    Vec3 operator*(double s) const { return Vec3{x * s, y * s, z * s}; }
    double dot(const Vec3& o) const { return x * o.x + y * o.y + z * o.z; }
    Vec3 cross(const Vec3& o) const { return Vec3{y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x}; }
    double length() const;
    Vec3 normalised() const;
};

class MeshBuilder {
public:
    // A point of a surface; vertices shared by triangles get averaged normals.
    int vertex(const Vec3& position, double u = 0.0, double v = 0.0);
    // Counter-clockwise seen from the side the surface faces. Degenerate triangles are dropped.
    void triangle(int a, int b, int c, int material);
    void quad(int a, int b, int c, int d, int material);
    // A grid of rows × columns points from a function; it faces along
    // (next column − point) × (next row − point).
    // closeColumns joins the last column to the first (a tube).
    void surface(int rows, int columns, bool closeColumns, int material, const std::function<Vec3(int, int)>& point);
    // The same sheet facing both ways, for sails, leaves and wings.
    void twoSided(int rows, int columns, int material, const std::function<Vec3(int, int)>& point);
    // A closed tube along a spine with a radius per spine point, capped at both ends.
    void tube(const std::vector<Vec3>& spine, const std::vector<double>& radii, int sides, int material);
    // A cone from a base centre to a tip.
    void cone(const Vec3& base, const Vec3& tip, double radius, int sides, int material);
    // Polygon from its points in order; the fan is seen counter-clockwise from the front.
    void fan(const std::vector<Vec3>& points, int material);
    // The same fan, turned to face along `outward` whichever way the points run.
    void fanFacing(const std::vector<Vec3>& points, const Vec3& outward, int material);

    int triangleCount() const { return (int)triangles.size(); }
    int vertexCount() const { return (int)points.size(); }

    // The engine mesh: faces wound clockwise when asked (for meshes drawn with the
    // front face set to clockwise), normals always pointing out; materials[i] is used
    // for material index i. Null if there is nothing to build.
    Mesh* build(bool clockwise, const std::vector<Material*>& materials) const;

private:
    struct Point {
        Vec3 position;
        double u, v;
    };
    struct Triangle {
        int index[3];
        int material;
    };

    static void frame(const Vec3& axis, Vec3& side, Vec3& up);

    std::vector<Point> points;
    std::vector<Triangle> triangles;
};
