// Puts out the lights earlier scenes left on while a scene runs, and puts them back when it ends.
#pragma once

#include <string>

class LightRest {
public:
    // More than this many strangers stay as they are.
    enum { CAPACITY = 8 };

    // Turns off every light that is on and whose name does not start with the scene's prefix.
    // Cheap to call every frame: a light is remembered once, the first time it is put out.
    void dim(const char* ownPrefix);
    // Turns the dimmed lights that still exist on again. They are found by name: a light
    // another scene removed in the meantime is simply gone.
    void restore();
    int getDimmed() const { return count; }

private:
    bool remembers(const char* name) const;

    std::string names[CAPACITY];
    int count = 0;
};
