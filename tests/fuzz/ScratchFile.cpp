// A per-process scratch file for readers that take a file name rather than a stream.
#include "ScratchFile.h"

#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>

namespace {

std::set<std::string>& createdPaths()
{
    static std::set<std::string> paths;
    return paths;
}

void removeAll()
{
    for (const std::string& path : createdPaths())
        std::remove(path.c_str());
}

bool writeBytes(const std::string& path, const char* data, size_t size)
{
    std::ofstream out(path.c_str(), std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    out.write(data, static_cast<std::streamsize>(size));
    out.close();
    return !out.fail();
}

// Memory-backed when the system has it: a fuzz run rewrites the file thousands of times a second.
const std::string& scratchDir()
{
    static const std::string dir = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return dir;
}

}  // namespace

std::string ScratchFile::write(const char* extension, const uint8_t* data, size_t size)
{
    std::string path =
        scratchDir() + "/velmora-fuzz-" + std::to_string(getpid()) + "." + (extension ? extension : "bin");
    if (createdPaths().empty())
        std::atexit(removeAll);
    createdPaths().insert(path);
    if (!writeBytes(path, reinterpret_cast<const char*>(data), size))
        return std::string();
    return path;
}

bool ScratchFile::publish(const std::string& path, const std::string& bytes)
{
    std::string partial = path + "." + std::to_string(getpid());
    if (!writeBytes(partial, bytes.data(), bytes.size()))
        return false;
    if (std::rename(partial.c_str(), path.c_str()) == 0)
        return true;
    std::remove(partial.c_str());
    return false;
}
