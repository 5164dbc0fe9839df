// What the space scenes' GL tests share: the demo's set-up, a frame drawn as the demo draws it, missing data.
#pragma once

#include <string>
#include <vector>

class Effect;
class MissingData;

class SceneHarness {
public:
    // What the demo does before its first scene: extensions bound, picture loaders registered, the
    // cameras told the window's size.
    static void prepare();
    // Clears, applies the active camera and its lights, draws the effect, and reads the frame back (RGBA).
    static std::vector<unsigned char> drawFrame(Effect& effect);
    // Pictures and materials cached by earlier tests of this process would stand in for missing files.
    static void forgetPictures();
    // Empty when the run said the scene's line for each file once and nothing else; otherwise why not.
    static std::string saidOnlyOnceEach(const MissingData& run, const char* scene, const char* const* files,
                                        size_t count);
};
