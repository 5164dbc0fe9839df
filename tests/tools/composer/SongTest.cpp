// Tests of the finished soundtrack through libopenmpt: length, cuts on pattern boundaries, levels, determinism.
#include "tools/composer/Song.h"
#include "tools/composer/XmWriter.h"

#include <gtest/gtest.h>
#include <libopenmpt/libopenmpt.h>

#include <cmath>
#include <fstream>
#include <iterator>

namespace {

// Where the picture cuts, in seconds.
const double kCuts[] = {35.5, 68.5, 76, 109, 142.5, 150.5, 168.5, 201.5, 214.5, 247.5, 259.5};
const int kRate = 44100;

const std::vector<uint8_t>& songBytes()
{
    static std::vector<uint8_t> bytes;
    if (bytes.empty())
        XmWriter::write(Song::compose(), bytes);
    return bytes;
}

openmpt_module* load()
{
    int error = 0;
    return openmpt_module_create_from_memory2(songBytes().data(), songBytes().size(), nullptr, nullptr, nullptr,
                                              nullptr, &error, nullptr, nullptr);
}

// The whole song rendered once, 16-bit stereo.
const std::vector<int16_t>& rendered()
{
    static std::vector<int16_t> pcm;
    openmpt_module* mod = pcm.empty() ? load() : nullptr;
    if (!mod)
        return pcm;
    std::vector<int16_t> block(2 * 8192);
    while (size_t frames = openmpt_module_read_interleaved_stereo(mod, kRate, 8192, block.data()))
        pcm.insert(pcm.end(), block.begin(), block.begin() + 2 * frames);
    openmpt_module_destroy(mod);
    return pcm;
}

}  // namespace

TEST(SongPlayback, LastsPastTheLastSceneAndCutsFallOnOrderBoundaries)
{
    openmpt_module* mod = load();
    ASSERT_NE(nullptr, mod);
    const double duration = openmpt_module_get_duration_seconds(mod);
    EXPECT_GT(duration, 289.5);
    EXPECT_LE(duration, 300.0);
    std::vector<double> boundaries;
    for (int order = 0; order < openmpt_module_get_num_orders(mod); ++order)
        boundaries.push_back(openmpt_module_set_position_order_row(mod, order, 0));
    for (double cut : kCuts) {
        double nearest = 1e9;
        for (double b : boundaries)
            nearest = std::min(nearest, std::fabs(b - cut));
        EXPECT_LE(nearest, 0.125) << "cut at " << cut;  // one row
    }
    openmpt_module_destroy(mod);
}

TEST(SongLevels, NeverClipsAndNeverSilentForTwoSeconds)
{
    const std::vector<int16_t>& pcm = rendered();
    ASSERT_GE(pcm.size() / 2, static_cast<size_t>(289.5 * kRate));
    int peak = 0;
    size_t run = 0, longest = 0;
    for (size_t i = 0; i + 1 < pcm.size(); i += 2) {
        peak = std::max({peak, std::abs(static_cast<int>(pcm[i])), std::abs(static_cast<int>(pcm[i + 1]))});
        run = (std::abs(pcm[i]) < 64 && std::abs(pcm[i + 1]) < 64) ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    EXPECT_LT(peak, 29000) << "less than 1 dB of headroom";
    EXPECT_LT(longest, static_cast<size_t>(2 * kRate));
}

TEST(SongFile, ComposingTwiceGivesTheBytesTheBuildWrote)
{
    std::vector<uint8_t> again;
    ASSERT_TRUE(XmWriter::write(Song::compose(), again));
    EXPECT_EQ(songBytes(), again);
    std::ifstream file(std::string(VELMORA_BINARY_DIR) + "/data/music/velmora.xm", std::ios::binary);
    ASSERT_TRUE(file.good());
    const std::vector<uint8_t> onDisk((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_EQ(songBytes(), onDisk);
}
