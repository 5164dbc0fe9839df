// Seeded lattice noise that tiles: gradient noise, its fractal sums and cellular distances.
#pragma once

#include <cstdint>

class Noise {
public:
    // Distances to the nearest and second-nearest feature points, in lattice cells.
    struct Cells {
        double f1;
        double f2;
    };

    explicit Noise(uint32_t seed);

    // Gradient noise in about [-1, 1]; it repeats every `period` cells on both axes.
    double gradient(double x, double y, int period) const;
    // Sum of octaves, each twice the frequency and `gain` times the amplitude of the
    // last, scaled back to about [-1, 1]. The tile stays seamless on every octave.
    double fbm(double x, double y, int period, int octaves, double gain = 0.5) const;
    // 1 - |noise| summed the same way: sharp crests, in [0, 1].
    double ridged(double x, double y, int period, int octaves) const;
    // One feature point per cell, repeating every `period` cells.
    Cells cellular(double x, double y, int period) const;

private:
    struct Direction {
        double x;
        double y;
    };

    void gradientAt(int ix, int iy, int period, double& gx, double& gy) const;
    uint32_t seed;
    Direction directions[256];
};
