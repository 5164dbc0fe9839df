// Test helpers: runs velmora-data as a subprocess; scratch files.
#include "ProgramRun.h"

#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

std::string slurp(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// The tests' own paths and arguments hold no quotes.
std::string quoted(const std::string& text)
{
    return "'" + text + "'";
}

}  // namespace

ProgramRun ProgramRun::run(const std::vector<std::string>& args)
{
    const std::string base = fs::temp_directory_path().string() + "/datainfo-run-" + std::to_string(getpid());
    std::string command = "ASAN_OPTIONS=\"$ASAN_OPTIONS:exitcode=86\" UBSAN_OPTIONS=\"$UBSAN_OPTIONS:exitcode=87\" " +
                          quoted(VELMORA_DATA_EXE);
    for (const std::string& arg : args)
        command += " " + quoted(arg);
    const int raw = std::system((command + " >" + base + ".out 2>" + base + ".err").c_str());
    ProgramRun result;
    // A signal in the program shows as a shell status above 128.
    if (raw != -1 && WIFEXITED(raw) && WEXITSTATUS(raw) < 128)
        result.status = WEXITSTATUS(raw);
    result.out = slurp(base + ".out");
    result.err = slurp(base + ".err");
    fs::remove(base + ".out");
    fs::remove(base + ".err");
    return result;
}

int ProgramRun::errLines() const
{
    return static_cast<int>(std::count(err.begin(), err.end(), '\n'));
}

ScratchDir::ScratchDir(const std::string& name) : path("datainfo-scratch/" + name + "-" + std::to_string(getpid()))
{
    fs::remove_all(path);
    fs::create_directories(path);
}

ScratchDir::~ScratchDir()
{
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

std::vector<unsigned char> readBytes(const std::string& file)
{
    const std::string text = slurp(file);
    return std::vector<unsigned char>(text.begin(), text.end());
}

void writeBytes(const std::string& file, const std::vector<unsigned char>& bytes)
{
    std::ofstream(file, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::string> generatedFiles()
{
    std::vector<std::string> files;
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator("data", ignored))
        if (entry.is_regular_file())
            files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}
