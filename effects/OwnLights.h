// For a stretch of drawing, only a scene's own lights: the others still switched on (a scene before may have left
// its lights on) are switched off, and back on when the stretch ends.
#pragma once

class Light;

class OwnLights {
public:
    enum { MOST_OTHERS = 8 };

    // The names of the scene's lights, up to the null that ends the list.
    explicit OwnLights(const char* const* names);
    ~OwnLights();
    OwnLights(const OwnLights&) = delete;
    OwnLights& operator=(const OwnLights&) = delete;

    int getSilenced() const { return silenced; }

private:
    Light* others[MOST_OTHERS];
    int silenced;
};
