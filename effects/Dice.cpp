// Integer hashing for the scenes' planned chance.
#include "effects/Dice.h"

uint32_t Dice::hash(uint32_t a, uint32_t b, uint32_t seed)
{
    uint32_t h = seed ^ (a * 0x9e3779b1u) ^ (b * 0x85ebca77u);
    h ^= h >> 15;
    h *= 0x2c1b3c6du;
    h ^= h >> 12;
    h *= 0x297a2d39u;
    h ^= h >> 15;
    return h;
}

double Dice::unit(int a, int b, uint32_t seed)
{
    return (hash(static_cast<uint32_t>(a), static_cast<uint32_t>(b), seed) & 0xffffffu) / 16777216.0;
}

float Dice::range(int a, int b, uint32_t seed, float lo, float hi)
{
    return lo + (hi - lo) * static_cast<float>(unit(a, b, seed));
}
