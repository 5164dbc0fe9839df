// Writes a tiny FastTracker 2 module: two patterns, one looping square-wave instrument.
#include "TinyModule.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

namespace {

struct Bytes {
    std::vector<uint8_t> data;
    void u8(int v) { data.push_back(static_cast<uint8_t>(v)); }
    void u16(int v) { u8(v & 0xff); u8((v >> 8) & 0xff); }
    void u32(uint32_t v) { u16(static_cast<int>(v & 0xffff)); u16(static_cast<int>(v >> 16)); }
    void text(const char* s, size_t width) {
        size_t n = std::strlen(s);
        for (size_t i = 0; i < width; ++i)
            u8(i < n ? s[i] : 0);
    }
    void zeros(size_t n) { data.insert(data.end(), n, 0); }
};

const int kChannels = 2;
const int kSampleLength = 32;

void writeHeader(Bytes& b, const TinyModule& m) {
    b.text("Extended Module: ", 17);
    b.text("tiny", 20);
    b.u8(0x1a);
    b.text("velmora tests", 20);
    b.u16(0x0104);
    b.u32(276);
    b.u16(m.orders);
    b.u16(m.restart);
    b.u16(kChannels);
    b.u16(2);           // patterns
    b.u16(1);           // instruments
    b.u16(1);           // linear frequencies
    b.u16(m.speed);
    b.u16(m.bpm);
    for (int i = 0; i < 256; ++i)
        b.u8(i < m.orders ? i % 2 : 0);
}

// Pattern 0 strikes one note at its top, pattern 1 strikes two a fifth apart.
void writePattern(Bytes& b, const TinyModule& m, int index) {
    Bytes cells;
    for (int row = 0; row < m.rows; ++row) {
        for (int channel = 0; channel < kChannels; ++channel) {
            bool strike = row == 0 && (channel == 0 || index == 1);
            if (!strike) {
                cells.u8(0x80);
                continue;
            }
            cells.u8(0x80 | 1 | 2);
            cells.u8(channel == 0 ? 49 : 56);   // C-4, G-4
            cells.u8(1);
        }
    }
    b.u32(9);
    b.u8(0);
    b.u16(m.rows);
    b.u16(static_cast<int>(cells.data.size()));
    b.data.insert(b.data.end(), cells.data.begin(), cells.data.end());
}

void writeInstrument(Bytes& b) {
    b.u32(263);
    b.text("square", 22);
    b.u8(0);
    b.u16(1);
    b.u32(40);
    b.zeros(96);        // every key plays sample 0
    b.zeros(48 + 48);   // envelopes (unused)
    b.zeros(2 + 6 + 2 + 4);
    b.u16(0);           // fadeout
    b.zeros(22);        // reserved up to the declared 263 bytes

    b.u32(kSampleLength);
    b.u32(0);
    b.u32(kSampleLength);
    b.u8(48);           // volume
    b.u8(0);            // finetune
    b.u8(1);            // forward loop, 8-bit
    b.u8(128);          // panning
    b.u8(0);            // relative note
    b.u8(0);
    b.text("square", 22);

    int previous = 0;
    for (int i = 0; i < kSampleLength; ++i) {
        int value = i < kSampleLength / 2 ? 64 : -64;
        b.u8((value - previous) & 0xff);
        previous = value;
    }
}

}  // namespace

bool TinyModule::write(const std::string& path) const {
    Bytes b;
    writeHeader(b, *this);
    writePattern(b, *this, 0);
    writePattern(b, *this, 1);
    writeInstrument(b);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(b.data.data()), static_cast<std::streamsize>(b.data.size()));
    return static_cast<bool>(out);
}

double TinyModule::seconds() const {
    return orders * rows * speed * 2.5 / bpm;
}

std::string scratchPath(const std::string& name) {
    static std::string directory;
    if (directory.empty()) {
        char pattern[] = "/tmp/velmora-sound-XXXXXX";
        const char* made = mkdtemp(pattern);
        directory = made ? made : "/tmp";
    }
    return directory + "/" + name;
}
