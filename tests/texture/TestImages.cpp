// Writers for the test images, through the same libraries the loaders read with.
#include "TestImages.h"

#include "texture/TextureLoaderInternal.h"

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>
#include <unistd.h>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <fstream>

std::string scratchPath(const std::string& fileName)
{
    static std::string dir;
    if (dir.empty()) {
        char pattern[] = "/tmp/velmora-texture-XXXXXX";
        const char* made = mkdtemp(pattern);
        dir = made ? made : "/tmp";
    }
    return dir + "/" + fileName;
}

bool writeBytes(const std::string& path, const Bytes& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(out);
}

Bytes readBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return Bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

unsigned char* copyOf(const Bytes& bytes)
{
    unsigned char* p = new unsigned char[bytes.size()];
    std::memcpy(p, bytes.data(), bytes.size());
    return p;
}

Bytes pixelsOf(const Texture* t)
{
    return Bytes(t->getDataPtr(), t->getDataPtr() + t->getDataSize());
}

std::string bytesOf(std::initializer_list<int> values)
{
    std::string s;
    for (int v : values)
        s.push_back(static_cast<char>(v));
    return s;
}

std::string ctxFile(const char* name, int format)
{
    Texture t("src", 1, 1, 8, format, new unsigned char[4]{1, 2, 3, 4});
    std::string path = scratchPath(name);
    EXPECT_TRUE(TextureLoaderInternal().saveTexture(path.c_str(), &t));
    return path;
}

void put16(Bytes& file, size_t at, int value, bool bigEndian)
{
    file.at(at + (bigEndian ? 1 : 0)) = static_cast<unsigned char>(value & 0xff);
    file.at(at + (bigEndian ? 0 : 1)) = static_cast<unsigned char>((value >> 8) & 0xff);
}

Bytes patched(Bytes file, std::initializer_list<std::pair<size_t, int>> edits)
{
    for (const auto& edit : edits)
        file.at(edit.first) = static_cast<unsigned char>(edit.second);
    return file;
}

TexturePtr loadBytes(TextureLoader& loader, const Bytes& file, const char* name, int format)
{
    std::string path = scratchPath(name);
    EXPECT_TRUE(writeBytes(path, file));
    return TexturePtr(loader.loadTexture(path.c_str(), format));
}

void expectEveryTruncationFails(TextureLoader& loader, const Bytes& whole, const char* name, int format, size_t keep)
{
    for (size_t length = 0; length + keep < whole.size(); ++length)
        EXPECT_FALSE(loadBytes(loader, Bytes(whole.begin(), whole.begin() + length), name, format))
            << name << " cut at " << length;
}

void expectEveryCode(TextureLoader& loader, const Bytes& file, const char* name, const Bytes& a, const Bytes& b,
                     bool hasAlpha, int tolerance)
{
    const int channels[9][4] = {{}, {0}, {1}, {2}, {3}, {2}, {2, 3}, {0, 1, 2}, {0, 1, 2, 3}};
    for (int code = 1; code <= 8; ++code) {
        TexturePtr t = loadBytes(loader, file, name, code);
        ASSERT_TRUE(t) << code;
        int n = Texture::componentsOf(code);
        const unsigned char* last = t->getDataPtr() + t->getDataSize() - n;
        for (int c = 0; c < n; ++c) {
            bool opaque = !hasAlpha && code == 8 && c == 3;
            EXPECT_NEAR(opaque ? 255 : a[channels[code][c]], t->getDataPtr()[c], tolerance) << name << " code " << code;
            EXPECT_NEAR(opaque ? 255 : b[channels[code][c]], last[c], tolerance) << name << " code " << code;
        }
    }
}

bool writePng(const std::string& path, const PngShape& shape)
{
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        std::fclose(file);
        return false;
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, shape.width, shape.height, shape.bitDepth, shape.colorType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_color> colours;
    for (size_t i = 0; i + 2 < shape.palette.size(); i += 3)
        colours.push_back(png_color{shape.palette[i], shape.palette[i + 1], shape.palette[i + 2]});
    if (!colours.empty())
        png_set_PLTE(png, info, colours.data(), static_cast<int>(colours.size()));
    if (!shape.trns.empty())
        png_set_tRNS(png, info, shape.trns.data(), static_cast<int>(shape.trns.size()), nullptr);
    png_write_info(png, info);
    size_t rowBytes = shape.samples.size() / shape.height;
    for (int y = 0; y < shape.height; ++y)
        png_write_row(png, shape.samples.data() + y * rowBytes);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
    return true;
}

bool writeJpeg(const std::string& path, int width, int height, const Bytes& pixels, int components)
{
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    jpeg_compress_struct info;
    jpeg_error_mgr error;
    info.err = jpeg_std_error(&error);
    jpeg_create_compress(&info);
    jpeg_stdio_dest(&info, file);
    info.image_width = width;
    info.image_height = height;
    info.input_components = components;
    info.in_color_space = components == 3 ? JCS_RGB : JCS_GRAYSCALE;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 100, TRUE);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(pixels.data() + info.next_scanline * width * components);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::fclose(file);
    return true;
}

bool writeTiff(const std::string& path, int width, int height, const Bytes& rgba)
{
    TIFF* tif = TIFFOpen(path.c_str(), "w");
    if (!tif)
        return false;
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, 4);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    // Associated alpha: libtiff hands the samples over without premultiplying them.
    uint16_t extra = EXTRASAMPLE_ASSOCALPHA;
    TIFFSetField(tif, TIFFTAG_EXTRASAMPLES, 1, &extra);
    for (int y = 0; y < height; ++y)
        TIFFWriteScanline(tif, const_cast<unsigned char*>(rgba.data() + y * width * 4), y, 0);
    TIFFClose(tif);
    return true;
}

namespace {

void push32be(Bytes& b, uint32_t v)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        b.push_back(static_cast<unsigned char>((v >> shift) & 0xff));
}

// SGI RLE: a repeat packet for every run of two or more, one-byte literal packets otherwise.
Bytes sgiRow(const unsigned char* row, int width)
{
    Bytes out;
    for (int x = 0, run = 1; x < width; x += run) {
        for (run = 1; x + run < width && run < 127 && row[x + run] == row[x];)
            ++run;
        out.push_back(static_cast<unsigned char>(run > 1 ? run : 0x81));
        out.push_back(row[x]);
    }
    out.push_back(0);
    return out;
}

}  // namespace

Bytes makePcx(int width, int height, int bytesPerLine, const Bytes& indices, const Bytes& palette)
{
    Bytes file = patched(Bytes(128, 0), {{0, 0x0a}, {1, 5}, {2, 1}, {3, 8}, {65, 1}});
    put16(file, 8, width - 1);
    put16(file, 10, height - 1);
    put16(file, 66, bytesPerLine);
    for (size_t i = 0, run = 1; i < indices.size(); i += run) {
        for (run = 1; i + run < indices.size() && run < 63 && indices[i + run] == indices[i];)
            ++run;
        if (run > 1 || indices[i] > 191)
            file.push_back(static_cast<unsigned char>(0xc0 | run));
        file.push_back(indices[i]);
    }
    file.push_back(0x0c);
    file.insert(file.end(), palette.begin(), palette.end());
    return file;
}

Bytes makeSgi(int width, int height, const Bytes& pixels, bool rle)
{
    // Magic 474, storage, one byte per channel, two dimensions, the size, one channel, pixmax 255.
    Bytes file = patched(Bytes(512, 0), {{0, 0x01}, {1, 0xda}, {2, rle}, {3, 1}, {5, 2}, {11, 1}, {19, 255}});
    put16(file, 6, width, true);
    put16(file, 8, height, true);
    if (!rle) {
        file.resize(512 + pixels.size());
        std::copy(pixels.begin(), pixels.end(), file.begin() + 512);
        return file;
    }
    std::vector<Bytes> rows;
    for (int y = 0; y < height; ++y)
        rows.push_back(sgiRow(pixels.data() + y * width, width));
    uint32_t offset = 512 + 8 * height;
    for (const Bytes& row : rows) {
        push32be(file, offset);
        offset += static_cast<uint32_t>(row.size());
    }
    for (const Bytes& row : rows)
        push32be(file, static_cast<uint32_t>(row.size()));
    for (const Bytes& row : rows)
        file.insert(file.end(), row.begin(), row.end());
    return file;
}
