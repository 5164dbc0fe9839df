// LightRest: strangers put out and remembered once, the scene's own lights left alone, and a stranger removed
// meanwhile not touched on the way back.
#include "effects/LightRest.h"

#include "scene/DirectionalLight.h"
#include "scene/LightMgr.h"
#include "support/GLContext.h"

#include <gtest/gtest.h>

namespace {

class LightRestTest : public GLTest {
protected:
    void TearDown() override
    {
        for (const char* name : {"Stranger", "Leftover", "SceneSun"})
            lights->remove(name);
        GLTest::TearDown();
    }
    Light* add(const char* name)
    {
        Light* light = new DirectionalLight(name);
        lights->add(light);
        light->turnOn();
        return light;
    }
    LightMgr* lights = LightMgr::getHandle();
};

}  // namespace

TEST_F(LightRestTest, StrangersRestWhileTheSceneRunsAndOnlyThoseStillThereComeBack)
{
    // Lights other tests of this process left on are strangers too.
    int before = 0;
    for (int i = 0; lights->getLight(i); ++i)
        before += lights->getLight(i)->isOn() ? 1 : 0;
    Light* stranger = add("Stranger");
    add("Leftover");
    Light* own = add("SceneSun");
    LightRest rest;
    rest.dim("Scene");
    EXPECT_FALSE(stranger->isOn());
    EXPECT_FALSE(lights->find("Leftover")->isOn());
    EXPECT_TRUE(own->isOn());
    EXPECT_EQ(rest.getDimmed(), before + 2);
    // Every frame may ask again: a light is remembered once.
    stranger->turnOn();
    rest.dim("Scene");
    EXPECT_FALSE(stranger->isOn());
    EXPECT_EQ(rest.getDimmed(), before + 2);
    // A scene that ends takes its light with it: the rest must not reach for it.
    lights->remove("Leftover");
    rest.restore();
    EXPECT_TRUE(stranger->isOn());
    EXPECT_EQ(rest.getDimmed(), 0);
}
