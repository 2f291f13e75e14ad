#include "toolkit/vHVN_biquad.h"

#include "toolkit/HVNVec.h"

#include <algorithm>
#include <cmath>

namespace vHVN_biquad
{
namespace
{
constexpr double pi = 3.14159265358979323846;
// ln(10) / 20: decibels to a natural exponent.
constexpr double dbToExponent = 0.11512925464970228;

void put (RawSections& sections, uint32_t index, const RawSection& section)
{
    if (sections.size() <= index)
        sections.resize (index + 1);
    sections[index] = section;
}

uint32_t butterworth (RawSections& sections, double fs, double f, double g, double order, bool high)
{
    f = std::min (f, 0.99 * fs / 2.0);
    if (high)
        f = fs / 2.0 - f;
    const double t = std::tan (pi * f / fs), t2 = t * t;
    const int n = static_cast<int> (order);
    const int pairs = n / 2;
    const double sign = high ? -1.0 : 1.0;
    double k = 1.0;
    if (g != 0.0 && pairs > 0)
        k = 1.0 / std::pow (std::pow (2.0, g / 3.0), 1.0 / (2.0 * pairs));

    uint32_t count = 0;
    for (int i = 1; i <= pairs; ++i)
    {
        const double c = std::cos ((2.0 * i + n - 1) * pi / (2.0 * n));
        const double u = -2.0 * k * c * t;
        put (sections, count++,
             {t2, sign * 2.0 * t2, t2, t2 + 1.0 + u, sign * (2.0 * t2 - 2.0), t2 - u + 1.0});
    }
    if (n % 2 == 1)
    {
        const double p = (1.0 - t) / (1.0 + t);
        const double b = (1.0 - p) / 2.0;
        put (sections, count++, {b, sign * b, 0.0, 1.0, sign * -p, 0.0});
    }
    return count;
}

RawSection shelf (double fs, double f, double g, double q, bool low)
{
    f = std::min (f, 0.99 * fs / 2.0);
    const double w0 = 2.0 * pi * f / fs;
    const double A = std::pow (10.0, g / 40.0);
    if (A != 1.0)
        q = std::min (q, (A * A + 1.0) / ((A - 1.0) * (A - 1.0)));
    const double alpha = std::sin (w0) / 2.0 * std::sqrt ((A + 1.0 / A) * (1.0 / q - 1.0) + 2.0);
    const double c = std::cos (w0), r = 2.0 * std::sqrt (A) * alpha;
    if (low)
        return {A * ((A + 1) - (A - 1) * c + r), 2 * A * ((A - 1) - (A + 1) * c),
                A * ((A + 1) - (A - 1) * c - r), (A + 1) + (A - 1) * c + r,
                -2 * ((A - 1) + (A + 1) * c),    (A + 1) + (A - 1) * c - r};
    return {A * ((A + 1) + (A - 1) * c + r), -2 * A * ((A - 1) + (A + 1) * c),
            A * ((A + 1) + (A - 1) * c - r), (A + 1) - (A - 1) * c + r,
            2 * ((A - 1) - (A + 1) * c),     (A + 1) - (A - 1) * c - r};
}
} // namespace

uint32_t designFilterSections (RawSections& sections, double fs, double f, double g, double q, double order,
                               uint32_t type)
{
    const double w0 = 2.0 * pi * f / fs;
    switch (type)
    {
    case ButterworthLowpass:
    case ButterworthHighpass:
        return butterworth (sections, fs, f, g, order, type == ButterworthHighpass);
    case LinkwitzRileyLowpass:
    case LinkwitzRileyHighpass:
    {
        const bool high = type == LinkwitzRileyHighpass;
        if (order == 2.0)
            return designFilterSections (sections, fs, f, 0.0, 0.5, 2.0, high ? Highpass : Lowpass);
        const uint32_t half = butterworth (sections, fs, f, g, order / 2.0, high);
        for (uint32_t i = 0; i < half; ++i)
            put (sections, half + i, sections[i]);
        return 2 * half;
    }
    case LowShelf:
    case HighShelf:
        put (sections, 0, shelf (fs, f, g, q, type == LowShelf));
        return 1;
    case Peak:
    {
        const double fl = std::min (f, 0.99 * fs / 2.0);
        const double w = 2.0 * pi * fl / fs;
        const double A = std::pow (10.0, g / 40.0), alpha = std::sin (w) / (2.0 * q), c = std::cos (w);
        put (sections, 0, {1 + alpha * A, -2 * c, 1 - alpha * A, 1 + alpha / A, -2 * c, 1 - alpha / A});
        return 1;
    }
    case Bandpass:
    {
        const double alpha = std::sin (w0) / (2.0 * q), G = std::exp (g * dbToExponent);
        put (sections, 0, {G * alpha, 0.0, -G * alpha, 1 + alpha, -2 * std::cos (w0), 1 - alpha});
        return 1;
    }
    case FirstOrderAllpass:
    {
        const double K = 2.0 * fs / (2.0 * pi * f);
        put (sections, 0, {K - 1, -1 - K, 0.0, K + 1, 1 - K, 0.0});
        return 1;
    }
    case Gain:
        put (sections, 0, {std::exp (g * dbToExponent), 0.0, 0.0, 1.0, 0.0, 0.0});
        return 1;
    case Lowpass:
    case Highpass:
    case Notch:
    {
        const double alpha = std::sin (w0) / (2.0 * q), c = std::cos (w0);
        const double a0 = 1 + alpha, a1 = -2 * c, a2 = 1 - alpha;
        if (type == Lowpass)
            put (sections, 0, {(1 - c) / 2, 1 - c, (1 - c) / 2, a0, a1, a2});
        else if (type == Highpass)
            put (sections, 0, {(1 + c) / 2, -(1 + c), (1 + c) / 2, a0, a1, a2});
        else
            put (sections, 0, {1.0, -2 * c, 1.0, a0, a1, a2});
        return 1;
    }
    default:
        return 0;
    }
}

template<typename T>
Biquad<T>::Biquad (uint32_t capacity)
    : maxSections (std::max (capacity, 1u))
    , coefficients (6 * maxSections)
    , delays (2 * maxSections)
{
    for (uint32_t s = 0; s < maxSections; ++s)
    {
        coefficients[6 * s] = 1;
        coefficients[6 * s + 3] = 1;
    }
}

template<typename T>
void Biquad<T>::reset()
{
    HVNVec::clear (delays.data(), delays.size());
}

template<typename T>
void Biquad<T>::copyDelaysFrom (const Biquad& other)
{
    reset();
    other.getDelays (delays.data());
}

template<typename T>
void Biquad<T>::getDelays (T* destination) const
{
    if (sections == 0)
        HVNVec::clear (destination, 2 * maxSections);
    else
        HVNVec::copy (delays.data(), destination, 2 * sections);
}

template<typename T>
void Biquad<T>::process (T* samples, uint32_t n)
{
    uint32_t i = 0;
    if (sections == 1)
        for (; i + 8 <= n; i += 8)
            processEight (samples + i);
    for (; i < n; ++i)
        samples[i] = processOne (samples[i]);
}

template<typename T>
void Biquad<T>::setCoefficients (uint32_t count, const T* values)
{
    count = std::min (count, maxSections);
    if (count != sections)
    {
        for (uint32_t s = count; s < maxSections; ++s)
            delays[2 * s] = delays[2 * s + 1] = 0;
        // Sections newly taken into use must not inherit stale memory either.
        for (uint32_t s = sections; s < count; ++s)
            delays[2 * s] = delays[2 * s + 1] = 0;
        sections = count;
    }
    for (uint32_t s = 0; s < count; ++s)
    {
        T* c = coefficients.data() + 6 * s;
        const T* v = values + 5 * s;
        c[0] = v[0];
        c[1] = v[1];
        c[2] = v[2];
        c[3] = 1;
        c[4] = v[3];
        c[5] = v[4];
    }
}

template<typename T>
T Biquad<T>::processOne (T x)
{
    for (uint32_t s = 0; s < sections; ++s)
    {
        const T* c = coefficients.data() + 6 * s;
        T* d = delays.data() + 2 * s;
        const T y = c[0] * x + d[0];
        d[0] = c[1] * x + d[1] - c[4] * y;
        d[1] = c[2] * x - c[5] * y;
        x = y;
    }
    return x;
}

template<typename T>
void Biquad<T>::processEight (T* x)
{
    const T* c = coefficients.data();
    T f0[8], f1[8], f2[8];
    // The feed-forward products have no dependency between samples: the compiler
    // turns these into vector multiplies, and only the recursion stays serial.
    for (int i = 0; i < 8; ++i)
    {
        f0[i] = c[0] * x[i];
        f1[i] = c[1] * x[i];
        f2[i] = c[2] * x[i];
    }
    T s1 = delays[0], s2 = delays[1];
    const T a1 = c[4], a2 = c[5];
    for (int i = 0; i < 8; ++i)
    {
        const T y = f0[i] + s1;
        s1 = f1[i] + s2 - a1 * y;
        s2 = f2[i] - a2 * y;
        x[i] = y;
    }
    delays[0] = s1;
    delays[1] = s2;
}

template<typename T>
Vectorized<T>::Vectorized (uint32_t capacity)
    : Biquad<T> (capacity)
{
}

template<typename T>
Vectorized<T>& Vectorized<T>::operator= (const Vectorized& other)
{
    if (this == &other)
        return *this;
    // HVNArray reallocates only when the sizes differ.
    this->maxSections = other.maxSections;
    this->sections = other.sections;
    this->coefficients = other.coefficients;
    this->delays = other.delays;
    return *this;
}

template<typename T>
void Vectorized<T>::process (T* samples, uint32_t n)
{
    if (this->sections == 0)
        return;
    Biquad<T>::process (samples, n);
}

template class Biquad<double>;
template class Vectorized<double>;
} // namespace vHVN_biquad
