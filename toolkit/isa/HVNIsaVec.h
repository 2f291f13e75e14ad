#pragma once

// The vector helpers behind HVNVecKernels: transcendental functions from
// xsimd's math (about 1 to 1.5 ulp), hardware square roots, conversions, ramps
// and NaN-preserving thresholds.
#include "toolkit/HVNVecKernels.h"
#include "toolkit/isa/HVNIsaCore.h"
#include "toolkit/isa/HVNIsaTable.h"

#include <cmath>

namespace HVN_ISA_NAMESPACE
{
// Transcendental forms have no scalar built-in that matches xsimd's result, so
// the tail is padded into one vector instead.
template<typename T, typename Op>
inline void mapPadded (uint32_t n, Op op, T* out, const T* in)
{
    constexpr uint32_t lanes = B<T>::size;
    uint32_t i = 0;
    if (!partialOverlap (out, in, n))
        for (; i + lanes <= n; i += lanes)
            op (B<T>::load_unaligned (in + i)).store_unaligned (out + i);
    while (i < n)
    {
        alignas (64) T buffer[lanes] = {};
        const uint32_t count = n - i < lanes ? n - i : lanes;
        for (uint32_t j = 0; j < count; ++j)
            buffer[j] = in[i + j];
        op (B<T>::load_aligned (buffer)).store_aligned (buffer);
        for (uint32_t j = 0; j < count; ++j)
            out[i + j] = buffer[j];
        i += count;
    }
}

template<typename T>
void expScaled (const T* in, T scale, T* out, uint32_t n)
{
    mapPadded (
        n, [scale] (B<T> x) { return xsimd::exp (B<T> (scale) * x); }, out, in);
}

template<typename T>
void lnScaled (const T* in, T scale, T* out, uint32_t n)
{
    mapPadded (
        n, [scale] (B<T> x) { return B<T> (scale) * xsimd::log (x); }, out, in);
}

inline void sinD (const double* in, double* out, uint32_t n)
{
    mapPadded (
        n, [] (B<double> x) { return xsimd::sin (x); }, out, in);
}

inline void sincD (const double* in, double* out, uint32_t n)
{
    mapPadded (
        n,
        [] (B<double> v)
        {
            const B<double> x = B<double> (M_PI) * v;
            const B<double> one (1.0);
            return xsimd::select (x == B<double> (0.0), one, xsimd::sin (x) / x);
        },
        out, in);
}

inline void sinCosD (const double* in, double* sinOut, double* cosOut, uint32_t n)
{
    constexpr uint32_t lanes = B<double>::size;
    uint32_t i = 0;
    for (; i < n; i += lanes)
    {
        alignas (64) double buffer[lanes] = {}, s[lanes], c[lanes];
        const uint32_t count = n - i < lanes ? n - i : lanes;
        for (uint32_t j = 0; j < count; ++j)
            buffer[j] = in[i + j];
        const auto sc = xsimd::sincos (B<double>::load_aligned (buffer));
        sc.first.store_aligned (s);
        sc.second.store_aligned (c);
        for (uint32_t j = 0; j < count; ++j)
        {
            sinOut[i + j] = s[j];
            cosOut[i + j] = c[j];
        }
    }
}

template<typename T>
void sqrtOf (const T* in, T* out, uint32_t n)
{
    map (
        n,
        [] (auto x)
        {
            if constexpr (isScalar<decltype (x)>)
                return sizeof (x) == 4 ? T (__builtin_sqrtf (float (x))) : T (__builtin_sqrt (double (x)));
            else
                return xsimd::sqrt (x);
        },
        out, in);
}

inline void magnitudeD (const double* re, const double* im, double* out, uint32_t n)
{
    map (
        n,
        [] (auto r, auto i)
        {
            const auto sumOfSquares = madd (r, r, i * i);
            if constexpr (isScalar<decltype (r)>)
                return __builtin_sqrt (sumOfSquares);
            else
                return xsimd::sqrt (sumOfSquares);
        },
        out, re, im);
}

inline double normInfD (const double* in, uint32_t n)
{
    constexpr uint32_t lanes = B<double>::size;
    B<double> m0 (0.0), m1 (0.0);
    uint32_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes)
    {
        m0 = xsimd::max (xsimd::abs (B<double>::load_unaligned (in + i)), m0);
        m1 = xsimd::max (xsimd::abs (B<double>::load_unaligned (in + i + lanes)), m1);
    }
    alignas (64) double lanesOut[lanes];
    xsimd::max (m0, m1).store_aligned (lanesOut);
    double m = 0.0;
    for (uint32_t j = 0; j < lanes; ++j)
        m = vmax (lanesOut[j], m);
    for (; i < n; ++i)
        m = vmax (vabs (in[i]), m);
    return m;
}

inline void flipD (double* inout, uint32_t n)
{
    for (uint32_t i = 0, j = n; i + 1 < j--; ++i)
    {
        const double t = inout[i];
        inout[i] = inout[j];
        inout[j] = t;
    }
}

template<typename From, typename To>
void convertArray (const From* in, To* out, uint32_t n)
{
    // Wide loads of the narrower type would need lane shuffles that differ per
    // member; the compiler turns this loop into packed conversions for each.
    for (uint32_t i = 0; i < n; ++i)
        out[i] = static_cast<To> (in[i]);
}

template<typename T>
void ramp (T start, T step, T* out, uint32_t n)
{
    constexpr uint32_t lanes = B<T>::size;
    alignas (64) T first[lanes];
    for (uint32_t j = 0; j < lanes; ++j)
        first[j] = T (j);
    B<T> index = B<T>::load_aligned (first);
    const B<T> advance = B<T> (T (lanes)), s = B<T> (start), d = B<T> (step);
    uint32_t i = 0;
    // The index vector stays exact while it is below 2^24 (floats); longer
    // ramps finish in the element loop.
    const uint32_t vectorLimit = sizeof (T) == 4 ? (1u << 24) : 0xffffffffu;
    for (; i + lanes <= n && i + lanes <= vectorLimit; i += lanes)
    {
        (s + index * d).store_unaligned (out + i);
        index += advance;
    }
    for (; i < n; ++i)
        out[i] = start + T (i) * step;
}

template<typename T>
void lowerBound (const T* in, T level, T* out, uint32_t n)
{
    map (
        n,
        [level] (auto x)
        {
            using V = decltype (x);
            if constexpr (isScalar<V>)
                return x < level ? level : x;
            else
                return xsimd::select (x < V (level), V (level), x);
        },
        out, in);
}

template<typename T>
void upperBound (const T* in, T level, T* out, uint32_t n)
{
    map (
        n,
        [level] (auto x)
        {
            using V = decltype (x);
            if constexpr (isScalar<V>)
                return x > level ? level : x;
            else
                return xsimd::select (x > V (level), V (level), x);
        },
        out, in);
}

template<typename T>
void clipBoth (const T* in, T low, T high, T* out, uint32_t n)
{
    map (
        n,
        [low, high] (auto x)
        {
            using V = decltype (x);
            if constexpr (isScalar<V>)
                return x < low ? low : (x > high ? high : x);
            else
                return xsimd::select (x < V (low), V (low), xsimd::select (x > V (high), V (high), x));
        },
        out, in);
}

inline const HVNVecKernels vectorKernelTable{&expScaled<float>,
                                             &expScaled<double>,
                                             &lnScaled<double>,
                                             &sinD,
                                             &sinCosD,
                                             &sincD,
                                             &sqrtOf<float>,
                                             &sqrtOf<double>,
                                             &magnitudeD,
                                             &normInfD,
                                             &flipD,
                                             &convertArray<double, float>,
                                             &convertArray<float, double>,
                                             &ramp<float>,
                                             &ramp<double>,
                                             &lowerBound<float>,
                                             &lowerBound<double>,
                                             &upperBound<float>,
                                             &upperBound<double>,
                                             &clipBoth<float>,
                                             &clipBoth<double>,
                                             &quinticReadD};
} // namespace HVN_ISA_NAMESPACE
