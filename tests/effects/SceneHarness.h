// What the space scenes' GL tests share: a frame drawn as the demo draws it, and a run in an empty working directory.
#pragma once

#include <functional>
#include <string>
#include <vector>

class Effect;

class SceneHarness {
public:
    // What a run printed.
    struct Output {
        std::string out;
        std::string errors;
    };

    // What the demo does before its first scene: extensions bound, picture loaders registered, the
    // cameras told the window's size.
    static void prepare();
    // Clears, applies the active camera and its lights, draws the effect, and reads the frame back (RGBA).
    static std::vector<unsigned char> drawFrame(Effect& effect);
    // Runs `body` in a fresh empty directory, with no pictures or materials of earlier tests at hand,
    // and returns what it printed.
    static Output inEmptyDirectory(const std::function<void()>& body);
    // The lines "<scene>: couldn't load '<file>'" for each file, in order.
    static std::string missingLines(const char* scene, const std::vector<std::string>& files);
};
