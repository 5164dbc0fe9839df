// Feedback glow: each frame's small drawing is laid back, zoomed, spread and faded, under the next one.
#pragma once

class Diffusion {
public:
    // Side of the square the frame is drawn into and copied from, in pixels.
    static constexpr int SIZE = 256;
    // Strength is the number of displaced copies of the last frame averaged into the
    // next: one copy only smears outwards, more copies also spread the glow sideways.
    static constexpr int MAX_STRENGTH = 16;
    // What is left of the last frame after one pass; the trail fades by this per frame.
    static constexpr float FADE = 0.93f;
    // Each pass magnifies the last frame by this fraction of its size about the centre.
    static constexpr float ZOOM = 0.012f;
    // The copies sit on a ring of this radius in texels around the zoomed frame.
    static constexpr float SPREAD = 1.25f;
    // Taken off every pass after the fade, so that the faintest haze dies out
    // instead of being rounded back up to itself in an 8-bit buffer.
    static constexpr float FLOOR = 1.5f / 255.0f;

    explicit Diffusion(int strength);
    ~Diffusion();
    Diffusion(const Diffusion&) = delete;
    Diffusion& operator=(const Diffusion&) = delete;

    // Makes the feedback texture, black; false when GL gives none.
    bool initiate();
    // Points the viewport at the square and lays the last frame back into it.
    void beginDiffusion();
    // Keeps the square for the next frame and stretches it over the whole viewport.
    void endDiffusion();

    int getStrength() const { return strength; }
    unsigned getTexture() const { return texture; }
    // The texture-coordinate shift of copy i (of strength) on the spread ring.
    void copyOffset(int i, float& du, float& dv) const;
    // The blend weight that turns copy i into a running mean of copies 0..i.
    static float copyWeight(int i) { return 1.0f / static_cast<float>(i + 1); }

private:
    // The square actually used: no larger than the viewport.
    void regionSize(int& w, int& h) const;
    void layBack(int w, int h) const;
    static void beginFlat();
    static void endFlat();

    int strength;
    unsigned texture;
    bool begun;
    int viewport[4];
};
