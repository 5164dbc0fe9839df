// One credit of the opening: a picture cut from the shared credits texture, fading in and out
// over a blur trail that circles the view axis.
#pragma once

#include "math/Vector3.h"
#include "runtime/Effect.h"
#include "texture/InkCover.h"

class Texture;

class Credit : public Effect {
public:
    // Half-size of the picture quad: the floats just below 230.4 and 172.8.
    static constexpr float HALF_WIDTH = 230.39999389648438f;
    static constexpr float HALF_HEIGHT = 172.79998779296875f;
    static const int TRAIL_LENGTH = 15;
    static constexpr float TRAIL_STEP = 6.6666665f;

    Credit(int index, short layer, const EffectTimer& timer);

    // The first credit uploads the shared texture and makes the shared camera active.
    void initiate() override;
    // The last credit unloads the shared texture; it stays in the cache.
    void shutdown() override;
    void update(float seconds) override;
    void display() override;

    int getIndex() const { return index; }
    float getTextAlpha() const { return textAlpha; }
    float getTextAlphaSpeed() const { return textAlphaSpeed; }
    float getBlurAlpha() const { return blurAlpha; }
    float getBlurAlphaSpeed() const { return blurAlphaSpeed; }
    float getAngle() const { return angle; }
    float getAngleSpeed() const { return angleSpeed; }
    const Vector3& getBlurPos() const { return blurPos; }
    Texture* getTexture() const { return texture; }

private:
    // The picture stops at 0 once faded out; the trail bounces between 0 and 1.
    void updateText(float seconds);
    void updateBlur(float seconds);
    void drawCredit();
    void drawBlur();
    void drawBlurQuad(float v, const Vector3& offset);
    float halfSpan() const;
    // The quad at `offset`, its s running from sLeft at -X to sRight at +X and its t from v at +Y to v + 1/4 at
    // -Y, drawn only over the cover's boxes: the vertices of one quad per box, corners in the whole quad's order.
    void drawCovered(const InkCover& cover, float sLeft, float sRight, float v, const Vector3& offset) const;

    int index;
    float textAlpha;
    float textAlphaSpeed;
    float blurAlpha;
    float blurAlphaSpeed;
    float angle;
    float angleSpeed;
    Vector3 blurPos;
    Texture* texture;
    // Where the picture and the trail have ink: transparent texels blend to nothing, so only those parts are drawn.
    InkCover pictureInk;
    InkCover trailInk;
};
