// Files and subprocesses for the capture tests.
#include "TestFiles.h"

#include <png.h>
#include <sys/wait.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

std::string readWholeFile(const std::string& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string makeTemporaryDir()
{
    char pattern[] = "/tmp/velmora-capture-test-XXXXXX";
    const char* made = mkdtemp(pattern);
    return made ? made : "";
}

void removeTree(const std::string& dir)
{
    std::error_code ignored;
    if (dir.compare(0, 26, "/tmp/velmora-capture-test-") == 0)
        std::filesystem::remove_all(dir, ignored);
}

ProgramRun runInBuildDir(const std::string& command, const std::string& environment)
{
    ProgramRun run;
    const std::string logs = makeTemporaryDir();
    const std::string line =
        "cd '" VELMORA_BINARY_DIR "' && " + environment + " " + command + " >'" + logs + "/out' 2>'" + logs + "/err'";
    const int raw = std::system(line.c_str());
    run.status = (raw != -1 && WIFEXITED(raw)) ? WEXITSTATUS(raw) : -1;
    run.out = readWholeFile(logs + "/out");
    run.err = readWholeFile(logs + "/err");
    removeTree(logs);
    return run;
}

bool readPng(const std::string& path, int& width, int& height, std::vector<uint8_t>& rgb)
{
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return false;
    image.format = PNG_FORMAT_RGB;
    width = static_cast<int>(image.width);
    height = static_cast<int>(image.height);
    rgb.resize(PNG_IMAGE_SIZE(image));
    return png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr) != 0;
}
