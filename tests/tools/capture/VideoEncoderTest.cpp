// The ffmpeg child: finding programs, a missing encoder, frames in and a readable file out, failures.
#include "VideoEncoder.h"

#include "Frame.h"
#include "SoundtrackRenderer.h"
#include "TestFiles.h"

#include <gtest/gtest.h>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

// Swaps PATH for one test and puts it back.
class PathOverride {
public:
    explicit PathOverride(const char* value)
    {
        const char* old = std::getenv("PATH");
        saved = old ? old : "";
        setenv("PATH", value, 1);
    }
    ~PathOverride() { setenv("PATH", saved.c_str(), 1); }

private:
    std::string saved;
};

Frame solidFrame(int width, int height, uint8_t value)
{
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3, value);
    Frame frame;
    frame.setBottomUp(width, height, rgb.data());
    return frame;
}

std::string probe(const std::string& file, const char* stream, const char* entries)
{
    ProgramRun run = runInBuildDir(std::string("ffprobe -v error -count_frames -select_streams ") + stream +
                                   " -show_entries stream=" + entries + " -of default=nw=1 '" + file + "'");
    return run.out;
}

}

TEST(VideoEncoderPrograms, FindsExecutablesOnPathOnly)
{
    std::string path;
    EXPECT_TRUE(VideoEncoder::findProgram("sh", path));
    EXPECT_EQ(path.substr(path.size() - 3), "/sh");
    EXPECT_FALSE(VideoEncoder::findProgram("velmora-no-such-program", path));
    PathOverride empty("/nonexistent-dir");
    EXPECT_FALSE(VideoEncoder::findProgram("sh", path));
}

TEST(VideoEncoderPrograms, MissingFfmpegIsAClearError)
{
    PathOverride none("/nonexistent-dir");
    VideoEncoder encoder;
    std::string error;
    EXPECT_FALSE(encoder.start("/tmp/never.mp4", 32, 24, 10, "", error));
    EXPECT_NE(error.find("ffmpeg was not found"), std::string::npos) << error;
    EXPECT_FALSE(encoder.isRunning());
}

TEST(VideoEncoderFiles, FramesBecomeAVideoOfTheirSizeAndCount)
{
    std::string dir = makeTemporaryDir();
    std::string file = dir + "/clip.mp4";
    VideoEncoder encoder;
    std::string error;
    ASSERT_TRUE(encoder.start(file, 32, 24, 10, "", error)) << error;
    for (int i = 0; i < 7; ++i)
        ASSERT_TRUE(encoder.write(solidFrame(32, 24, static_cast<uint8_t>(i * 30)), error)) << error;
    ASSERT_TRUE(encoder.finish(error)) << error;
    std::string video = probe(file, "v:0", "width,height,nb_read_frames");
    EXPECT_NE(video.find("width=32"), std::string::npos) << video;
    EXPECT_NE(video.find("height=24"), std::string::npos) << video;
    EXPECT_NE(video.find("nb_read_frames=7"), std::string::npos) << video;
    EXPECT_EQ(probe(file, "a", "codec_type"), "");
    removeTree(dir);
}

TEST(VideoEncoderFiles, SoundtrackIsMuxedIn)
{
    std::string dir = makeTemporaryDir();
    std::string wav = dir + "/tone.wav";
    std::vector<int16_t> samples(SoundtrackRenderer::framesFor(0.5) * 2);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<int16_t>((i / 2 % 100) * 300 - 15000);
    std::string error;
    ASSERT_TRUE(SoundtrackRenderer::writeWav(wav, samples, error)) << error;
    VideoEncoder encoder;
    ASSERT_TRUE(encoder.start(dir + "/clip.mp4", 16, 16, 10, wav, error)) << error;
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(encoder.write(solidFrame(16, 16, 200), error));
    ASSERT_TRUE(encoder.finish(error)) << error;
    std::string audio = probe(dir + "/clip.mp4", "a:0", "codec_type,duration");
    EXPECT_NE(audio.find("codec_type=audio"), std::string::npos) << audio;
    removeTree(dir);
}

TEST(VideoEncoderFailures, WrongFrameSizeIsRefusedWithoutStoppingTheEncoder)
{
    std::string dir = makeTemporaryDir();
    VideoEncoder encoder;
    std::string error;
    EXPECT_FALSE(encoder.write(solidFrame(16, 16, 0), error)) << "not started yet";
    ASSERT_TRUE(encoder.start(dir + "/clip.mp4", 16, 16, 10, "", error)) << error;
    EXPECT_FALSE(encoder.write(solidFrame(16, 15, 0), error));
    EXPECT_TRUE(encoder.write(solidFrame(16, 16, 0), error)) << error;
    EXPECT_TRUE(encoder.finish(error)) << error;
    removeTree(dir);
}

TEST(VideoEncoderFailures, EncoderThatCannotWriteReportsFailureAtTheEnd)
{
    VideoEncoder encoder;
    std::string error;
    ASSERT_TRUE(encoder.start("/nonexistent-dir/clip.mp4", 16, 16, 10, "", error)) << error;
    // ffmpeg gives up at once; frames then fail or are swallowed, but the end must say so.
    for (int i = 0; i < 3; ++i)
        encoder.write(solidFrame(16, 16, 0), error);
    EXPECT_FALSE(encoder.finish(error));
    EXPECT_NE(error.find("ffmpeg failed"), std::string::npos) << error;
}
