#pragma once

// Complex arithmetic on split arrays (z) and interleaved arrays (c). Products
// that feed a sum are fused in the members with FMA.
#include "toolkit/HVNSIMDEntries.h"
#include "toolkit/isa/HVNIsaCore.h"

namespace HVN_ISA_NAMESPACE
{
template<typename V>
inline V productRe (V aRe, V aIm, V bRe, V bIm)
{
    return msub (aRe, bRe, aIm * bIm);
}

template<typename V>
inline V productIm (V aRe, V aIm, V bRe, V bIm)
{
    return madd (aRe, bIm, aIm * bRe);
}

// acc + (a*b) in split form. The fused members fold the accumulator into the
// two multiply-adds; the others keep the product's own rounding.
template<typename V>
inline V accumulateRe (V acc, V aRe, V aIm, V bRe, V bIm)
{
    if constexpr (fused)
        return -madd (aIm, bIm, -madd (aRe, bRe, acc));
    else
        return acc + productRe (aRe, aIm, bRe, bIm);
}

template<typename V>
inline V accumulateIm (V acc, V aRe, V aIm, V bRe, V bIm)
{
    if constexpr (fused)
        return madd (aIm, bRe, madd (aRe, bIm, acc));
    else
        return acc + productIm (aRe, aIm, bRe, bIm);
}

template<typename T>
void zAdd (const T* aRe, const T* aIm, const T* bRe, const T* bIm, T* outRe, T* outIm, uint32_t n)
{
    T* const outs[2] = {outRe, outIm};
    mapMany<2> (
        n,
        [] (auto ar, auto ai, auto br, auto bi) {
            return Outs<decltype (ar), 2>{{ar + br, ai + bi}};
        },
        outs, aRe, aIm, bRe, bIm);
}

template<typename T>
void zMul (HVNSplitIn<T> a, HVNSplitIn<T> b, HVNSplitOut<T> out, uint32_t n)
{
    T* const outs[2] = {out.re, out.im};
    mapMany<2> (
        n,
        [] (auto ar, auto ai, auto br, auto bi) {
            return Outs<decltype (ar), 2>{{productRe (ar, ai, br, bi), productIm (ar, ai, br, bi)}};
        },
        outs, a.re, a.im, b.re, b.im);
}

template<typename T>
void zMulAcc (const T* aRe, const T* aIm, const T* bRe, const T* bIm, T* outRe, T* outIm, uint32_t n)
{
    T* const outs[2] = {outRe, outIm};
    mapMany<2> (
        n,
        [] (auto ar, auto ai, auto br, auto bi, auto accRe, auto accIm)
        {
            return Outs<decltype (ar), 2>{
                {accumulateRe (accRe, ar, ai, br, bi), accumulateIm (accIm, ar, ai, br, bi)}};
        },
        outs, aRe, aIm, bRe, bIm, static_cast<const T*> (outRe), static_cast<const T*> (outIm));
}

// The innermost step of the stereo partitioned convolver: both channels
// against one filter spectrum in one pass.
template<typename T>
void zMulAccTwin (const T* xRe, const T* xIm, const T* yRe, const T* yIm, const T* hRe, const T* hIm,
                  T* accXRe, T* accXIm, T* accYRe, T* accYIm, uint32_t n)
{
    T* const outs[4] = {accXRe, accXIm, accYRe, accYIm};
    mapMany<4> (
        n,
        [] (auto xr, auto xi, auto yr, auto yi, auto hr, auto hi, auto axr, auto axi, auto ayr, auto ayi)
        {
            return Outs<decltype (xr), 4>{
                {accumulateRe (axr, xr, xi, hr, hi), accumulateIm (axi, xr, xi, hr, hi),
                 accumulateRe (ayr, yr, yi, hr, hi), accumulateIm (ayi, yr, yi, hr, hi)}};
        },
        outs, xRe, xIm, yRe, yIm, hRe, hIm, static_cast<const T*> (accXRe), static_cast<const T*> (accXIm),
        static_cast<const T*> (accYRe), static_cast<const T*> (accYIm));
}

// The interleaved forms have no call site in the plug-in; plain loops with the
// member's rounding.
template<typename T>
void cMul (const T* a, const T* b, T* out, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
    {
        const T ar = a[2 * i], ai = a[2 * i + 1], br = b[2 * i], bi = b[2 * i + 1];
        out[2 * i] = productRe (ar, ai, br, bi);
        out[2 * i + 1] = productIm (ar, ai, br, bi);
    }
}

template<typename T>
void cMulAcc (const T* a, const T* b, T* inout, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
    {
        const T ar = a[2 * i], ai = a[2 * i + 1], br = b[2 * i], bi = b[2 * i + 1];
        inout[2 * i] = accumulateRe (inout[2 * i], ar, ai, br, bi);
        inout[2 * i + 1] = accumulateIm (inout[2 * i + 1], ar, ai, br, bi);
    }
}
} // namespace HVN_ISA_NAMESPACE
