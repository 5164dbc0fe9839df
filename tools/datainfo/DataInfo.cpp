// The velmora-data command line.
#include "DataInfo.h"

#include "ChunkFacts.h"
#include "ChunkReader.h"
#include "ChunkWalker.h"
#include "Converter.h"
#include "CtxReport.h"
#include "EngineCheck.h"
#include "FileKind.h"
#include "ImageReport.h"
#include "XmReport.h"

#include <unistd.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

// Texture names inside chunk files are relative to the working directory the demo runs in.
class WorkingDirectory {
public:
    explicit WorkingDirectory(const std::string& dir) : saved(std::filesystem::current_path().string()), moved(false)
    {
        if (!dir.empty() && dir != saved)
            moved = chdir(dir.c_str()) == 0;
    }
    ~WorkingDirectory()
    {
        // Nothing after an inspection depends on the directory, so a failed return is harmless.
        if (moved && chdir(saved.c_str()) != 0)
            moved = false;
    }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    std::string saved;
    bool moved;
};

// Messages stay on one line, whatever a file name or a library says.
std::string oneLine(std::string text)
{
    for (char& c : text) {
        if (c == '\n' || c == '\r')
            c = ' ';
    }
    return text;
}

}  // namespace

DataInfo::DataInfo(std::ostream& output, std::ostream& errors) : out(output), err(errors) {}

int DataInfo::usage()
{
    err << "usage: velmora-data info FILE... [--format N]\n"
           "       velmora-data convert IN OUT.ctx|OUT.mtx [--format N]\n";
    return 2;
}

bool DataInfo::parseFormat(const char* text, int& format)
{
    char* end = nullptr;
    long value = std::strtol(text, &end, 10);
    if (!*text || *end || value < 1 || value > 8)
        return false;
    format = static_cast<int>(value);
    return true;
}

int DataInfo::run(int argc, const char* const* argv)
{
    if (argc < 3)
        return usage();
    std::vector<std::string> files;
    int format = 0;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--format") == 0) {
            if (i + 1 >= argc || !parseFormat(argv[i + 1], format)) {
                err << "velmora-data: --format takes a code from 1 to 8\n";
                return 2;
            }
            ++i;
        } else {
            files.push_back(argv[i]);
        }
    }
    if (std::strcmp(argv[1], "convert") == 0) {
        if (files.size() != 2)
            return usage();
        Converter converter(out);
        if (converter.convert(files[0], files[1], format))
            return 0;
        return report(converter.culprit(), converter.error()) ? 0 : 1;
    }
    if (std::strcmp(argv[1], "info") != 0 || files.empty())
        return usage();
    bool allSound = true;
    for (const std::string& file : files)
        allSound = info(file, format) && allSound;
    return allSound ? 0 : 1;
}

bool DataInfo::report(const std::string& file, const std::string& problem)
{
    out.flush();
    err << "velmora-data: " << oneLine(file) << ": " << oneLine(problem) << "\n";
    err.flush();
    return false;
}

bool DataInfo::info(const std::string& file, int format)
{
    FileKind::Kind kind = FileKind::detect(file);
    if (kind == FileKind::MISSING || kind == FileKind::EMPTY || kind == FileKind::UNKNOWN)
        return report(file, FileKind::describe(kind));
    std::error_code ignored;
    out << file << ": " << FileKind::describe(kind) << ", " << std::filesystem::file_size(file, ignored) << " bytes\n";
    std::string problem;
    bool sound = true;
    if (kind == FileKind::CHUNKS) {
        sound = infoChunks(file, problem);
    } else if (kind == FileKind::XM) {
        XmReport module(out);
        sound = module.inspect(file);
        problem = module.error();
    } else {
        sound = infoImage(file, kind, format, problem);
    }
    return sound || report(file, problem);
}

bool DataInfo::infoChunks(const std::string& file, std::string& problem)
{
    std::string absolute = std::filesystem::absolute(file).string();
    ChunkFacts facts;
    bool walked = false;
    {
        std::ifstream in(absolute, std::ios::binary);
        ChunkReader reader(in, out);
        ChunkWalker walker(reader, facts);
        walked = walker.walk();
        problem = reader.error();
    }
    if (facts.kind == ChunkFacts::UNKNOWN)
        return false;
    out << "kind: " << ChunkFacts::describe(facts.kind) << "\n";
    // The engine reads even a file the walk found broken, so damage shows what the demo would do with it.
    WorkingDirectory root(dataRoot(absolute));
    EngineCheck engine(out);
    bool loaded = engine.checkChunks(absolute, facts);
    return verdicts(walked, loaded, engine.error(), problem);
}

bool DataInfo::infoImage(const std::string& file, int kind, int format, std::string& problem)
{
    FileKind::Kind imageKind = static_cast<FileKind::Kind>(kind);
    int natural = 0;
    bool sound = false;
    if (imageKind == FileKind::CTX1) {
        CtxReport container(out);
        sound = container.inspect(file);
        problem = container.error();
        natural = container.getFormat();
    } else {
        ImageReport image(out);
        sound = image.inspect(file, imageKind);
        problem = image.error();
        natural = image.naturalFormat();
    }
    // The engine reads even a picture the inspection found fault with: its verdict stands beside the diagnosis.
    EngineCheck engine(out);
    bool loaded = engine.checkImage(file, imageKind, format ? format : natural);
    return verdicts(sound, loaded, engine.error(), problem);
}

bool DataInfo::verdicts(bool sound, bool loaded, const std::string& engineProblem, std::string& problem)
{
    // The file's own fault is the one reported; a refusal by the engine as well goes with the printout.
    if (sound)
        problem = engineProblem;
    else if (!loaded)
        out << "engine: " << engineProblem << "\n";
    return sound && loaded;
}

std::string DataInfo::dataRoot(const std::string& absoluteFile)
{
    size_t at = absoluteFile.rfind("/data/");
    return at == std::string::npos ? std::string() : absoluteFile.substr(0, at == 0 ? 1 : at);
}
