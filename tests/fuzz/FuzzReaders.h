// The reader entry points that fuzz targets and the regression suite feed with raw bytes.
#pragma once

#include <cstddef>
#include <cstdint>

class FuzzReaders {
public:
    enum Outcome {
        REJECTED,     // the reader refused the input, as it should refuse damage
        LOADED,       // the reader accepted it and every check on the result held
        INCONSISTENT  // accepted, but the result broke a check (a finding)
    };
    typedef Outcome (*Entry)(const uint8_t* data, size_t size);

    struct Reader {
        const char* name;  // fuzz program fuzz_<name>, corpus and regression folder <name>
        Entry entry;
    };

    // Once per process, before the first input: stdin from /dev/null (a
    // material may name any file, /dev/stdin included), the shared texture
    // that seed materials name, empty registries.
    static void prepare();

    static const Reader* find(const char* name);
    static const Reader* begin();
    static const Reader* end();

    // A 2 x 2 CTX1 texture at a fixed path, written through the engine's own
    // container writer; the seed materials and texture lists name it.
    static const char* sharedTexturePath();
    // The camera registered while an animation file is read, so that seed
    // paths reach the code that moves a camera.
    static const char* animatedCameraName();
};
