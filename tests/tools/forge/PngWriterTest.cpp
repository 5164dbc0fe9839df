// PNG output round-trips bit for bit and refuses what it cannot write.
#include "Image.h"
#include "PngFile.h"
#include "PngWriter.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

namespace {

std::string tempPath(const char* name)
{
    return (std::filesystem::temp_directory_path() / (std::string("forge_png_") + name)).string();
}

std::vector<uint8_t> pattern(int w, int h, int channels)
{
    std::vector<uint8_t> bytes((size_t)w * h * channels);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = (uint8_t)((i * 37 + i / 7) & 255);
    return bytes;
}

TEST(PngRoundTrip, RgbAndRgbaBytesComeBackExactly)
{
    for (int channels : { 3, 4 }) {
        const std::string path = tempPath(channels == 3 ? "rgb.png" : "rgba.png");
        const auto bytes = pattern(37, 11, channels);
        ASSERT_TRUE(PngWriter::write(path, bytes, 37, 11, channels));
        PngFile png;
        ASSERT_TRUE(png.read(path));
        EXPECT_EQ(png.width, 37);
        EXPECT_EQ(png.height, 11);
        EXPECT_EQ(png.channels, channels);
        EXPECT_EQ(png.bytes, bytes);
        std::remove(path.c_str());
    }
}

TEST(PngRoundTrip, ImageRowsStayTopFirst)
{
    Image image(1, 2, Rgba{ 0.0f, 0.0f, 0.0f, 1.0f });
    image.at(0, 0) = Rgba{ 1.0f, 1.0f, 1.0f, 1.0f };
    const std::string path = tempPath("rows.png");
    ASSERT_TRUE(PngWriter::write(path, image, 3));
    PngFile png;
    ASSERT_TRUE(png.read(path));
    EXPECT_EQ(png.pixel(0, 0)[0], 255);
    EXPECT_EQ(png.pixel(0, 1)[0], 0);
    std::remove(path.c_str());
}

TEST(PngRefusals, WrongSizeChannelsOrPathGiveFalse)
{
    const std::string path = tempPath("bad.png");
    std::remove(path.c_str());
    EXPECT_FALSE(PngWriter::write(path, pattern(4, 4, 3), 4, 5, 3));
    EXPECT_FALSE(PngWriter::write(path, pattern(4, 4, 2), 4, 4, 2));
    EXPECT_FALSE(PngWriter::write(path, {}, 0, 0, 3));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_FALSE(PngWriter::write("/nonexistent-dir/forge/x.png", pattern(2, 2, 3), 2, 2, 3));
}

} // namespace
