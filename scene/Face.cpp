// Face records: flags, indices, normal and, when flagged, the material's name.
#include "scene/Face.h"

#include "scene/object/Chunk.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include <cstring>
#include <vector>

Face::Face() : flags(0), numIndices(0), indices{0, 0, 0, 0}, material(nullptr) {}

bool Face::create(int count)
{
    if (count < 0 || count > MAX_INDICES)
        return false;
    numIndices = static_cast<uint16_t>(count);
    return true;
}

void Face::clear()
{
    numIndices = 0;
}

void Face::setMaterial(Material* newMaterial)
{
    material = newMaterial;
    if (material)
        flags |= HAS_MATERIAL;
    else
        flags &= static_cast<uint16_t>(~HAS_MATERIAL);
}

namespace {

bool readMaterialName(std::istream& in, Material*& material)
{
    int16_t length = 0;
    if (!Chunk::readShort(in, length))
        return false;
    uint16_t size = static_cast<uint16_t>(length);
    if (!Chunk::fits(in, size, 1))
        return false;
    std::vector<char> name(size + 1u, '\0');
    in.read(name.data(), size);
    if (!Chunk::good(in))
        return false;
    // An unregistered name leaves the face unbound rather than failing the file.
    material = MaterialMgr::getHandle()->find(name.data());
    return true;
}

bool writeMaterialName(std::ostream& out, const Material* material)
{
    const char* name = material ? material->getName() : nullptr;
    size_t length = name ? std::strlen(name) : 0;
    if (length > 65535)
        return false;
    Chunk::writeShort(out, static_cast<int16_t>(static_cast<uint16_t>(length)));
    if (length > 0)
        out.write(name, static_cast<std::streamsize>(length));
    return Chunk::good(out);
}

}  // namespace

bool Face::load(std::istream& in)
{
    int16_t rawFlags = 0;
    int16_t rawCount = 0;
    if (!Chunk::readShort(in, rawFlags) || !Chunk::readShort(in, rawCount))
        return false;
    uint16_t count = static_cast<uint16_t>(rawCount);
    // Four slots are all a face has; a larger count can only come from a broken file.
    if (count > MAX_INDICES)
        return false;
    flags = static_cast<uint16_t>(rawFlags);
    numIndices = count;
    for (int i = 0; i < MAX_INDICES; ++i)
        indices[i] = 0;
    for (int i = 0; i < count; ++i) {
        int32_t index = 0;
        if (!Chunk::readInt(in, index))
            return false;
        indices[i] = static_cast<uint32_t>(index);
    }
    float values[3];
    if (!Chunk::readFloats(in, values, 3))
        return false;
    normal.assign(values[0], values[1], values[2]);
    material = nullptr;
    if (flags & HAS_MATERIAL)
        return readMaterialName(in, material);
    return Chunk::good(in);
}

bool Face::save(std::ostream& out) const
{
    if (numIndices > MAX_INDICES)
        return false;
    Chunk::writeShort(out, static_cast<int16_t>(flags));
    Chunk::writeShort(out, static_cast<int16_t>(numIndices));
    for (int i = 0; i < numIndices; ++i)
        Chunk::writeInt(out, static_cast<int32_t>(indices[i]));
    const float values[3] = {normal.x, normal.y, normal.z};
    Chunk::writeFloats(out, values, 3);
    if (flags & HAS_MATERIAL)
        return writeMaterialName(out, material);
    return Chunk::good(out);
}
