// Walks a whole chunk file, printing its tree.
#include "ChunkWalker.h"

#include "AnimationWalker.h"
#include "GeometryWalker.h"
#include "Printing.h"

#include "scene/Terrain.h"

#include <cmath>
#include <vector>

#include <sstream>

namespace {

// Smallest records, so a count can be checked against the bytes left before anything is read.
const long long minMaterialSize = 4 + 4 + 2 + 2 + 4 + 64 + 4;
const long long cameraSize = 4 + 2 + 20 + 24;
const long long minLightSize = 4 + 2 + 73;
const long long minTextureEntrySize = 4 + 2;
const long long patchSize = 16 * 3 * 4;

}  // namespace

ChunkWalker::ChunkWalker(ChunkReader& r, ChunkFacts& f) : reader(r), facts(f) {}

bool ChunkWalker::walk()
{
    std::string first;
    if (!reader.peekTag(first))
        return reader.fail("too short for a chunk tag");
    bool ok = false;
    if (first == "MMGR") {
        if (!walkMaterials())
            return false;
        std::string next;
        facts.kind = ChunkFacts::MATERIAL_SET;
        if (!reader.peekTag(next))
            return checkEnd();
        GeometryWalker geometry(reader, facts);
        if (next == "MESH") {
            facts.kind = ChunkFacts::MESH_FILE;
            ok = geometry.walkMesh();
        } else if (next == "OCTT") {
            facts.kind = ChunkFacts::OCTREE_FILE;
            ok = geometry.walkOctree();
        } else {
            return reader.fail("expected MESH or OCTT after the materials, found " + next);
        }
    } else if (first == "CANI") {
        AnimationWalker animation(reader, facts);
        ok = animation.walk();
    } else if (first == "CMGR") {
        ok = walkCameras();
    } else if (first == "LMGR") {
        ok = walkLights();
    } else if (first == "TMGR") {
        ok = walkTextureList();
    } else if (first == "BMSH") {
        ok = walkBezier();
    } else if (first == "TERA") {
        ok = walkTerrain();
    } else {
        return reader.fail("no engine chunk starts with " + first);
    }
    return ok && checkEnd();
}

bool ChunkWalker::checkEnd()
{
    if (reader.failed())
        return false;
    if (reader.atEnd())
        return true;
    std::ostringstream text;
    text << (reader.fileSize() - reader.offset()) << " bytes follow the last chunk at byte " << reader.offset();
    return reader.fail(text.str());
}

bool ChunkWalker::walkMaterials()
{
    reader.enter("MMGR");
    int32_t count = 0;
    if (!reader.tag("MMGR") || !reader.readCount(count, minMaterialSize, "material count"))
        return false;
    reader.line() << "MMGR materials " << count << "\n";
    for (int32_t i = 0; i < count; ++i) {
        std::string tag;
        if (!reader.peekTag(tag))
            return reader.fail("material " + std::to_string(i) + " cut short");
        if (!walkMaterial(tag))
            return false;
    }
    reader.leave();
    return true;
}

bool ChunkWalker::walkMaterial(const std::string& tag)
{
    if (tag == "CMAT")
        return walkColourMaterial();
    if (tag != "TMAT" && tag != "MMAT")
        return reader.fail("a material chunk cannot be " + tag);
    reader.enter(tag);
    if (!reader.tag(tag.c_str()))
        return false;
    reader.line() << tag << "\n";
    if (tag == "MMAT") {
        if (!walkMaterial("TMAT"))
            return false;
        int32_t blend = 0;
        if (!reader.readInt(blend, "texture blend mode"))
            return false;
        reader.line() << "  texture blend " << blend << (blend < 0 || blend > 2 ? " (unknown)" : "") << "\n";
        if (!walkTextureRef("second texture"))
            return false;
    } else {
        std::string inner;
        if (!reader.peekTag(inner) || inner != "CMAT")
            return reader.fail("a TMAT must hold a CMAT");
        if (!walkColourMaterial() || !walkTextureRef("texture"))
            return false;
    }
    reader.leave();
    return true;
}

bool ChunkWalker::walkColourMaterial()
{
    reader.enter("CMAT");
    std::string name;
    int16_t flags = 0;
    int32_t blend = 0;
    float colours[17];
    if (!reader.tag("CMAT") || !reader.readName(name, "material name") || !reader.readShort(flags, "flags") ||
        !reader.readInt(blend, "blend mode") || !reader.readFloats(colours, 17, "colours and shininess"))
        return false;
    facts.materials.push_back(name);
    reader.line() << "CMAT \"" << name << "\" flags " << Printing::hex(static_cast<uint16_t>(flags), 4) << " blend "
                  << blend << (blend < 0 || blend > 11 ? " (does nothing)" : "") << " shininess "
                  << Printing::real(colours[16]) << "\n";
    reader.line() << "  ambient " << Printing::numbers(colours, 4) << " diffuse " << Printing::numbers(colours + 4, 4)
                  << " specular " << Printing::numbers(colours + 8, 4) << " emission "
                  << Printing::numbers(colours + 12, 4) << "\n";
    reader.leave();
    return true;
}

bool ChunkWalker::walkTextureRef(const char* what)
{
    std::string name;
    if (!reader.readName(name, what))
        return false;
    if (name.empty()) {
        reader.line() << "  " << what << " none\n";
        return true;
    }
    int32_t format = 0;
    if (!reader.readInt(format, "texture format"))
        return false;
    reader.line() << "  " << what << " \"" << name << "\" format " << format << " (" << Printing::format(format)
                  << ")\n";
    if (format < 1 || format > 8)
        return reader.fail(std::string(what) + " \"" + name + "\" asks for format " + std::to_string(format) +
                           ", not 1 to 8");
    facts.textures.emplace_back(name, format);
    return true;
}

bool ChunkWalker::walkCameras()
{
    facts.kind = ChunkFacts::CAMERA_SET;
    reader.enter("CMGR");
    int32_t count = 0;
    if (!reader.tag("CMGR") || !reader.readCount(count, cameraSize, "camera count"))
        return false;
    reader.line() << "CMGR cameras " << count << "\n";
    for (int32_t i = 0; i < count; ++i) {
        reader.enter("CAM0 " + std::to_string(i));
        std::string name;
        float values[9];
        if (!reader.tag("CAM0") || !reader.readName(name, "camera name") ||
            !reader.readFloats(values, 9, "camera fields"))
            return false;
        reader.line() << "CAM0 \"" << name << "\" fov " << Printing::real(values[0]) << " near "
                      << Printing::real(values[1]) << " far " << Printing::real(values[2]) << " position "
                      << Printing::numbers(values + 3, 3) << " target " << Printing::numbers(values + 6, 3) << "\n";
        reader.leave();
    }
    reader.leave();
    return true;
}

bool ChunkWalker::walkLights()
{
    facts.kind = ChunkFacts::LIGHT_SET;
    reader.enter("LMGR");
    int32_t count = 0;
    if (!reader.tag("LMGR") || !reader.readCount(count, minLightSize, "light count"))
        return false;
    reader.line() << "LMGR lights " << count << "\n";
    for (int32_t i = 0; i < count; ++i) {
        std::string tag;
        if (!reader.peekTag(tag))
            return reader.fail("light " + std::to_string(i) + " cut short");
        if (!walkLight(tag))
            return false;
    }
    reader.leave();
    return true;
}

bool ChunkWalker::walkLight(const std::string& tag)
{
    if (tag != "DLIT" && tag != "SLIT")
        return reader.fail("a light chunk cannot be " + tag);
    reader.enter(tag);
    std::string name;
    uint8_t on = 0;
    float values[18];
    if (!reader.tag(tag.c_str()) || !reader.readName(name, "light name") || !reader.readByte(on, "on flag") ||
        !reader.readFloats(values, 18, "light fields"))
        return false;
    reader.line() << tag << " \"" << name << "\" " << (on ? "on" : "off") << " attenuation "
                  << Printing::numbers(values, 3) << " position " << Printing::numbers(values + 15, 3) << "\n";
    reader.line() << "  ambient " << Printing::numbers(values + 3, 4) << " diffuse " << Printing::numbers(values + 7, 4)
                  << " specular " << Printing::numbers(values + 11, 4) << "\n";
    if (tag == "SLIT") {
        float spot[5];
        if (!reader.readFloats(spot, 5, "spot fields"))
            return false;
        reader.line() << "  direction " << Printing::numbers(spot, 3) << " exponent " << Printing::real(spot[3])
                      << " cut-off " << Printing::real(spot[4]) << "\n";
    }
    reader.leave();
    return true;
}

bool ChunkWalker::walkTextureList()
{
    facts.kind = ChunkFacts::TEXTURE_SET;
    reader.enter("TMGR");
    int32_t count = 0;
    if (!reader.tag("TMGR") || !reader.readCount(count, minTextureEntrySize, "texture count"))
        return false;
    reader.line() << "TMGR textures " << count << "\n";
    for (int32_t i = 0; i < count; ++i) {
        int32_t format = 0;
        std::string name;
        if (!reader.readInt(format, "texture format") || !reader.readName(name, "texture name"))
            return false;
        reader.line() << "  \"" << name << "\" format " << format << " (" << Printing::format(format) << ")\n";
        facts.textures.emplace_back(name, format);
    }
    reader.leave();
    return true;
}

bool ChunkWalker::walkBezier()
{
    facts.kind = ChunkFacts::BEZIER_MESH;
    reader.enter("BMSH");
    std::string name;
    std::string material;
    int32_t count = 0;
    if (!reader.tag("BMSH") || !reader.readName(name, "mesh name") || !reader.readName(material, "material name") ||
        !reader.readCount(count, patchSize, "patch count"))
        return false;
    float low[3] = {0, 0, 0};
    float high[3] = {0, 0, 0};
    for (int32_t i = 0; i < count; ++i) {
        float points[48];
        if (!reader.readFloats(points, 48, "patch points"))
            return false;
        for (int p = 0; p < 48; ++p) {
            int axis = p % 3;
            if ((i == 0 && p < 3) || points[p] < low[axis])
                low[axis] = points[p];
            if ((i == 0 && p < 3) || points[p] > high[axis])
                high[axis] = points[p];
        }
    }
    reader.line() << "BMSH \"" << name << "\" material \"" << material << "\" patches " << count << "\n";
    if (count > 0)
        reader.line() << "  control points from " << Printing::numbers(low, 3) << " to " << Printing::numbers(high, 3)
                      << "\n";
    reader.leave();
    return true;
}

bool ChunkWalker::walkTerrain()
{
    facts.kind = ChunkFacts::TERRAIN;
    reader.enter("TERA");
    std::string name;
    int32_t columns = 0;
    int32_t rows = 0;
    float shape[6];
    if (!reader.tag("TERA") || !reader.readName(name, "terrain name") || !reader.readInt(columns, "columns") ||
        !reader.readInt(rows, "rows") || !reader.readFloats(shape, 6, "origin, spacing and texture scale"))
        return false;
    reader.line() << "TERA \"" << name << "\" grid " << columns << " x " << rows << " origin "
                  << Printing::numbers(shape, 3) << " spacing " << Printing::numbers(shape + 3, 2) << " texture scale "
                  << Printing::real(shape[5]) << "\n";
    if (columns < 2 || rows < 2 || columns > Terrain::MAX_SIDE || rows > Terrain::MAX_SIDE)
        return reader.fail("a grid of " + std::to_string(columns) + " x " + std::to_string(rows) +
                           " points: each side must be 2 to " + std::to_string(Terrain::MAX_SIDE));
    if (!(shape[3] > 0.0f) || !(shape[4] > 0.0f) || !std::isfinite(shape[3]) || !std::isfinite(shape[4]))
        return reader.fail("the grid spacing must be finite and above 0");
    // Row by row: a grid whose heights the file cannot hold is cut short at its first missing row.
    std::vector<float> row(static_cast<size_t>(columns));
    float low = 0.0f;
    float high = 0.0f;
    for (int32_t r = 0; r < rows; ++r) {
        if (!reader.readFloats(row.data(), columns, "heights"))
            return false;
        for (int32_t c = 0; c < columns; ++c) {
            const float h = row[static_cast<size_t>(c)];
            if (!std::isfinite(h))
                return reader.fail("the height at column " + std::to_string(c) + ", row " + std::to_string(r) +
                                   " is not a finite number");
            low = (r == 0 && c == 0) || h < low ? h : low;
            high = (r == 0 && c == 0) || h > high ? h : high;
        }
    }
    reader.line() << "  heights from " << Printing::real(low) << " to " << Printing::real(high) << "\n";
    reader.leave();
    return true;
}
