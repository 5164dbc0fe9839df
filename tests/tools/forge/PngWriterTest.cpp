// PNG output round-trips bit for bit and refuses what it cannot write.
#include "PngFile.h"
#include "PngWriter.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

TEST(PngWriter, RgbAndRgbaRoundTripExactlyAndBadInputWritesNothing)
{
    const std::string path = (std::filesystem::temp_directory_path() / "forge_png_round.png").string();
    for (int channels : {3, 4}) {
        std::vector<uint8_t> bytes((size_t)37 * 11 * channels);
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = (uint8_t)((i * 37 + i / 7) & 255);
        ASSERT_TRUE(PngWriter::write(path, bytes, 37, 11, channels));
        PngFile png;
        ASSERT_TRUE(png.read(path));
        EXPECT_EQ(png.width, 37);
        EXPECT_EQ(png.height, 11);
        EXPECT_EQ(png.channels, channels);
        EXPECT_EQ(png.bytes, bytes);
    }
    std::remove(path.c_str());
    const std::vector<uint8_t> square(4 * 4 * 3, 9);
    EXPECT_FALSE(PngWriter::write(path, square, 4, 5, 3));
    EXPECT_FALSE(PngWriter::write(path, square, 4, 6, 2));
    EXPECT_FALSE(PngWriter::write(path, {}, 0, 0, 3));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_FALSE(PngWriter::write("/nonexistent-dir/forge/x.png", square, 4, 4, 3));
}
