// The group's logo full screen as a rippling sheet: a 12 x 12 grid moved by a travelling wave.
#pragma once

#include "runtime/Effect.h"

class Texture;

class Logo : public Effect {
public:
    static const int GRID = 12;

    struct GridVertex {
        float x;
        float y;
        float u;
        float v;
    };

    Logo(short layer, const EffectTimer& timer);

    void initiate() override;
    // Releases the logo texture from the cache by its own name.
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    float getPhase() const { return phase; }
    const GridVertex& getVertex(int row, int column) const { return grid[row][column]; }
    Texture* getTexture() const { return texture; }

private:
    void layOutGrid();

    Texture* texture;
    GridVertex grid[GRID][GRID];
    float phase;
};
