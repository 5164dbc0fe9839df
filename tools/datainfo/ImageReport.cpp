// Reads the headers and structure of the standard image files the engine loads.
#include "ImageReport.h"

#include "FileBytes.h"
#include "texture/TextureLoader.h"

#include <tiffio.h>
#include <zlib.h>
#include <cstring>

namespace {

// Larger files are not texture material; the check keeps a stray file from filling memory.
const long long maxFileSize = 512LL * 1024 * 1024;

}  // namespace

ImageReport::ImageReport(std::ostream& output) : out(output), natural(7) {}

bool ImageReport::fail(const std::string& what)
{
    problem = what;
    return false;
}

unsigned ImageReport::bigEndian(size_t at, int count) const
{
    unsigned value = 0;
    for (int i = 0; i < count; ++i)
        value = (value << 8) | bytes[at + static_cast<size_t>(i)];
    return value;
}

unsigned ImageReport::littleEndian(size_t at, int count) const
{
    unsigned value = 0;
    for (int i = count - 1; i >= 0; --i)
        value = (value << 8) | bytes[at + static_cast<size_t>(i)];
    return value;
}

bool ImageReport::inspect(const std::string& file, FileKind::Kind kind)
{
    if (!FileBytes::read(file, maxFileSize, "is too large for an image", bytes, problem))
        return false;
    switch (kind) {
        case FileKind::PNG:
            return inspectPng();
        case FileKind::JPEG:
            return inspectJpeg();
        case FileKind::TIFF:
            return inspectTiff(file);
        case FileKind::PCX:
            return inspectPcx();
        case FileKind::SGI:
            return inspectSgi();
        case FileKind::TGA:
            return inspectTga();
        default:
            return fail("is not an image the engine reads");
    }
}

bool ImageReport::inspectPng()
{
    size_t at = 8;
    int chunks = 0;
    long long idat = 0;
    bool alpha = false;
    bool ended = false;
    while (!ended) {
        if (bytes.size() - at < 12)
            return fail("PNG cut short at byte " + std::to_string(at) + " inside chunk " + std::to_string(chunks));
        unsigned length = bigEndian(at, 4);
        std::string type(reinterpret_cast<const char*>(&bytes[at + 4]), 4);
        if (length > bytes.size() - at - 12)
            return fail("PNG chunk " + type + " at byte " + std::to_string(at) + " is cut short");
        unsigned long crc = crc32(0L, &bytes[at + 4], length + 4);
        if (crc != bigEndian(at + 8 + length, 4))
            return fail("PNG chunk " + type + " at byte " + std::to_string(at) + " fails its CRC");
        if (chunks == 0 && (type != "IHDR" || length != 13))
            return fail("PNG does not start with its IHDR chunk");
        if (type == "IHDR") {
            unsigned w = bigEndian(at + 8, 4), h = bigEndian(at + 12, 4);
            int depth = bytes[at + 16], colour = bytes[at + 17], interlace = bytes[at + 20];
            static const char* const colours[] = {"grey", "?", "RGB", "palette", "grey with alpha", "?", "RGBA"};
            out << "PNG " << w << " x " << h << ", " << depth << "-bit " << (colour <= 6 ? colours[colour] : "?")
                << (interlace ? ", interlaced" : "") << "\n";
            alpha = colour == 4 || colour == 6;
            if (interlace)
                return fail("the PNG is interlaced: the engine reads rows one at a time and refuses it");
            if (!TextureLoader::sizeUsable(w, h))
                return fail("a " + std::to_string(w) + " x " + std::to_string(h) +
                            " image is not a size the engine takes");
        }
        alpha = alpha || type == "tRNS";
        idat += type == "IDAT" ? length : 0;
        ended = type == "IEND";
        at += 12 + length;
        ++chunks;
    }
    out << "  " << chunks << " chunks, " << idat << " bytes of image data\n";
    natural = alpha ? 8 : 7;
    if (at != bytes.size())
        return fail(std::to_string(bytes.size() - at) + " bytes follow the PNG's IEND chunk");
    return true;
}

bool ImageReport::inspectJpeg()
{
    size_t at = 2;
    while (true) {
        if (bytes.size() - at < 4)
            return fail("JPEG cut short before its image data");
        if (bytes[at] != 0xff)
            return fail("JPEG marker expected at byte " + std::to_string(at));
        int marker = bytes[at + 1];
        unsigned length = bigEndian(at + 2, 2);
        if (length < 2 || length > bytes.size() - at - 2)
            return fail("JPEG segment at byte " + std::to_string(at) + " is cut short");
        bool frame = marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
        if (frame && length >= 8) {
            unsigned h = bigEndian(at + 5, 2), w = bigEndian(at + 7, 2);
            int components = bytes[at + 9];
            out << "JPEG " << w << " x " << h << ", " << components << " components\n";
            if (components != 3)
                return fail("the JPEG has " + std::to_string(components) +
                            " components: the engine takes every pixel as R, G, B");
        }
        if (marker == 0xda)
            break;
        at += 2 + length;
    }
    size_t size = bytes.size();
    if (size < 2 || bytes[size - 2] != 0xff || bytes[size - 1] != 0xd9)
        return fail("the JPEG does not end with its end-of-image marker: it is cut short");
    return true;
}

bool ImageReport::inspectTiff(const std::string& file)
{
    TIFFErrorHandler error = TIFFSetErrorHandler(nullptr);
    TIFFErrorHandler warning = TIFFSetWarningHandler(nullptr);
    TIFF* tiff = TIFFOpen(file.c_str(), "r");
    uint32_t w = 0, h = 0;
    uint16_t samples = 0, bits = 0;
    bool ok = tiff && TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &w) && TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &h);
    if (ok) {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    }
    if (tiff)
        TIFFClose(tiff);
    TIFFSetErrorHandler(error);
    TIFFSetWarningHandler(warning);
    if (!ok)
        return fail("libtiff cannot read the TIFF header");
    out << "TIFF " << w << " x " << h << ", " << samples << " samples of " << bits << " bits a pixel\n";
    natural = (samples == 2 || samples == 4) ? 8 : 7;
    return true;
}

bool ImageReport::inspectPcx()
{
    if (bytes.size() < 128 + 769)
        return fail("PCX shorter than its header and palette");
    int version = bytes[1], encoding = bytes[2], bits = bytes[3], planes = bytes[65];
    int w = static_cast<int>(littleEndian(8, 2)) - static_cast<int>(littleEndian(4, 2)) + 1;
    int h = static_cast<int>(littleEndian(10, 2)) - static_cast<int>(littleEndian(6, 2)) + 1;
    int perLine = static_cast<int>(littleEndian(66, 2));
    out << "PCX " << w << " x " << h << ", version " << version << ", " << bits << " bits, " << planes << " planes, "
        << perLine << " bytes a line\n";
    if (encoding != 1 || version < 5 || bits != 8 || planes != 1)
        return fail("the engine takes only run-length PCX files of version 5, 8 bits and one plane");
    if (w <= 0 || h <= 0 || perLine != w)
        return fail("PCX lines of " + std::to_string(perLine) + " bytes for a width of " + std::to_string(w) +
                    " are not supported");
    // The runs must give every index before the palette starts.
    long long wanted = static_cast<long long>(perLine) * h;
    long long got = 0;
    size_t at = 128;
    size_t end = bytes.size() - 769;
    while (got < wanted && at < end) {
        unsigned char b = bytes[at++];
        if (b > 191) {
            if (at >= end)
                break;
            got += b & 63;
            ++at;
        } else {
            ++got;
        }
    }
    if (got < wanted)
        return fail("the PCX runs stop after " + std::to_string(got) + " of " + std::to_string(wanted) + " pixels");
    if (bytes[end] != 12)
        out << "  no palette marker before the last 768 bytes\n";
    return true;
}

bool ImageReport::inspectSgi()
{
    if (bytes.size() < 512)
        return fail("SGI image shorter than its 512-byte header");
    int storage = bytes[2], perChannel = bytes[3];
    unsigned w = bigEndian(6, 2), h = bigEndian(8, 2), channels = bigEndian(10, 2);
    out << "SGI " << w << " x " << h << ", " << channels << " channels, " << (storage ? "run-length" : "verbatim")
        << "\n";
    natural = 5;
    if (channels != 1 || perChannel != 1)
        return fail("the engine takes only one-channel SGI images of 8 bits");
    if (w == 0 || h == 0)
        return fail("the SGI image is empty");
    if (!storage) {
        if (bytes.size() < 512 + static_cast<size_t>(w) * h)
            return fail("the SGI pixels are cut short");
        return true;
    }
    size_t tables = 512 + static_cast<size_t>(h) * 8;
    if (bytes.size() < tables)
        return fail("the SGI row tables are cut short");
    for (unsigned row = 0; row < h; ++row) {
        unsigned start = bigEndian(512 + row * 4, 4);
        unsigned length = bigEndian(512 + h * 4 + row * 4, 4);
        if (start > bytes.size() || length > bytes.size() - start)
            return fail("SGI row " + std::to_string(row) + " lies past the end of the file");
    }
    return true;
}

bool ImageReport::inspectTga()
{
    if (bytes.size() < 18)
        return fail("Targa shorter than its 18-byte header");
    int type = bytes[2], depth = bytes[16];
    out << "Targa " << littleEndian(12, 2) << " x " << littleEndian(14, 2) << ", type " << type << ", " << depth
        << " bits\n";
    out << "  the engine's Targa loader gives an empty image, whatever the file holds\n";
    return true;
}
