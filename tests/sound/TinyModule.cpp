// Writes a tiny FastTracker 2 module: two patterns, one looping square-wave instrument.
#include "TinyModule.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>

namespace {

struct Bytes {
    std::string data;
    void u8(int v) { data += static_cast<char>(v & 0xff); }
    void u16(int v)
    {
        u8(v);
        u8(v >> 8);
    }
    void u32(uint32_t v)
    {
        u16(static_cast<int>(v & 0xffff));
        u16(static_cast<int>(v >> 16));
    }
    void text(const char* s, size_t width) { data += std::string(s).append(width, '\0').substr(0, width); }
    void zeros(size_t n) { data.append(n, '\0'); }
};

const int ROWS = 16;

// Pattern 0 strikes C-4 on its first row; pattern 1 adds G-4 on the second channel.
void writePattern(Bytes& b, int index)
{
    Bytes cells;
    for (int row = 0; row < ROWS; ++row) {
        for (int channel = 0; channel < 2; ++channel) {
            if (row != 0 || (channel == 1 && index == 0)) {
                cells.u8(0x80);
                continue;
            }
            cells.u8(0x80 | 1 | 2);
            cells.u8(channel == 0 ? 49 : 56);
            cells.u8(1);
        }
    }
    b.u32(9);
    b.u8(0);
    b.u16(ROWS);
    b.u16(static_cast<int>(cells.data.size()));
    b.data += cells.data;
}

// A 32-byte looping square wave, its samples stored as deltas.
void writeInstrument(Bytes& b)
{
    b.u32(263);
    b.text("square", 22);
    b.u8(0);
    b.u16(1);
    b.u32(40);
    b.zeros(96 + 48 + 48 + 2 + 6 + 2 + 4 + 2 + 22);
    b.u32(32);
    b.u32(0);
    b.u32(32);
    for (int v : {48, 0, 1, 128, 0, 0})  // volume, finetune, forward loop, panning, relative note, reserved
        b.u8(v);
    b.text("square", 22);
    for (int i = 0; i < 32; ++i)
        b.u8(i == 0 ? 64 : i == 16 ? -128 : 0);
}

}  // namespace

bool TinyModule::write(const std::string& path) const
{
    Bytes b;
    b.text("Extended Module: ", 17);
    b.text("tiny", 20);
    b.u8(0x1a);
    b.text("velmora tests", 20);
    b.u16(0x0104);
    b.u32(276);
    // Orders, restart, channels, patterns, instruments, linear frequencies, speed, tempo.
    for (int v : {orders, restart, 2, 2, 1, 1, 3, 125})
        b.u16(v);
    for (int i = 0; i < 256; ++i)
        b.u8(i < orders ? i % 2 : 0);
    writePattern(b, 0);
    writePattern(b, 1);
    writeInstrument(b);
    std::ofstream out(path, std::ios::binary);
    out << b.data;
    return static_cast<bool>(out);
}

std::string scratchPath(const std::string& name)
{
    static std::string directory;
    if (directory.empty()) {
        char pattern[] = "/tmp/velmora-sound-XXXXXX";
        const char* made = mkdtemp(pattern);
        directory = made ? made : "/tmp";
    }
    return directory + "/" + name;
}
