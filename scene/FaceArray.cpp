// Face storage and the FARR chunk: a count, then one record per face.
#include "scene/FaceArray.h"

#include "scene/object/Chunk.h"

namespace {
// Flags, index count and normal: the least a face record can take.
const int smallestFaceRecord = 2 + 2 + 12;
}  // namespace

FaceArray::FaceArray() : numFaces(0), capacity(0), faces(nullptr) {}

FaceArray::FaceArray(const FaceArray& other) : numFaces(0), capacity(0), faces(nullptr)
{
    *this = other;
}

FaceArray& FaceArray::operator=(const FaceArray& other)
{
    if (this == &other)
        return *this;
    release();
    if (!other.faces)
        return *this;
    create(other.capacity);
    for (int i = 0; i < other.numFaces; ++i)
        faces[i] = other.faces[i];
    numFaces = other.numFaces;
    return *this;
}

FaceArray::~FaceArray()
{
    release();
}

void FaceArray::release()
{
    delete[] faces;
    faces = nullptr;
    capacity = 0;
    numFaces = 0;
}

bool FaceArray::create(int n)
{
    if (n < 0)
        return false;
    release();
    faces = new Face[n];
    capacity = n;
    return true;
}

bool FaceArray::resize(int n)
{
    if (n < 0)
        return false;
    Face* grown = new Face[n];
    int kept = numFaces < n ? numFaces : n;
    for (int i = 0; i < kept; ++i)
        grown[i] = faces[i];
    delete[] faces;
    faces = grown;
    capacity = n;
    numFaces = kept;
    return true;
}

void FaceArray::clear()
{
    numFaces = 0;
}

bool FaceArray::addFace(const Face& face)
{
    if (numFaces >= capacity)
        return false;
    faces[numFaces++] = face;
    return true;
}

bool FaceArray::load(std::istream& in)
{
    if (!Chunk::readTag(in, "FARR"))
        return false;
    int32_t count = 0;
    if (!Chunk::readInt(in, count))
        return false;
    if (!Chunk::fits(in, count, smallestFaceRecord))
        return false;
    create(count);
    for (int i = 0; i < count; ++i) {
        if (!faces[i].load(in))
            return false;
        numFaces = i + 1;
    }
    return Chunk::good(in);
}

bool FaceArray::save(std::ostream& out) const
{
    Chunk::writeTag(out, "FARR");
    Chunk::writeInt(out, numFaces);
    for (int i = 0; i < numFaces; ++i)
        if (!faces[i].save(out))
            return false;
    return Chunk::good(out);
}
