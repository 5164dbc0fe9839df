// The output side of the content forge: where files go, that each unit writes what it lists, and the tally.
#pragma once

#include "ContentUnit.h"

#include <functional>
#include <set>
#include <string>

class Image;

class Forge {
public:
    // root is the demo's working directory; the units' paths ("data/...") are relative to it.
    explicit Forge(const std::string& root);

    // Full path of a file given as the demo reads it.
    std::string path(const std::string& relative) const;

    // Runs one unit from a clean slate: the shared registries are emptied first, and a file
    // written but not listed, listed but not written, or a picture of another size is a failure.
    bool run(ContentUnit& unit);

    // Writes a listed picture as PNG, with alpha exactly when its format has it.
    bool savePicture(const TextureFile& picture, const Image& image);
    // Writes any other kind of file through `writer`, given the full path, making folders as needed.
    // A failure prints the path on standard error and is counted.
    bool saveFile(const std::string& relative, const std::function<bool(const std::string&)>& writer);

    int files() const { return fileCount; }
    long long bytes() const { return byteCount; }
    int failures() const { return failureCount; }

    // Empties the material, camera, light and texture registries the engine's writers use.
    static void resetRegistries();

private:
    bool prepare(const std::string& fullPath);
    void record(const std::string& relative, bool ok);
    void fail(const std::string& what);
    const ForgedFile* listed(const std::string& relative) const;

    std::string root;
    int fileCount;
    long long byteCount;
    int failureCount;
    // The unit being run: what it lists and what it has written so far.
    std::vector<ForgedFile> expected;
    std::set<std::string> written;
};
