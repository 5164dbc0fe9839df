// Synthesises the soundtrack's instruments: drums, bass, pads, lead, bell, pluck and noise.
#include "tools/composer/Synth.h"

#include <cmath>
#include <cstdlib>

namespace {

const double kPi = 3.14159265358979323846;
const int kTableSize = 32768;
const int kNoiseRate = Synth::kRate / 2;

// Fixed-seed xorshift: the same noise on every build.
struct NoiseSource {
    uint32_t state;
    explicit NoiseSource(uint32_t seed) : state(seed) {}
    double next()
    {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return static_cast<double>(state) / 2147483648.0 - 1.0;
    }
};

// One-pole low-pass; the coefficient avoids exp() so it is bit-exact everywhere.
struct LowPass {
    double a;
    double y = 0.0;
    LowPass(double cutoff, double rate)
    {
        const double w = 2.0 * kPi * cutoff / rate;
        a = w / (1.0 + w);
    }
    double operator()(double x)
    {
        y += a * (x - y);
        return y;
    }
};

struct HighPass {
    LowPass low;
    HighPass(double cutoff, double rate) : low(cutoff, rate) {}
    double operator()(double x) { return x - low(x); }
};

// Per-frame multiplier of an exponential decay with time constant tau seconds.
double decayFactor(double tau, double rate)
{
    return 1.0 - 1.0 / (tau * rate);
}

double softClip(double x)
{
    return x * (27.0 + x * x) / (27.0 + 9.0 * x * x);
}

const std::vector<double>& sineTable()
{
    static std::vector<double> table;
    if (table.empty()) {
        table.resize(kTableSize);
        for (int i = 0; i < kTableSize; ++i)
            table[i] = Synth::sine(static_cast<double>(i) / kTableSize);
    }
    return table;
}

// Value at frame n of harmonic h of an oscillator making `cycles` cycles in
// `length` frames; length divides the table size, so loops close exactly.
double partial(uint64_t h, uint64_t cycles, uint64_t n, uint64_t length)
{
    const uint64_t index = (h * cycles * n * (kTableSize / length)) % kTableSize;
    return sineTable()[index];
}

// Gentle low-pass slope over the harmonic number.
double rolloff(double h, double corner)
{
    return 1.0 / (1.0 + (h / corner) * (h / corner));
}

// Tapers the last tenth of a one-shot to zero so its end never clicks.
std::vector<double> fadeEnd(std::vector<double> out)
{
    const size_t tail = out.size() / 10;
    for (size_t i = 0; i < tail; ++i)
        out[out.size() - tail + i] *= static_cast<double>(tail - i) / tail;
    return out;
}

XmEnvelope envelope(std::vector<XmEnvelopePoint> points, int sustain)
{
    XmEnvelope env;
    env.points = std::move(points);
    env.sustain = sustain;
    return env;
}

XmInstrument make(const char* name, std::vector<int16_t> data, int relativeNote)
{
    XmInstrument ins;
    ins.name = name;
    ins.sample.name = name;
    ins.sample.data = std::move(data);
    ins.sample.relativeNote = static_cast<int8_t>(relativeNote);
    return ins;
}

void loopWhole(XmInstrument& ins)
{
    ins.sample.loop = XmLoopForward;
    ins.sample.loopStart = 0;
    ins.sample.loopLength = static_cast<uint32_t>(ins.sample.data.size());
}

// Detuned band-limited saws: each makes its own whole number of cycles over
// the loop, so the chorus beating repeats seamlessly.
std::vector<double> detunedSaws(int length, const std::vector<int>& cycles, int harmonics, double corner)
{
    std::vector<double> out(length, 0.0);
    for (int c : cycles) {
        for (int h = 1; h <= harmonics; ++h) {
            const double amp = rolloff(h, corner) / h;
            for (int n = 0; n < length; ++n)
                out[n] += amp * partial(h, c, n, length);
        }
    }
    return out;
}

}  // namespace

double Synth::sine(double cycles)
{
    const double t = cycles - std::floor(cycles);
    double x = t * 2.0 * kPi;
    if (x > kPi)
        x -= 2.0 * kPi;
    if (x > kPi / 2)
        x = kPi - x;
    else if (x < -kPi / 2)
        x = -kPi - x;
    // Taylor series to x^21: below 1e-15 on [-pi/2, pi/2].
    const double x2 = x * x;
    double term = x;
    double sum = x;
    for (int k = 1; k <= 10; ++k) {
        term *= -x2 / ((2.0 * k) * (2.0 * k + 1.0));
        sum += term;
    }
    return sum;
}

std::vector<int16_t> Synth::toFrames(const std::vector<double>& signal, double peak)
{
    double top = 0.0;
    for (double v : signal)
        top = std::fabs(v) > top ? std::fabs(v) : top;
    const double scale = top > 0.0 ? peak * 32767.0 / top : 0.0;
    std::vector<int16_t> frames(signal.size());
    for (size_t i = 0; i < signal.size(); ++i) {
        double v = std::floor(signal[i] * scale + 0.5);
        v = v > 32767.0 ? 32767.0 : (v < -32768.0 ? -32768.0 : v);
        frames[i] = static_cast<int16_t>(v);
    }
    return frames;
}

XmInstrument Synth::kick()
{
    const int length = kRate * 45 / 100;
    std::vector<double> out(length);
    NoiseSource noise(0x1234567u);
    LowPass clickFilter(3000.0, kRate);
    double phase = 0.0, sweep = 1.0, amp = 1.0, click = 1.0;
    const double sweepDecay = decayFactor(0.032, kRate);
    const double ampDecay = decayFactor(0.13, kRate);
    const double clickDecay = decayFactor(0.003, kRate);
    for (int n = 0; n < length; ++n) {
        const double freq = 46.0 + 125.0 * sweep;
        phase += freq / kRate;
        const double hold = n < kRate / 40 ? 1.0 : amp;
        out[n] = softClip(1.6 * hold * sine(phase)) + 0.35 * click * clickFilter(noise.next());
        sweep *= sweepDecay;
        if (n >= kRate / 40)
            amp *= ampDecay;
        click *= clickDecay;
    }
    return make("kick", toFrames(fadeEnd(out), 0.95), 24);
}

XmInstrument Synth::snare()
{
    const int length = kRate * 30 / 100;
    std::vector<double> out(length);
    NoiseSource noise(0xBEEF01u);
    HighPass high(1200.0, kRate);
    LowPass low(7000.0, kRate);
    double p1 = 0.0, p2 = 0.0, tone = 1.0, rattle = 1.0;
    const double toneDecay = decayFactor(0.05, kRate);
    const double rattleDecay = decayFactor(0.09, kRate);
    for (int n = 0; n < length; ++n) {
        p1 += 182.0 / kRate;
        p2 += 331.0 / kRate;
        const double body = tone * (0.7 * sine(p1) + 0.4 * sine(p2));
        const double snap = rattle * low(high(noise.next()));
        out[n] = softClip(body + 1.3 * snap);
        tone *= toneDecay;
        rattle *= rattleDecay;
    }
    return make("snare", toFrames(fadeEnd(out), 0.9), 24);
}

namespace {

// Noise and six detuned square waves, high-passed: the metal of hats and cymbals.
std::vector<double> metal(int length, int rate, double tau, uint32_t seed, double brightness)
{
    static const double freqs[] = {205.3, 304.4, 369.6, 522.7, 540.0, 800.0};
    std::vector<double> out(length);
    NoiseSource noise(seed);
    HighPass high1(brightness, rate);
    HighPass high2(brightness, rate);
    double phases[6] = {0, 0, 0, 0, 0, 0};
    double amp = 1.0;
    const double decay = decayFactor(tau, rate);
    for (int n = 0; n < length; ++n) {
        double squares = 0.0;
        for (int k = 0; k < 6; ++k) {
            phases[k] += freqs[k] * 2.17 / rate;
            squares += phases[k] - std::floor(phases[k]) < 0.5 ? 1.0 : -1.0;
        }
        const double attack = n < rate / 500 ? static_cast<double>(n) / (rate / 500) : 1.0;
        out[n] = attack * amp * high2(high1(0.6 * noise.next() + 0.12 * squares));
        amp *= decay;
    }
    return out;
}

}  // namespace

XmInstrument Synth::closedHat()
{
    XmInstrument ins =
        make("closed hat", toFrames(fadeEnd(metal(kRate * 12 / 100, kRate, 0.022, 0x51u, 7000.0)), 0.85), 24);
    ins.sample.panning = 150;
    return ins;
}

XmInstrument Synth::openHat()
{
    XmInstrument ins =
        make("open hat", toFrames(fadeEnd(metal(kRate * 36 / 100, kRate, 0.12, 0x77u, 6000.0)), 0.85), 24);
    ins.sample.panning = 110;
    return ins;
}

XmInstrument Synth::clap()
{
    const int length = kRate * 32 / 100;
    std::vector<double> out(length);
    NoiseSource noise(0xC1A9u);
    HighPass high(900.0, kRate);
    LowPass low(2500.0, kRate);
    const int gap = kRate / 100;
    double tail = 1.0;
    const double tailDecay = decayFactor(0.085, kRate);
    for (int n = 0; n < length; ++n) {
        double amp;
        if (n < 3 * gap) {
            const int local = n % gap;
            amp = 1.0 - static_cast<double>(local) / gap * 0.8;
        } else {
            amp = tail;
            tail *= tailDecay;
        }
        out[n] = amp * low(high(noise.next()));
    }
    return make("clap", toFrames(fadeEnd(out), 0.9), 24);
}

XmInstrument Synth::tom()
{
    const int length = kRate * 40 / 100;
    std::vector<double> out(length);
    NoiseSource noise(0x70Au);
    LowPass soften(1500.0, kRate);
    double phase = 0.0, sweep = 1.0, amp = 1.0;
    const double sweepDecay = decayFactor(0.06, kRate);
    const double ampDecay = decayFactor(0.16, kRate);
    for (int n = 0; n < length; ++n) {
        phase += (110.0 + 55.0 * sweep) / kRate;
        out[n] = amp * (sine(phase) + 0.15 * soften(noise.next()) * sweep);
        sweep *= sweepDecay;
        amp *= ampDecay;
    }
    return make("tom", toFrames(fadeEnd(out), 0.9), 24);
}

XmInstrument Synth::crash()
{
    const int length = kNoiseRate * 16 / 10;
    std::vector<double> shimmer = metal(length, kNoiseRate, 0.55, 0xC4A5u, 2500.0);
    LowPass smooth(6000.0, kNoiseRate);
    for (double& v : shimmer)
        v = smooth(v);
    XmInstrument ins = make("crash", toFrames(fadeEnd(shimmer), 0.85), 12);
    ins.sample.panning = 100;
    return ins;
}

XmInstrument Synth::noise()
{
    const int length = kNoiseRate / 2;
    std::vector<double> out(length);
    NoiseSource source(0x5EEDu);
    LowPass low(4000.0, kNoiseRate);
    HighPass high(200.0, kNoiseRate);
    for (int n = 0; n < length; ++n)
        out[n] = high(low(source.next()));
    XmInstrument ins = make("noise", toFrames(out, 0.8), 12);
    loopWhole(ins);
    ins.volumeEnvelope = envelope({{0, 64}, {4, 64}}, 1);
    ins.fadeout = 1200;
    return ins;
}

XmInstrument Synth::bass()
{
    // Pitch C-2 at the render rate: 512 frames per period. A bright pluck
    // darkens period by period, then the last period loops.
    const int period = kBasePeriod * 4;
    const int attackPeriods = 16;
    std::vector<double> out((attackPeriods + 1) * period);
    for (int p = 0; p <= attackPeriods; ++p) {
        const double corner = 3.0 + 18.0 * (1.0 - static_cast<double>(p) / attackPeriods) *
                                        (1.0 - static_cast<double>(p) / attackPeriods);
        for (int h = 1; h <= 40; ++h) {
            const double odd = h % 2 ? 1.0 : 0.55;
            const double amp = odd * rolloff(h, corner) / h;
            for (int n = 0; n < period; ++n)
                out[p * period + n] += amp * partial(h, 1, n, period);
        }
    }
    for (double& v : out)
        v = softClip(1.4 * v);
    XmInstrument ins = make("bass", toFrames(out, 0.9), 48);
    ins.sample.loop = XmLoopForward;
    ins.sample.loopStart = attackPeriods * period;
    ins.sample.loopLength = period;
    ins.volumeEnvelope = envelope({{0, 64}, {10, 54}, {40, 46}}, 2);
    ins.fadeout = 3000;
    return ins;
}

XmInstrument Synth::subBass()
{
    const int period = kBasePeriod * 4;
    std::vector<double> out(period);
    for (int n = 0; n < period; ++n)
        out[n] = partial(1, 1, n, period) + 0.25 * partial(2, 1, n, period) + 0.08 * partial(3, 1, n, period);
    XmInstrument ins = make("sub bass", toFrames(out, 0.9), 48);
    loopWhole(ins);
    ins.volumeEnvelope = envelope({{0, 0}, {2, 64}, {30, 56}}, 2);
    ins.fadeout = 2500;
    return ins;
}

XmInstrument Synth::pad()
{
    // C-3: 256 frames per period, 128 cycles in the loop; neighbours detuned by one cycle.
    const int length = 32768;
    std::vector<double> out = detunedSaws(length, {127, 128, 129}, 40, 7.0);
    std::vector<double> octave = detunedSaws(length, {256}, 20, 6.0);
    for (int n = 0; n < length; ++n)
        out[n] += 0.3 * octave[n];
    XmInstrument ins = make("pad", toFrames(out, 0.9), 36);
    loopWhole(ins);
    ins.volumeEnvelope = envelope({{0, 0}, {12, 64}, {90, 54}}, 2);
    ins.fadeout = 700;
    ins.panningEnvelope = envelope({{0, 28}, {96, 36}, {192, 28}}, -1);
    ins.panningEnvelope.loopStart = 0;
    ins.panningEnvelope.loopEnd = 2;
    return ins;
}

namespace {

// Saw plus a 25% pulse one cycle apart: the lead and the brass share it.
std::vector<double> leadWave()
{
    const int length = 16384;
    std::vector<double> out = detunedSaws(length, {128}, 24, 10.0);
    for (int h = 1; h <= 24; ++h) {
        const double amp = 0.8 * Synth::sine(0.125 * h) / h * rolloff(h, 10.0);
        for (int n = 0; n < length; ++n)
            out[n] += amp * partial(h, 129, n, length);
    }
    return out;
}

}  // namespace

XmInstrument Synth::brass()
{
    XmInstrument ins = make("brass", toFrames(leadWave(), 0.9), 24);
    loopWhole(ins);
    ins.volumeEnvelope = envelope({{0, 0}, {2, 64}, {14, 42}, {60, 34}}, 3);
    ins.fadeout = 1800;
    return ins;
}

XmInstrument Synth::lead()
{
    XmInstrument ins = make("lead", toFrames(leadWave(), 0.9), 24);
    loopWhole(ins);
    ins.volumeEnvelope = envelope({{0, 0}, {3, 64}, {24, 50}}, 2);
    ins.fadeout = 1400;
    ins.vibratoType = 0;
    ins.vibratoSweep = 48;
    ins.vibratoDepth = 3;
    ins.vibratoRate = 10;
    return ins;
}

XmInstrument Synth::bell()
{
    // Two-operator FM, modulator at 3.5 times the carrier: a glassy bell whose
    // brightness dies faster than its body.
    const int length = kRate * 7 / 10;
    std::vector<double> out(length);
    const double freq = static_cast<double>(kRate) / kBasePeriod;
    double index = 2.2, amp = 1.0;
    const double indexDecay = decayFactor(0.18, kRate);
    const double ampDecay = decayFactor(0.32, kRate);
    for (int n = 0; n < length; ++n) {
        const double t = static_cast<double>(n) / kRate;
        const double attack = n < 60 ? n / 60.0 : 1.0;
        const double mod = index * sine(3.5 * freq * t);
        out[n] = attack * amp * (sine(freq * t + mod / (2.0 * kPi)) + 0.15 * sine(2.0 * freq * t));
        index *= indexDecay;
        amp *= ampDecay;
    }
    XmInstrument ins = make("bell", toFrames(fadeEnd(out), 0.9), 24);
    ins.sample.panning = 96;
    return ins;
}

XmInstrument Synth::pluck()
{
    // Harmonics that decay faster the higher they are, like a plucked string.
    const int length = kRate * 35 / 100;
    const int period = kBasePeriod;
    std::vector<double> out(length, 0.0);
    for (int h = 1; h <= 24; ++h) {
        double amp = rolloff(h, 9.0) / h;
        const double decay = decayFactor(0.20 / (1.0 + 0.35 * h), kRate);
        for (int n = 0; n < length; ++n) {
            out[n] += amp * partial(h, 1, n % period, period);
            amp *= decay;
        }
    }
    return make("pluck", toFrames(fadeEnd(out), 0.9), 24);
}

std::vector<XmInstrument> Synth::bank()
{
    return {kick(), snare(),   closedHat(), openHat(), clap(), tom(),  crash(), noise(),
            bass(), subBass(), pad(),       brass(),   lead(), bell(), pluck()};
}
