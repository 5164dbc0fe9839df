// The forge's own random numbers: a fixed generator so every build draws the same pictures.
#pragma once

#include <cstdint>

class Random {
public:
    explicit Random(uint64_t seed);

    uint32_t next();
    // Uniform in [0, 1).
    double uniform();
    // Uniform in [lo, hi).
    double range(double lo, double hi);
    // Uniform integer in [0, n); 0 when n is 0 or below.
    int below(int n);

    // A well-mixed 32-bit hash of a few integers, for lattice noise.
    static uint32_t hash(int32_t a, int32_t b, uint32_t seed);
    // Fine per-pixel grain in [-0.5, 0.5] from the hash: identical on every run, no pattern.
    static double grain(int x, int y, uint32_t seed);

private:
    uint64_t state;
};
