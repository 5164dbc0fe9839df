// velmora-forge: writes the demo's generated content below the directory it is given, unit by unit.
#include "ContentUnits.h"
#include "Forge.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

int usage()
{
    std::fprintf(stderr,
                 "usage: velmora-forge ROOT            forge every unit into ROOT/data\n"
                 "       velmora-forge --only NAME ROOT forge one unit\n"
                 "       velmora-forge --missing ROOT   forge the units with a file missing under ROOT\n"
                 "       velmora-forge --list           print every file: unit, path, width, height, format\n");
    return 2;
}

std::string unitNames()
{
    std::string names;
    for (const auto& unit : ContentUnits::all())
        names += (names.empty() ? "" : ", ") + std::string(unit->name());
    return names;
}

int list()
{
    for (const auto& unit : ContentUnits::all())
        for (const ForgedFile& file : unit->files())
            std::printf("%s %s %d %d %d\n", unit->name(), file.path.c_str(), file.width, file.height, file.format);
    return 0;
}

bool anyMissing(const Forge& forge, const ContentUnit& unit)
{
    for (const ForgedFile& file : unit.files())
        if (!std::filesystem::exists(forge.path(file.path)))
            return true;
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--list") == 0)
        return list();
    const bool only = argc == 4 && std::strcmp(argv[1], "--only") == 0;
    const bool missing = argc == 3 && std::strcmp(argv[1], "--missing") == 0;
    if (!only && !missing && (argc != 2 || argv[1][0] == '-'))
        return usage();

    std::vector<std::unique_ptr<ContentUnit>> units;
    if (only) {
        std::unique_ptr<ContentUnit> unit = ContentUnits::find(argv[2]);
        if (!unit) {
            std::fprintf(stderr, "velmora-forge: no unit named '%s'; the units are: %s\n", argv[2],
                         unitNames().c_str());
            return 2;
        }
        units.push_back(std::move(unit));
    } else {
        units = ContentUnits::all();
    }

    const auto start = std::chrono::steady_clock::now();
    Forge forge(argv[argc - 1]);
    for (const auto& unit : units) {
        if (missing && !anyMissing(forge, *unit))
            continue;
        forge.run(*unit);
    }
    if (missing && forge.files() == 0 && forge.failures() == 0)
        return 0;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("velmora-forge: %d files, %.2f MB in %.2f s\n", forge.files(), forge.bytes() / 1048576.0, seconds);
    return forge.failures() == 0 ? 0 : 1;
}
