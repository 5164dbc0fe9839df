// Walks the geometry chunks of mesh and octree files.
#include "GeometryWalker.h"

#include "Printing.h"
#include "scene/OctreeNode.h"

#include <algorithm>
#include <sstream>

namespace {

const long long vertexSize = 32;
// Flags, index count and normal: a face without indices or material.
const long long minFaceSize = 2 + 2 + 12;
const uint16_t knownNodeFlags = OctreeNode::HAS_CHILDREN | OctreeNode::HAS_FACES | OctreeNode::HAS_PVS;

}  // namespace

GeometryWalker::GeometryWalker(ChunkReader& r, ChunkFacts& f) : reader(r), facts(f) {}

bool GeometryWalker::walkMesh()
{
    reader.enter("MESH");
    if (!reader.tag("MESH"))
        return false;
    reader.line() << "MESH\n";
    if (!walkBox(true) || !walkVertices() || !walkFaces())
        return false;
    reader.leave();
    return true;
}

bool GeometryWalker::walkBox(bool meshImage)
{
    uint8_t kind = 0;
    float values[10];
    if (!reader.readByte(kind, "box kind") || (meshImage && !reader.skip(3, "box padding")) ||
        !reader.readFloats(values, 10, "box"))
        return false;
    reader.line() << "  " << (meshImage ? "limits" : "box") << " kind " << int(kind) << " radius "
                  << Printing::real(values[0]) << " centre " << Printing::numbers(values + 1, 3) << " min "
                  << Printing::numbers(values + 4, 3) << " max " << Printing::numbers(values + 7, 3) << "\n";
    if (kind > 1)
        return reader.fail("box kind " + std::to_string(kind) + " is neither 0 nor 1");
    return true;
}

bool GeometryWalker::walkVertices()
{
    reader.enter("VARR");
    int32_t count = 0;
    if (!reader.tag("VARR") || !reader.readCount(count, vertexSize, "vertex count"))
        return false;
    float low[3] = {0, 0, 0};
    float high[3] = {0, 0, 0};
    for (int32_t i = 0; i < count; ++i) {
        float v[8];
        if (!reader.readFloats(v, 8, "vertex"))
            return false;
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = (i == 0 || v[axis] < low[axis]) ? v[axis] : low[axis];
            high[axis] = (i == 0 || v[axis] > high[axis]) ? v[axis] : high[axis];
        }
    }
    facts.vertices = count;
    reader.line() << "VARR vertices " << count;
    if (count > 0)
        reader.output() << ", positions from " << Printing::numbers(low, 3) << " to " << Printing::numbers(high, 3);
    reader.output() << "\n";
    reader.leave();
    return true;
}

bool GeometryWalker::walkFaces()
{
    reader.enter("FARR");
    int32_t count = 0;
    if (!reader.tag("FARR") || !reader.readCount(count, minFaceSize, "face count"))
        return false;
    std::map<std::string, int> materialUse;
    int shapes[5] = {0, 0, 0, 0, 0};
    for (int32_t i = 0; i < count; ++i) {
        if (!walkFace(i, materialUse, shapes))
            return false;
    }
    facts.faces = count;
    reader.line() << "FARR faces " << count << ": " << shapes[3] << " triangles, " << shapes[4] << " quads\n";
    for (const auto& use : materialUse) {
        bool known = std::find(facts.materials.begin(), facts.materials.end(), use.first) != facts.materials.end();
        reader.line() << "  material \"" << use.first << "\" on " << use.second << " faces"
                      << (known ? "" : " (not in this file: the face draws without it unless a scene registers it)")
                      << "\n";
    }
    reader.leave();
    return true;
}

bool GeometryWalker::walkFace(int index, std::map<std::string, int>& materialUse, int shapes[5])
{
    int16_t flags = 0;
    int16_t rawCount = 0;
    std::string where = "face " + std::to_string(index);
    if (!reader.readShort(flags, "face flags") || !reader.readShort(rawCount, "face index count"))
        return false;
    int count = static_cast<uint16_t>(rawCount);
    // Every face is drawn as the triangle of its first three indices.
    if (count < 3 || count > 4)
        return reader.fail(where + " has " + std::to_string(count) + " indices, not 3 or 4");
    for (int k = 0; k < count; ++k) {
        int32_t vertex = 0;
        if (!reader.readInt(vertex, "face index"))
            return false;
        if (vertex < 0 || vertex >= facts.vertices)
            return reader.fail(where + " names vertex " + std::to_string(static_cast<uint32_t>(vertex)) + " of " +
                               std::to_string(facts.vertices));
    }
    float normal[3];
    if (!reader.readFloats(normal, 3, "face normal"))
        return false;
    ++shapes[count];
    if (!(flags & 4))
        return true;
    std::string material;
    if (!reader.readName(material, "face material name"))
        return false;
    ++materialUse[material];
    return true;
}

bool GeometryWalker::walkOctree()
{
    reader.enter("OCTT");
    if (!reader.tag("OCTT"))
        return false;
    reader.line() << "OCTT\n";
    if (!walkVertices() || !walkFaces())
        return false;
    TreeStats stats;
    stats.reached.assign(static_cast<size_t>(facts.faces), false);
    reader.enter("OCTN root");
    if (!walkNode(0, stats))
        return false;
    reader.leave();
    printTree(stats);
    reader.leave();
    long long unreached = std::count(stats.reached.begin(), stats.reached.end(), false);
    if (unreached > 0)
        return reader.fail(std::to_string(unreached) + " of " + std::to_string(facts.faces) +
                           " faces lie in no leaf and are never drawn");
    return true;
}

bool GeometryWalker::walkNode(int depth, TreeStats& stats)
{
    if (depth > OctreeNode::MAX_LOAD_DEPTH)
        return reader.fail("the tree is deeper than " + std::to_string(OctreeNode::MAX_LOAD_DEPTH) + " levels");
    int16_t rawFlags = 0;
    if (!reader.tag("OCTN") || !reader.readShort(rawFlags, "node flags"))
        return false;
    uint16_t flags = static_cast<uint16_t>(rawFlags);
    if (flags & ~knownNodeFlags)
        return reader.fail("node flags " + Printing::hex(flags, 4) + " hold unknown bits");
    uint8_t kind = 0;
    float box[10];
    if (!reader.readByte(kind, "node box kind") || !reader.readFloats(box, 10, "node box"))
        return false;
    if (depth == 0)
        reader.line() << "root box min " << Printing::numbers(box + 4, 3) << " max " << Printing::numbers(box + 7, 3)
                      << "\n";
    ++stats.nodes;
    stats.depth = std::max(stats.depth, depth);
    int32_t count = 0;
    if ((flags & OctreeNode::HAS_FACES) && !reader.readCount(count, 4, "node face count"))
        return false;
    for (int32_t i = 0; i < count; ++i) {
        int32_t face = 0;
        if (!reader.readInt(face, "node face index"))
            return false;
        if (face < 0 || face >= facts.faces)
            return reader.fail("a node names face " + std::to_string(static_cast<uint32_t>(face)) + " of " +
                               std::to_string(facts.faces));
        if (!(flags & OctreeNode::HAS_CHILDREN))
            stats.reached[static_cast<size_t>(face)] = true;
    }
    if (!(flags & OctreeNode::HAS_CHILDREN)) {
        ++stats.leaves;
        stats.emptyLeaves += count == 0 ? 1 : 0;
        stats.leafFaceRefs += count;
        stats.fewestInLeaf = stats.fewestInLeaf < 0 ? count : std::min(stats.fewestInLeaf, count);
        stats.mostInLeaf = std::max(stats.mostInLeaf, count);
        return true;
    }
    // Interior nodes draw nothing of their own, whatever they list.
    stats.interiorWithFaces += count > 0 ? 1 : 0;
    for (int child = 0; child < OctreeNode::NUM_CHILDREN; ++child) {
        reader.enter("child " + std::to_string(child));
        if (!walkNode(depth + 1, stats))
            return false;
        reader.leave();
    }
    return true;
}

void GeometryWalker::printTree(const TreeStats& stats)
{
    long long reached = std::count(stats.reached.begin(), stats.reached.end(), true);
    reader.line() << "OCTN nodes " << stats.nodes << ", depth " << stats.depth << ", leaves " << stats.leaves << " ("
                  << stats.emptyLeaves << " empty)\n";
    std::ostringstream average;
    average.precision(3);
    average << (stats.leaves > 0 ? static_cast<double>(stats.leafFaceRefs) / stats.leaves : 0.0);
    reader.line() << "  faces a leaf: fewest " << std::max(stats.fewestInLeaf, 0) << ", most " << stats.mostInLeaf
                  << ", average " << average.str() << "; " << stats.leafFaceRefs << " references to " << reached
                  << " of " << facts.faces << " faces\n";
    if (stats.interiorWithFaces > 0)
        reader.line() << "  " << stats.interiorWithFaces << " inner nodes list faces they never draw\n";
}
