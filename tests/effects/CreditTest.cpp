// Credits: the picture's fade against the trail's bounce, the trail's turn, the shared texture and camera.
#include "effects/Credit.h"

#include "scene/Camera.h"
#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "support/GLContext.h"
#include "support/OffscreenFrame.h"
#include "texture/Texture.h"
#include "texture/TextureMgr.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

const char* const CREDITS = "data/img/credits.png";
const float SPAN = 8.875f;

class CreditTest : public GLTest {
protected:
    Texture* texture = nullptr;

    void SetUp() override
    {
        GLTest::SetUp();
        CameraMgr::getHandle()->shutdown();
        CameraMgr::getHandle()->onResize(GLContext::width(), GLContext::height());
        // A white, opaque stand-in for the credits picture, under its name in the cache.
        unsigned char* pixels = new unsigned char[4 * 4 * 2];
        std::memset(pixels, 255, 4 * 4 * 2);
        texture = new Texture(CREDITS, 4, 4, 16, 6, pixels);
        TextureMgr::getHandle()->addTexture(texture);
    }
    void TearDown() override
    {
        CameraMgr::getHandle()->shutdown();
        TextureMgr::getHandle()->shutdown();
        TextureMgr::getHandle()->registerStandardLoaders();
    }

    static unsigned char centreRed()
    {
        unsigned char rgba[4];
        GLContext::readPixel(GLContext::width() / 2, GLContext::height() / 2, rgba);
        return rgba[0];
    }

    // The picture's alpha and speed, then the trail's.
    static std::vector<float> alphas(Credit& credit)
    {
        return {credit.getTextAlpha(), credit.getTextAlphaSpeed(), credit.getBlurAlpha(), credit.getBlurAlphaSpeed()};
    }
};

}  // namespace

TEST_F(CreditTest, PictureStopsAtZeroWhileTheTrailBouncesAndOddTrailsTurnClockwise)
{
    Credit credit(0, 4, EffectTimer(0.0f, 2.0f));
    credit.initiate();
    // Landing on exactly 1: the picture's bound is strict, the trail's inclusive.
    credit.update(1.0f);
    EXPECT_EQ(alphas(credit), (std::vector<float>{1.0f, 1.0f, 1.0f, -1.0f}));
    credit.update(1.0f);
    EXPECT_EQ(alphas(credit), (std::vector<float>{1.0f, -1.0f, 0.0f, 1.0f}));
    credit.update(1.0f);
    credit.update(0.5f);
    EXPECT_EQ(alphas(credit), (std::vector<float>{0.0f, 0.0f, 0.5f, -1.0f}));
    Credit even(2, 2, EffectTimer(17.75f, 26.625f));
    Credit odd(1, 3, EffectTimer(8.875f, 17.75f));
    even.initiate();
    odd.initiate();
    EXPECT_EQ(even.getAngle(), 180.0f);
    EXPECT_EQ(odd.getAngle(), 0.0f);
    EXPECT_FLOAT_EQ(odd.getAngleSpeed(), -even.getAngleSpeed());
    even.update(SPAN / 8.0f);
    odd.update(SPAN / 8.0f);
    EXPECT_NEAR(even.getAngle(), 225.0f, 1e-3f);
    EXPECT_NEAR(odd.getAngle(), 315.0f, 1e-3f);
    // The trail's point is (-100, 0, 601) turned about z.
    EXPECT_NEAR(odd.getBlurPos().x, -70.7107f, 1e-3f);
    EXPECT_NEAR(odd.getBlurPos().y, 70.7107f, 1e-3f);
    for (int i = 1; i < 8; ++i) {
        even.update(SPAN / 8.0f);
        odd.update(SPAN / 8.0f);
    }
    EXPECT_NEAR(even.getAngle(), 180.0f, 1e-3f);
    // Back at the start: 0, or the same direction written as 360.
    EXPECT_NEAR(std::min(odd.getAngle(), 360.0f - odd.getAngle()), 0.0f, 1e-3f);
}

TEST_F(CreditTest, FirstCreditUploadsTheTextureAndTheLastUnloadsIt)
{
    CameraMgr* cameras = CameraMgr::getHandle();
    cameras->add(new Camera("Other"));
    cameras->add(new Camera("CreditsCamera"));
    Credit second(1, 3, EffectTimer(8.875f, 17.75f));
    second.initiate();
    // Alone, a later credit neither uploads nor takes over the view.
    EXPECT_EQ(texture->getGLName(), Texture::noName);
    EXPECT_STREQ(cameras->getActiveCamera()->getName(), "Other");

    Credit credits[] = {Credit(0, 4, EffectTimer(0.0f, 8.875f)), Credit(2, 2, EffectTimer(17.75f, 26.625f)),
                        Credit(3, 1, EffectTimer(26.625f, 35.5f))};
    for (Credit& credit : credits)
        credit.initiate();
    EXPECT_TRUE(glIsTexture(texture->getGLName()));
    credits[0].shutdown();
    second.shutdown();
    credits[1].shutdown();
    EXPECT_TRUE(glIsTexture(texture->getGLName()));
    credits[2].shutdown();
    EXPECT_EQ(texture->getGLName(), Texture::noName);
    EXPECT_EQ(TextureMgr::getHandle()->findTexture(CREDITS), texture);
}

TEST_F(CreditTest, DrawsThePictureAndLeavesTheStateAsFound)
{
    LightMgr::getHandle()->turnLightingOn();
    Credit credit(0, 4, EffectTimer(0.0f, SPAN));
    credit.initiate();
    credit.display();
    EXPECT_EQ(centreRed(), 0);
    credit.update(SPAN / 2.0f);
    credit.display();
    EXPECT_EQ(centreRed(), 255);
    GLboolean depthMask = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthMask);
    EXPECT_EQ(depthMask, GL_TRUE);
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_COLOR_MATERIAL) || glIsEnabled(GL_BLEND) || glIsEnabled(GL_TEXTURE_2D));
    EXPECT_TRUE(LightMgr::getHandle()->isLightingOn());
    LightMgr::getHandle()->turnLightingOff();
}

TEST_F(CreditTest, MissingPictureIsReportedAndDrawnWhite)
{
    // With no loaders the cache cannot read the file.
    TextureMgr::getHandle()->shutdown();
    Credit credit(0, 4, EffectTimer(0.0f, SPAN));
    testing::internal::CaptureStdout();
    credit.initiate();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Credit::initiate() could not load data/img/credits.png\n");
    credit.update(SPAN / 2.0f);
    credit.display();
    EXPECT_EQ(centreRed(), 255);
}

namespace {

// The credit's frame drawn literally, every quad whole, the trail in one run and the picture stored as luminance
// with alpha: the picture the faster drawing must keep.
void drawWholeQuads(const Credit& credit, Texture& picture)
{
    const float x = Credit::HALF_WIDTH, y = Credit::HALF_HEIGHT;
    const float v = 0.25f * static_cast<float>(credit.getIndex());
    glPushMatrix();
    glLoadIdentity();
    CameraMgr::getHandle()->find("CreditsCamera")->lookAt();
    glTranslatef(0.0f, 0.0f, 450.0f);
    glDisable(GL_CULL_FACE);
    glDepthFunc(GL_ALWAYS);
    glDepthMask(GL_FALSE);
    glEnable(GL_COLOR_MATERIAL);
    picture.bind();
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(1.0f, 1.0f, 1.0f, credit.getTextAlpha());
    glBegin(GL_QUADS);
    glTexCoord2f(0.5f, v);
    glVertex3f(-x, y, 0.0f);
    glTexCoord2f(0.0f, v);
    glVertex3f(x, y, 0.0f);
    glTexCoord2f(0.0f, v + 0.25f);
    glVertex3f(x, -y, 0.0f);
    glTexCoord2f(0.5f, v + 0.25f);
    glVertex3f(-x, -y, 0.0f);
    glEnd();
    float alpha = credit.getBlurAlpha();
    const float step = -alpha / 15.0f;
    Vector3 o(0.0f, 0.0f, 0.0f);
    Vector3 d = o - credit.getBlurPos();
    d.normalize();
    glBegin(GL_QUADS);
    for (int copy = 0; copy < 15; ++copy) {
        glColor4f(1.0f, 0.9f, 0.7f, alpha);
        glTexCoord2f(1.0f, v);
        glVertex3f(-x + o.x, y + o.y, o.z);
        glTexCoord2f(0.5f, v);
        glVertex3f(x + o.x, y + o.y, o.z);
        glTexCoord2f(0.5f, v + 0.25f);
        glVertex3f(x + o.x, -y + o.y, o.z);
        glTexCoord2f(1.0f, v + 0.25f);
        glVertex3f(-x + o.x, -y + o.y, o.z);
        alpha += step;
        o += d * 6.6666665f;
    }
    glEnd();
    glDisable(GL_BLEND);
    picture.unbind();
    glDisable(GL_COLOR_MATERIAL);
    glDepthFunc(GL_LESS);
    glDepthMask(GL_TRUE);
    glEnable(GL_CULL_FACE);
    glPopMatrix();
}

// Levels a channel may differ by where rounding differs, out of 255.
const int INTERPOLATION_TOLERANCE = 3;

class CreditPictureTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        if (access(CREDITS, R_OK) != 0)
            GTEST_SKIP() << "no forged data tree in the working directory";
        CameraMgr::getHandle()->shutdown();
    }
    void TearDown() override
    {
        CameraMgr::getHandle()->shutdown();
        TextureMgr::getHandle()->shutdown();
        TextureMgr::getHandle()->registerStandardLoaders();
        GLTest::TearDown();
    }
};

}  // namespace

// Quads cut to their ink and the picture stored as RGBA draw the picture of the whole quads: every credit through
// its span, the trail pointing every way, at both bench sizes; a pixel differs from it by at most a few levels
// and only along lines where the interpolation rounds otherwise.
TEST_F(CreditPictureTest, QuadsCutToTheirInkKeepThePicture)
{
    for (const auto& [width, height] : {std::pair<int, int>{640, 480}, {1280, 720}}) {
        OffscreenFrame frame(width, height);
        ASSERT_TRUE(frame.isComplete());
        for (int index = 0; index < 4; ++index) {
            Credit credit(index, static_cast<short>(4 - index), EffectTimer(0.0f, SPAN));
            credit.initiate();
            const Texture* shared = credit.getTexture();
            ASSERT_NE(shared, nullptr);
            const size_t bytes = static_cast<size_t>(shared->getDataSize());
            unsigned char* copy = new unsigned char[bytes];
            std::memcpy(copy, shared->getDataPtr(), bytes);
            Texture picture("reference", shared->getWidth(), shared->getHeight(), shared->getBitsPerPixel(),
                            shared->getFormat(), copy);
            CameraMgr::getHandle()->onResize(width, height);
            for (int step = 0; step < 6; ++step) {
                SCOPED_TRACE(std::to_string(width) + " credit " + std::to_string(index) + " step " +
                             std::to_string(step));
                credit.update(step == 0 ? 0.05f : SPAN / 6.0f);
                glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
                credit.display();
                const std::vector<unsigned char> cut = frame.read();
                glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
                drawWholeQuads(credit, picture);
                const std::vector<unsigned char> whole = frame.read();
                // Texture coordinates interpolated across a cut quad round in their last bits unlike those across
                // the whole quad: now and then a sample lands a step of the filter's weights away.
                int largest = 0;
                const size_t differing = OffscreenFrame::countDifferences(cut, whole, 0, &largest);
                EXPECT_LE(largest, INTERPOLATION_TOLERANCE);
                EXPECT_LE(differing, cut.size() / 1000);
                // Not a picture of nothing: a credit on screen lights a good share of it.
                if (step > 0 && step < 5) {
                    EXPECT_GT(OffscreenFrame::countDifferences(cut, std::vector<unsigned char>(cut.size(), 0), 8),
                              cut.size() / 20);
                }
            }
            credit.shutdown();
        }
    }
}
