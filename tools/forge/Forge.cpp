// Keeps the tally the build prints and holds each unit to the list of files it says it writes.
#include "Forge.h"

#include "Image.h"
#include "PngWriter.h"

#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "texture/MaterialMgr.h"
#include "texture/TextureMgr.h"

#include <filesystem>
#include <iostream>
#include <system_error>

Forge::Forge(const std::string& root_) : root(root_), fileCount(0), byteCount(0), failureCount(0) {}

std::string Forge::path(const std::string& relative) const
{
    return (std::filesystem::path(root) / relative).string();
}

void Forge::resetRegistries()
{
    MaterialMgr::getHandle()->shutdown();
    CameraMgr::getHandle()->shutdown();
    LightMgr::getHandle()->shutdown();
    TextureMgr* textures = TextureMgr::getHandle();
    textures->shutdown();
    textures->registerStandardLoaders();
}

bool Forge::run(ContentUnit& unit)
{
    resetRegistries();
    const int before = failureCount;
    expected = unit.files();
    written.clear();
    if (!unit.build(*this) && failureCount == before)
        fail(std::string(unit.name()) + " failed");
    for (const ForgedFile& file : expected)
        if (!written.count(file.path))
            fail(std::string(unit.name()) + " lists " + file.path + " but did not write it");
    expected.clear();
    resetRegistries();
    return failureCount == before;
}

const ForgedFile* Forge::listed(const std::string& relative) const
{
    for (const ForgedFile& file : expected)
        if (file.path == relative)
            return &file;
    return nullptr;
}

void Forge::fail(const std::string& what)
{
    std::cerr << "velmora-forge: " << what << "\n";
    ++failureCount;
}

bool Forge::prepare(const std::string& fullPath)
{
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(fullPath).parent_path(), error);
    return !error;
}

void Forge::record(const std::string& relative, bool ok)
{
    const std::string full = path(relative);
    if (!ok) {
        fail("could not write " + full);
        return;
    }
    if (!listed(relative))
        fail("wrote " + relative + " but does not list it");
    written.insert(relative);
    std::error_code error;
    const auto size = std::filesystem::file_size(full, error);
    ++fileCount;
    if (!error)
        byteCount += (long long)size;
}

bool Forge::savePicture(const TextureFile& picture, const Image& image)
{
    const ForgedFile* entry = listed(picture.file);
    if (entry &&
        (entry->width != image.width() || entry->height != image.height() || entry->format != picture.format)) {
        fail(std::string(picture.file) + " is not the size or format its unit lists");
        return false;
    }
    const int channels = picture.hasAlpha() ? 4 : 3;
    return saveFile(picture.file, [&](const std::string& full) { return PngWriter::write(full, image, channels); });
}

bool Forge::saveFile(const std::string& relative, const std::function<bool(const std::string&)>& writer)
{
    const std::string full = path(relative);
    const bool ok = prepare(full) && writer(full);
    record(relative, ok);
    return ok;
}
