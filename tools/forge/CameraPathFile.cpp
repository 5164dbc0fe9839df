// Camera paths written with the engine's own track classes, so the demo reads back exactly these keys.
#include "CameraPathFile.h"

#include "math/Vector3.h"
#include "scene/CameraAnimation.h"
#include "scene/Lin3Key.h"
#include "scene/Lin3Track.h"
#include "scene/object/Chunk.h"

#include <fstream>
#include <memory>

namespace {

std::unique_ptr<Lin3Track> track(double seconds, double framesPerSecond, int step, const CameraPathFile::Path& path)
{
    std::unique_ptr<Lin3Track> result(new Lin3Track());
    const int frames = static_cast<int>(seconds * framesPerSecond);
    for (int frame = 0; frame <= frames; frame += step) {
        const Vec3 p = path(frame / framesPerSecond);
        result->insertKey(
            new Lin3Key(static_cast<float>(frame),
                        Vector3(static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z))));
    }
    result->setup();
    return result;
}

}  // namespace

bool CameraPathFile::write(const std::string& file, const char* camera, double seconds, double framesPerSecond,
                           int step, const Path& eye, const Path& look)
{
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    const std::unique_ptr<Lin3Track> position = track(seconds, framesPerSecond, step, eye);
    Chunk::writeTag(out, "CANI");
    Chunk::writeFloat(out, static_cast<float>(framesPerSecond));
    CameraAnimation::writeName(out, camera);
    if (!position->save(out))
        return false;
    if (look && !track(seconds, framesPerSecond, step, look)->save(out))
        return false;
    return Chunk::good(out);
}
