// velmora-compose: composes the soundtrack and writes it as an XM module to the named file.
#include "tools/composer/Song.h"
#include "tools/composer/XmWriter.h"

#include <chrono>
#include <cstdio>
#include <filesystem>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: velmora-compose <output.xm>\n");
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const XmModule module = Song::compose();
    if (!XmWriter::writeFile(module, argv[1]))
        return 1;
    std::error_code ignored;
    const auto bytes = std::filesystem::file_size(argv[1], ignored);
    const auto elapsed = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start);
    std::printf("velmora-compose: wrote %s (%ju bytes, %zu orders, %zu patterns, %zu instruments) in %.0f ms\n",
                argv[1], static_cast<uintmax_t>(bytes), module.orders.size(), module.patterns.size(),
                module.instruments.size(), elapsed.count());
    return 0;
}
