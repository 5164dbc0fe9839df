// Lights: DLIT, SLIT and LMGR chunks, light units, GL states and the registry's switches.
#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "scene/LightMgr.h"
#include "scene/SpotLight.h"
#include "support/GLContext.h"
#include "ByteImage.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

using namespace bytes;

namespace {

std::string saved(Light& light)
{
    std::ostringstream out;
    EXPECT_TRUE(light.save(out));
    return out.str();
}

// Colours are set channel by channel so that unclamped odd values reach the file.
Color oddColor(float first)
{
    Color c;
    c.r = first;
    c.g = -0.0f;
    c.b = fromBits(0x00000003u);
    c.a = 2.5f;
    return c;
}

void makeOdd(Light& light)
{
    light.setAttenuation(fromBits(0x7fc00abcu), -0.0f, 1e-30f);
    light.setAmbient(oddColor(0.125f));
    light.setDiffuse(oddColor(-7.0f));
    light.setSpecular(oddColor(1e20f));
    light.setPosition(Vector3(1, -2, 3.5f));
}

// Records the calls the registry and the switches make.
class CountingLight : public DirectionalLight {
public:
    explicit CountingLight(const char* name) : DirectionalLight(name) {}
    void switchLight(bool on) override
    {
        ++switches;
        DirectionalLight::switchLight(on);
    }
    void reorient(const Camera& camera) override
    {
        ++reorients;
        DirectionalLight::reorient(camera);
    }
    int switches = 0;
    int reorients = 0;
};

void clearGLErrors()
{
    while (glGetError() != GL_NO_ERROR) {
    }
}

class LightGL : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        LightMgr::getHandle()->shutdown();
    }
    void TearDown() override
    {
        LightMgr::getHandle()->shutdown();
        clearGLErrors();
    }
};

class LightRegistry : public ::testing::Test {
protected:
    void SetUp() override { LightMgr::getHandle()->shutdown(); }
    void TearDown() override { LightMgr::getHandle()->shutdown(); }
};

} // namespace

// ---- DLIT and SLIT ------------------------------------------------------------

TEST(LightChunk, DirectionalByteImage)
{
    DirectionalLight light("Sun");
    std::string expected = std::string("DLIT") + std::string("\x03\x00", 2) + "Sun" + std::string(1, '\0')
        + f32(0) + f32(0) + f32(0)
        + f32(0.2f) + f32(0.2f) + f32(0.2f) + f32(1)
        + f32(0.8f) + f32(0.8f) + f32(0.8f) + f32(1)
        + f32(1) + f32(1) + f32(1) + f32(1)
        + f32(0) + f32(0) + f32(1);
    EXPECT_EQ(saved(light), expected);
    EXPECT_EQ(expected.size(), 4u + 5u + 73u);
}

TEST(LightChunk, SpotAddsDirectionExponentAndCutoff)
{
    SpotLight light("L");
    std::string image = saved(light);
    ASSERT_EQ(image.size(), 4u + 3u + 73u + 20u);
    EXPECT_EQ(image.substr(0, 4), "SLIT");
    EXPECT_EQ(image.substr(80), f32(0) + f32(0) + f32(-1) + f32(0) + f32(180));
}

TEST(LightChunk, RoundTripsKeepEveryBit)
{
    DirectionalLight sun("sun");
    makeOdd(sun);
    std::string sunImage = saved(sun);
    // The on byte follows the name; set it in the file rather than through GL.
    ASSERT_EQ(sunImage[9], '\0');
    sunImage[9] = '\1';
    DirectionalLight sunCopy;
    std::istringstream sunIn(sunImage);
    ASSERT_TRUE(sunCopy.load(sunIn));
    EXPECT_TRUE(sunCopy.isOn());
    EXPECT_EQ(sunCopy.getUnit(), -1);
    EXPECT_EQ(saved(sunCopy), sunImage);

    SpotLight spot("spot");
    makeOdd(spot);
    spot.setDirection(Vector3(fromBits(0xffc00001u), 0, -1));
    spot.setExponent(-0.0f);
    spot.setCutoff(fromBits(0x00000001u));
    std::string spotImage = saved(spot);
    SpotLight spotCopy;
    std::istringstream spotIn(spotImage);
    ASSERT_TRUE(spotCopy.load(spotIn));
    EXPECT_STREQ(spotCopy.getName(), "spot");
    EXPECT_EQ(saved(spotCopy), spotImage);
}

TEST(LightChunk, TruncatedOrMistaggedRecordsFail)
{
    SpotLight spot("spot");
    std::string image = saved(spot);
    for (size_t n = 0; n < image.size(); ++n) {
        SpotLight target;
        std::istringstream in(image.substr(0, n));
        EXPECT_FALSE(target.load(in)) << n;
    }
    DirectionalLight sun("sun");
    std::string sunImage = saved(sun);
    for (size_t n = 0; n < sunImage.size(); ++n) {
        DirectionalLight target;
        std::istringstream in(sunImage.substr(0, n));
        EXPECT_FALSE(target.load(in)) << n;
    }
    DirectionalLight asSun;
    std::istringstream spotAsSun(image);
    EXPECT_FALSE(asSun.load(spotAsSun));
    SpotLight asSpot;
    std::istringstream sunAsSpot(sunImage);
    EXPECT_FALSE(asSpot.load(sunAsSpot));
}

TEST(LightChunk, SpotLookAtAimsFromThePosition)
{
    SpotLight spot;
    spot.lookAt(Vector3(1, 2, 3), Vector3(1, 0, 3));
    EXPECT_EQ(spot.getPosition(), Vector3(1, 2, 3));
    EXPECT_EQ(spot.getDirection(), Vector3(0, -2, 0));
}

// ---- LMGR ------------------------------------------------------------------

TEST_F(LightRegistry, ContainerRoundTripReversesTheListAndPicksClassesByTag)
{
    LightMgr* lights = LightMgr::getHandle();
    DirectionalLight* sun = new DirectionalLight("sun");
    SpotLight* spot = new SpotLight("spot");
    spot->setCutoff(30.0f);
    lights->add(sun);
    lights->add(spot);
    std::ostringstream out;
    ASSERT_TRUE(lights->save(out));
    std::string image = out.str();
    EXPECT_EQ(image.substr(0, 12), std::string("LMGR") + le32(2) + "SLIT");

    lights->shutdown();
    std::istringstream in(image);
    ASSERT_TRUE(lights->load(in));
    EXPECT_EQ(lights->getNumLights(), 2);
    // The file's first record ends up last.
    EXPECT_STREQ(lights->getLight(0)->getName(), "sun");
    EXPECT_STREQ(lights->getLight(1)->getName(), "spot");
    EXPECT_EQ(lights->getLight(2), nullptr);
    SpotLight* loaded = dynamic_cast<SpotLight*>(lights->find("spot"));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->getCutoff(), 30.0f);
    EXPECT_NE(dynamic_cast<DirectionalLight*>(lights->find("sun")), nullptr);
    // Loading does not initiate.
    EXPECT_EQ(loaded->getUnit(), -1);
}

TEST_F(LightRegistry, UnknownChildFailsAndKeepsEarlierLights)
{
    DirectionalLight sun("sun");
    std::string child;
    {
        std::ostringstream out;
        sun.save(out);
        child = out.str();
    }
    std::string image = std::string("LMGR") + le32(2) + child + "XLIT" + std::string(90, '\0');
    std::istringstream in(image);
    LightMgr* lights = LightMgr::getHandle();
    EXPECT_FALSE(lights->load(in));
    EXPECT_NE(lights->find("sun"), nullptr);
    // The unknown tag was only peeked at.
    char tag[4] = {0, 0, 0, 0};
    in.read(tag, 4);
    EXPECT_EQ(std::string(tag, 4), "XLIT");
}

TEST_F(LightRegistry, BadContainers)
{
    LightMgr* lights = LightMgr::getHandle();
    std::istringstream empty("");
    EXPECT_FALSE(lights->load(empty));
    std::istringstream wrong(std::string("LMGX") + le32(0));
    EXPECT_FALSE(lights->load(wrong));
    std::istringstream huge(std::string("LMGR") + le32(0x7fffffff) + std::string(100, '\0'));
    EXPECT_FALSE(lights->load(huge));
    std::istringstream none(std::string("LMGR") + le32(0));
    EXPECT_TRUE(lights->load(none));
    std::istringstream negative(std::string("LMGR") + le32(0x80000000u));
    EXPECT_TRUE(lights->load(negative));
    SpotLight spot("s");
    std::ostringstream out;
    spot.save(out);
    std::string cut = std::string("LMGR") + le32(1) + out.str().substr(0, 90);
    std::istringstream truncated(cut);
    EXPECT_FALSE(lights->load(truncated));
    EXPECT_EQ(lights->find("s"), nullptr);
    EXPECT_FALSE(lights->load("/nonexistent/lights.lmgr"));
}

TEST_F(LightRegistry, CountCoversOnlyTheLastLoad)
{
    LightMgr* lights = LightMgr::getHandle();
    lights->add(new DirectionalLight("old"));
    DirectionalLight fresh("fresh");
    std::ostringstream child;
    fresh.save(child);
    std::istringstream in(std::string("LMGR") + le32(1) + child.str());
    ASSERT_TRUE(lights->load(in));
    EXPECT_EQ(lights->getNumLights(), 1);
    EXPECT_NE(lights->find("old"), nullptr);
    // What is saved is what the count announces.
    std::ostringstream out;
    lights->save(out);
    EXPECT_EQ(out.str(), std::string("LMGR") + le32(1) + child.str());
}

// ---- units and GL states ---------------------------------------------------------

TEST_F(LightGL, UnitsGoLowestFirstAndAreReused)
{
    DirectionalLight a("a");
    DirectionalLight b("b");
    DirectionalLight c("c");
    a.initiate();
    b.initiate();
    EXPECT_EQ(a.getUnit(), GL_LIGHT0);
    EXPECT_EQ(b.getUnit(), GL_LIGHT1);
    EXPECT_EQ(Light::getUnitMask(), 3u);
    a.shutdown();
    EXPECT_EQ(a.getUnit(), -1);
    c.initiate();
    EXPECT_EQ(c.getUnit(), GL_LIGHT0);
    // A second initiate keeps the unit it has.
    c.initiate();
    EXPECT_EQ(c.getUnit(), GL_LIGHT0);
    EXPECT_EQ(Light::getUnitMask(), 3u);
}

TEST_F(LightGL, DestructionGivesTheUnitBack)
{
    {
        DirectionalLight a("a");
        a.initiate();
        a.turnOn();
        EXPECT_TRUE(glIsEnabled(GL_LIGHT0));
    }
    EXPECT_EQ(Light::getUnitMask(), 0u);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
}

TEST_F(LightGL, RunningOutOfUnitsStoresTheUncheckedValue)
{
    ASSERT_EQ(Light::getUnitCount(), 8);
    DirectionalLight lights[9];
    for (int i = 0; i < 8; ++i)
        lights[i].initiate();
    EXPECT_EQ(lights[7].getUnit(), GL_LIGHT7);
    EXPECT_EQ(Light::getUnitMask(), 0xffu);
    lights[8].initiate();
    EXPECT_EQ(lights[8].getUnit(), GL_LIGHT0 - 1);
    EXPECT_NE(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    clearGLErrors();
    lights[8].shutdown();
    EXPECT_EQ(Light::getUnitMask(), 0xffu);
    for (auto& light : lights)
        light.shutdown();
    EXPECT_EQ(Light::getUnitMask(), 0u);
}

TEST_F(LightGL, UploadSendsAttenuationColoursAndDirection)
{
    DirectionalLight sun("sun");
    sun.setDiffuse(Color(0.5f, 0.25f, 0.125f, 1.0f));
    sun.setPosition(Vector3(0, 1, 0));
    sun.initiate();
    GLenum unit = static_cast<GLenum>(sun.getUnit());
    float value[4];
    glGetLightfv(unit, GL_CONSTANT_ATTENUATION, value);
    // All zero, not OpenGL's own 1.
    EXPECT_EQ(value[0], 0.0f);
    glGetLightfv(unit, GL_DIFFUSE, value);
    EXPECT_EQ(value[1], 0.25f);
    glGetLightfv(unit, GL_SPECULAR, value);
    EXPECT_EQ(value[2], 1.0f);
    glGetLightfv(unit, GL_POSITION, value);
    EXPECT_EQ(value[1], 1.0f);
    EXPECT_EQ(value[3], 0.0f);
}

TEST_F(LightGL, SpotUploadAndReorientFollowTheModelView)
{
    SpotLight spot("spot");
    spot.setPosition(Vector3(1, 2, 3));
    spot.setDirection(Vector3(0, 0, -1));
    spot.setExponent(4.0f);
    spot.setCutoff(25.0f);
    spot.initiate();
    GLenum unit = static_cast<GLenum>(spot.getUnit());
    float value[4];
    glGetLightfv(unit, GL_SPOT_CUTOFF, value);
    EXPECT_EQ(value[0], 25.0f);
    glGetLightfv(unit, GL_SPOT_EXPONENT, value);
    EXPECT_EQ(value[0], 4.0f);
    glGetLightfv(unit, GL_POSITION, value);
    EXPECT_EQ(value[3], 1.0f);

    // The position is taken through the model-view matrix current at reorient.
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(0, 0, -5);
    Camera camera;
    spot.reorient(camera);
    glGetLightfv(unit, GL_POSITION, value);
    EXPECT_FLOAT_EQ(value[2], -2.0f);
    glGetLightfv(unit, GL_SPOT_DIRECTION, value);
    EXPECT_FLOAT_EQ(value[2], -1.0f);
}

TEST_F(LightGL, SwitchesOnlyWhenTheStateChanges)
{
    CountingLight light("count");
    light.initiate();
    light.turnOn();
    light.turnOn();
    EXPECT_EQ(light.switches, 1);
    EXPECT_TRUE(glIsEnabled(GL_LIGHT0));
    light.turnOff();
    light.turnOff();
    EXPECT_EQ(light.switches, 2);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
    light.toggle();
    EXPECT_TRUE(light.isOn());
    EXPECT_TRUE(glIsEnabled(GL_LIGHT0));
    light.toggle();
    EXPECT_EQ(light.switches, 4);
}

TEST_F(LightGL, RegistryInitiatesLightsAndReorientsOnlyThoseOn)
{
    LightMgr* lights = LightMgr::getHandle();
    CountingLight* on = new CountingLight("on");
    CountingLight* off = new CountingLight("off");
    lights->add(on);
    lights->add(off);
    EXPECT_EQ(on->getUnit(), GL_LIGHT0);
    EXPECT_EQ(off->getUnit(), GL_LIGHT1);
    on->turnOn();
    Camera camera;
    lights->reorient(camera);
    EXPECT_EQ(on->reorients, 1);
    EXPECT_EQ(off->reorients, 0);

    EXPECT_EQ(lights->getLight(0), off);
    EXPECT_TRUE(lights->remove("on"));
    EXPECT_FALSE(lights->remove("on"));
    EXPECT_EQ(Light::getUnitMask(), 2u);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
    EXPECT_EQ(lights->getNumLights(), 1);
}

TEST_F(LightGL, RegistrySetsTheLightModelAndTheLightingSwitch)
{
    LightMgr* lights = LightMgr::getHandle();
    lights->turnLightingOff();
    lights->initiate();
    GLint value = 0;
    glGetIntegerv(GL_LIGHT_MODEL_TWO_SIDE, &value);
    EXPECT_EQ(value, 1);
    glGetIntegerv(GL_LIGHT_MODEL_LOCAL_VIEWER, &value);
    EXPECT_EQ(value, 1);
    glGetIntegerv(GL_LIGHT_MODEL_COLOR_CONTROL, &value);
    EXPECT_EQ(value, GL_SEPARATE_SPECULAR_COLOR);
    EXPECT_TRUE(lights->isLightingOn());
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    lights->toggleLighting();
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    // The flag, not GL, decides: a lighting switched on behind its back stays on.
    glEnable(GL_LIGHTING);
    lights->turnLightingOff();
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    glDisable(GL_LIGHTING);
}
