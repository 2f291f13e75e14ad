#pragma once

// Element-wise entries: one formula per entry, shared by the vector loop and the
// scalar tail through map().
#include "toolkit/isa/HVNIsaCore.h"

namespace HVN_ISA_NAMESPACE
{
template<typename T>
void vAbs (const T* in, T* out, uint32_t n)
{
    map (
        n, [] (auto x) { return vabs (x); }, out, in);
}

template<typename T>
void vAdd (const T* a, const T* b, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return x + y; }, out, a, b);
}

template<typename T>
void vAddInPlace (const T* in, T* inout, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return y + x; }, inout, in, static_cast<const T*> (inout));
}

template<typename T>
void vAddMul (const T* a, const T* b, const T* c, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y, auto z) { return (x + y) * z; }, out, a, b, c);
}

template<typename T>
void vCopySign (const T* a, const T* b, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return vcopysign (x, y); }, out, a, b);
}

template<typename T>
void vLerp (const T* a, const T* b, const T* t, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y, auto w) { return madd (x, w, y) - y * w; }, out, a, b, t);
}

template<typename T>
void vDiv (const T* a, const T* b, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return x / y; }, out, a, b);
}

template<typename T>
void vClip (const T* in, T low, T high, T* out, uint32_t n)
{
    map (
        n,
        [low, high] (auto x)
        {
            using V = decltype (x);
            return vmin (vmax (x, V (low)), V (high));
        },
        out, in);
}

template<typename T>
void vFill (T* out, T value, uint32_t n)
{
    constexpr uint32_t lanes = B<T>::size;
    const B<T> v (value);
    uint32_t i = 0;
    if (aligned (out))
        for (; i + lanes <= n; i += lanes)
            v.store_aligned (out + i);
    else
        for (; i + lanes <= n; i += lanes)
            v.store_unaligned (out + i);
    for (; i < n; ++i)
        out[i] = value;
}

template<typename T>
void vClear (T* out, uint32_t n)
{
    vFill (out, T (0), n);
}

template<typename T>
void vFloor (const T* in, T* out, uint32_t n)
{
    map (
        n, [] (auto x) { return floorOf (x); }, out, in);
}

template<typename T>
void vFrac (const T* in, T* out, uint32_t n)
{
    map (
        n, [] (auto x) { return x - truncate (x); }, out, in);
}

template<typename T>
void vMax (const T* a, const T* b, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return vmax (x, y); }, out, a, b);
}

template<typename T>
void vMaxMag (const T* a, const T* b, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return vmax (vabs (x), vabs (y)); }, out, a, b);
}

template<typename T>
void vMul (const T* a, const T* b, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return x * y; }, out, a, b);
}

template<typename T>
void vMulInPlace (const T* in, T* inout, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return y * x; }, inout, in, static_cast<const T*> (inout));
}

template<typename T>
void vMulAdd (const T* a, const T* b, const T* c, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y, auto z) { return madd (x, y, z); }, out, a, b, c);
}

template<typename T>
void vMulTriple (const T* a, const T* b, const T* c, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y, auto z) { return x * y * z; }, out, a, b, c);
}

template<typename T>
void vMulMulAdd (const T* a, const T* b, const T* c, const T* d, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y, auto z, auto w) { return madd (x, y, z * w); }, out, a, b, c, d);
}

template<typename T>
void vMulMulSub (const T* a, const T* b, const T* c, const T* d, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y, auto z, auto w) { return x * y - z * w; }, out, a, b, c, d);
}

template<typename T>
void vMulSub (const T* a, const T* b, const T* c, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y, auto z) { return x * y - z; }, out, a, b, c);
}

template<typename T>
void vNeg (const T* in, T* out, uint32_t n)
{
    map (
        n, [] (auto x) { return -x; }, out, in);
}

template<typename T>
void vRecip (const T* in, T* out, uint32_t n)
{
    map (
        n,
        [] (auto x)
        {
            using V = decltype (x);
            return V (T (1)) / x;
        },
        out, in);
}

template<typename T>
void vScalarDiv (const T* in, T s, T* out, uint32_t n)
{
    // One reciprocal, then multiplications: callers rely on this rounding.
    const T r = T (1) / s;
    map (
        n, [r] (auto x) { return x * decltype (x) (r); }, out, in);
}

template<typename T>
void vSignSplit (const T* in, T* positive, T* negative, uint32_t n, bool magnitude)
{
    T* const outs[2] = {positive, negative};
    auto split = [magnitude] (auto x)
    {
        using V = decltype (x);
        const V zero (T (0));
        V pos, neg;
        if constexpr (isScalar<V>)
            pos = x >= zero ? x : zero;
        else
            pos = xsimd::select (x >= zero, x, zero);
        neg = x - pos;
        if (magnitude)
            neg = -neg;
        return Outs<V, 2>{{pos, neg}};
    };
    mapMany<2> (n, split, outs, in);
}

template<typename T>
void vSub (const T* a, const T* b, T* out, uint32_t n)
{
    map (
        n, [] (auto x, auto y) { return x - y; }, out, a, b);
}

template<typename T>
void vScalarAdd (const T* in, T s, T* out, uint32_t n)
{
    map (
        n, [s] (auto x) { return x + decltype (x) (s); }, out, in);
}

template<typename T>
void vScalarMul (const T* in, T s, T* out, uint32_t n)
{
    map (
        n, [s] (auto x) { return decltype (x) (s) * x; }, out, in);
}

template<typename T>
void vScalarMulAdd (const T* a, T s, const T* b, T* out, uint32_t n)
{
    map (
        n, [s] (auto x, auto y) { return madd (decltype (x) (s), x, y); }, out, a, b);
}

template<typename T>
void vScalarMulScalarAdd (const T* in, T s, T t, T* out, uint32_t n)
{
    map (
        n,
        [s, t] (auto x)
        {
            using V = decltype (x);
            return madd (V (s), x, V (t));
        },
        out, in);
}

template<typename T>
void vScalarMix (const T* a, T s, const T* b, T t, T* out, uint32_t n)
{
    map (
        n,
        [s, t] (auto x, auto y)
        {
            using V = decltype (x);
            return madd (V (s), x, V (t) * y);
        },
        out, a, b);
}

template<typename T>
void vSubScalarMul (const T* a, const T* b, T s, T* out, uint32_t n)
{
    map (
        n, [s] (auto x, auto y) { return (x - y) * decltype (x) (s); }, out, a, b);
}

template<typename T>
void vSquare (const T* in, T* out, uint32_t n)
{
    map (
        n, [] (auto x) { return x * x; }, out, in);
}

template<typename T>
void vSquareInPlace (T* inout, uint32_t n)
{
    map (
        n, [] (auto x) { return x * x; }, inout, static_cast<const T*> (inout));
}

template<typename T>
void vSwap (T* a, T* b, uint32_t n)
{
    if (a == b)
        return;
    T* const outs[2] = {a, b};
    mapMany<2> (
        n,
        [] (auto x, auto y) {
            return Outs<decltype (x), 2>{{y, x}};
        },
        outs, static_cast<const T*> (a), static_cast<const T*> (b));
}

template<typename T>
void vThreshold (const T* in, T t, T* out, uint32_t n)
{
    map (
        n, [t] (auto x) { return vmax (x, decltype (x) (t)); }, out, in);
}

template<typename T>
void vLimit (const T* in, T threshold, T value, T* out, uint32_t n)
{
    // The vector loop gives -value at an exact tie and the tail gives value;
    // both give value for NaN.
    map (
        n,
        [threshold, value] (auto x)
        {
            using V = decltype (x);
            if constexpr (isScalar<V>)
                return x < threshold ? -value : value;
            else
                return xsimd::select (x <= V (threshold), V (-value), V (value));
        },
        out, in);
}

template<typename T>
void vTriangle (const T* in, T amplitude, T frequency, T* out, uint32_t n)
{
    const T twiceAmplitude = T (2) * amplitude;
    map (
        n,
        [twiceAmplitude, frequency] (auto x)
        {
            using V = decltype (x);
            const V phase = V (frequency) * x;
            if constexpr (isScalar<V>)
                return twiceAmplitude * vabs (roundAway (phase) - phase);
            else
                return V (twiceAmplitude) * vabs (roundEven (phase) - phase);
        },
        out, in);
}

template<typename T>
void vUnitTriangle (const T* in, T* out, uint32_t n)
{
    map (
        n,
        [] (auto x)
        {
            using V = decltype (x);
            if constexpr (isScalar<V>)
                return vabs (T (2) * (x - roundAway (x)));
            else
                return vabs (V (T (2)) * (x - floorOf (x + V (T (0.5)))));
        },
        out, in);
}
} // namespace HVN_ISA_NAMESPACE
