// A land of Bezier patches whose control points heave with swells and beat ripples, tessellated again every frame into arrays made once.
#pragma once

#include "effects/GroundSurface.h"
#include "math/Vector3.h"

#include <vector>

class BezierMesh;
class Camera;
class Material;

class BezierAnim : public GroundSurface {
public:
    // A swell running across the land: its direction on the ground, crest to crest, speed, height.
    struct Wave {
        float directionX;
        float directionZ;
        float length;
        float speed;
        float height;
    };
    // A ring that runs out from the land's middle after every beat, `height` high and `width` wide,
    // dying away as it goes.
    struct Ripple {
        float height;
        float width;
        float speed;
        float fade;
    };
    enum { MAX_WAVES = 4 };

    BezierAnim();
    ~BezierAnim() override;
    BezierAnim(const BezierAnim&) = delete;
    BezierAnim& operator=(const BezierAnim&) = delete;

    // Takes the mesh's patches as the land at rest and makes every array the motion needs, each
    // patch cut into grid x grid squares. The patches must tile the ground as equal squares whose
    // control points stand evenly on it (only their heights differ): false otherwise, or with none.
    bool create(const BezierMesh& mesh, int grid);
    bool isCreated() const { return !patches.empty(); }

    void setWaves(const Wave* waves, int count);
    void setRipple(const Ripple& ripple) { this->ripple = ripple; }
    // Within this distance of the land's rim the motion fades out: the rim stands still.
    void setEdge(float width);
    // The texture spans this many units of ground (it starts at the land's lowest x and z).
    void setTextureSpan(float units);
    void setMaterial(Material* m) { material = m; }

    // Moves every control point to where it is `time` seconds in, `sinceBeat` seconds after the
    // last beat, and tessellates the land again.
    void update(float time, float sinceBeat);
    // How far any control point may move from rest, up or down, at full weight.
    float getReach() const;
    // The height change at full weight for a point of the ground.
    float motion(float x, float z, float time, float sinceBeat) const;

    // The patches whose boxes meet the camera's frustum; all without a camera.
    void draw(const Camera* camera);
    int getDrawnPatches() const { return drawnPatches; }

    bool groundAt(float x, float z, GroundPoint& out) const override;

    int getNumPatches() const { return static_cast<int>(patches.size()); }
    const Vector3& getRestPoint(int patch, int k) const { return patches[static_cast<size_t>(patch)].rest[k]; }
    const Vector3& getPoint(int patch, int k) const { return patches[static_cast<size_t>(patch)].points[k]; }
    // How much of the motion a control point takes: 1 inland, 0 on the rim.
    float getWeight(int patch, int k) const { return patches[static_cast<size_t>(patch)].weight[k]; }
    int getVertexCount() const { return static_cast<int>(positions.size() / 3); }
    const Vector3& getLow() const { return low; }
    const Vector3& getHigh() const { return high; }

private:
    struct Patch {
        Vector3 rest[16];
        Vector3 points[16];
        Vector3 previous[16];
        float weight[16];
        // The ground's x or z at u = 0 and v = 0, and how far each runs over the patch.
        bool uAlongX;
        float originU;
        float spanU;
        float originV;
        float spanV;
        // The rest normal points down: the triangles and normals are turned over.
        bool flipped;
        Vector3 boxLow;
        Vector3 boxHigh;
    };

    bool takePatch(const Vector3 points[16], Patch& patch) const;
    bool buildCells();
    void buildTables();
    void buildIndices();
    void weigh();
    void tessellate(int index);
    // Surface point and unnormalised derivatives of a patch's points at (u, v).
    static void evaluate(const Vector3 points[16], float u, float v, Vector3& p, Vector3& du, Vector3& dv);
    int patchAt(float x, float z) const;

    std::vector<Patch> patches;
    int grid;
    // Bernstein weights and their derivatives at the grid's steps, four a step.
    std::vector<float> basis;
    std::vector<float> slope;
    // Vertices, patch after patch, (grid + 1) squared each.
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> uvs;
    std::vector<unsigned short> indices;
    // The order the patches are drawn in, and each one's distance from the camera.
    std::vector<int> order;
    std::vector<float> distances;
    // Which patch covers each cell of the ground, or -1.
    std::vector<int> cells;
    int cellsX;
    int cellsZ;
    float cellSize;
    Vector3 low;
    Vector3 high;
    Wave waves[MAX_WAVES];
    int waveCount;
    Ripple ripple;
    float edge;
    float textureSpan;
    float lastTime;
    float lastStep;
    Material* material;
    int drawnPatches;
};
