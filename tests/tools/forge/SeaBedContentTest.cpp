// The sea bed's content: the dive clear of the sand and the rocks and ending in the cave, the school above the floor, the eye before the rock face, the files read back.
#include "SeaBedContent.h"
#include "SeaBedMeshes.h"

#include "scene/CameraAnimation.h"
#include "scene/Lin3Track.h"
#include "scene/MeshAnimation.h"
#include "scene/Terrain.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <cmath>
#include <cstdio>
#include <string>

using namespace SeaBedLayout;

TEST(SeaBedContent, TheDiveAndTheSchoolKeepClearTheEyeSitsBeforeTheRockAndTheFilesReadBack)
{
    for (double t = 0.0; t <= SeaBedContent::SECONDS; t += 0.05) {
        const Vec3 camera = SeaBedContent::cameraAt(t);
        const double above = camera.y - SeaBedContent::floorHeight(camera.x, camera.z);
        ASSERT_TRUE(camera.z < CLIFF_Z + 4.0 || above >= SeaBedContent::CAMERA_CLEARANCE - 1e-9) << t;
        ASSERT_LT(camera.y, SURFACE_HEIGHT - 1.0) << t;
        for (const Rock& rock : ROCKS) {
            const double dx = camera.x - rock.x;
            const double dz = camera.z - rock.z;
            const double dy = camera.y - SeaBedContent::floorHeight(rock.x, rock.z);
            ASSERT_GT(std::sqrt(dx * dx + dy * dy + dz * dz), 1.8 * rock.scale) << t;
        }
    }
    // The last seconds run down the middle of the cave, past the rock face.
    const Vec3 end = SeaBedContent::cameraAt(SeaBedContent::SECONDS);
    EXPECT_LT(end.z, CLIFF_Z - 5.0);
    EXPECT_LT(std::fabs(end.x - CAVE_MOUTH.x), CAVE_WIDTH * 0.5);
    EXPECT_LT(std::fabs(end.y - CAVE_MOUTH.y), CAVE_HEIGHT * 0.5);
    // Before it goes in, the camera looks the eye in the face.
    const Vec3 look = SeaBedContent::targetAt(26.0);
    EXPECT_LT((look - Vec3{EYE_CENTRE.x, EYE_CENTRE.y, EYE_CENTRE.z}).length(), 1e-9);
    for (double t = 0.0; t <= SeaBedContent::SECONDS; t += 0.1) {
        const Vec3 school = SeaBedContent::schoolAt(t);
        ASSERT_GT(school.y - SeaBedContent::floorHeight(school.x, school.z), SCHOOL_RADIUS * 0.6 + 1.0) << t;
        ASSERT_GT(school.z, CLIFF_Z + SCHOOL_RADIUS) << t;
    }
    // The rock round the eye lies behind the ball's middle; the sand below the cave's floor.
    for (double a = 0.0; a < 6.28; a += 0.3) {
        const double x = EYE_CENTRE.x + EYE_RADIUS * 1.3 * std::cos(a);
        const double y = EYE_CENTRE.y + EYE_RADIUS * 1.3 * std::sin(a);
        EXPECT_LT(CLIFF_Z + SeaBedMeshes::cliffRelief(x, y), EYE_CENTRE.z) << a;
    }
    for (double z = CLIFF_Z - 1.0; z > CLIFF_Z - CAVE_LENGTH; z -= 2.0)
        EXPECT_LT(SeaBedContent::floorHeight(CAVE_MOUTH.x, z), CAVE_MOUTH.y - CAVE_HEIGHT) << z;
    const std::string base = "/tmp/seabed-content-" + std::to_string(getpid());
    const std::string floor = base + ".ter", camera = base + ".cam", school = base + "-school.cam";
    ASSERT_TRUE(SeaBedContent::writeTerrain(floor.c_str()));
    ASSERT_TRUE(SeaBedContent::writeCamera(camera.c_str()));
    ASSERT_TRUE(SeaBedContent::writeSchool(school.c_str()));
    Terrain terrain;
    CameraAnimation cameraPath;
    MeshAnimation schoolPath;
    ASSERT_TRUE(terrain.load(floor.c_str()));
    ASSERT_TRUE(cameraPath.load(camera.c_str()));
    ASSERT_TRUE(schoolPath.load(school.c_str()));
    for (const std::string& file : {floor, camera, school})
        std::remove(file.c_str());

    EXPECT_EQ(terrain.getColumns(), TERRAIN_SIDE);
    for (int i = 0; i < TERRAIN_SIDE; i += 16) {
        const Vector3 p = terrain.gridPoint(i, TERRAIN_SIDE - 1 - i);
        EXPECT_EQ(p.y, static_cast<float>(SeaBedContent::floorHeight(p.x, p.z))) << i;
    }
    cameraPath.setup();
    schoolPath.setup();
    EXPECT_GE(cameraPath.getLastFrame(), SeaBedContent::SECONDS * FRAMES_PER_SECOND);
    EXPECT_GE(schoolPath.getLastFrame(), SeaBedContent::SECONDS * FRAMES_PER_SECOND);
    for (double t : {0.0, 9.0, 21.5, 30.0}) {
        const Vector3 got = cameraPath.getPositionTrack()->evaluate(static_cast<float>(t * FRAMES_PER_SECOND));
        EXPECT_LT((Vec3{got.x, got.y, got.z} - SeaBedContent::cameraAt(t)).length(), 0.05) << t;
        const Vector3 fish = schoolPath.getPositionTrack()->evaluate(static_cast<float>(t * FRAMES_PER_SECOND));
        EXPECT_LT((Vec3{fish.x, fish.y, fish.z} - SeaBedContent::schoolAt(t)).length(), 0.05) << t;
    }
}
