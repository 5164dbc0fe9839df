// The demo: configuration, managers, music and the scene schedule.
#pragma once

class Velmora {
public:
    bool run(int, char**) { return true; }
};
