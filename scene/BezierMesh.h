// Mesh of bicubic Bezier patches (the BMSH chunk of .bez files): tessellated on a grid, culled per patch, drawn with one material.
#pragma once
#include <istream>
#include <ostream>
#include <string>
#include <vector>
#include "math/Vector2.h"
#include "math/Vector3.h"
#include "scene/DrawableObject.h"

class Camera;
class Material;

class BezierMesh : public DrawableObject {
public:
    // Sixteen control points, row by row: u runs along a row, v down the rows.
    // Seen from the side the normal points to, (u, v) turn counter-clockwise.
    struct Patch {
        Vector3 points[16];
    };
    // Bytes of one patch in a BMSH chunk: 16 points of three floats.
    static const int patchFileSize = 16 * 3 * 4;

    BezierMesh();
    ~BezierMesh() override;
    BezierMesh(const BezierMesh&) = delete;
    BezierMesh& operator=(const BezierMesh&) = delete;

    // BMSH: the tag, the mesh name and the material name (each a 16-bit length
    // and its bytes), a 32-bit patch count, then each patch's points as floats.
    bool load(const char* file);
    bool load(std::istream& in) override;
    bool save(std::ostream& out) override;
    bool save(const char* file);

    void addPatch(const Patch& patch);
    int getNumPatches() const { return static_cast<int>(patches.size()); }
    const Patch& getPatch(int i) const { return patches[static_cast<size_t>(i)]; }

    // Steps per patch side; at least 1 each. The patches are tessellated again.
    void setGridSize(int u, int v);
    int getGridU() const { return gridU; }
    int getGridV() const { return gridV; }

    // The material is not owned; its name is what save writes.
    void setMaterial(Material* m);
    Material* getMaterial() const { return material; }
    void setMaterialName(const char* name) { materialName = name ? name : ""; }
    const std::string& getMaterialName() const { return materialName; }

    // Moves every patch by offset (added to any earlier move).
    void moveMesh(const Vector3& offset);
    const Vector3& getOffset() const { return offset; }

    // Patches whose box meets the camera's frustum; all of them without a camera.
    void draw(const Camera* camera);
    // How many patches the last draw sent.
    int getDrawnPatches() const { return drawnPatches; }

    // The surface point and unit normal of a patch at (u, v) in [0, 1].
    static Vector3 evaluate(const Patch& patch, float u, float v);
    static Vector3 normalAt(const Patch& patch, float u, float v);

    // A tessellated patch: (gridU + 1) x (gridV + 1) points, row by row, moved by the offset.
    struct Surface {
        std::vector<Vector3> positions;
        std::vector<Vector3> normals;
        std::vector<Vector2> uvs;
        BoundingBox box;
    };
    const Surface& getSurface(int i) const { return surfaces[static_cast<size_t>(i)]; }

private:
    void tessellate();
    void tessellate(const Patch& patch, Surface& surface) const;
    void drawSurface(const Surface& surface) const;

    std::vector<Patch> patches;
    std::vector<Surface> surfaces;
    int gridU;
    int gridV;
    Vector3 offset;
    Material* material;
    std::string materialName;
    int drawnPatches;
};
