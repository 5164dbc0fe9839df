// Tests of the synthesiser: its sine, its rounding, and the shape, tuning and loops of every instrument.
#include "tools/composer/Synth.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

int peakOf(const std::vector<int16_t>& d) {
    int peak = 0;
    for (int16_t v : d) peak = std::max(peak, std::abs(static_cast<int>(v)));
    return peak;
}

// Normalised correlation of a stretch of the signal with itself `lag` frames later.
double selfSimilarity(const std::vector<int16_t>& d, size_t from, size_t count, size_t lag) {
    double xy = 0, xx = 0, yy = 0;
    for (size_t i = from; i < from + count; ++i) {
        const double x = d[i], y = d[(i + lag - from) % count + from];
        xy += x * y;
        xx += x * x;
        yy += y * y;
    }
    return xy / std::sqrt(xx * yy);
}

const std::vector<XmInstrument>& bank() {
    static const std::vector<XmInstrument> instruments = Synth::bank();
    return instruments;
}

}  // namespace

// ---- Arithmetic ----

TEST(SynthMath, SineMatchesTheLibraryEverywhere) {
    for (int i = -4000; i <= 4000; ++i) {
        const double cycles = i / 997.0;
        EXPECT_NEAR(std::sin(cycles * 2.0 * 3.14159265358979323846), Synth::sine(cycles), 1e-12) << cycles;
    }
    EXPECT_EQ(0.0, Synth::sine(0.0));
}

TEST(SynthMath, FramesAreScaledToThePeakAndRounded) {
    const std::vector<int16_t> f = Synth::toFrames({0.0, 0.5, -1.0, 0.25}, 1.0);
    EXPECT_EQ((std::vector<int16_t>{0, 16384, -32767, 8192}), f);
}

TEST(SynthMath, SilenceStaysSilent) {
    const std::vector<int16_t> f = Synth::toFrames(std::vector<double>(10, 0.0), 0.9);
    EXPECT_EQ(std::vector<int16_t>(10, 0), f);
}

// ---- The bank ----

TEST(SynthBank, HoldsEveryInstrumentInItsNumberedPlace) {
    ASSERT_EQ(static_cast<size_t>(Synth::InstrumentCount), bank().size());
    EXPECT_EQ("kick", bank()[Synth::Kick - 1].name);
    EXPECT_EQ("bass", bank()[Synth::Bass - 1].name);
    EXPECT_EQ("pluck", bank()[Synth::Pluck - 1].name);
}

TEST(SynthBank, EverySampleIsLoudButNeverFullScale) {
    for (const XmInstrument& ins : bank()) {
        const int peak = peakOf(ins.sample.data);
        EXPECT_GT(peak, 20000) << ins.name;
        EXPECT_LT(peak, 32767) << ins.name;
    }
}

TEST(SynthBank, LoopsLieInsideTheirData) {
    for (const XmInstrument& ins : bank()) {
        const XmSample& s = ins.sample;
        if (s.loop == XmLoopNone) continue;
        EXPECT_GT(s.loopLength, 0u) << ins.name;
        EXPECT_LE(s.loopStart + s.loopLength, s.data.size()) << ins.name;
    }
}

TEST(SynthBank, StaysSmall) {
    size_t bytes = 0;
    for (const XmInstrument& ins : bank()) bytes += ins.sample.data.size() * 2;
    EXPECT_LT(bytes, 600u * 1024u);
}

TEST(SynthBank, IsTheSameEveryTime) {
    const std::vector<XmInstrument> again = Synth::bank();
    for (size_t i = 0; i < again.size(); ++i)
        EXPECT_EQ(bank()[i].sample.data, again[i].sample.data) << again[i].name;
}

// ---- Shapes ----

TEST(SynthShape, SustainedInstrumentsLoopWithoutAClick) {
    for (const XmInstrument& ins : bank()) {
        const XmSample& s = ins.sample;
        if (s.loop == XmLoopNone || ins.name == "noise") continue;
        const size_t start = s.loopStart, end = s.loopStart + s.loopLength;
        int steepest = 0;
        for (size_t i = start + 1; i < end; ++i)
            steepest = std::max(steepest, std::abs(s.data[i] - s.data[i - 1]));
        const int seam = std::abs(s.data[start] - s.data[end - 1]);
        EXPECT_LE(seam, steepest) << ins.name;
    }
}

TEST(SynthShape, SustainedInstrumentsReleaseThroughAnEnvelope) {
    for (const XmInstrument& ins : bank()) {
        if (ins.sample.loop == XmLoopNone) continue;
        EXPECT_TRUE(ins.volumeEnvelope.enabled()) << ins.name;
        EXPECT_GE(ins.volumeEnvelope.sustain, 0) << ins.name;
        EXPECT_GT(ins.fadeout, 0) << ins.name;
    }
}

TEST(SynthShape, DrumsDieAwayByTheirEnd) {
    for (int id : {Synth::Kick, Synth::Snare, Synth::ClosedHat, Synth::OpenHat, Synth::Clap, Synth::Tom,
                   Synth::Crash, Synth::Bell, Synth::Pluck}) {
        const std::vector<int16_t>& d = bank()[id - 1].sample.data;
        const std::vector<int16_t> tail(d.end() - d.size() / 20, d.end());
        EXPECT_LT(peakOf(tail) * 8, peakOf(d)) << bank()[id - 1].name;
    }
}

// ---- Tuning ----

// Every pitched instrument must sound C-4 at C-4: its waveform repeats every
// 128 frames scaled by its relative note, and not at half that.
TEST(SynthTuning, PitchedInstrumentsShareOneTuning) {
    for (int id : {Synth::Bass, Synth::SubBass, Synth::Pad, Synth::Brass, Synth::Lead}) {
        const XmInstrument& ins = bank()[id - 1];
        const XmSample& s = ins.sample;
        const int octaves = (s.relativeNote - 24) / 12;
        ASSERT_EQ(0, (s.relativeNote - 24) % 12) << ins.name;
        const size_t period = static_cast<size_t>(Synth::kBasePeriod) << octaves;
        ASSERT_EQ(0u, s.loopLength % period) << ins.name;
        EXPECT_GT(selfSimilarity(s.data, s.loopStart, s.loopLength, period), 0.95) << ins.name;
        EXPECT_LT(selfSimilarity(s.data, s.loopStart, s.loopLength, period / 2), 0.5) << ins.name;
    }
}
