// Frames read back from GL and written as PNG: orientation, odd widths, round trips, bad paths.
#include "Frame.h"
#include "PngWriter.h"

#include "TestFiles.h"
#include "support/GLContext.h"

#include <GL/gl.h>
#include <unistd.h>
#include <cstdio>
#include <string>
#include <vector>

namespace {

class FrameReadBack : public GLTest {};

}  // namespace

TEST_F(FrameReadBack, TopOfTheScreenIsTheFirstRowAndOddWidthsHaveNoPadding)
{
    // Red over the lower half, as GL coordinates put it.
    glMatrixMode(GL_PROJECTION);
    glOrtho(0, 1, 0, 1, -1, 1);
    glColor3f(1, 0, 0);
    glRectf(0, 0, 1, 0.5f);
    Frame frame;
    EXPECT_FALSE(frame.read(0, 10));
    ASSERT_TRUE(frame.read(GLContext::width(), GLContext::height()));
    EXPECT_EQ(frame.getPixels()[0], 0) << "top-left should be the black upper half";
    EXPECT_EQ(frame.getPixels()[frame.getByteCount() - 3], 255) << "bottom-right should be the red lower half";

    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    ASSERT_TRUE(frame.read(7, 3));
    ASSERT_EQ(frame.getByteCount(), 63u);
    for (size_t i = 0; i < frame.getByteCount(); i += 3)
        ASSERT_EQ(frame.getPixels()[i + 2], 255) << "pixel " << i / 3;
}

TEST(PngWriterFiles, RoundTripKeepsEveryByteAndBadFramesOrPathsFail)
{
    const int width = 13, height = 7;
    std::vector<uint8_t> rgb(width * height * 3);
    for (size_t i = 0; i < rgb.size(); ++i)
        rgb[i] = static_cast<uint8_t>(i * 37 + 11);
    Frame frame;
    frame.setBottomUp(width, height, rgb.data());
    const std::string path = "/tmp/velmora-frame-test-" + std::to_string(getpid()) + ".png";
    std::string error;
    ASSERT_TRUE(PngWriter::write(path, frame, error)) << error;
    int w = 0, h = 0;
    std::vector<uint8_t> back;
    ASSERT_TRUE(readPng(path, w, h, back));
    std::remove(path.c_str());
    EXPECT_EQ(w, width);
    EXPECT_EQ(h, height);
    EXPECT_EQ(back, std::vector<uint8_t>(frame.getPixels(), frame.getPixels() + frame.getByteCount()));

    EXPECT_FALSE(PngWriter::write(path, Frame(), error));
    EXPECT_EQ(error, "empty frame");
    EXPECT_FALSE(PngWriter::write("/nonexistent/dir/x.png", frame, error));
}
