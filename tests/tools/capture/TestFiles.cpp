// Files and subprocesses for the capture tests.
#include "TestFiles.h"

#include <png.h>
#include <cstring>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

std::string readWholeFile(const std::string& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string makeTemporaryDir()
{
    char pattern[] = "/tmp/velmora-capture-test-XXXXXX";
    const char* made = mkdtemp(pattern);
    return made ? made : "";
}

void removeTree(const std::string& dir)
{
    if (dir.compare(0, 27, "/tmp/velmora-capture-test-") != 0)
        return;
    std::string command = "rm -rf '" + dir + "'";
    if (std::system(command.c_str()) != 0)
        std::fprintf(stderr, "could not remove %s\n", dir.c_str());
}

ProgramRun runInBuildDir(const std::string& command, const std::string& environment)
{
    ProgramRun run;
    std::string logs = makeTemporaryDir();
    std::string line = "cd '" VELMORA_BINARY_DIR "' && " + environment + " " + command + " >'" + logs +
                       "/out' 2>'" + logs + "/err'";
    int raw = std::system(line.c_str());
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
