// The swirl: the curve, the trail's growth of one point per update up to 60, and what a frame leaves behind.
#include "effects/Swirl.h"

#include "scene/CameraMgr.h"
#include "scene/LightMgr.h"
#include "scene/VertexArray.h"
#include "support/GLContext.h"
#include "support/VectorNear.h"

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <vector>

namespace {

const EffectTimer SPAN(259.5f, 289.5f);

const float CLOSE = 1e-4f;

}  // namespace

TEST(SwirlTrail, TheCurveTakesDegreesAndAnUpdateAddsOnePointOnceTheFramesMakeUpAStepUpToSixty)
{
    // x = 0.3, y = 0.2, z = 1 + sin(pi squared), all times 10.
    expectNear(Swirl::curve(0.0f), Vector3(3.0f, 2.0f, 5.6969f), CLOSE);
    expectNear(Swirl::curve(90.0f), Vector3(-4.369861f, 6.0f, 7.862006f), CLOSE);
    Swirl swirl(0, SPAN);
    swirl.resetTrail();
    EXPECT_EQ(swirl.getCount(), 1);
    swirl.update(0.01f);
    EXPECT_EQ(swirl.getCount(), 1);
    swirl.update(0.01f);
    EXPECT_EQ(swirl.getCount(), 2);
    swirl.update(1.0f);
    EXPECT_EQ(swirl.getCount(), 3);
    // The leftover time adds the next point at the next update, however short.
    swirl.update(0.0f);
    EXPECT_EQ(swirl.getCount(), 4);
    for (int i = 0; i < 55; ++i)
        swirl.update(Swirl::STEP);
    EXPECT_EQ(swirl.getCount(), 59);
    swirl.update(Swirl::STEP);
    EXPECT_EQ(swirl.getCount(), 60);
    for (int i = 0; i < 100; ++i)
        swirl.update(Swirl::STEP);
    EXPECT_EQ(swirl.getCount(), 60);
    swirl.resetTrail();
    ASSERT_EQ(swirl.getPoints()->getNumVertices(), Swirl::MAX_POINTS);
    swirl.update(0.5f);
    swirl.update(0.5f);
    ASSERT_EQ(swirl.getCount(), 3);
    expectNear((*swirl.getPoints())[0].position, Swirl::curve(24.0f), CLOSE);
    // Beyond the count the points keep their resting places.
    expectNear((*swirl.getPoints())[3].position, Swirl::curve(6.0f), CLOSE);
    expectNear((*swirl.getPoints())[59].position, Swirl::curve(118.0f), CLOSE);
}

namespace {

class SwirlGLTest : public GLTest {
protected:
    void TearDown() override
    {
        CameraMgr::getHandle()->remove("SwirlCamera");
        LightMgr::getHandle()->turnLightingOff();
        GLTest::TearDown();
    }

    static bool anyLit()
    {
        std::vector<unsigned char> pixels(GLContext::width() * GLContext::height() * 4);
        glReadPixels(0, 0, GLContext::width(), GLContext::height(), GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        for (size_t i = 0; i < pixels.size(); i += 4)
            if (pixels[i + 1] > 8 || pixels[i + 2] > 8)
                return true;
        return false;
    }
};

}  // namespace

TEST_F(SwirlGLTest, DrawsOnlyWhileStartedAndLeavesLightingOffEvenWhenItWasOn)
{
    Swirl swirl(0, SPAN);
    swirl.update(0.1f);
    swirl.display();
    EXPECT_FALSE(anyLit());
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOn();
    swirl.initiate();
    for (int i = 0; i < 30; ++i) {
        swirl.update(0.02f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        swirl.display();
    }
    EXPECT_TRUE(anyLit());
    EXPECT_FALSE(lights->isLightingOn() || glIsEnabled(GL_LIGHTING));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    swirl.shutdown();
    EXPECT_EQ(swirl.getPoints(), nullptr);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    swirl.display();
    EXPECT_FALSE(anyLit());
}
