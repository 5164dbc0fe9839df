// splitmix64 steps: tiny, fast and identical everywhere.
#include "Random.h"

namespace {

uint64_t mix64(uint64_t z)
{
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
}

}  // namespace

Random::Random(uint64_t seed) : state(seed) {}

uint32_t Random::next()
{
    state += 0x9e3779b97f4a7c15ULL;
    return (uint32_t)(mix64(state) >> 32);
}

double Random::uniform()
{
    return next() * (1.0 / 4294967296.0);
}

double Random::range(double lo, double hi)
{
    return lo + (hi - lo) * uniform();
}

int Random::below(int n)
{
    if (n <= 0)
        return 0;
    return (int)(uniform() * n);
}

uint32_t Random::hash(int32_t a, int32_t b, uint32_t seed)
{
    const uint64_t key = ((uint64_t)(uint32_t)a << 32) ^ (uint32_t)b;
    return (uint32_t)(mix64(key ^ ((uint64_t)seed * 0x9e3779b97f4a7c15ULL)) >> 32);
}

double Random::grain(int x, int y, uint32_t seed)
{
    return (hash(x, y, seed) & 0xffffu) / 65535.0 - 0.5;
}
