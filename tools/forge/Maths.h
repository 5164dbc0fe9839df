// Elementary functions built only from IEEE-exact operations, so the forge's pictures do not depend on the C library or the CPU.
#pragma once

class Maths {
public:
    static constexpr double pi = 3.14159265358979323846;

    static double sin(double x);
    static double cos(double x);
    static double exp(double x);
    // Natural logarithm; 0 and negative arguments give a very large negative number.
    static double log(double x);
    // Power for positive bases; a base of 0 or below gives 0.
    static double pow(double base, double exponent);
    static double atan2(double y, double x);

    static double clamp(double v, double lo, double hi);
    static double mix(double a, double b, double t);
    static double smoothstep(double edge0, double edge1, double x);
    // Euclidean remainder: the result always lies in [0, m).
    static double wrap(double v, double m);
};
