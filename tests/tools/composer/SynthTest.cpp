// Tests of the synthesiser: its rounding, and the loops and tuning of every instrument.
#include "tools/composer/Synth.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// Normalised correlation of a loop with itself `lag` frames later, wrapping round the loop.
double selfSimilarity(const std::vector<int16_t>& d, size_t from, size_t count, size_t lag)
{
    double xy = 0, xx = 0, yy = 0;
    for (size_t i = from; i < from + count; ++i) {
        const double x = d[i], y = d[(i + lag - from) % count + from];
        xy += x * y;
        xx += x * x;
        yy += y * y;
    }
    return xy / std::sqrt(xx * yy);
}

const std::vector<XmInstrument>& bank()
{
    static const std::vector<XmInstrument> instruments = Synth::bank();
    return instruments;
}

}  // namespace

TEST(SynthMath, FramesAreScaledToThePeakAndRounded)
{
    EXPECT_EQ((std::vector<int16_t>{0, 16384, -32767, 8192}), Synth::toFrames({0.0, 0.5, -1.0, 0.25}, 1.0));
    EXPECT_EQ(std::vector<int16_t>(10, 0), Synth::toFrames(std::vector<double>(10, 0.0), 0.9));
}

TEST(SynthBank, LoopsLieInsideTheirDataAndJoinWithoutAClick)
{
    ASSERT_EQ(static_cast<size_t>(Synth::InstrumentCount), bank().size());
    for (const XmInstrument& ins : bank()) {
        const XmSample& s = ins.sample;
        if (s.loop == XmLoopNone)
            continue;
        ASSERT_GT(s.loopLength, 0u) << ins.name;
        ASSERT_LE(s.loopStart + s.loopLength, s.data.size()) << ins.name;
        EXPECT_TRUE(ins.volumeEnvelope.enabled()) << ins.name << " would never release";
        if (ins.name == "noise")
            continue;
        const size_t start = s.loopStart, end = s.loopStart + s.loopLength;
        int steepest = 0;
        for (size_t i = start + 1; i < end; ++i)
            steepest = std::max(steepest, std::abs(s.data[i] - s.data[i - 1]));
        EXPECT_LE(std::abs(s.data[start] - s.data[end - 1]), steepest) << ins.name;
    }
}

// Every pitched instrument must sound C-4 at C-4: its waveform repeats every
// 128 frames scaled by its relative note, and not at half that.
TEST(SynthTuning, PitchedInstrumentsShareOneTuning)
{
    for (int id : {Synth::Bass, Synth::SubBass, Synth::Pad, Synth::Brass, Synth::Lead}) {
        const XmInstrument& ins = bank()[id - 1];
        const XmSample& s = ins.sample;
        ASSERT_EQ(0, (s.relativeNote - 24) % 12) << ins.name;
        const size_t period = static_cast<size_t>(Synth::kBasePeriod) << ((s.relativeNote - 24) / 12);
        ASSERT_EQ(0u, s.loopLength % period) << ins.name;
        EXPECT_GT(selfSimilarity(s.data, s.loopStart, s.loopLength, period), 0.95) << ins.name;
        EXPECT_LT(selfSimilarity(s.data, s.loopStart, s.loopLength, period / 2), 0.5) << ins.name;
    }
}
