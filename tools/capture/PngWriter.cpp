// PNG output through libpng's simplified writer (no time stamp, so equal frames give equal files).
#include "PngWriter.h"

#include "Frame.h"

#include <png.h>
#include <cstring>

bool PngWriter::write(const std::string& path, const Frame& frame, std::string& error)
{
    if (frame.getWidth() <= 0 || frame.getHeight() <= 0) {
        error = "empty frame";
        return false;
    }
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(frame.getWidth());
    image.height = static_cast<png_uint_32>(frame.getHeight());
    image.format = PNG_FORMAT_RGB;
    int ok = png_image_write_to_file(&image, path.c_str(), 0, frame.getPixels(),
                                     static_cast<png_int_32>(frame.getRowBytes()), nullptr);
    if (!ok) {
        error = image.message[0] ? image.message : "libpng failed";
        png_image_free(&image);
        return false;
    }
    png_image_free(&image);
    return true;
}
