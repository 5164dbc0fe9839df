// Computed in double and rounded once to float, as every generator did before sharing these.
#include "ColourMath.h"

#include "Maths.h"

Rgba ColourMath::shade(Rgba c, double k)
{
    return Rgba{(float)(c.r * k), (float)(c.g * k), (float)(c.b * k), c.a};
}

Rgba ColourMath::mix(Rgba a, Rgba b, double t)
{
    return Rgba{(float)Maths::mix(a.r, b.r, t), (float)Maths::mix(a.g, b.g, t), (float)Maths::mix(a.b, b.b, t), 1.0f};
}

Rgba ColourMath::mixWithAlpha(Rgba a, Rgba b, double t)
{
    Rgba c = mix(a, b, t);
    c.a = (float)Maths::mix(a.a, b.a, t);
    return c;
}
