// The ffmpeg child: an encoder that fails is reported at the end.
#include "VideoEncoder.h"

#include "Frame.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

Frame solidFrame(int width, int height)
{
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3, 100);
    Frame frame;
    frame.setBottomUp(width, height, rgb.data());
    return frame;
}

}

TEST(VideoEncoderFailures, EncoderThatCannotWriteReportsFailureAtTheEnd)
{
    VideoEncoder encoder;
    std::string error;
    ASSERT_TRUE(encoder.start("/nonexistent-dir/clip.mp4", 16, 16, 10, "", error)) << error;
    // ffmpeg gives up at once; frames then fail or are swallowed, but the end must say so.
    for (int i = 0; i < 3; ++i)
        encoder.write(solidFrame(16, 16), error);
    EXPECT_FALSE(encoder.finish(error));
    EXPECT_NE(error.find("ffmpeg failed"), std::string::npos) << error;
}
