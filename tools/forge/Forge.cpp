// Keeps the tally the build prints: how many files and bytes the forge made.
#include "Forge.h"

#include "Image.h"
#include "PngWriter.h"

#include <filesystem>
#include <iostream>
#include <system_error>

Forge::Forge(const std::string& root)
    : dataRoot((std::filesystem::path(root) / "data").string())
    , fileCount(0)
    , byteCount(0)
    , failureCount(0)
{
}

std::string Forge::path(const std::string& relative) const
{
    return (std::filesystem::path(dataRoot) / relative).string();
}

bool Forge::prepare(const std::string& fullPath)
{
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(fullPath).parent_path(), error);
    return !error;
}

void Forge::record(const std::string& fullPath, bool ok)
{
    if (!ok) {
        std::cerr << "velmora-forge: could not write " << fullPath << "\n";
        ++failureCount;
        return;
    }
    std::error_code error;
    const auto size = std::filesystem::file_size(fullPath, error);
    ++fileCount;
    if (!error)
        byteCount += (long long)size;
}

bool Forge::savePng(const std::string& relative, const Image& image, int channels)
{
    const std::string full = path(relative);
    const bool ok = prepare(full) && PngWriter::write(full, image, channels);
    record(full, ok);
    return ok;
}

bool Forge::saveFile(const std::string& relative, const std::function<bool(const std::string&)>& writer)
{
    const std::string full = path(relative);
    const bool ok = prepare(full) && writer(full);
    record(full, ok);
    return ok;
}
