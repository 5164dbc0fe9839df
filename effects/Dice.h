// Chance the city and the blast plan with: fixed hashes of small integers, so every run places the same cars and sparks.
#pragma once

#include <cstdint>

class Dice {
public:
    // A well-mixed 32-bit hash of two integers and a seed.
    static uint32_t hash(uint32_t a, uint32_t b, uint32_t seed);
    // The same as a number in [0, 1).
    static double unit(int a, int b, uint32_t seed);
    // Uniform in [lo, hi).
    static float range(int a, int b, uint32_t seed, float lo, float hi);
};
