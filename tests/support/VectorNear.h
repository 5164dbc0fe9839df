// Points compared within a distance, for the geometry tests.
#pragma once

#include "math/Vector3.h"

#include <gtest/gtest.h>

// Passes when `a` lies within `tolerance` of `b`.
inline void expectNear(const Vector3& a, const Vector3& b, float tolerance = 1e-5f)
{
    EXPECT_LE((a - b).length(), tolerance) << a << " is not " << b;
}
