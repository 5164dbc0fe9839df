// The angle constants the engine and the scenes share, in single precision.
#pragma once

namespace MathConstants {

constexpr float PI = 3.1415927f;
constexpr float TWO_PI = 6.2831855f;
constexpr float DEGREES_TO_RADIANS = 0.017453292f;

}  // namespace MathConstants
