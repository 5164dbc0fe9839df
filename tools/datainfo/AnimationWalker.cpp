// Walks a CANI chunk and its LIN3 tracks.
#include "AnimationWalker.h"

#include "Printing.h"
#include "scene/Lin3Key.h"
#include "scene/Track.h"

#include <cstdio>
#include <string>

AnimationWalker::AnimationWalker(ChunkReader& r, ChunkFacts& f) : reader(r), facts(f) {}

bool AnimationWalker::walk()
{
    reader.enter("CANI");
    float fps = 0.0f;
    std::string name;
    if (!reader.tag("CANI") || !reader.readFloats(&fps, 1, "frames per second") || !reader.readName(name, "name"))
        return false;
    reader.line() << "CANI \"" << name << "\" frames per second " << Printing::real(fps) << "\n";
    if (!(fps > 0.0f))
        return reader.fail("frames per second " + Printing::real(fps) + " is not above 0");
    if (!walkTrack("position"))
        return false;
    // The reader knows the class from the file: a second track makes it a camera's look-at path.
    std::string next;
    facts.kind = ChunkFacts::MESH_ANIMATION;
    if (reader.peekTag(next) && next == "LIN3") {
        facts.kind = ChunkFacts::CAMERA_ANIMATION;
        if (!walkTrack("target"))
            return false;
    }
    reader.leave();
    return true;
}

bool AnimationWalker::walkTrack(const char* role)
{
    reader.enter(std::string("LIN3 ") + role);
    int16_t flags = 0;
    int32_t count = 0;
    if (!reader.tag("LIN3") || !reader.readShort(flags, "track flags") ||
        !reader.readCount(count, Lin3Key::RECORD_SIZE, "key count"))
        return false;
    uint16_t bits = static_cast<uint16_t>(flags);
    reader.line() << "LIN3 " << role << " keys " << count << ", flags " << bits
                  << ((bits & Track::REPEAT) ? " repeat" : "") << ((bits & Track::CLOSED) ? " closed" : "") << "\n";
    int32_t previous = 0;
    int unordered = 0;
    for (int32_t i = 0; i < count; ++i) {
        int32_t frame = 0;
        if (!walkKey(i, frame))
            return false;
        unordered += (i > 0 && frame < previous) ? 1 : 0;
        previous = frame;
    }
    if (unordered > 0)
        reader.line() << "  " << unordered << " keys come before a later frame: loading sorts them\n";
    reader.leave();
    return true;
}

bool AnimationWalker::walkKey(int index, int32_t& frame)
{
    int16_t flags = 0;
    float values[8];
    if (!reader.tag("TCB0") || !reader.readInt(frame, "key frame") || !reader.readShort(flags, "key flags") ||
        !reader.readFloats(values, 8, "key values"))
        return false;
    reader.line() << "  key " << index << " frame " << frame << " " << Printing::numbers(values + 5, 3) << " tcb "
                  << Printing::numbers(values, 3) << " ease " << Printing::numbers(values + 3, 2) << "\n";
    return true;
}
