// Elementary functions from range reduction and short polynomials (accurate to about 1e-15 relative).
#include "Maths.h"

#include <cmath>

namespace {

// 1/n! for the series below, built at compile time.
struct Factorials {
    double inverse[24];
    constexpr Factorials() : inverse()
    {
        double f = 1.0;
        inverse[0] = 1.0;
        for (int n = 1; n < 24; ++n) {
            f *= n;
            inverse[n] = 1.0 / f;
        }
    }
};
constexpr Factorials factorials;

// sin on [-pi/4, pi/4]: odd Taylor terms up to x^17, summed from the small end.
double sinKernel(double x)
{
    const double x2 = x * x;
    double sum = 0.0;
    for (int n = 17; n >= 3; n -= 2)
        sum = (n % 4 == 1 ? factorials.inverse[n] : -factorials.inverse[n]) + sum * x2;
    return x + x * x2 * sum;
}

double cosKernel(double x)
{
    const double x2 = x * x;
    double sum = 0.0;
    for (int n = 18; n >= 2; n -= 2)
        sum = (n % 4 == 0 ? factorials.inverse[n] : -factorials.inverse[n]) + sum * x2;
    return 1.0 + x2 * sum;
}

// atan on [0, 1] by reducing twice with the half-angle identity and a series.
double atanUnit(double x)
{
    // atan(x) = 2 atan(x / (1 + sqrt(1 + x^2))) shrinks the argument quickly.
    double scale = 1.0;
    for (int i = 0; i < 3; ++i) {
        x = x / (1.0 + std::sqrt(1.0 + x * x));
        scale *= 2.0;
    }
    const double x2 = x * x;
    double term = x;
    double sum = x;
    for (int n = 1; n <= 12; ++n) {
        term = -term * x2;
        sum += term / double(2 * n + 1);
    }
    return sum * scale;
}

}  // namespace

double Maths::sin(double x)
{
    const double quarter = pi / 2.0;
    const double k = std::floor(x / quarter + 0.5);
    const double r = x - k * quarter;
    const long long q = (long long)k & 3;
    if (q == 0)
        return sinKernel(r);
    if (q == 1)
        return cosKernel(r);
    if (q == 2)
        return -sinKernel(r);
    return -cosKernel(r);
}

double Maths::cos(double x)
{
    return sin(x + pi / 2.0);
}

double Maths::exp(double x)
{
    if (x > 700.0)
        return 1e304;
    if (x < -700.0)
        return 0.0;
    const double ln2 = 0.69314718055994530942;
    const double k = std::floor(x / ln2 + 0.5);
    const double r = x - k * ln2;
    double sum = 0.0;
    for (int n = 18; n >= 1; --n)
        sum = factorials.inverse[n] + sum * r;
    return std::ldexp(1.0 + r * sum, (int)k);
}

double Maths::log(double x)
{
    if (x <= 0.0)
        return -1e300;
    int e = 0;
    const double m = std::frexp(x, &e);  // m in [0.5, 1)
    // log(m) = 2 atanh((m - 1) / (m + 1)), a fast series for m near 1.
    const double s = (m - 1.0) / (m + 1.0);
    const double s2 = s * s;
    double term = s;
    double sum = s;
    for (int n = 1; n <= 20; ++n) {
        term *= s2;
        sum += term / double(2 * n + 1);
    }
    return 2.0 * sum + double(e) * 0.69314718055994530942;
}

double Maths::pow(double base, double exponent)
{
    if (base <= 0.0)
        return 0.0;
    return exp(exponent * log(base));
}

double Maths::atan2(double y, double x)
{
    if (x == 0.0 && y == 0.0)
        return 0.0;
    const double ax = std::fabs(x);
    const double ay = std::fabs(y);
    double a = ay <= ax ? atanUnit(ay / ax) : pi / 2.0 - atanUnit(ax / ay);
    if (x < 0.0)
        a = pi - a;
    return y < 0.0 ? -a : a;
}

double Maths::clamp(double v, double lo, double hi)
{
    if (v < lo)
        return lo;
    if (v > hi)
        return hi;
    return v;
}

double Maths::mix(double a, double b, double t)
{
    return a + (b - a) * t;
}

double Maths::smoothstep(double edge0, double edge1, double x)
{
    const double t = clamp((x - edge0) / (edge1 - edge0), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

double Maths::wrap(double v, double m)
{
    const double r = v - std::floor(v / m) * m;
    return r >= m ? 0.0 : r;
}
