#pragma once

// Reductions and FIR forms. They sum in several vector accumulators, fold the
// lanes and then add the scalar tail, so results differ in the last bits from a
// sequential sum and between members.
#include "toolkit/isa/HVNIsaCore.h"

namespace HVN_ISA_NAMESPACE
{
template<bool Aligned, typename T>
inline T dotBody (const T* a, const T* b, uint32_t n, uint32_t& done)
{
    constexpr uint32_t lanes = B<T>::size;
    B<T> acc0 (T (0)), acc1 (T (0)), acc2 (T (0)), acc3 (T (0));
    uint32_t i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes)
    {
        acc0 = madd (load<Aligned> (a + i), load<Aligned> (b + i), acc0);
        acc1 = madd (load<Aligned> (a + i + lanes), load<Aligned> (b + i + lanes), acc1);
        acc2 = madd (load<Aligned> (a + i + 2 * lanes), load<Aligned> (b + i + 2 * lanes), acc2);
        acc3 = madd (load<Aligned> (a + i + 3 * lanes), load<Aligned> (b + i + 3 * lanes), acc3);
    }
    for (; i + lanes <= n; i += lanes)
        acc0 = madd (load<Aligned> (a + i), load<Aligned> (b + i), acc0);
    done = i;
    return lanesSum<T> ((acc0 + acc1) + (acc2 + acc3));
}

template<typename T>
void vDot (const T* a, const T* b, T* out, uint32_t n)
{
    uint32_t i = 0;
    T sum = aligned (a) && aligned (b) ? dotBody<true> (a, b, n, i) : dotBody<false> (a, b, n, i);
    for (; i < n; ++i)
        sum = madd (a[i], b[i], sum);
    *out = sum;
}

template<typename T>
void vMean (const T* in, T* out, uint32_t n)
{
    constexpr uint32_t lanes = B<T>::size;
    B<T> acc0 (T (0)), acc1 (T (0));
    uint32_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes)
    {
        acc0 += B<T>::load_unaligned (in + i);
        acc1 += B<T>::load_unaligned (in + i + lanes);
    }
    for (; i + lanes <= n; i += lanes)
        acc0 += B<T>::load_unaligned (in + i);
    T sum = lanesSum<T> (acc0 + acc1);
    for (; i < n; ++i)
        sum += in[i];
    // 0/0 for an empty array, by design.
    *out = sum / T (n);
}

template<typename T>
void vDotTwin (const T* a1, const T* a2, const T* b, T* out1, T* out2, uint32_t n)
{
    constexpr uint32_t lanes = B<T>::size;
    B<T> x0 (T (0)), x1 (T (0)), y0 (T (0)), y1 (T (0));
    uint32_t i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes)
    {
        const B<T> b0 = B<T>::load_unaligned (b + i), b1 = B<T>::load_unaligned (b + i + lanes);
        x0 = madd (B<T>::load_unaligned (a1 + i), b0, x0);
        x1 = madd (B<T>::load_unaligned (a1 + i + lanes), b1, x1);
        y0 = madd (B<T>::load_unaligned (a2 + i), b0, y0);
        y1 = madd (B<T>::load_unaligned (a2 + i + lanes), b1, y1);
    }
    for (; i + lanes <= n; i += lanes)
    {
        const B<T> b0 = B<T>::load_unaligned (b + i);
        x0 = madd (B<T>::load_unaligned (a1 + i), b0, x0);
        y0 = madd (B<T>::load_unaligned (a2 + i), b0, y0);
    }
    T sum1 = lanesSum<T> (x0 + x1), sum2 = lanesSum<T> (y0 + y1);
    for (; i < n; ++i)
    {
        sum1 = madd (a1[i], b[i], sum1);
        sum2 = madd (a2[i], b[i], sum2);
    }
    *out1 = sum1;
    *out2 = sum2;
}

template<typename T>
void vDeinterleave (const T* in, T* outA, T* outB, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
    {
        const T a = in[2 * i], b = in[2 * i + 1];
        outA[i] = a;
        outB[i] = b;
    }
}

// Contiguous convolution: lanes run along the outputs, and each tap is one
// broadcast multiply-add into four vectors of outputs. A filter stride of -1
// reads the filter backward from the pointer given, which makes it a true
// convolution.
template<typename T, int FilterStride>
inline uint32_t convBody (const T* in, const T* filter, T* out, uint32_t n, uint32_t taps)
{
    constexpr uint32_t lanes = B<T>::size;
    uint32_t i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes)
    {
        B<T> acc0 (T (0)), acc1 (T (0)), acc2 (T (0)), acc3 (T (0));
        const T* x = in + i;
        for (uint32_t t = 0; t < taps; ++t, ++x)
        {
            const B<T> h (filter[FilterStride * int64_t (t)]);
            acc0 = madd (B<T>::load_unaligned (x), h, acc0);
            acc1 = madd (B<T>::load_unaligned (x + lanes), h, acc1);
            acc2 = madd (B<T>::load_unaligned (x + 2 * lanes), h, acc2);
            acc3 = madd (B<T>::load_unaligned (x + 3 * lanes), h, acc3);
        }
        acc0.store_unaligned (out + i);
        acc1.store_unaligned (out + i + lanes);
        acc2.store_unaligned (out + i + 2 * lanes);
        acc3.store_unaligned (out + i + 3 * lanes);
    }
    for (; i + lanes <= n; i += lanes)
    {
        B<T> acc (T (0));
        for (uint32_t t = 0; t < taps; ++t)
            acc = madd (B<T>::load_unaligned (in + i + t), B<T> (filter[FilterStride * int64_t (t)]), acc);
        acc.store_unaligned (out + i);
    }
    return i;
}

template<typename T>
void vConv (const T* in, int32_t inStride, const T* filter, int32_t filterStride, T* out, int32_t outStride,
            uint32_t n, uint32_t taps)
{
    uint32_t i = 0;
    const bool contiguous = inStride == 1 && outStride == 1 && !partialOverlap (out, in, n + taps);
    if (contiguous && filterStride == 1)
        i = convBody<T, 1> (in, filter, out, n, taps);
    else if (contiguous && filterStride == -1)
        i = convBody<T, -1> (in, filter, out, n, taps);
    for (; i < n; ++i)
    {
        T sum = T (0);
        for (uint32_t t = 0; t < taps; ++t)
            sum = madd (in[(int64_t (i) + t) * inStride], filter[int64_t (t) * filterStride], sum);
        out[int64_t (i) * outStride] = sum;
    }
}

// Decimating FIR: lanes run along the taps, four outputs per step, a scalar
// tail over the taps left over and over the last outputs. The twin form reads
// each filter vector once for two channels.
template<int Channels, typename T>
inline void decimateBody (const T* const (&in)[Channels], uint32_t factor, const T* filter, uint32_t taps,
                          T* const (&out)[Channels], uint32_t n)
{
    static_assert (Channels == 1 || Channels == 2, "one or two channels");
    constexpr uint32_t lanes = B<T>::size;
    const uint32_t vectorTaps = taps - taps % lanes;
    const size_t step = factor;
    uint32_t i = 0;
    for (; i + 4 <= n; i += 4)
    {
        // Named accumulators, so that they stay in registers.
        const T* xa = in[0] + size_t (i) * step;
        const T* xb = in[Channels - 1] + size_t (i) * step;
        B<T> a0 (T (0)), a1 (T (0)), a2 (T (0)), a3 (T (0));
        B<T> b0 (T (0)), b1 (T (0)), b2 (T (0)), b3 (T (0));
        for (uint32_t t = 0; t < vectorTaps; t += lanes)
        {
            const B<T> h = B<T>::load_unaligned (filter + t);
            a0 = madd (B<T>::load_unaligned (xa + t), h, a0);
            a1 = madd (B<T>::load_unaligned (xa + step + t), h, a1);
            a2 = madd (B<T>::load_unaligned (xa + 2 * step + t), h, a2);
            a3 = madd (B<T>::load_unaligned (xa + 3 * step + t), h, a3);
            if constexpr (Channels == 2)
            {
                b0 = madd (B<T>::load_unaligned (xb + t), h, b0);
                b1 = madd (B<T>::load_unaligned (xb + step + t), h, b1);
                b2 = madd (B<T>::load_unaligned (xb + 2 * step + t), h, b2);
                b3 = madd (B<T>::load_unaligned (xb + 3 * step + t), h, b3);
            }
        }
        const B<T> partial[2][4] = {{a0, a1, a2, a3}, {b0, b1, b2, b3}};
        for (int c = 0; c < Channels; ++c)
            for (uint32_t j = 0; j < 4; ++j)
            {
                T sum = lanesSum<T> (partial[c][j]);
                const T* x = in[c] + size_t (i + j) * step;
                for (uint32_t t = vectorTaps; t < taps; ++t)
                    sum = madd (x[t], filter[t], sum);
                out[c][i + j] = sum;
            }
    }
    for (; i < n; ++i)
        for (int c = 0; c < Channels; ++c)
        {
            const T* x = in[c] + size_t (i) * step;
            T sum = T (0);
            for (uint32_t t = 0; t < taps; ++t)
                sum = madd (x[t], filter[t], sum);
            out[c][i] = sum;
        }
}

template<typename T>
void vDecimate (const T* in, uint32_t factor, const T* filter, uint32_t taps, T* out, uint32_t n)
{
    const T* const ins[1] = {in};
    T* const outs[1] = {out};
    decimateBody<1> (ins, factor, filter, taps, outs, n);
}

template<typename T>
void vDecimateTwin (const T* inA, const T* inB, uint32_t factor, const T* filter, uint32_t taps, T* outA,
                    T* outB, uint32_t n)
{
    const T* const ins[2] = {inA, inB};
    T* const outs[2] = {outA, outB};
    decimateBody<2> (ins, factor, filter, taps, outs, n);
}
} // namespace HVN_ISA_NAMESPACE
