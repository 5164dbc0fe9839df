// The islands' night sky for the dome: stars, a faint galaxy band, low clouds and the moon.
#pragma once

#include "Image.h"

#include <vector>

class SkyArt {
public:
    // Polar layout: u runs once round the horizon (seamless at u = 0 and 1),
    // v runs from the zenith (first row) down to the horizon (last row).
    static constexpr int width = 2048;
    static constexpr int height = 1024;
    // Where the moon stands, in turns of azimuth and degrees of elevation.
    static constexpr double moonAzimuth = 0.375;
    static constexpr double moonElevation = 22.0;

    SkyArt();
    Image compose() const;

private:
    struct Dir {
        double x;
        double y;
        double z;
    };

    static Dir direction(double u, double v);
    // The direction through a texel's centre, from tables built once.
    Dir texelDirection(int x, int y) const;
    void drawBase(Image& sky) const;
    void drawStars(Image& sky) const;
    void drawClouds(Image& sky) const;
    void drawMoon(Image& sky) const;

    std::vector<double> cosAz, sinAz, cosEl, sinEl;
};
