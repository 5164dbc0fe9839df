// The in-memory FastTracker 2 module the composer fills and the XM writer serialises.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// One pattern cell; zero fields mean "nothing here", as in the file.
struct XmCell {
    uint8_t note = 0;        // 1..96 (1 = C-0), 97 = key off
    uint8_t instrument = 0;  // 1..128
    uint8_t volume = 0;      // volume column byte (0x10..0x50 = volume 0..64)
    uint8_t effect = 0;
    uint8_t param = 0;

    bool empty() const { return !note && !instrument && !volume && !effect && !param; }
    bool operator==(const XmCell& o) const
    {
        return note == o.note && instrument == o.instrument && volume == o.volume && effect == o.effect &&
               param == o.param;
    }
};

struct XmPattern {
    int rows = 64;
    std::vector<XmCell> cells;  // rows * channels, row by row
};

struct XmEnvelopePoint {
    uint16_t tick;
    uint16_t value;  // 0..64
};

struct XmEnvelope {
    std::vector<XmEnvelopePoint> points;  // at most 12
    int sustain = -1;                     // point index, -1 = none
    int loopStart = -1;
    int loopEnd = -1;
    bool enabled() const { return !points.empty(); }
};

enum XmLoop : uint8_t { XmLoopNone = 0, XmLoopForward = 1, XmLoopPingPong = 2 };

struct XmSample {
    std::string name;
    std::vector<int16_t> data;  // always written as 16-bit
    uint32_t loopStart = 0;     // in sample frames
    uint32_t loopLength = 0;    // in sample frames, 0 = no loop
    XmLoop loop = XmLoopNone;
    uint8_t volume = 64;
    int8_t finetune = 0;
    uint8_t panning = 128;
    int8_t relativeNote = 0;
};

struct XmInstrument {
    std::string name;
    XmSample sample;  // one sample per instrument, mapped to every key
    XmEnvelope volumeEnvelope;
    XmEnvelope panningEnvelope;
    uint8_t vibratoType = 0;
    uint8_t vibratoSweep = 0;
    uint8_t vibratoDepth = 0;
    uint8_t vibratoRate = 0;
    uint16_t fadeout = 0;
};

struct XmModule {
    std::string name;
    std::string tracker = "Velmora composer";
    int channels = 16;
    int speed = 6;  // ticks per row
    int bpm = 125;
    int restart = 0;
    bool linearFrequencies = true;
    std::vector<uint8_t> orders;
    std::vector<XmPattern> patterns;
    std::vector<XmInstrument> instruments;
};
