// Lights: DLIT, SLIT and LMGR chunks, light units and the GL states they upload.
#include "ByteImage.h"
#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "scene/LightMgr.h"
#include "scene/SpotLight.h"
#include "support/GLContext.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <string>

using namespace bytes;

namespace {

class LightTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        lights->shutdown();
    }
    void TearDown() override
    {
        lights->shutdown();
        while (glGetError() != GL_NO_ERROR) {
        }
        GLTest::TearDown();
    }
    LightMgr* lights = LightMgr::getHandle();
};

}  // namespace

TEST(LightChunk, RoundTripKeepsEveryBitAndTheOnByte)
{
    SpotLight spot("spot");
    spot.setAttenuation(fromBits(0x7fc00abcu), -0.0f, 1e-30f);
    spot.setPosition(Vector3(1, -2, 3.5f));
    spot.setDirection(Vector3(fromBits(0xffc00001u), 0, -1));
    spot.setCutoff(fromBits(0x00000001u));
    std::string image = saved(spot);
    // The on byte follows the name; set it in the file rather than through GL.
    ASSERT_EQ(image[10], '\0');
    image[10] = '\1';
    SpotLight copy;
    std::istringstream in(image);
    ASSERT_TRUE(copy.load(in));
    EXPECT_TRUE(copy.isOn());
    EXPECT_EQ(copy.getUnit(), -1);
    EXPECT_EQ(saved(copy), image);
}

TEST(LightChunk, TruncatedOrMistaggedRecordsFail)
{
    SpotLight spot("spot");
    DirectionalLight sun("sun");
    const std::string spotImage = saved(spot), sunImage = saved(sun);
    expectEveryPrefixFails<SpotLight>(spotImage);
    expectEveryPrefixFails<DirectionalLight>(sunImage);
    std::istringstream spotAsSun(spotImage), sunAsSpot(sunImage);
    EXPECT_FALSE(sun.load(spotAsSun));
    EXPECT_FALSE(spot.load(sunAsSpot));
}

TEST_F(LightTest, ContainerRoundTripReversesTheListAndPicksClassesByTag)
{
    SpotLight* spot = new SpotLight("spot");
    spot->setCutoff(30.0f);
    DirectionalLight* sun = new DirectionalLight("sun");
    sun->setAttenuation(fromBits(0x7fc00abcu), -0.0f, 1e-30f);
    const std::string sunImage = saved(*sun), spotImage = saved(*spot);
    lights->add(sun);
    lights->add(spot);
    const std::string image = saved(*lights);
    EXPECT_EQ(image.substr(0, 12), std::string("LMGR") + le32(2) + "SLIT");
    lights->shutdown();
    std::istringstream in(image);
    ASSERT_TRUE(lights->load(in));
    // The file's first record ends up last.
    EXPECT_EQ(saved(*lights->getLight(0)), sunImage);  // DLIT keeps every bit too
    ASSERT_NE(dynamic_cast<SpotLight*>(lights->getLight(1)), nullptr);
    EXPECT_EQ(saved(*lights->getLight(1)), spotImage);
    EXPECT_EQ(lights->getLight(1)->getUnit(), -1);  // loading does not initiate
}

TEST_F(LightTest, BadContainersFailAndKeepEarlierLights)
{
    DirectionalLight sun("sun");
    SpotLight spot("s");
    std::istringstream unknown(std::string("LMGR") + le32(2) + saved(sun) + "XLIT" + std::string(90, '\0'));
    EXPECT_FALSE(lights->load(unknown));
    EXPECT_NE(lights->find("sun"), nullptr);
    const struct {
        std::string image;
        bool loads;
    } cases[] = {
        {"", false},
        {std::string("LMGX") + le32(0), false},
        {std::string("LMGR") + le32(0x7fffffff) + std::string(100, '\0'), false},
        {std::string("LMGR") + le32(1) + saved(spot).substr(0, 90), false},
        {std::string("LMGR") + le32(0x80000000u), true},
    };
    for (const auto& c : cases) {
        std::istringstream in(c.image);
        EXPECT_EQ(lights->load(in), c.loads) << c.image.size();
    }
    EXPECT_EQ(lights->find("s"), nullptr);
    EXPECT_FALSE(lights->load("/nonexistent/lights.lmgr"));
}

TEST_F(LightTest, ACountPastTheEndKeepsTheLightsReadBeforeTheCut)
{
    DirectionalLight sun("sun");
    std::istringstream in(std::string("LMGR") + le32(0x7fffffff) + saved(sun));
    EXPECT_FALSE(lights->load(in));
    EXPECT_NE(lights->find("sun"), nullptr);
}

TEST_F(LightTest, TheCountCoversOnlyTheLastLoad)
{
    lights->add(new DirectionalLight("old"));
    DirectionalLight fresh("fresh");
    const std::string image = std::string("LMGR") + le32(1) + saved(fresh);
    std::istringstream in(image);
    ASSERT_TRUE(lights->load(in));
    EXPECT_NE(lights->find("old"), nullptr);
    // What is saved is what the count announces.
    EXPECT_EQ(saved(*lights), image);
}

TEST_F(LightTest, UnitsGoLowestFirstAreReusedAndComeBackOnDestruction)
{
    DirectionalLight a("a"), b("b"), c("c");
    a.initiate();
    b.initiate();
    EXPECT_EQ(b.getUnit(), GL_LIGHT1);
    a.shutdown();
    EXPECT_EQ(a.getUnit(), -1);
    c.initiate();
    c.initiate();
    EXPECT_EQ(c.getUnit(), GL_LIGHT0);
    {
        DirectionalLight d("d");
        d.initiate();
        d.turnOn();
        EXPECT_TRUE(glIsEnabled(GL_LIGHT2));
    }
    EXPECT_EQ(Light::getUnitMask(), 3u);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT2));
}

TEST_F(LightTest, RunningOutOfUnitsStoresTheUncheckedValue)
{
    DirectionalLight all[9];
    for (auto& light : all)
        light.initiate();
    EXPECT_EQ(all[7].getUnit(), GL_LIGHT7);
    EXPECT_EQ(all[8].getUnit(), GL_LIGHT0 - 1);
    EXPECT_NE(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    all[8].shutdown();
    EXPECT_EQ(Light::getUnitMask(), 0xffu);
}

TEST_F(LightTest, UploadSendsZeroAttenuationAndReorientFollowsTheModelView)
{
    SpotLight spot("spot");
    spot.setPosition(Vector3(1, 2, 3));
    spot.setDirection(Vector3(0, 0, -1));
    spot.setCutoff(25.0f);
    spot.initiate();
    const GLenum unit = static_cast<GLenum>(spot.getUnit());
    float value[4];
    glGetLightfv(unit, GL_CONSTANT_ATTENUATION, value);
    EXPECT_EQ(value[0], 0.0f);  // not OpenGL's own 1
    glGetLightfv(unit, GL_SPOT_CUTOFF, value);
    EXPECT_EQ(value[0], 25.0f);
    glTranslatef(0, 0, -5);
    spot.reorient(Camera());
    glGetLightfv(unit, GL_POSITION, value);
    EXPECT_FLOAT_EQ(value[2], -2.0f);
    EXPECT_EQ(value[3], 1.0f);
}
