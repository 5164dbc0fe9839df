// The city's pictures: facades at night, lit and dark windows both; neon on black with every sign lit; the one-way
// arrow pointing each way; and the forge's polyline measuring a path by its length.
#include "CityArt.h"
#include "Polyline.h"

#include "effects/CityLayout.h"

#include <gtest/gtest.h>

using namespace CityLayout;

namespace {

double brightness(const Rgba& c)
{
    return (c.r + c.g + c.b) / 3.0;
}

// The share of a rectangle's pixels brighter than a level.
double lit(const Image& image, int x0, int y0, int x1, int y1, double level)
{
    int count = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            count += brightness(image.at(x, y)) > level ? 1 : 0;
    return static_cast<double>(count) / ((x1 - x0) * (y1 - y0));
}

}  // namespace

TEST(CityArt, FacadesNeonAndSignsAndThePolylineFindsPointsByDistanceHeldAtItsEnds)
{
    const CityArt art;
    for (int kind = 0; kind < FACADE_KINDS; ++kind) {
        const Image facade = art.facade(FACADE_GLASS + kind);
        const double bright = lit(facade, 0, 0, facade.width(), facade.height(), 0.5);
        EXPECT_GT(bright, 0.05) << kind;
        EXPECT_LT(bright, 0.5) << kind;
        // Night: most of the picture is dark.
        EXPECT_GT(1.0 - lit(facade, 0, 0, facade.width(), facade.height(), 0.2), 0.5) << kind;
    }
    const Image neon = CityArt().neon();
    for (int k = 0; k < BLADE_SIGNS; ++k) {
        const int x0 = k * BLADE_WIDTH;
        EXPECT_GT(lit(neon, x0, 0, x0 + BLADE_WIDTH, BLADE_HEIGHT, 0.5), 0.03) << "blade " << k;
        EXPECT_LT(lit(neon, x0, 0, x0 + BLADE_WIDTH, BLADE_HEIGHT, 0.05), 0.8) << "blade " << k;
    }
    for (int k = 0; k < BANNER_SIGNS; ++k) {
        const int x0 = k % 2 * BANNER_WIDTH;
        const int y0 = BLADE_HEIGHT + k / 2 * BANNER_HEIGHT;
        EXPECT_GT(lit(neon, x0, y0, x0 + BANNER_WIDTH, y0 + BANNER_HEIGHT, 0.5), 0.03) << "banner " << k;
    }
    const Image sign = CityArt().oneWay();
    const int w = sign.width();
    const int h = sign.height();
    // Just above the arrow's shaft only its head is white: at the right in the top half, at the left below.
    const int top = h / 10;
    const int bottom = h / 2 + h / 10;
    EXPECT_GT(brightness(sign.at(w * 78 / 100, top)), 0.5);
    EXPECT_LT(brightness(sign.at(w * 22 / 100, top)), 0.5);
    EXPECT_GT(brightness(sign.at(w * 22 / 100, bottom)), 0.5);
    EXPECT_LT(brightness(sign.at(w * 78 / 100, bottom)), 0.5);
    Polyline path(Vec3{0.0, 0.0, 0.0});
    path.add(Vec3{3.0, 0.0, 0.0});
    path.add(Vec3{3.0, 4.0, 0.0});
    path.add(Vec3{3.0, 4.0, 0.0});
    path.add(Vec3{3.0, 4.0, 5.0});
    EXPECT_EQ(path.length(), 12.0);
    EXPECT_EQ(path.at(1.5).x, 1.5);
    EXPECT_EQ(path.at(5.0).y, 2.0);
    EXPECT_EQ(path.at(7.0).y, 4.0);
    EXPECT_EQ(path.at(9.5).z, 2.5);
    EXPECT_EQ(path.at(-1.0).x, 0.0);
    EXPECT_EQ(path.at(20.0).z, 5.0);
}
