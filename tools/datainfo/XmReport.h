// Walks a FastTracker 2 module (the song) to its last byte and asks libopenmpt, the demo's player, to open it.
#pragma once

#include <ostream>
#include <string>
#include <vector>

class XmReport {
public:
    explicit XmReport(std::ostream& out);

    bool inspect(const std::string& file);
    const std::string& error() const { return problem; }

private:
    bool fail(const std::string& what);
    bool walkPatterns(size_t& at, unsigned count);
    bool walkInstruments(size_t& at, unsigned count, unsigned& samples);
    bool askPlayer();
    bool has(size_t at, size_t length) const;
    unsigned word(size_t at) const;
    unsigned dword(size_t at) const;

    std::ostream& out;
    std::vector<unsigned char> bytes;
    std::string problem;
};
