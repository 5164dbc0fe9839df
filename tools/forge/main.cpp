// velmora-forge: writes the demo's generated content below the directory it is given.
#include "ConsoleArt.h"
#include "CreditsArt.h"
#include "Forge.h"
#include "IslandArt.h"
#include "IslandsContent.h"
#include "LogoArt.h"
#include "MeshArt.h"
#include "SkyArt.h"
#include "TunnelArt.h"
#include "TunnelContent.h"

#include <chrono>
#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: velmora-forge <output root>\n");
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    Forge forge(argv[1]);
    ConsoleArt().build(forge);
    CreditsArt().build(forge);
    LogoArt().build(forge);
    IslandArt().build(forge);
    IslandsContent().build(forge);
    SkyArt().build(forge);
    TunnelArt().build(forge);
    MeshArt().build(forge);
    TunnelContent().build(forge);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("velmora-forge: %d files, %.2f MB in %.2f s\n", forge.files(), forge.bytes() / 1048576.0, seconds);
    return forge.failures() == 0 ? 0 : 1;
}
