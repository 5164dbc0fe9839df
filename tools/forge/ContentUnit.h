// One scene's generated content, or the content several scenes share: the files it writes and how it writes them.
#pragma once

#include "texture/TextureFormat.h"

#include <string>
#include <vector>

class Forge;

// A file a unit writes, by the path the demo reads it from ("data/img/sand4.png").
// Pictures also carry their size and the format the scene loads them in.
struct ForgedFile {
    std::string path;
    int width = 0;
    int height = 0;
    int format = 0;

    static ForgedFile file(const char* path) { return ForgedFile{path, 0, 0, 0}; }
    static ForgedFile picture(const TextureFile& picture, int width, int height)
    {
        return ForgedFile{picture.file, width, height, picture.format};
    }
    bool isPicture() const { return format != 0; }
    // A picture's PNG has an alpha channel exactly when the format it is loaded in has one.
    int channels() const { return TextureFile{path.c_str(), format}.hasAlpha() ? 4 : 3; }
};

class ContentUnit {
public:
    virtual ~ContentUnit() = default;
    // The name --only takes.
    virtual const char* name() const = 0;
    // Every file build() writes, and nothing else.
    virtual std::vector<ForgedFile> files() const = 0;
    // False if any file failed.
    virtual bool build(Forge& forge) = 0;
};
