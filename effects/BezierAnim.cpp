// The moving Bezier land: its patches taken from a BMSH mesh, the control points' motion, tessellation and drawing from arrays.
#include "effects/BezierAnim.h"

#include "math/MathConstants.h"
#include "scene/BezierMesh.h"
#include "scene/BoundingBox.h"
#include "scene/Camera.h"
#include "texture/Material.h"

#include <GL/gl.h>
#include <algorithm>
#include <cmath>

namespace {

// Control points may stray this share of a patch's side from their place on the ground's grid.
const float GRID_TOLERANCE = 1e-3f;
const int MAX_VERTICES = 65535;

void bernstein(float t, float b[4], float d[4])
{
    const float s = 1.0f - t;
    b[0] = s * s * s;
    b[1] = 3.0f * t * s * s;
    b[2] = 3.0f * t * t * s;
    b[3] = t * t * t;
    d[0] = -3.0f * s * s;
    d[1] = 3.0f * s * s - 6.0f * t * s;
    d[2] = 6.0f * t * s - 3.0f * t * t;
    d[3] = 3.0f * t * t;
}

float smoothstep(float from, float to, float x)
{
    float t = (x - from) / (to - from);
    t = t < 0.0f ? 0.0f : (t > 1.0f ? 1.0f : t);
    return t * t * (3.0f - 2.0f * t);
}

float clamp01(float t)
{
    return t < 0.0f ? 0.0f : (t > 1.0f ? 1.0f : t);
}

Vector3 upwards(Vector3 n, bool flipped)
{
    if (flipped)
        n = -n;
    if (n.length() <= 0.0f)
        return Vector3(0.0f, 1.0f, 0.0f);
    return n.normalize();
}

}  // namespace

BezierAnim::BezierAnim()
    : grid(0), cellsX(0), cellsZ(0), cellSize(0.0f), waves(), waveCount(0), ripple{0.0f, 1.0f, 0.0f, 0.0f}, edge(0.0f),
      textureSpan(1.0f), lastTime(0.0f), lastStep(-1.0f), material(nullptr), drawnPatches(0)
{
}

BezierAnim::~BezierAnim() {}

bool BezierAnim::takePatch(const Vector3 points[16], Patch& patch) const
{
    const Vector3 alongU = points[3] - points[0];
    const Vector3 alongV = points[12] - points[0];
    const float side = std::max(std::fabs(alongU.x) + std::fabs(alongU.z), std::fabs(alongV.x) + std::fabs(alongV.z));
    const float tolerance = GRID_TOLERANCE * side;
    if (side <= 0.0f)
        return false;
    if (std::fabs(alongU.z) <= tolerance && std::fabs(alongV.x) <= tolerance)
        patch.uAlongX = true;
    else if (std::fabs(alongU.x) <= tolerance && std::fabs(alongV.z) <= tolerance)
        patch.uAlongX = false;
    else
        return false;
    patch.originU = patch.uAlongX ? points[0].x : points[0].z;
    patch.originV = patch.uAlongX ? points[0].z : points[0].x;
    patch.spanU = patch.uAlongX ? alongU.x : alongU.z;
    patch.spanV = patch.uAlongX ? alongV.z : alongV.x;
    if (std::fabs(std::fabs(patch.spanU) - std::fabs(patch.spanV)) > tolerance)
        return false;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const Vector3 expected = points[0] + alongU * (column / 3.0f) + alongV * (row / 3.0f);
            const Vector3& p = points[row * 4 + column];
            if (std::fabs(p.x - expected.x) > tolerance || std::fabs(p.z - expected.z) > tolerance)
                return false;
        }
    }
    for (int k = 0; k < 16; ++k) {
        patch.rest[k] = points[k];
        patch.points[k] = points[k];
        patch.previous[k] = points[k];
        patch.weight[k] = 1.0f;
    }
    Vector3 p;
    Vector3 du;
    Vector3 dv;
    evaluate(points, 0.5f, 0.5f, p, du, dv);
    patch.flipped = du.cross(dv).y < 0.0f;
    return true;
}

bool BezierAnim::buildCells()
{
    low = patches[0].rest[0];
    high = low;
    for (const Patch& patch : patches) {
        for (const Vector3& p : patch.rest) {
            low = Vector3(std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z));
            high = Vector3(std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z));
        }
    }
    cellSize = std::fabs(patches[0].spanU);
    const float tolerance = GRID_TOLERANCE * cellSize;
    cellsX = static_cast<int>(std::lround((high.x - low.x) / cellSize));
    cellsZ = static_cast<int>(std::lround((high.z - low.z) / cellSize));
    if (cellsX < 1 || cellsZ < 1 || static_cast<size_t>(cellsX) * static_cast<size_t>(cellsZ) < patches.size())
        return false;
    cells.assign(static_cast<size_t>(cellsX * cellsZ), -1);
    for (size_t i = 0; i < patches.size(); ++i) {
        const Patch& patch = patches[i];
        if (std::fabs(std::fabs(patch.spanU) - cellSize) > tolerance)
            return false;
        float x = std::min(patch.rest[0].x, patch.rest[15].x);
        float z = std::min(patch.rest[0].z, patch.rest[15].z);
        const long column = std::lround((x - low.x) / cellSize);
        const long row = std::lround((z - low.z) / cellSize);
        const size_t cell = static_cast<size_t>(row * cellsX + column);
        if (column < 0 || column >= cellsX || row < 0 || row >= cellsZ || cells[cell] >= 0)
            return false;
        cells[cell] = static_cast<int>(i);
    }
    return true;
}

void BezierAnim::buildTables()
{
    basis.assign(static_cast<size_t>((grid + 1) * 4), 0.0f);
    slope.assign(basis.size(), 0.0f);
    for (int i = 0; i <= grid; ++i)
        bernstein(static_cast<float>(i) / static_cast<float>(grid), &basis[static_cast<size_t>(i * 4)],
                  &slope[static_cast<size_t>(i * 4)]);
}

void BezierAnim::buildIndices()
{
    const int stride = grid + 1;
    const int perPatch = stride * stride;
    indices.clear();
    indices.reserve(patches.size() * static_cast<size_t>(6 * grid * grid));
    for (size_t p = 0; p < patches.size(); ++p) {
        const int first = static_cast<int>(p) * perPatch;
        for (int row = 0; row < grid; ++row) {
            for (int column = 0; column < grid; ++column) {
                const int k = first + row * stride + column;
                // Counter-clockwise seen from the side du x dv points to; turned over for a patch facing down.
                int triangles[6] = {k + stride, k, k + stride + 1, k + stride + 1, k, k + 1};
                if (patches[p].flipped) {
                    std::swap(triangles[1], triangles[2]);
                    std::swap(triangles[4], triangles[5]);
                }
                for (int index : triangles)
                    indices.push_back(static_cast<unsigned short>(index));
            }
        }
    }
}

bool BezierAnim::create(const BezierMesh& mesh, int gridSize)
{
    patches.clear();
    grid = std::max(1, gridSize);
    const int perPatch = (grid + 1) * (grid + 1);
    if (mesh.getNumPatches() < 1 || mesh.getNumPatches() * perPatch > MAX_VERTICES)
        return false;
    patches.resize(static_cast<size_t>(mesh.getNumPatches()));
    for (int i = 0; i < mesh.getNumPatches(); ++i) {
        if (!takePatch(mesh.getPatch(i).points, patches[static_cast<size_t>(i)])) {
            patches.clear();
            return false;
        }
    }
    if (!buildCells()) {
        patches.clear();
        return false;
    }
    buildTables();
    buildIndices();
    const size_t vertices = patches.size() * static_cast<size_t>(perPatch);
    order.resize(patches.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<int>(i);
    distances.assign(patches.size(), 0.0f);
    positions.assign(vertices * 3, 0.0f);
    normals.assign(vertices * 3, 0.0f);
    uvs.assign(vertices * 2, 0.0f);
    weigh();
    setTextureSpan(textureSpan);
    lastStep = -1.0f;
    for (size_t i = 0; i < patches.size(); ++i)
        tessellate(static_cast<int>(i));
    return true;
}

void BezierAnim::setWaves(const Wave* list, int count)
{
    waveCount = std::max(0, std::min(count, static_cast<int>(MAX_WAVES)));
    for (int i = 0; i < waveCount; ++i) {
        waves[i] = list[i];
        const float length =
            std::sqrt(list[i].directionX * list[i].directionX + list[i].directionZ * list[i].directionZ);
        waves[i].directionX = length > 0.0f ? list[i].directionX / length : 1.0f;
        waves[i].directionZ = length > 0.0f ? list[i].directionZ / length : 0.0f;
    }
}

void BezierAnim::setEdge(float width)
{
    edge = width;
    weigh();
}

void BezierAnim::weigh()
{
    for (Patch& patch : patches) {
        for (int k = 0; k < 16; ++k) {
            const Vector3& p = patch.rest[k];
            const float inland = std::min(std::min(p.x - low.x, high.x - p.x), std::min(p.z - low.z, high.z - p.z));
            patch.weight[k] = edge > 0.0f ? smoothstep(0.0f, edge, inland) : 1.0f;
        }
    }
}

void BezierAnim::setTextureSpan(float units)
{
    textureSpan = units > 0.0f ? units : 1.0f;
    const int stride = grid + 1;
    for (size_t p = 0; p < patches.size(); ++p) {
        const Patch& patch = patches[p];
        for (int row = 0; row <= grid; ++row) {
            for (int column = 0; column <= grid; ++column) {
                const float u = patch.originU + patch.spanU * static_cast<float>(column) / static_cast<float>(grid);
                const float v = patch.originV + patch.spanV * static_cast<float>(row) / static_cast<float>(grid);
                const float x = patch.uAlongX ? u : v;
                const float z = patch.uAlongX ? v : u;
                const size_t k =
                    (p * static_cast<size_t>(stride * stride) + static_cast<size_t>(row * stride + column)) * 2;
                uvs[k] = (x - low.x) / textureSpan;
                uvs[k + 1] = (z - low.z) / textureSpan;
            }
        }
    }
}

float BezierAnim::getReach() const
{
    float reach = std::fabs(ripple.height);
    for (int i = 0; i < waveCount; ++i)
        reach += std::fabs(waves[i].height);
    return reach;
}

float BezierAnim::motion(float x, float z, float time, float sinceBeat) const
{
    float dy = 0.0f;
    for (int i = 0; i < waveCount; ++i) {
        const Wave& w = waves[i];
        const float k = MathConstants::TWO_PI / w.length;
        dy += w.height * std::sin(k * (w.directionX * x + w.directionZ * z - w.speed * time));
    }
    if (ripple.height != 0.0f && sinceBeat >= 0.0f) {
        const float cx = 0.5f * (low.x + high.x);
        const float cz = 0.5f * (low.z + high.z);
        const float r = std::sqrt((x - cx) * (x - cx) + (z - cz) * (z - cz));
        const float d = (r - ripple.speed * sinceBeat) / ripple.width;
        dy += ripple.height * std::exp(-d * d - ripple.fade * sinceBeat);
    }
    return dy;
}

void BezierAnim::update(float time, float sinceBeat)
{
    const bool first = lastStep < 0.0f;
    lastStep = first || time <= lastTime ? 0.0f : time - lastTime;
    lastTime = time;
    for (size_t i = 0; i < patches.size(); ++i) {
        Patch& patch = patches[i];
        for (int k = 0; k < 16; ++k) {
            patch.previous[k] = patch.points[k];
            const Vector3& rest = patch.rest[k];
            patch.points[k] = rest;
            patch.points[k].y += patch.weight[k] * motion(rest.x, rest.z, time, sinceBeat);
            if (first)
                patch.previous[k] = patch.points[k];
        }
        tessellate(static_cast<int>(i));
    }
}

void BezierAnim::evaluate(const Vector3 points[16], float u, float v, Vector3& p, Vector3& du, Vector3& dv)
{
    float bu[4];
    float su[4];
    float bv[4];
    float sv[4];
    bernstein(u, bu, su);
    bernstein(v, bv, sv);
    p = du = dv = Vector3(0.0f, 0.0f, 0.0f);
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const Vector3& c = points[row * 4 + column];
            p += c * (bu[column] * bv[row]);
            du += c * (su[column] * bv[row]);
            dv += c * (bu[column] * sv[row]);
        }
    }
}

void BezierAnim::tessellate(int index)
{
    Patch& patch = patches[static_cast<size_t>(index)];
    const int stride = grid + 1;
    size_t k = static_cast<size_t>(index) * static_cast<size_t>(stride * stride);
    patch.boxLow = patch.boxHigh = patch.points[0];
    for (int row = 0; row <= grid; ++row) {
        const float* bv = &basis[static_cast<size_t>(row * 4)];
        const float* sv = &slope[static_cast<size_t>(row * 4)];
        for (int column = 0; column <= grid; ++column, ++k) {
            const float* bu = &basis[static_cast<size_t>(column * 4)];
            const float* su = &slope[static_cast<size_t>(column * 4)];
            Vector3 p;
            Vector3 du;
            Vector3 dv;
            for (int r = 0; r < 4; ++r) {
                Vector3 across;
                Vector3 acrossSlope;
                for (int c = 0; c < 4; ++c) {
                    across += patch.points[r * 4 + c] * bu[c];
                    acrossSlope += patch.points[r * 4 + c] * su[c];
                }
                p += across * bv[r];
                du += acrossSlope * bv[r];
                dv += across * sv[r];
            }
            const Vector3 n = upwards(du.cross(dv), patch.flipped);
            positions[k * 3] = p.x;
            positions[k * 3 + 1] = p.y;
            positions[k * 3 + 2] = p.z;
            normals[k * 3] = n.x;
            normals[k * 3 + 1] = n.y;
            normals[k * 3 + 2] = n.z;
            patch.boxLow =
                Vector3(std::min(patch.boxLow.x, p.x), std::min(patch.boxLow.y, p.y), std::min(patch.boxLow.z, p.z));
            patch.boxHigh =
                Vector3(std::max(patch.boxHigh.x, p.x), std::max(patch.boxHigh.y, p.y), std::max(patch.boxHigh.z, p.z));
        }
    }
}

int BezierAnim::patchAt(float x, float z) const
{
    if (patches.empty() || !(x >= low.x && x <= high.x && z >= low.z && z <= high.z))
        return -1;
    const int column = std::min(static_cast<int>((x - low.x) / cellSize), cellsX - 1);
    const int row = std::min(static_cast<int>((z - low.z) / cellSize), cellsZ - 1);
    return cells[static_cast<size_t>(row * cellsX + column)];
}

bool BezierAnim::groundAt(float x, float z, GroundPoint& out) const
{
    const int index = patchAt(x, z);
    if (index < 0)
        return false;
    const Patch& patch = patches[static_cast<size_t>(index)];
    const float u = clamp01(((patch.uAlongX ? x : z) - patch.originU) / patch.spanU);
    const float v = clamp01(((patch.uAlongX ? z : x) - patch.originV) / patch.spanV);
    Vector3 p;
    Vector3 du;
    Vector3 dv;
    evaluate(patch.points, u, v, p, du, dv);
    out.height = p.y;
    out.normal = upwards(du.cross(dv), patch.flipped);
    out.rise = 0.0f;
    if (lastStep > 0.0f) {
        Vector3 before;
        evaluate(patch.previous, u, v, before, du, dv);
        out.rise = (p.y - before.y) / lastStep;
    }
    return true;
}

void BezierAnim::draw(const Camera* camera)
{
    drawnPatches = 0;
    if (patches.empty())
        return;
    if (material)
        material->bind();
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, positions.data());
    glNormalPointer(GL_FLOAT, 0, normals.data());
    glTexCoordPointer(2, GL_FLOAT, 0, uvs.data());
    const int perPatch = 6 * grid * grid;
    if (camera) {
        // Nearest first, so the depth test turns away the ground behind the hills before it is shaded.
        const Vector3& eye = camera->getPosition();
        for (size_t p = 0; p < patches.size(); ++p)
            distances[p] = ((patches[p].boxLow + patches[p].boxHigh) * 0.5f - eye).length();
        std::sort(order.begin(), order.end(), [this](int a, int b) { return distances[a] < distances[b]; });
    }
    for (int p : order) {
        const Patch& patch = patches[static_cast<size_t>(p)];
        if (camera && !camera->getFrustum().isBoxInside(BoundingBox(patch.boxLow, patch.boxHigh)))
            continue;
        glDrawElements(GL_TRIANGLES, perPatch, GL_UNSIGNED_SHORT,
                       indices.data() + static_cast<size_t>(p) * static_cast<size_t>(perPatch));
        ++drawnPatches;
    }
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    if (material)
        material->unbind();
}
