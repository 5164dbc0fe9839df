// Writes the small hand-made seed files of the fuzz corpora, through the engine's own writers where it has them.
#include "FuzzReaders.h"

#include "math/Color.h"
#include "math/Vector2.h"
#include "scene/BezierMesh.h"
#include "scene/Camera.h"
#include "scene/CameraAnimation.h"
#include "scene/CameraMgr.h"
#include "scene/DirectionalLight.h"
#include "scene/Face.h"
#include "scene/FaceArray.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "scene/SpotLight.h"
#include "scene/VertexArray.h"
#include "scene/object/Chunk.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"
#include "texture/MulTextureMaterial.h"
#include "texture/Texture.h"
#include "texture/TextureMaterial.h"
#include "texture/TextureMgr.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <jpeglib.h>
#include <png.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <tiffio.h>
#include <vector>

namespace {

std::string root;

void put(const std::string& target, const std::string& file, const std::string& bytes)
{
    std::string dir = root + "/" + target;
    mkdir(dir.c_str(), 0777);
    std::ofstream out((dir + "/" + file).c_str(), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    std::printf("%s/%s: %zu bytes\n", target.c_str(), file.c_str(), bytes.size());
}

std::string fileBytes(const std::string& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

// --- configuration -----------------------------------------------------------

void writeConfigs()
{
    const std::string head = "Settings Registry v0.1\n(c) Quorvex Co - settings for Velmora Deep\n";
    put("config", "shipped.cfg",
        head + "Cursor = yes\nFullscreen = no\nWidth = 640\nHeight = 480\nBitsPerPixel = 24\nDepthBuffer = 16\n"
               "ShowFPS = no\nSound = no\nFrequency = 44100\nVolume = 255\nSong = data/music/velmora.xm\n");
    put("config", "no-final-newline.cfg", head + "Width = 800\nHeight = 600");
    // A carriage return after the identification line spoils it; after a value it stays in the value.
    put("config", "bad-crlf.cfg", "Settings Registry v0.1\r\nnotice\r\nWidth = 1024\r\n");
    put("config", "crlf-records.cfg", "Settings Registry v0.1\nnotice\r\nWidth = 1024\r\nSound = Yes\r\n");
    put("config", "odd-values.cfg", head + "Width = 12abc\nVolume =  -7\nSong = music.xm \nShowFPS = YES\n");
    put("config", "bad-header-only.cfg", head);
    put("config", "bad-no-space.cfg", head + "Width=800\n");
}

// --- materials, meshes, octrees ------------------------------------------------

Texture* sharedTexture()
{
    return TextureMgr::getHandle()->loadTexture(FuzzReaders::sharedTexturePath(), 8);
}

// One of each material class: plain, textured with sphere mapping, two textures.
void registerMaterials()
{
    MaterialMgr* materials = MaterialMgr::getHandle();
    Material* plain = new Material("hull");
    plain->setDiffuse(Color(0.5f, 0.25f, 0.125f, 1.0f));
    plain->setBlendMode(3);
    plain->setFlags(1);
    materials->add(plain);
    TextureMaterial* textured = new TextureMaterial("sail");
    textured->setTexture(sharedTexture());
    textured->setFlags(0x10000041);
    materials->add(textured);
    MulTextureMaterial* layered = new MulTextureMaterial("deck");
    layered->setTexture(sharedTexture());
    layered->setTexture2(sharedTexture());
    layered->setTexBlendMode(2);
    materials->add(layered);
}

VertexArray* pyramidVertices()
{
    VertexArray* vertices = new VertexArray();
    vertices->create(5);
    vertices->addVertex(Vector3(-1, 0, -1), Vector2(0, 0), Vector3(0, -1, 0));
    vertices->addVertex(Vector3(1, 0, -1), Vector2(1, 0), Vector3(0, -1, 0));
    vertices->addVertex(Vector3(1, 0, 1), Vector2(1, 1), Vector3(0, -1, 0));
    vertices->addVertex(Vector3(-1, 0, 1), Vector2(0, 1), Vector3(0, -1, 0));
    vertices->addVertex(Vector3(0, 2, 0), Vector2(0.5f, 0.5f), Vector3(0, 1, 0));
    return vertices;
}

Face face(int count, uint32_t a, uint32_t b, uint32_t c, uint32_t d, const char* material)
{
    Face f;
    f.create(count);
    f.indices[0] = a;
    f.indices[1] = b;
    f.indices[2] = c;
    f.indices[3] = d;
    f.normal = Vector3(0, 1, 0);
    f.setMaterial(material ? MaterialMgr::getHandle()->find(material) : nullptr);
    return f;
}

// A quad base and three sides, one without a material.
FaceArray* pyramidFaces()
{
    FaceArray* faces = new FaceArray();
    faces->create(4);
    faces->addFace(face(4, 0, 1, 2, 3, "hull"));
    faces->addFace(face(3, 0, 1, 4, 0, "sail"));
    faces->addFace(face(3, 1, 2, 4, 0, "deck"));
    faces->addFace(face(3, 2, 3, 4, 0, nullptr));
    return faces;
}

std::string materialBytes()
{
    std::ostringstream out(std::ios::binary);
    MaterialMgr::getHandle()->save(out);
    return out.str();
}

void writeMeshes()
{
    registerMaterials();
    put("materials", "three-kinds.mat", materialBytes());

    Mesh mesh;
    mesh.create(pyramidVertices(), pyramidFaces());
    std::ostringstream out(std::ios::binary);
    MaterialMgr::getHandle()->save(out);
    mesh.save(out);
    put("mesh", "pyramid.msh", out.str());

    std::ostringstream empty(std::ios::binary);
    Chunk::writeTag(empty, "MMGR");
    Chunk::writeInt(empty, 0);
    Chunk::writeTag(empty, "MESH");
    std::string image(44, '\0');
    empty.write(image.data(), 44);
    Chunk::writeTag(empty, "VARR");
    Chunk::writeInt(empty, 0);
    Chunk::writeTag(empty, "FARR");
    Chunk::writeInt(empty, 0);
    put("mesh", "empty.msh", empty.str());

    // Octree: a root split once, faces in two of its leaves.
    OctreeNode* rootNode = new OctreeNode();
    BoundingBox box;
    box.create(Vector3(-1, 0, -1), Vector3(1, 2, 1));
    rootNode->setLimits(box);
    rootNode->createChildren();
    rootNode->getChild(0)->createFaceIndices(2);
    rootNode->getChild(0)->setFaceIndex(0, 0);
    rootNode->getChild(0)->setFaceIndex(1, 1);
    rootNode->getChild(7)->createFaceIndices(1);
    rootNode->getChild(7)->setFaceIndex(0, 3);
    Octree tree;
    tree.create(pyramidVertices(), pyramidFaces(), rootNode);
    std::ostringstream oct(std::ios::binary);
    MaterialMgr::getHandle()->save(oct);
    tree.save(oct);
    put("octree", "split-once.oct", oct.str());
    MaterialMgr::getHandle()->shutdown();
}

// Two patches side by side: a flat one and one with a raised middle.
void writeBezier()
{
    BezierMesh mountain;
    mountain.setName("mountain1");
    mountain.setMaterialName("sand");
    for (int p = 0; p < 2; ++p) {
        BezierMesh::Patch patch;
        for (int i = 0; i < 16; ++i) {
            float x = static_cast<float>(i % 4 + 3 * p), z = static_cast<float>(i / 4);
            bool inner = i == 5 || i == 6 || i == 9 || i == 10;
            patch.points[i] = Vector3(x, inner && p == 1 ? 2.0f : 0.0f, z);
        }
        mountain.addPatch(patch);
    }
    std::ostringstream out(std::ios::binary);
    mountain.save(out);
    put("bezier", "two-patches.bez", out.str());
}

void writePlainMesh()
{
    std::ostringstream out(std::ios::binary);
    Chunk::writeInt(out, 3);
    const float vertices[3][8] = {{0, 0, 0, 0, 0, 2, 0, 0}, {1, 0, 0, 0, 0, 1, 1, 0}, {0, 1, 0, 0, 0, 1, 0, 1}};
    for (const float* v : vertices)
        Chunk::writeFloats(out, v, 8);
    Chunk::writeInt(out, 1);
    const float normal[4] = {0, 0, 1, 0};
    Chunk::writeFloats(out, normal, 4);
    for (int i = 0; i < 3; ++i)
        Chunk::writeInt(out, i);
    put("plainmesh", "triangle.plainmsh", out.str());
}

// --- lights and cameras -------------------------------------------------------

void writeLights()
{
    DirectionalLight sun("sun");
    sun.setDiffuse(Color(1, 0.9f, 0.7f, 1));
    sun.setPosition(Vector3(0, 1, 0));
    SpotLight lamp("lamp");
    lamp.setAttenuation(1, 0.5f, 0.25f);
    lamp.setCutoff(30);
    lamp.setExponent(8);
    lamp.setDirection(Vector3(0, -1, 0));
    std::ostringstream out(std::ios::binary);
    Chunk::writeTag(out, "LMGR");
    Chunk::writeInt(out, 2);
    sun.save(out);
    lamp.save(out);
    put("lights", "sun-and-lamp.lit", out.str());
}

void writeCameras()
{
    Camera front("front", Vector3(0, 1, -10), Vector3(0, 1, 0), 0.1f, 1000, 60);
    Camera top("top", Vector3(0, 50, 0), Vector3(0, 0, 1), 1, 500, 45);
    std::ostringstream out(std::ios::binary);
    Chunk::writeTag(out, "CMGR");
    Chunk::writeInt(out, 2);
    front.save(out);
    top.save(out);
    put("cameras", "front-and-top.cams", out.str());
}

void writeAnimations()
{
    CameraMgr::getHandle()->add(new Camera(FuzzReaders::animatedCameraName()));
    CameraAnimation flight;
    flight.setCamera(FuzzReaders::animatedCameraName());
    flight.addCameraPos(0, Vector3(0, 1, -10));
    flight.addCameraPos(24, Vector3(5, 2, 0));
    flight.addCameraPos(48, Vector3(0, 3, 10));
    flight.addTargetPos(0, Vector3(0, 0, 0));
    flight.addTargetPos(48, Vector3(0, 0, 5));
    std::ostringstream cam(std::ios::binary);
    flight.save(cam);
    put("animation", "camera.cam", cam.str());

    MeshAnimation swim;
    swim.setLabel("fish");
    swim.addMeshPos(0, Vector3(0, 0, 0));
    swim.addMeshPos(12, Vector3(1, 0, 1));
    swim.addMeshPos(24, Vector3(2, 1, 0));
    std::ostringstream mesh(std::ios::binary);
    swim.save(mesh);
    put("animation", "mesh.cam", mesh.str());
    CameraMgr::getHandle()->shutdown();
}

// A texture list naming the shared texture; the reader takes a 32-bit name length.
void writeTextureList()
{
    std::ostringstream out(std::ios::binary);
    Chunk::writeTag(out, "TMGR");
    Chunk::writeInt(out, 1);
    Chunk::writeInt(out, 8);
    const char* name = FuzzReaders::sharedTexturePath();
    Chunk::writeInt(out, static_cast<int32_t>(std::strlen(name)));
    out.write(name, static_cast<std::streamsize>(std::strlen(name)));
    put("textures", "one-texture.tex", out.str());
}

// --- images ---------------------------------------------------------------------

struct PngShape {
    const char* file;
    int colourType;
    int depth;
    bool transparency;
};

std::string pngBytes(const PngShape& shape)
{
    std::string path = root + "/.scratch.png";
    FILE* f = std::fopen(path.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, f);
    const int w = 3, h = 2;
    png_set_IHDR(png, info, w, h, shape.depth, shape.colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (shape.colourType == PNG_COLOR_TYPE_PALETTE) {
        png_color palette[4] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
        png_set_PLTE(png, info, palette, 4);
    }
    if (shape.transparency) {
        png_byte alpha[2] = {0, 128};
        png_color_16 key = {};
        png_set_tRNS(png, info, alpha, 2, &key);
    }
    png_write_info(png, info);
    int channels = shape.colourType == PNG_COLOR_TYPE_RGB_ALPHA ? 4 : shape.colourType == PNG_COLOR_TYPE_RGB ? 3
                   : shape.colourType == PNG_COLOR_TYPE_GRAY_ALPHA                                           ? 2
                                                                                                            : 1;
    std::vector<png_byte> row(static_cast<size_t>(w * channels * (shape.depth > 8 ? 2 : 1)) + 1);
    for (int y = 0; y < h; ++y) {
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<png_byte>(shape.depth < 8 ? (0x1b * (y + 1)) : (i * 40 + y * 90));
        png_write_row(png, row.data());
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(f);
    std::string bytes = fileBytes(path);
    std::remove(path.c_str());
    return bytes;
}

void writePngs()
{
    const PngShape shapes[] = {
        {"rgb.png", PNG_COLOR_TYPE_RGB, 8, false},
        {"rgba.png", PNG_COLOR_TYPE_RGB_ALPHA, 8, false},
        {"grey2.png", PNG_COLOR_TYPE_GRAY, 2, false},
        {"grey-alpha16.png", PNG_COLOR_TYPE_GRAY_ALPHA, 16, false},
        {"palette-trns.png", PNG_COLOR_TYPE_PALETTE, 4, true},
    };
    for (const PngShape& shape : shapes)
        put("png", shape.file, pngBytes(shape));
}

void writeJpeg()
{
    std::string path = root + "/.scratch.jpg";
    FILE* f = std::fopen(path.c_str(), "wb");
    jpeg_compress_struct cinfo;
    jpeg_error_mgr jerr;
    cinfo.err = jpeg_std_error(&jerr);
    jpeg_create_compress(&cinfo);
    jpeg_stdio_dest(&cinfo, f);
    cinfo.image_width = 8;
    cinfo.image_height = 4;
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_RGB;
    jpeg_set_defaults(&cinfo);
    jpeg_set_quality(&cinfo, 50, TRUE);
    // Leaner seeds: one quantisation table set and no optimised Huffman search.
    jpeg_start_compress(&cinfo, TRUE);
    unsigned char row[8 * 3];
    for (int y = 0; y < 4; ++y) {
        for (int i = 0; i < 24; ++i)
            row[i] = static_cast<unsigned char>(i * 10 + y * 60);
        JSAMPROW rows[1] = {row};
        jpeg_write_scanlines(&cinfo, rows, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    std::fclose(f);
    put("jpeg", "rgb8x4.jpg", fileBytes(path));
    std::remove(path.c_str());
}

void writeTiff(const char* file, int samples, int compression)
{
    std::string path = root + "/.scratch.tif";
    TIFF* tif = TIFFOpen(path.c_str(), "w");
    const int w = 3, h = 2;
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, w);
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, h);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tif, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, h);
    if (samples == 4) {
        uint16_t extra = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tif, TIFFTAG_EXTRASAMPLES, 1, &extra);
    }
    unsigned char row[3 * 4];
    for (int y = 0; y < h; ++y) {
        for (int i = 0; i < w * samples; ++i)
            row[i] = static_cast<unsigned char>(i * 20 + y * 100);
        TIFFWriteScanline(tif, row, y, 0);
    }
    TIFFClose(tif);
    put("tiff", file, fileBytes(path));
    std::remove(path.c_str());
}

void writePcx()
{
    // 4 x 2, 8 bits, one plane, version 5, RLE; a run and literals.
    std::string header(128, '\0');
    header[0] = 10;
    header[1] = 5;
    header[2] = 1;
    header[3] = 8;
    header[8] = 3;   // xmax
    header[10] = 1;  // ymax
    header[65] = 1;
    header[66] = 4;  // bytes per line
    std::string data = {char(0xc3), 1, 2, char(0xc1), char(0xc5), 0, 3, 3, 2};
    std::string palette(768, '\0');
    const unsigned char colours[6][3] = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}, {9, 8, 7}};
    for (int i = 0; i < 6; ++i)
        for (int c = 0; c < 3; ++c)
            palette[i * 3 + c] = static_cast<char>(colours[i][c]);
    put("pcx", "indexed4x2.pcx", header + data + std::string(1, 12) + palette);
}

void writeTga()
{
    std::string plain(18, '\0');
    plain[2] = 2;
    plain[12] = 2;
    plain[14] = 2;
    plain[16] = 24;
    put("tga", "truecolour.tga", plain + std::string(12, '\x7f'));
    // Colour-mapped: id field, a 4-entry 24-bit map, 8-bit indices.
    std::string mapped(18, '\0');
    mapped[0] = 3;
    mapped[1] = 1;
    mapped[2] = 1;
    mapped[5] = 4;
    mapped[7] = 24;
    mapped[12] = 2;
    mapped[14] = 2;
    mapped[16] = 8;
    put("tga", "mapped.tga", mapped + "abc" + std::string(12, '\x40') + std::string(4, '\x01'));
}

std::string sgiHeader(int storage, int dimension, int width, int height, int channels)
{
    std::string header(512, '\0');
    header[0] = 0x01;
    header[1] = static_cast<char>(0xda);
    header[2] = static_cast<char>(storage);
    header[3] = 1;
    header[5] = static_cast<char>(dimension);
    header[7] = static_cast<char>(width);
    header[9] = static_cast<char>(height);
    header[11] = static_cast<char>(channels);
    header[19] = static_cast<char>(255);  // pixel maximum
    return header;
}

std::string bigEndian32(uint32_t v)
{
    return {static_cast<char>(v >> 24), static_cast<char>(v >> 16), static_cast<char>(v >> 8), static_cast<char>(v)};
}

void writeSgi()
{
    put("bw", "verbatim4x2.bw", sgiHeader(0, 2, 4, 2, 1) + std::string("\x10\x20\x30\x40\x50\x60\x70\x80", 8));
    // RLE: row 0 a run of four, row 1 four literals; tables of starts then lengths.
    std::string row0 = {4, 0x33, 0};
    std::string row1 = {char(0x84), 1, 2, 3, 4, 0};
    std::string tables = bigEndian32(528) + bigEndian32(531) + bigEndian32(3) + bigEndian32(6);
    put("bw", "rle4x2.bw", sgiHeader(1, 2, 4, 2, 1) + tables + row0 + row1);
    put("bw", "bad-three-channels.bw", sgiHeader(0, 3, 2, 1, 3) + std::string(6, '\x22'));
}

void writeContainers()
{
    std::string path = root + "/.scratch.ctx";
    for (int format = 1; format <= 8; ++format) {
        int components = Texture::componentsOf(format);
        const int w = 3, h = 2;
        unsigned char* pixels = new unsigned char[w * h * components];
        for (int i = 0; i < w * h * components; ++i)
            pixels[i] = static_cast<unsigned char>(i * 37 + format);
        Texture texture("seed", w, h, components * 8, format, pixels);
        TextureMgr::getHandle()->saveTexture(path.c_str(), &texture);
        put("ctx", "format" + std::to_string(format) + ".ctx", fileBytes(path));
    }
    std::remove(path.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <corpus directory>\n", argv[0]);
        return 2;
    }
    root = argv[1];
    mkdir(root.c_str(), 0777);
    FuzzReaders::prepare();
    writeConfigs();
    writeMeshes();
    writePlainMesh();
    writeBezier();
    writeLights();
    writeCameras();
    writeAnimations();
    writeTextureList();
    writePngs();
    writeJpeg();
    writeTiff("rgb.tif", 3, COMPRESSION_NONE);
    writeTiff("rgba-deflate.tif", 4, COMPRESSION_ADOBE_DEFLATE);
    writeTiff("grey-packbits.tif", 1, COMPRESSION_PACKBITS);
    writePcx();
    writeTga();
    writeSgi();
    writeContainers();
    TextureMgr::getHandle()->shutdown();
    return 0;
}
