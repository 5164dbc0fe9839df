// Synthesises the soundtrack's instruments: drums, bass, pads, lead, bell, pluck and noise.
#pragma once

#include "tools/composer/XmModule.h"

#include <cstdint>
#include <vector>

class Synth {
public:
    // Instrument numbers as the patterns use them (1-based, in bank order).
    enum Instrument {
        Kick = 1,
        Snare,
        ClosedHat,
        OpenHat,
        Clap,
        Tom,
        Crash,
        Noise,
        Bass,
        SubBass,
        Pad,
        Brass,
        Lead,
        Bell,
        Pluck,
        InstrumentCount = Pluck
    };

    // Tonal samples are rendered at 4 x 8363 Hz; a waveform whose period is
    // kBasePeriod frames there sounds C-4 with a relative note of +24.
    static constexpr int kRate = 33452;
    static constexpr int kBasePeriod = 128;

    static std::vector<XmInstrument> bank();

    static XmInstrument kick();
    static XmInstrument snare();
    static XmInstrument closedHat();
    static XmInstrument openHat();
    static XmInstrument clap();
    static XmInstrument tom();
    static XmInstrument crash();
    static XmInstrument noise();
    static XmInstrument bass();
    static XmInstrument subBass();
    static XmInstrument pad();
    static XmInstrument brass();
    static XmInstrument lead();
    static XmInstrument bell();
    static XmInstrument pluck();

    // Sine of a phase given in cycles, from plain arithmetic so every machine
    // computes the same bits.
    static double sine(double cycles);
    // Scales a signal to the given peak and rounds it to 16-bit frames.
    static std::vector<int16_t> toFrames(const std::vector<double>& signal, double peak);
};
