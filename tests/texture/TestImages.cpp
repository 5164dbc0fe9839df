// Writers for the test images, through the same libraries the loaders read with.
#include "TestImages.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>
#include <unistd.h>

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

bool writePng(const std::string& path, const PngSpec& shape)
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
        png_set_tRNS(png, info, const_cast<png_bytep>(shape.trns.data()), static_cast<int>(shape.trns.size()),
                     nullptr);
    png_write_info(png, info);
    size_t rowBytes = shape.samples.size() / shape.height;
    for (int y = 0; y < shape.height; ++y)
        png_write_row(png, const_cast<png_bytep>(shape.samples.data() + y * rowBytes));
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
    TIFFSetField(tif, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    // Associated alpha: libtiff hands the samples over without premultiplying them.
    uint16_t extra = EXTRASAMPLE_ASSOCALPHA;
    TIFFSetField(tif, TIFFTAG_EXTRASAMPLES, 1, &extra);
    TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, height);
    for (int y = 0; y < height; ++y)
        TIFFWriteScanline(tif, const_cast<unsigned char*>(rgba.data() + y * width * 4), y, 0);
    TIFFClose(tif);
    return true;
}

namespace {

void put16le(Bytes& b, size_t at, int v)
{
    b[at] = static_cast<unsigned char>(v & 0xff);
    b[at + 1] = static_cast<unsigned char>((v >> 8) & 0xff);
}

void put16be(Bytes& b, size_t at, int v)
{
    b[at] = static_cast<unsigned char>((v >> 8) & 0xff);
    b[at + 1] = static_cast<unsigned char>(v & 0xff);
}

void push32be(Bytes& b, uint32_t v)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        b.push_back(static_cast<unsigned char>((v >> shift) & 0xff));
}

// SGI RLE: repeat packets for runs of 3 or more, literal packets otherwise.
Bytes sgiRow(const unsigned char* row, int width)
{
    Bytes out;
    int x = 0;
    while (x < width) {
        int run = 1;
        while (x + run < width && run < 127 && row[x + run] == row[x])
            ++run;
        if (run >= 3) {
            out.push_back(static_cast<unsigned char>(run));
            out.push_back(row[x]);
            x += run;
            continue;
        }
        int start = x;
        int count = 0;
        while (x < width && count < 127) {
            if (x + 2 < width && row[x] == row[x + 1] && row[x] == row[x + 2])
                break;
            ++x;
            ++count;
        }
        out.push_back(static_cast<unsigned char>(0x80 | count));
        out.insert(out.end(), row + start, row + start + count);
    }
    out.push_back(0);
    return out;
}

} // namespace

Bytes makePcx(int width, int height, int bytesPerLine, const Bytes& indices, const Bytes& palette)
{
    Bytes file(128, 0);
    file[0] = 0x0a;
    file[1] = 5;
    file[2] = 1;
    file[3] = 8;
    put16le(file, 8, width - 1);
    put16le(file, 10, height - 1);
    file[65] = 1;
    put16le(file, 66, bytesPerLine);
    size_t i = 0;
    while (i < indices.size()) {
        size_t run = 1;
        while (i + run < indices.size() && run < 63 && indices[i + run] == indices[i])
            ++run;
        if (run > 1 || indices[i] > 191)
            file.push_back(static_cast<unsigned char>(0xc0 | run));
        file.push_back(indices[i]);
        i += run;
    }
    file.push_back(0x0c);
    file.insert(file.end(), palette.begin(), palette.end());
    return file;
}

Bytes makeSgi(int width, int height, const Bytes& pixels, bool rle)
{
    Bytes file(512, 0);
    put16be(file, 0, 474);
    file[2] = rle ? 1 : 0;
    file[3] = 1;
    put16be(file, 4, 2);
    put16be(file, 6, width);
    put16be(file, 8, height);
    put16be(file, 10, 1);
    file[19] = 255;  // pixmax
    if (!rle) {
        file.insert(file.end(), pixels.begin(), pixels.end());
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
