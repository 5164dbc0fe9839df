// Offline song rendering: refused files, exact lengths, repeatable output, seeking, the WAV layout.
#include "SoundtrackRenderer.h"

#include <gtest/gtest.h>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

const std::string SONG = std::string(VELMORA_BINARY_DIR) + "/data/music/velmora.xm";

std::string temporaryPath(const char* suffix)
{
    return "/tmp/velmora-soundtrack-test-" + std::to_string(getpid()) + suffix;
}

std::vector<unsigned char> readBytes(const std::string& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

uint32_t little32(const std::vector<unsigned char>& bytes, size_t at)
{
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | static_cast<uint32_t>(bytes[at + 3]) << 24;
}

bool anySound(const std::vector<int16_t>& samples)
{
    for (int16_t sample : samples) {
        if (sample != 0)
            return true;
    }
    return false;
}

}

TEST(SoundtrackRendererLoading, MissingEmptyAndForeignFilesAreRefused)
{
    SoundtrackRenderer renderer;
    std::string error;
    EXPECT_FALSE(renderer.load("/nonexistent/song.xm", error));
    EXPECT_NE(error.find("cannot open"), std::string::npos);

    std::string empty = temporaryPath("-empty.xm");
    std::ofstream(empty.c_str()).close();
    EXPECT_FALSE(renderer.load(empty, error));
    std::string text = temporaryPath("-text.xm");
    std::ofstream(text.c_str()) << "Extended Module: not really, just text that ends here\n";
    EXPECT_FALSE(renderer.load(text, error));
    EXPECT_NE(error.find("not a module"), std::string::npos);
    EXPECT_FALSE(renderer.isLoaded());
    std::remove(empty.c_str());
    std::remove(text.c_str());
}

TEST(SoundtrackRendererLoading, RenderingWithoutASongGivesSilenceAndFalse)
{
    SoundtrackRenderer renderer;
    std::vector<int16_t> samples;
    EXPECT_FALSE(renderer.render(0.0, 100, samples));
    EXPECT_EQ(samples.size(), 200u);
    EXPECT_FALSE(anySound(samples));
}

TEST(SoundtrackRendererLength, FramesForRoundsToTheNearestFrame)
{
    EXPECT_EQ(SoundtrackRenderer::framesFor(5.0), 220500u);
    EXPECT_EQ(SoundtrackRenderer::framesFor(1.0 / 30.0), 1470u);
    EXPECT_EQ(SoundtrackRenderer::framesFor(0.0), 0u);
    EXPECT_EQ(SoundtrackRenderer::framesFor(-3.0), 0u);
}

TEST(SoundtrackRendererSong, SameStartGivesTheSameSamples)
{
    SoundtrackRenderer renderer;
    std::string error;
    ASSERT_TRUE(renderer.load(SONG, error)) << error;
    std::vector<int16_t> first, second, later;
    ASSERT_TRUE(renderer.render(40.0, 22050, first));
    ASSERT_TRUE(renderer.render(40.0, 22050, second));
    EXPECT_EQ(first, second);
    EXPECT_TRUE(anySound(first));
    ASSERT_TRUE(renderer.render(41.0, 22050, later));
    EXPECT_NE(first, later);
}

TEST(SoundtrackRendererSong, LoopsLikeTheDemoPastTheSongsEnd)
{
    // The demo plays the song in a loop: a start in a later pass sounds like the first pass,
    // and the join itself is not silent.
    SoundtrackRenderer renderer;
    std::string error;
    ASSERT_TRUE(renderer.load(SONG, error)) << error;
    double duration = renderer.getDuration();
    ASSERT_GT(duration, 60.0);
    std::vector<int16_t> firstPass, laterPass, join;
    ASSERT_TRUE(renderer.render(3.0, 4410, firstPass));
    ASSERT_TRUE(renderer.render(5 * duration + 3.0, 4410, laterPass));
    EXPECT_EQ(firstPass, laterPass);
    ASSERT_TRUE(renderer.render(duration - 0.25, 44100, join));
    std::vector<int16_t> afterJoin(join.begin() + 2 * 22050, join.end());
    EXPECT_TRUE(anySound(afterJoin));
}

TEST(SoundtrackRendererSong, NoSongMeansNoDuration)
{
    SoundtrackRenderer renderer;
    EXPECT_EQ(renderer.getDuration(), 0.0);
}

TEST(SoundtrackRendererWav, HeaderDescribesSixteenBitStereoAt44100)
{
    std::vector<int16_t> samples = {1, -1, 0x1234, -32768, 32767, 0};
    std::string path = temporaryPath(".wav");
    std::string error;
    ASSERT_TRUE(SoundtrackRenderer::writeWav(path, samples, error)) << error;
    std::vector<unsigned char> bytes = readBytes(path);
    std::remove(path.c_str());
    ASSERT_EQ(bytes.size(), 44u + 12u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "RIFF");
    EXPECT_EQ(little32(bytes, 4), 36u + 12u);
    EXPECT_EQ(std::string(bytes.begin() + 8, bytes.begin() + 16), "WAVEfmt ");
    EXPECT_EQ(little32(bytes, 16), 16u);
    EXPECT_EQ(bytes[20] | bytes[21] << 8, 1);  // PCM
    EXPECT_EQ(bytes[22] | bytes[23] << 8, 2);  // channels
    EXPECT_EQ(little32(bytes, 24), 44100u);
    EXPECT_EQ(little32(bytes, 28), 44100u * 4);
    EXPECT_EQ(bytes[32] | bytes[33] << 8, 4);
    EXPECT_EQ(bytes[34] | bytes[35] << 8, 16);
    EXPECT_EQ(std::string(bytes.begin() + 36, bytes.begin() + 40), "data");
    EXPECT_EQ(little32(bytes, 40), 12u);
    // Samples little-endian, two's complement.
    EXPECT_EQ(std::vector<unsigned char>(bytes.begin() + 44, bytes.end()),
              (std::vector<unsigned char>{1, 0, 0xff, 0xff, 0x34, 0x12, 0x00, 0x80, 0xff, 0x7f, 0, 0}));
}

TEST(SoundtrackRendererWav, RenderedFileHoldsExactlyTheAskedLength)
{
    SoundtrackRenderer renderer;
    std::string error;
    ASSERT_TRUE(renderer.load(SONG, error)) << error;
    std::string path = temporaryPath("-song.wav");
    ASSERT_TRUE(renderer.renderToWav(path, 2.0, 0.5, error)) << error;
    std::vector<unsigned char> bytes = readBytes(path);
    std::remove(path.c_str());
    ASSERT_GE(bytes.size(), 44u);
    EXPECT_EQ(little32(bytes, 40), 22050u * 4);
    EXPECT_EQ(bytes.size(), 44u + 22050u * 4);
}

TEST(SoundtrackRendererWav, UnwritablePathFails)
{
    std::string error;
    EXPECT_FALSE(SoundtrackRenderer::writeWav("/nonexistent/dir/out.wav", {0, 0}, error));
    EXPECT_NE(error.find("cannot write"), std::string::npos);
    SoundtrackRenderer renderer;
    EXPECT_FALSE(renderer.renderToWav("/tmp/never.wav", 0.0, 1.0, error));
}
