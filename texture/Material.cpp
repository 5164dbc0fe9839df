// Material: colours, shininess, blend and alpha-test mode, depth writes; stored as a CMAT chunk.
#include "texture/Material.h"

#include "scene/object/Chunk.h"

#include <GL/gl.h>
#include <cstdio>

namespace {

struct BlendEntry {
    GLenum alphaFunc;  // 0: no alpha test
    GLenum source;     // 0: no blending
    GLenum destination;
};

// Mode 1 alone tests greater-or-equal; the other alpha-tested modes test strictly greater.
const BlendEntry blendTable[12] = {
    {0, 0, 0},
    {GL_GEQUAL, 0, 0},
    {0, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA},
    {GL_GREATER, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA},
    {0, GL_ONE_MINUS_DST_COLOR, GL_ONE_MINUS_SRC_COLOR},
    {GL_GREATER, GL_ONE_MINUS_DST_COLOR, GL_ONE_MINUS_SRC_COLOR},
    {0, GL_SRC_ALPHA, GL_ONE},
    {GL_GREATER, GL_SRC_ALPHA, GL_ONE},
    {0, GL_ONE, GL_SRC_COLOR},
    {GL_GREATER, GL_ONE, GL_SRC_COLOR},
    {0, GL_ONE, GL_ONE},
    {GL_GREATER, GL_ONE, GL_ONE},
};

const BlendEntry* blendEntry(BlendMode mode)
{
    if (mode < 0 || mode > 11)
        return nullptr;
    return &blendTable[mode];
}

bool writeColor(std::ostream& out, const Color& c)
{
    const float values[4] = {c.r, c.g, c.b, c.a};
    return Chunk::writeFloats(out, values, 4);
}

// Read as stored, without clamping, so a round trip keeps every bit.
bool readColor(std::istream& in, Color& c)
{
    float values[4];
    if (!Chunk::readFloats(in, values, 4))
        return false;
    c.r = values[0];
    c.g = values[1];
    c.b = values[2];
    c.a = values[3];
    return true;
}

void setMaterialColor(GLenum face, GLenum what, const Color& c)
{
    const GLfloat values[4] = {c.r, c.g, c.b, c.a};
    glMaterialfv(face, what, values);
}

}  // namespace

Material::Material()
{
    setDefaults();
}

Material::Material(const char* name) : NamedObject(name)
{
    Material::setDefaults();
}

Material::~Material() {}

void Material::setDefaults()
{
    flags = defaultFlags;
    blendMode = 0;
    ambient = Color(0.2f, 0.2f, 0.2f, 1.0f);
    diffuse = Color(0.8f, 0.8f, 0.8f, 1.0f);
    specular = Color(1.0f, 1.0f, 1.0f, 1.0f);
    emission = Color(0.0f, 0.0f, 0.0f, 1.0f);
    shininess = 45.0f;
}

void Material::applyBlendMode() const
{
    const BlendEntry* entry = blendEntry(blendMode);
    if (!entry)
        return;
    if (entry->alphaFunc) {
        glEnable(GL_ALPHA_TEST);
        glAlphaFunc(entry->alphaFunc, 0.1f);
    }
    if (entry->source) {
        glEnable(GL_BLEND);
        glBlendFunc(entry->source, entry->destination);
    }
}

void Material::undoBlendMode() const
{
    const BlendEntry* entry = blendEntry(blendMode);
    if (!entry)
        return;
    if (entry->alphaFunc)
        glDisable(GL_ALPHA_TEST);
    if (entry->source)
        glDisable(GL_BLEND);
}

void Material::bind()
{
    // The whole word is compared, so only exactly 1 or 2 pick a single side.
    GLenum face = GL_FRONT_AND_BACK;
    if (flags == 1)
        face = GL_FRONT;
    else if (flags == 2)
        face = GL_BACK;
    glMaterialf(face, GL_SHININESS, shininess);
    setMaterialColor(face, GL_AMBIENT, ambient);
    setMaterialColor(face, GL_DIFFUSE, diffuse);
    setMaterialColor(face, GL_SPECULAR, specular);
    setMaterialColor(face, GL_EMISSION, emission);
    applyBlendMode();
    if (flags & noDepthWrite)
        glDepthMask(GL_FALSE);
}

void Material::unbind()
{
    if (flags & noDepthWrite)
        glDepthMask(GL_TRUE);
    undoBlendMode();
}

bool Material::save(std::ostream& out)
{
    if (!Chunk::writeTag(out, "CMAT"))
        return false;
    if (!NamedObject::save(out)) {
        // Reported, yet the save counts as done.
        std::fputs("COULDN'T SAVE NamedObject\n", stdout);
        return true;
    }
    // Only the low half of the flags is stored.
    Chunk::writeShort(out, static_cast<int16_t>(flags & 0xffff));
    Chunk::writeInt(out, blendMode);
    writeColor(out, ambient);
    writeColor(out, diffuse);
    writeColor(out, specular);
    writeColor(out, emission);
    Chunk::writeFloat(out, shininess);
    return Chunk::good(out);
}

bool Material::load(std::istream& in)
{
    if (!Chunk::readTag(in, "CMAT") || !NamedObject::load(in))
        return false;
    int16_t lowFlags = 0;
    int32_t mode = 0;
    if (!Chunk::readShort(in, lowFlags) || !Chunk::readInt(in, mode))
        return false;
    Color a, d, s, e;
    float shine = 0.0f;
    if (!readColor(in, a) || !readColor(in, d) || !readColor(in, s) || !readColor(in, e) ||
        !Chunk::readFloat(in, shine))
        return false;
    // The high half keeps what it had: the depth-write bit is never persisted.
    flags = (flags & 0xffff0000u) | static_cast<uint16_t>(lowFlags);
    blendMode = mode;
    ambient = a;
    diffuse = d;
    specular = s;
    emission = e;
    shininess = shine;
    return Chunk::good(in);
}
