// Tells what a file holds from its first bytes (the name only for Targa files, which have no magic).
#pragma once

#include <string>

class FileKind {
public:
    enum Kind {
        MISSING,  // cannot be opened
        EMPTY,
        UNKNOWN,
        CHUNKS,  // an engine chunk file: MMGR, CANI, CMGR, LMGR, TMGR, BMSH or TERA first
        CTX1,
        PNG,
        JPEG,
        TIFF,
        PCX,
        SGI,
        TGA,
        XM
    };

    static Kind detect(const std::string& file);
    // From the first bytes and the name alone.
    static Kind detect(const unsigned char* head, size_t length, const std::string& file);

    static const char* describe(Kind kind);
    // The engine loader's extension list for an image kind; null for the rest.
    static const char* loaderExtensions(Kind kind);
    static bool isImage(Kind kind);
    // The lower-case text after the name's last dot; empty without one.
    static std::string extension(const std::string& file);
};
