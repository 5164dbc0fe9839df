// Plain libpng decoding for the tests, 8-bit RGB and RGBA only.
#include "PngFile.h"

#include <png.h>

#include <csetjmp>
#include <cstdio>

namespace {

bool decode(FILE* file, PngFile& out)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    if (!png)
        return false;
    png_infop info = png_create_info_struct(png);
    if (!info || setjmp(png_jmpbuf(png))) {
        png_destroy_read_struct(&png, info ? &info : nullptr, nullptr);
        return false;
    }
    png_init_io(png, file);
    png_read_info(png, info);
    const int type = png_get_color_type(png, info);
    if (png_get_bit_depth(png, info) != 8 || (type != PNG_COLOR_TYPE_RGB && type != PNG_COLOR_TYPE_RGBA)) {
        png_destroy_read_struct(&png, &info, nullptr);
        return false;
    }
    out.width = (int)png_get_image_width(png, info);
    out.height = (int)png_get_image_height(png, info);
    out.channels = type == PNG_COLOR_TYPE_RGBA ? 4 : 3;
    out.bytes.assign((size_t)out.width * out.height * out.channels, 0);
    for (int y = 0; y < out.height; ++y)
        png_read_row(png, &out.bytes[(size_t)y * out.width * out.channels], nullptr);
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

} // namespace

bool PngFile::read(const std::string& path)
{
    FILE* file = std::fopen(path.c_str(), "rb");
    if (!file)
        return false;
    const bool ok = decode(file, *this);
    std::fclose(file);
    return ok;
}
