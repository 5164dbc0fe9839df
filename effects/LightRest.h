// Puts out the lights earlier scenes left on while a scene runs, and puts them back when it ends.
#pragma once

class Light;

class LightRest {
public:
    // More than this many strangers stay as they are.
    enum { CAPACITY = 8 };

    LightRest();
    LightRest(const LightRest&) = delete;
    LightRest& operator=(const LightRest&) = delete;

    // Turns off every light that is on and whose name starts with none of the scene's prefix.
    void dim(const char* ownPrefix);
    // Turns the dimmed lights on again.
    void restore();
    int getDimmed() const { return count; }

private:
    Light* dimmed[CAPACITY];
    int count;
};
