// The console overlay's pictures: the glyph atlas and its dark backdrop.
#pragma once

class Forge;

class ConsoleArt {
public:
    // Writes data/confont.png and data/conbg2.png; false if either failed.
    bool build(Forge& forge);

private:
    bool buildFont(Forge& forge);
    bool buildBackground(Forge& forge);
};
