// Plain libpng decoding for the tests, keeping whether the file had alpha.
#include "PngFile.h"

#include <png.h>

#include <cstring>

bool PngFile::read(const std::string& path)
{
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return false;
    image.format = (image.format & PNG_FORMAT_FLAG_ALPHA) ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    width = (int)image.width;
    height = (int)image.height;
    channels = PNG_IMAGE_PIXEL_CHANNELS(image.format);
    bytes.assign(PNG_IMAGE_SIZE(image), 0);
    return png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr) != 0;
}
