// Loader and writer of the program's own CTX1 container: a small header and one zlib stream of pixels.
#pragma once

#include "texture/TextureLoader.h"

#include <istream>

class TextureLoaderInternal : public TextureLoader {
public:
    TextureLoaderInternal();

    // The format argument is ignored: the file's own format is used.
    Texture* loadTexture(const char* name, int format) override;
    bool reloadTexture(const char* name, Texture* t) override;
    bool saveTexture(const char* name, Texture* t) override;

private:
    struct Header {
        int width;
        int height;
        int bitsPerPixel;
        int format;
    };
    static bool readHeader(std::istream& in, Header& header);
    // Inflates what is left of the stream into out (size bytes); a stream that ends early leaves the rest alone.
    static bool inflateInto(std::istream& in, unsigned char* out, long long size);
};
