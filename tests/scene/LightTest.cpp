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
void makeOdd(Light& light)
{
    Color c;
    c.r = 1e20f;
    c.g = -0.0f;
    c.b = fromBits(0x00000003u);
    c.a = 2.5f;
    light.setAttenuation(fromBits(0x7fc00abcu), -0.0f, 1e-30f);
    light.setAmbient(c);
    light.setSpecular(c);
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

class LightRegistry : public ::testing::Test {
protected:
    void SetUp() override { lights->shutdown(); }
    void TearDown() override { lights->shutdown(); }
    LightMgr* lights = LightMgr::getHandle();
};

class LightGL : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        lights->shutdown();
    }
    void TearDown() override
    {
        lights->shutdown();
        clearGLErrors();
        GLTest::TearDown();
    }
    LightMgr* lights = LightMgr::getHandle();
};

} // namespace

TEST(LightChunk, ByteImagesOfBothKinds)
{
    DirectionalLight sun("Sun");
    std::string expected = std::string("DLIT") + le16(3) + "Sun" + std::string(1, '\0')
        + f32(0) + f32(0) + f32(0)
        + f32(0.2f) + f32(0.2f) + f32(0.2f) + f32(1)
        + f32(0.8f) + f32(0.8f) + f32(0.8f) + f32(1)
        + f32(1) + f32(1) + f32(1) + f32(1)
        + f32(0) + f32(0) + f32(1);
    EXPECT_EQ(saved(sun), expected);
    SpotLight spot("L");
    std::string image = saved(spot);
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
    EXPECT_EQ(saved(spotCopy), spotImage);
}

TEST(LightChunk, TruncatedOrMistaggedRecordsFail)
{
    SpotLight spotSource("spot");
    DirectionalLight sunSource("sun");
    const std::string spotImage = saved(spotSource), sunImage = saved(sunSource);
    for (size_t n = 0; n < spotImage.size(); ++n) {
        SpotLight spot;
        DirectionalLight sun;
        std::istringstream spotIn(spotImage.substr(0, n)), sunIn(sunImage.substr(0, n));
        EXPECT_FALSE(spot.load(spotIn)) << n;
        EXPECT_TRUE(n >= sunImage.size() || !sun.load(sunIn)) << n;
    }
    DirectionalLight asSun;
    std::istringstream spotAsSun(spotImage);
    EXPECT_FALSE(asSun.load(spotAsSun));
    SpotLight asSpot;
    std::istringstream sunAsSpot(sunImage);
    EXPECT_FALSE(asSpot.load(sunAsSpot));
}

TEST_F(LightRegistry, ContainerRoundTripReversesTheListAndPicksClassesByTag)
{
    SpotLight* spot = new SpotLight("spot");
    spot->setCutoff(30.0f);
    lights->add(new DirectionalLight("sun"));
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
    SpotLight* loaded = dynamic_cast<SpotLight*>(lights->find("spot"));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->getCutoff(), 30.0f);
    EXPECT_NE(dynamic_cast<DirectionalLight*>(lights->find("sun")), nullptr);
    EXPECT_EQ(loaded->getUnit(), -1);  // loading does not initiate
}

TEST_F(LightRegistry, BadContainersFailAndKeepEarlierLights)
{
    DirectionalLight sun("sun");
    std::istringstream unknown(std::string("LMGR") + le32(2) + saved(sun) + "XLIT" + std::string(90, '\0'));
    EXPECT_FALSE(lights->load(unknown));
    EXPECT_NE(lights->find("sun"), nullptr);
    char tag[4] = {0, 0, 0, 0};
    unknown.read(tag, 4);
    EXPECT_EQ(std::string(tag, 4), "XLIT");  // only peeked at

    SpotLight spot("s");
    const struct {
        std::string image;
        bool loads;
    } cases[] = {
        {"", false},
        {std::string("LMGX") + le32(0), false},
        {std::string("LMGR") + le32(0x7fffffff) + std::string(100, '\0'), false},
        {std::string("LMGR") + le32(1) + saved(spot).substr(0, 90), false},
        {std::string("LMGR") + le32(0), true},
        {std::string("LMGR") + le32(0x80000000u), true},
    };
    for (const auto& c : cases) {
        std::istringstream in(c.image);
        EXPECT_EQ(lights->load(in), c.loads) << c.image.size();
    }
    EXPECT_EQ(lights->find("s"), nullptr);
    EXPECT_FALSE(lights->load("/nonexistent/lights.lmgr"));
}

TEST_F(LightRegistry, CountCoversOnlyTheLastLoad)
{
    lights->add(new DirectionalLight("old"));
    DirectionalLight fresh("fresh");
    const std::string image = std::string("LMGR") + le32(1) + saved(fresh);
    std::istringstream in(image);
    ASSERT_TRUE(lights->load(in));
    EXPECT_EQ(lights->getNumLights(), 1);
    EXPECT_NE(lights->find("old"), nullptr);
    // What is saved is what the count announces.
    std::ostringstream out;
    lights->save(out);
    EXPECT_EQ(out.str(), image);
}

TEST_F(LightGL, UnitsGoLowestFirstAndAreReused)
{
    DirectionalLight a("a"), b("b"), c("c");
    a.initiate();
    b.initiate();
    EXPECT_EQ(a.getUnit(), GL_LIGHT0);
    EXPECT_EQ(b.getUnit(), GL_LIGHT1);
    a.shutdown();
    EXPECT_EQ(a.getUnit(), -1);
    c.initiate();
    c.initiate();
    EXPECT_EQ(c.getUnit(), GL_LIGHT0);
    EXPECT_EQ(Light::getUnitMask(), 3u);
    {
        DirectionalLight d("d");
        d.initiate();
        d.turnOn();
        EXPECT_TRUE(glIsEnabled(GL_LIGHT2));
    }
    EXPECT_EQ(Light::getUnitMask(), 3u);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT2));
}

TEST_F(LightGL, RunningOutOfUnitsStoresTheUncheckedValue)
{
    ASSERT_EQ(Light::getUnitCount(), 8);
    DirectionalLight all[9];
    for (int i = 0; i < 8; ++i)
        all[i].initiate();
    EXPECT_EQ(all[7].getUnit(), GL_LIGHT7);
    all[8].initiate();
    EXPECT_EQ(all[8].getUnit(), GL_LIGHT0 - 1);
    EXPECT_NE(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    clearGLErrors();
    all[8].shutdown();
    EXPECT_EQ(Light::getUnitMask(), 0xffu);
    for (auto& light : all)
        light.shutdown();
    EXPECT_EQ(Light::getUnitMask(), 0u);
}

TEST_F(LightGL, UploadSendsZeroAttenuationAndReorientFollowsTheModelView)
{
    SpotLight spot("spot");
    spot.setDiffuse(Color(0.5f, 0.25f, 0.125f, 1.0f));
    spot.setPosition(Vector3(1, 2, 3));
    spot.setDirection(Vector3(0, 0, -1));
    spot.setCutoff(25.0f);
    spot.initiate();
    GLenum unit = static_cast<GLenum>(spot.getUnit());
    float value[4];
    glGetLightfv(unit, GL_CONSTANT_ATTENUATION, value);
    EXPECT_EQ(value[0], 0.0f);  // not OpenGL's own 1
    glGetLightfv(unit, GL_DIFFUSE, value);
    EXPECT_EQ(value[1], 0.25f);
    glGetLightfv(unit, GL_SPOT_CUTOFF, value);
    EXPECT_EQ(value[0], 25.0f);
    glGetLightfv(unit, GL_POSITION, value);
    EXPECT_EQ(value[3], 1.0f);

    glMatrixMode(GL_MODELVIEW);
    glTranslatef(0, 0, -5);
    spot.reorient(Camera());
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
    EXPECT_TRUE(glIsEnabled(GL_LIGHT0));
}

TEST_F(LightGL, RegistryInitiatesLightsAndReorientsOnlyThoseOn)
{
    CountingLight* on = new CountingLight("on");
    CountingLight* off = new CountingLight("off");
    lights->add(on);
    lights->add(off);
    EXPECT_EQ(on->getUnit(), GL_LIGHT0);
    EXPECT_EQ(off->getUnit(), GL_LIGHT1);
    on->turnOn();
    lights->reorient(Camera());
    EXPECT_EQ(on->reorients, 1);
    EXPECT_EQ(off->reorients, 0);
    EXPECT_TRUE(lights->remove("on"));
    EXPECT_FALSE(lights->remove("on"));
    EXPECT_EQ(Light::getUnitMask(), 2u);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
}

TEST_F(LightGL, RegistrySetsTheLightModelAndTheLightingSwitch)
{
    lights->turnLightingOff();
    lights->initiate();
    GLint value = 0;
    glGetIntegerv(GL_LIGHT_MODEL_TWO_SIDE, &value);
    EXPECT_EQ(value, 1);
    glGetIntegerv(GL_LIGHT_MODEL_LOCAL_VIEWER, &value);
    EXPECT_EQ(value, 1);
    glGetIntegerv(GL_LIGHT_MODEL_COLOR_CONTROL, &value);
    EXPECT_EQ(value, GL_SEPARATE_SPECULAR_COLOR);
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    lights->toggleLighting();
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    // The flag, not GL, decides: a lighting switched on behind its back stays on.
    glEnable(GL_LIGHTING);
    lights->turnLightingOff();
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    glDisable(GL_LIGHTING);
}
