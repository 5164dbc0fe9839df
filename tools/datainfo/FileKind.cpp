// Tells what a file holds from its first bytes.
#include "FileKind.h"

#include <cctype>
#include <cstring>
#include <fstream>

namespace {

bool startsWith(const unsigned char* head, size_t length, const char* magic, size_t magicLength)
{
    return length >= magicLength && std::memcmp(head, magic, magicLength) == 0;
}

}  // namespace

FileKind::Kind FileKind::detect(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return MISSING;
    unsigned char head[20];
    in.read(reinterpret_cast<char*>(head), sizeof head);
    return detect(head, static_cast<size_t>(in.gcount()), file);
}

FileKind::Kind FileKind::detect(const unsigned char* head, size_t length, const std::string& file)
{
    if (length == 0)
        return EMPTY;
    static const char* const chunkTags[] = {"MMGR", "CANI", "CMGR", "LMGR", "TMGR", "BMSH", "TERA"};
    for (const char* tag : chunkTags) {
        if (startsWith(head, length, tag, 4))
            return CHUNKS;
    }
    if (startsWith(head, length, "CTX1", 4))
        return CTX1;
    if (startsWith(head, length, "\x89PNG\r\n\x1a\n", 8))
        return PNG;
    if (startsWith(head, length, "\xff\xd8\xff", 3))
        return JPEG;
    if (startsWith(head, length, "II*\0", 4) || startsWith(head, length, "MM\0*", 4))
        return TIFF;
    if (startsWith(head, length, "Extended Module: ", 17))
        return XM;
    if (startsWith(head, length, "\x01\xda", 2))
        return SGI;
    // PCX: maker 10, a known version, encoding 0 or 1.
    if (length >= 3 && head[0] == 10 && head[1] <= 5 && head[2] <= 1)
        return PCX;
    if (extension(file) == "tga")
        return TGA;
    return UNKNOWN;
}

std::string FileKind::extension(const std::string& file)
{
    size_t dot = file.rfind('.');
    size_t slash = file.rfind('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return "";
    std::string ext = file.substr(dot + 1);
    for (char& c : ext)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext;
}

const char* FileKind::describe(Kind kind)
{
    switch (kind) {
        case MISSING:
            return "cannot be opened";
        case EMPTY:
            return "is empty";
        case CHUNKS:
            return "chunk file of the engine";
        case CTX1:
            return "CTX1 texture container";
        case PNG:
            return "PNG image";
        case JPEG:
            return "JPEG image";
        case TIFF:
            return "TIFF image";
        case PCX:
            return "PCX image";
        case SGI:
            return "SGI image";
        case TGA:
            return "Targa image";
        case XM:
            return "FastTracker 2 module";
        default:
            return "holds nothing the engine reads";
    }
}

const char* FileKind::loaderExtensions(Kind kind)
{
    switch (kind) {
        case CTX1:
            return "ctx,mtx";
        case PNG:
            return "png";
        case JPEG:
            return "jpg";
        case TIFF:
            return "tif";
        case PCX:
            return "pcx";
        case SGI:
            return "bw";
        case TGA:
            return "tga";
        default:
            return nullptr;
    }
}

bool FileKind::isImage(Kind kind)
{
    return loaderExtensions(kind) != nullptr;
}
