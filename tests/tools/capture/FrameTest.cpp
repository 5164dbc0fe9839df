// Frames read back from GL and written as PNG: orientation, odd widths, round trips, bad paths.
#include "Frame.h"
#include "PngWriter.h"

#include "TestFiles.h"
#include "support/GLContext.h"

#include <GL/gl.h>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

std::string temporaryPng(const char* name)
{
    return "/tmp/velmora-frame-test-" + std::to_string(getpid()) + "-" + name + ".png";
}

class FrameReadBack : public GLTest {};

}

TEST(FrameRows, BottomUpPixelsAreTurnedTopRowFirst)
{
    // Three rows of an odd width: bottom row 1s, middle 2s, top 3s as GL would hand them.
    std::vector<uint8_t> rgb;
    for (uint8_t row : {1, 2, 3})
        rgb.insert(rgb.end(), 5 * 3, row);
    Frame frame;
    frame.setBottomUp(5, 3, rgb.data());
    ASSERT_EQ(frame.getByteCount(), 45u);
    EXPECT_EQ(frame.getRowBytes(), 15u);
    EXPECT_EQ(frame.getPixels()[0], 3);
    EXPECT_EQ(frame.getPixels()[15], 2);
    EXPECT_EQ(frame.getPixels()[44], 1);
}

TEST(FrameRows, SingleRowAndEmptyFramesStayAsTheyAre)
{
    const uint8_t one[6] = {9, 8, 7, 6, 5, 4};
    Frame frame;
    frame.setBottomUp(2, 1, one);
    EXPECT_EQ(std::vector<uint8_t>(frame.getPixels(), frame.getPixels() + 6), std::vector<uint8_t>(one, one + 6));
    frame.setBottomUp(0, 0, one);
    EXPECT_EQ(frame.getByteCount(), 0u);
    EXPECT_FALSE(frame.read(0, 10));
}

TEST_F(FrameReadBack, TopOfTheScreenIsTheFirstRow)
{
    // Red over the lower half, as GL coordinates put it.
    glMatrixMode(GL_PROJECTION);
    glOrtho(0, 1, 0, 1, -1, 1);
    glColor3f(1, 0, 0);
    glBegin(GL_QUADS);
    glVertex2f(0, 0);
    glVertex2f(1, 0);
    glVertex2f(1, 0.5f);
    glVertex2f(0, 0.5f);
    glEnd();
    Frame frame;
    ASSERT_TRUE(frame.read(GLContext::width(), GLContext::height()));
    const uint8_t* first = frame.getPixels();
    const uint8_t* last = frame.getPixels() + frame.getByteCount() - 3;
    EXPECT_EQ(first[0], 0) << "top-left should be the black upper half";
    EXPECT_EQ(last[0], 255) << "bottom-right should be the red lower half";
    EXPECT_EQ(last[1], 0);
}

TEST_F(FrameReadBack, OddWidthsAreReadWithoutRowPadding)
{
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    Frame frame;
    ASSERT_TRUE(frame.read(7, 3));
    ASSERT_EQ(frame.getByteCount(), 63u);
    for (size_t i = 0; i < frame.getByteCount(); i += 3)
        ASSERT_EQ(frame.getPixels()[i + 2], 255) << "pixel " << i / 3;
}

TEST(PngWriterFiles, RoundTripKeepsEveryByte)
{
    const int width = 13, height = 7;
    std::vector<uint8_t> rgb(width * height * 3);
    for (size_t i = 0; i < rgb.size(); ++i)
        rgb[i] = static_cast<uint8_t>(i * 37 + 11);
    Frame frame;
    frame.setBottomUp(width, height, rgb.data());
    std::string path = temporaryPng("round");
    std::string error;
    ASSERT_TRUE(PngWriter::write(path, frame, error)) << error;
    int w = 0, h = 0;
    std::vector<uint8_t> back;
    ASSERT_TRUE(readPng(path, w, h, back));
    std::remove(path.c_str());
    EXPECT_EQ(w, width);
    EXPECT_EQ(h, height);
    EXPECT_EQ(back, std::vector<uint8_t>(frame.getPixels(), frame.getPixels() + frame.getByteCount()));
}

TEST(PngWriterFiles, EmptyFrameAndUnwritablePathFail)
{
    std::string error;
    Frame empty;
    EXPECT_FALSE(PngWriter::write(temporaryPng("empty"), empty, error));
    EXPECT_EQ(error, "empty frame");
    std::vector<uint8_t> rgb(3, 0);
    Frame tiny;
    tiny.setBottomUp(1, 1, rgb.data());
    EXPECT_FALSE(PngWriter::write("/nonexistent/dir/x.png", tiny, error));
    EXPECT_FALSE(error.empty());
}
