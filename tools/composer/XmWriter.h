// Serialises an XmModule into FastTracker 2 XM bytes, little-endian, byte by byte.
#pragma once

#include "tools/composer/XmModule.h"

#include <cstdint>
#include <string>
#include <vector>

class XmWriter {
public:
    // False (with a message on standard error) when the module breaks a limit
    // of the format; out is then left empty.
    static bool write(const XmModule& module, std::vector<uint8_t>& out);
    // Writes the bytes to a file, creating missing parent folders.
    static bool writeFile(const XmModule& module, const std::string& path);

    // Packs one pattern's cells the way FT2 does: a mask byte when that is shorter.
    static std::vector<uint8_t> packPattern(const XmPattern& pattern, int channels);
    // Delta-encodes 16-bit sample frames as little-endian bytes.
    static std::vector<uint8_t> deltaEncode(const std::vector<int16_t>& frames);

private:
    static bool check(const XmModule& module);
    static void writeHeader(const XmModule& module, std::vector<uint8_t>& out);
    static void writeInstrument(const XmInstrument& ins, std::vector<uint8_t>& out);
    static void writeEnvelope(const XmEnvelope& env, std::vector<uint8_t>& out);
};
