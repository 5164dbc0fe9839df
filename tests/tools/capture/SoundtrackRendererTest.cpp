// Offline song rendering: refused files render silence; the song repeats exactly and loops past its end.
#include "SoundtrackRenderer.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

bool anySound(const std::vector<int16_t>& samples)
{
    return std::any_of(samples.begin(), samples.end(), [](int16_t sample) { return sample != 0; });
}

}  // namespace

TEST(SoundtrackRenderer, RefusesMissingAndForeignFilesThenRepeatsTheSongExactlyAndLoopsPastItsEnd)
{
    SoundtrackRenderer renderer;
    std::string error;
    EXPECT_FALSE(renderer.load("/nonexistent/song.xm", error));
    EXPECT_NE(error.find("cannot open"), std::string::npos);
    const std::string text = "/tmp/velmora-soundtrack-test-text.xm";
    std::ofstream(text.c_str()) << "Extended Module: not really, just text that ends here\n";
    EXPECT_FALSE(renderer.load(text, error));
    std::remove(text.c_str());
    EXPECT_NE(error.find("not a module"), std::string::npos);
    std::vector<int16_t> samples;
    EXPECT_FALSE(renderer.render(0.0, 100, samples));
    EXPECT_EQ(samples.size(), 200u);
    EXPECT_FALSE(anySound(samples));
    ASSERT_TRUE(renderer.load(std::string(VELMORA_BINARY_DIR) + "/data/music/velmora.xm", error)) << error;
    std::vector<int16_t> first, second, laterPass, join;
    ASSERT_TRUE(renderer.render(3.0, 4410, first));
    ASSERT_TRUE(renderer.render(3.0, 4410, second));
    EXPECT_EQ(first, second);
    // The demo plays the song in a loop: a start in a later pass sounds like the first pass,
    // and the join itself is not silent.
    const double duration = renderer.getDuration();
    ASSERT_GT(duration, 60.0);
    ASSERT_TRUE(renderer.render(5 * duration + 3.0, 4410, laterPass));
    EXPECT_EQ(first, laterPass);
    ASSERT_TRUE(renderer.render(duration - 0.25, 44100, join));
    EXPECT_TRUE(anySound(std::vector<int16_t>(join.begin() + 2 * 22050, join.end())));
}
