// OctreeNode: octant subdivision, the OCTN record and the node queries.
#include "scene/OctreeNode.h"

#include "scene/OctreeVisible.h"
#include "scene/object/Chunk.h"

#include <GL/gl.h>
#include <cstring>

namespace {

const char* const tag = "OCTN";
// Tag, flags and box: the least a child record can take.
const long long minRecordSize = 4 + 2 + 41;

}  // namespace

uint32_t OctreeNode::curPvsVisNr = 0;

OctreeNode::OctreeNode() : numFaces(0), faceIndices(nullptr), father(nullptr), children(nullptr), visNr(0) {}

OctreeNode::OctreeNode(const BoundingBox& box, OctreeNode* father_)
    : BoundingBox(box), numFaces(0), faceIndices(nullptr), father(father_), children(nullptr), visNr(0)
{
}

OctreeNode::~OctreeNode()
{
    delete[] children;
    delete[] faceIndices;
}

BoundingBox OctreeNode::octant(const BoundingBox& box, int i)
{
    const Vector3& lo = box.getMin();
    const Vector3& hi = box.getMax();
    Vector3 m = lo + (hi - lo) * 0.5f;
    Vector3 a((i & 4) ? m.x : lo.x, (i & 2) ? m.y : lo.y, (i & 1) ? m.z : lo.z);
    Vector3 b((i & 4) ? hi.x : m.x, (i & 2) ? hi.y : m.y, (i & 1) ? hi.z : m.z);
    BoundingBox result;
    result.create(a, b);
    return result;
}

bool OctreeNode::createChildren()
{
    if (children)
        return false;
    children = new OctreeNode[NUM_CHILDREN];
    for (int i = 0; i < NUM_CHILDREN; ++i) {
        children[i].setLimits(octant(*this, i));
        children[i].father = this;
    }
    return true;
}

bool OctreeNode::createFaceIndices(int n)
{
    if (n < 0 || faceIndices)
        return false;
    numFaces = n;
    if (n == 0)
        return true;
    faceIndices = new uint32_t[static_cast<size_t>(n) + 1]();
    return true;
}

void OctreeNode::setFaceIndex(int i, unsigned long faceIndex)
{
    if (!faceIndices || i < 0 || i > numFaces)
        return;
    faceIndices[i] = static_cast<uint32_t>(faceIndex);
}

void OctreeNode::setLimits(const BoundingBox& box)
{
    BoundingBox::operator=(box);
}

int OctreeNode::depth() const
{
    int d = 0;
    for (const OctreeNode* f = father; f && d <= MAX_LOAD_DEPTH; f = f->father)
        ++d;
    return d;
}

bool OctreeNode::load(std::istream& in)
{
    return loadNode(in, depth());
}

bool OctreeNode::loadFaceIndices(std::istream& in)
{
    int32_t count = 0;
    if (!Chunk::readInt(in, count))
        return false;
    // A negative count is damage, and no count may promise more than the file holds.
    if (count < 0 || !Chunk::fits(in, count, 4))
        return false;
    if (!createFaceIndices(count))
        return false;
    if (count == 0)
        return true;
    unsigned char* bytes = reinterpret_cast<unsigned char*>(faceIndices);
    in.read(reinterpret_cast<char*>(bytes), static_cast<std::streamsize>(count) * 4);
    if (!Chunk::good(in))
        return false;
    // Little-endian on disk, whatever the host.
    for (int32_t i = 0; i < count; ++i) {
        const unsigned char* b = bytes + 4 * static_cast<size_t>(i);
        uint32_t v = static_cast<uint32_t>(b[0]) | (static_cast<uint32_t>(b[1]) << 8) |
                     (static_cast<uint32_t>(b[2]) << 16) | (static_cast<uint32_t>(b[3]) << 24);
        faceIndices[i] = v;
    }
    return true;
}

bool OctreeNode::loadNode(std::istream& in, int level)
{
    if (children || level > MAX_LOAD_DEPTH)
        return false;
    if (!Chunk::readTag(in, tag))
        return false;
    int16_t rawFlags = 0;
    if (!Chunk::readShort(in, rawFlags))
        return false;
    uint16_t flags = static_cast<uint16_t>(rawFlags);
    if (!BoundingBox::load(in))
        return false;
    if ((flags & HAS_FACES) && !loadFaceIndices(in))
        return false;
    if (flags & HAS_CHILDREN) {
        if (!Chunk::fits(in, NUM_CHILDREN, minRecordSize) || !createChildren())
            return false;
        for (int i = 0; i < NUM_CHILDREN; ++i)
            if (!children[i].loadNode(in, level + 1))
                return false;
    }
    return Chunk::good(in);
}

bool OctreeNode::save(std::ostream& out) const
{
    uint16_t flags = 0;
    if (children)
        flags |= HAS_CHILDREN;
    if (numFaces > 0)
        flags |= HAS_FACES;
    if (!pvs.isEmpty())
        flags |= HAS_PVS;
    Chunk::writeTag(out, tag);
    Chunk::writeShort(out, static_cast<int16_t>(flags));
    if (!BoundingBox::save(out))
        return false;
    if (flags & HAS_FACES) {
        Chunk::writeInt(out, numFaces);
        for (int32_t i = 0; i < numFaces; ++i)
            Chunk::writeInt(out, static_cast<int32_t>(faceIndices[i]));
    }
    if (children)
        for (int i = 0; i < NUM_CHILDREN; ++i)
            if (!children[i].save(out))
                return false;
    return Chunk::good(out);
}

bool OctreeNode::PvsCanSee(const Vector3& point) const
{
    if (pvs.isEmpty())
        return true;
    for (const OctreeVisible* e = pvs.getFirst(); e; e = pvs.getNext(e)) {
        const OctreeNode* node = e->getNode();
        if (node && !node->hasChildren() && node->isPointInside(point))
            return true;
    }
    return false;
}

void OctreeNode::draw() const
{
    const Vector3& lo = min;
    const Vector3& hi = max;
    glColor3f(1.0f, 1.0f, 1.0f);
    for (float z : {lo.z, hi.z}) {
        glBegin(GL_LINE_LOOP);
        glVertex3f(lo.x, lo.y, z);
        glVertex3f(hi.x, lo.y, z);
        glVertex3f(hi.x, hi.y, z);
        glVertex3f(lo.x, hi.y, z);
        glEnd();
    }
    glBegin(GL_LINES);
    glVertex3f(lo.x, lo.y, lo.z);
    glVertex3f(lo.x, lo.y, hi.z);
    glVertex3f(hi.x, lo.y, lo.z);
    glVertex3f(hi.x, lo.y, hi.z);
    glVertex3f(hi.x, hi.y, lo.z);
    glVertex3f(hi.x, hi.y, hi.z);
    glVertex3f(lo.x, hi.y, lo.z);
    glVertex3f(lo.x, hi.y, hi.z);
    glEnd();
}
