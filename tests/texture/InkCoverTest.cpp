// InkCover: the boxes hold every sample that can reach ink, wrapping included; pictures without alpha are whole.
#include "texture/InkCover.h"
#include "texture/Texture.h"
#include "texture/TextureFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

const int SIZE = 32;

// A luminance-with-alpha picture, transparent but for the inked texels (column, row).
std::unique_ptr<Texture> picture(const std::vector<std::pair<int, int>>& ink, int format = TEXTURE_LUMINANCE_ALPHA)
{
    const int components = Texture::componentsOf(format);
    unsigned char* pixels = new unsigned char[SIZE * SIZE * components]();
    for (const auto& texel : ink)
        pixels[(texel.second * SIZE + texel.first) * components + components - 1] = 1;
    return std::unique_ptr<Texture>(new Texture("ink", SIZE, SIZE, 8 * components, format, pixels));
}

// Whether a linearly filtered sample at (s, t) blends any inked texel, texels wrapping as GL_REPEAT wraps them.
bool reachesInk(const Texture& texture, float s, float t)
{
    const int column = static_cast<int>(std::floor(s * SIZE - 0.5f));
    const int row = static_cast<int>(std::floor(t * SIZE - 0.5f));
    for (int dy = 0; dy < 2; ++dy) {
        for (int dx = 0; dx < 2; ++dx) {
            const int x = ((column + dx) % SIZE + SIZE) % SIZE, y = ((row + dy) % SIZE + SIZE) % SIZE;
            if (texture.getDataPtr()[(y * SIZE + x) * 2 + 1] != 0)
                return true;
        }
    }
    return false;
}

bool covered(const InkCover& cover, float s, float t)
{
    for (const InkCover::Box& box : cover.getBoxes()) {
        if (box.sLow <= s && s <= box.sHigh && box.tLow <= t && t <= box.tHigh)
            return true;
    }
    return false;
}

}  // namespace

TEST(InkCover, PicturesWithoutPixelsOrAlphaAreOneWholeBoxAndNoInkGivesNone)
{
    InkCover cover;
    cover.measure(nullptr, 0.0f, 0.5f, 0.25f, 0.5f, 8);
    EXPECT_TRUE(cover.isWhole());
    ASSERT_EQ(cover.getBoxes().size(), 1u);
    EXPECT_EQ(cover.getBoxes()[0].sHigh, 0.5f);
    EXPECT_EQ(cover.getBoxes()[0].tLow, 0.25f);
    const auto opaque = picture({}, TEXTURE_RGB);
    cover.measure(opaque.get(), 0.0f, 1.0f, 0.0f, 1.0f, 8);
    EXPECT_TRUE(cover.isWhole());
    EXPECT_EQ(cover.getBoxes().size(), 1u);
    const auto empty = picture({});
    cover.measure(empty.get(), 0.0f, 1.0f, 0.0f, 1.0f, 8);
    EXPECT_FALSE(cover.isWhole());
    EXPECT_TRUE(cover.getBoxes().empty());
}

TEST(InkCover, OneTexelGivesABoxFromHalfATexelBeforeToATexelAndAHalfAfterWithTheMargin)
{
    const auto dot = picture({{10, 20}});
    InkCover cover;
    cover.measure(dot.get(), 0.0f, 1.0f, 0.0f, 1.0f, SIZE);
    ASSERT_EQ(cover.getBoxes().size(), 1u);
    const InkCover::Box& box = cover.getBoxes()[0];
    EXPECT_FLOAT_EQ(box.sLow, (10 - 0.5f - InkCover::MARGIN) / SIZE);
    EXPECT_FLOAT_EQ(box.sHigh, (10 + 1.5f + InkCover::MARGIN) / SIZE);
    EXPECT_FLOAT_EQ(box.tLow, (20 - 0.5f - InkCover::MARGIN) / SIZE);
    EXPECT_FLOAT_EQ(box.tHigh, (20 + 1.5f + InkCover::MARGIN) / SIZE);
}

TEST(InkCover, InkJustOutsideTheRegionOrAcrossTheWrapReachesItsEdge)
{
    // The last column of the texture is the left neighbour of column 0 under GL_REPEAT.
    const auto edge = picture({{SIZE - 1, 5}});
    InkCover cover;
    cover.measure(edge.get(), 0.0f, 0.5f, 0.0f, 1.0f, SIZE);
    ASSERT_EQ(cover.getBoxes().size(), 1u);
    EXPECT_EQ(cover.getBoxes()[0].sLow, 0.0f);
    EXPECT_LT(cover.getBoxes()[0].sHigh, 0.1f);
    // Column 16 is the right neighbour of a region ending at s = 0.5.
    const auto beside = picture({{16, 5}});
    cover.measure(beside.get(), 0.0f, 0.5f, 0.0f, 1.0f, SIZE);
    ASSERT_EQ(cover.getBoxes().size(), 1u);
    EXPECT_EQ(cover.getBoxes()[0].sHigh, 0.5f);
    // Far from the region, no sample reaches it.
    const auto far = picture({{24, 5}});
    cover.measure(far.get(), 0.0f, 0.5f, 0.0f, 1.0f, SIZE);
    EXPECT_TRUE(cover.getBoxes().empty());
}

TEST(InkCover, BandsFollowTheInkAndNeighboursShareTheirEdges)
{
    const auto two = picture({{2, 3}, {28, 26}});
    InkCover cover;
    cover.measure(two.get(), 0.0f, 1.0f, 0.0f, 1.0f, 8);
    ASSERT_EQ(cover.getBoxes().size(), 2u);
    EXPECT_LT(cover.getBoxes()[0].sHigh, 0.25f);
    EXPECT_GT(cover.getBoxes()[1].sLow, 0.75f);
    // Trimmed to the rows a sample can find ink from.
    EXPECT_FLOAT_EQ(cover.getBoxes()[0].tLow, (3 - 0.5f - InkCover::MARGIN) / SIZE);
    EXPECT_FLOAT_EQ(cover.getBoxes()[1].tHigh, (26 + 1.5f + InkCover::MARGIN) / SIZE);

    // A line down the whole picture: one band after the other, each starting where the last ended.
    std::vector<std::pair<int, int>> line;
    for (int row = 0; row < SIZE; ++row)
        line.emplace_back(5, row);
    const auto tall = picture(line);
    cover.measure(tall.get(), 0.0f, 1.0f, 0.0f, 1.0f, 8);
    ASSERT_EQ(cover.getBoxes().size(), 4u);
    EXPECT_EQ(cover.getBoxes()[0].tLow, 0.0f);
    for (size_t i = 1; i < cover.getBoxes().size(); ++i)
        EXPECT_EQ(cover.getBoxes()[i].tLow, cover.getBoxes()[i - 1].tHigh) << i;
    EXPECT_EQ(cover.getBoxes()[3].tHigh, 1.0f);
}

// Whatever the ink, every sample of the region that blends an inked texel lies in a box.
TEST(InkCover, EverySampleReachingInkIsCovered)
{
    std::srand(7);
    for (int trial = 0; trial < 20; ++trial) {
        std::vector<std::pair<int, int>> ink;
        for (int i = 0; i < 1 + trial % 6; ++i)
            ink.emplace_back(std::rand() % SIZE, std::rand() % SIZE);
        const auto texture = picture(ink);
        const float sLow = (trial % 2) * 0.5f, tLow = (trial % 4) * 0.25f;
        InkCover cover;
        cover.measure(texture.get(), sLow, sLow + 0.5f, tLow, tLow + 0.25f, 1 + trial % 9);
        for (float s = sLow; s <= sLow + 0.5f; s += 0.1f / SIZE) {
            for (float t = tLow; t <= tLow + 0.25f; t += 0.1f / SIZE) {
                if (reachesInk(*texture, s, t)) {
                    ASSERT_TRUE(covered(cover, s, t)) << "trial " << trial << " at " << s << ", " << t;
                }
            }
        }
    }
}
