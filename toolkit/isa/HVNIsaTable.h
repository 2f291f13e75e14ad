#pragma once

// Entries that index tables, evaluate polynomials or work on 32-bit integers.
#include "toolkit/isa/HVNIsaCore.h"
#include "toolkit/isa/HVNSortIndices.h"

#include <utility>

namespace HVN_ISA_NAMESPACE
{
template<typename T>
using Lanes = std::make_index_sequence<B<T>::size>;

// One vector from table entries picked by the offsets, built from scalar loads
// in registers rather than through memory, which would stall store forwarding.
template<typename T, std::size_t... J>
inline B<T> gatherLanes (const T* table, const int32_t* offsets, int32_t delta, std::index_sequence<J...>)
{
    return B<T>{table[offsets[J] + delta]...};
}

// Positions below 2 all interpolate around table[1], on purpose.
template<typename T>
void vQuadInterp (const T* table, const T* positions, T* out, uint32_t n)
{
    auto interpolate = [] (auto d, auto below, auto at, auto above)
    {
        using V = decltype (d);
        const V a = d * d;
        const V half (T (0.5)), one (T (1));
        return madd (one - a, at, madd (a - d, below, (a + d) * above) * half);
    };

    constexpr uint32_t lanes = B<T>::size;
    uint32_t i = 0;
    for (; i + lanes <= n; i += lanes)
    {
        const B<T> x = B<T>::load_unaligned (positions + i);
        const B<T> t = truncate (x);
        const B<T> k = xsimd::select (t < B<T> (T (2)), B<T> (T (1)), t);
        alignas (64) T index[lanes];
        k.store_aligned (index);
        // The table is read with scalar loads: no gather instruction.
        int32_t offsets[lanes];
        for (uint32_t j = 0; j < lanes; ++j)
            offsets[j] = static_cast<int32_t> (index[j]);
        const B<T> r = interpolate (x - k, gatherLanes (table, offsets, -1, Lanes<T>{}),
                                    gatherLanes (table, offsets, 0, Lanes<T>{}),
                                    gatherLanes (table, offsets, 1, Lanes<T>{}));
        r.store_unaligned (out + i);
    }
    for (; i < n; ++i)
    {
        const T x = positions[i];
        T k = truncate (x);
        if (k < T (2))
            k = T (1);
        const T* p = table + static_cast<int64_t> (k);
        out[i] = interpolate (x - k, p[-1], p[0], p[1]);
    }
}

// Six taps of each of a vector's samples, from each sample's row of contiguous
// taps: two-tap loads put side by side, then one unpack per pair of taps, in
// place of a scalar load for every tap.
template<typename T>
inline void transposedTaps (const T* line, const int32_t* taps, B<T> (&out)[6])
{
    static_assert (sizeof (T) == 8, "rows of doubles");
    if constexpr (B<T>::size == 4)
    {
#if defined(__AVX__)
        for (int k = 0; k < 3; ++k)
        {
            const int32_t at = 2 * k - 2;
            const __m256d even =
                _mm256_insertf128_pd (_mm256_castpd128_pd256 (_mm_loadu_pd (line + taps[0] + at)),
                                      _mm_loadu_pd (line + taps[2] + at), 1);
            const __m256d odd =
                _mm256_insertf128_pd (_mm256_castpd128_pd256 (_mm_loadu_pd (line + taps[1] + at)),
                                      _mm_loadu_pd (line + taps[3] + at), 1);
            out[2 * k] = B<T> (_mm256_unpacklo_pd (even, odd));
            out[2 * k + 1] = B<T> (_mm256_unpackhi_pd (even, odd));
        }
#endif
    }
    else
    {
        static_assert (B<T>::size == 2, "two or four lanes");
        for (int k = 0; k < 3; ++k)
        {
            const int32_t at = 2 * k - 2;
            const __m128d first = _mm_loadu_pd (line + taps[0] + at),
                          second = _mm_loadu_pd (line + taps[1] + at);
            out[2 * k] = B<T> (_mm_unpacklo_pd (first, second));
            out[2 * k + 1] = B<T> (_mm_unpackhi_pd (first, second));
        }
    }
}

// Six-point quintic read that moves along with the output: sample i lies at
// i + offsets[i] in the line. Products and sums stay unfused and in the order
// of the scalar formula, so every member gives the same bits.
inline void quinticReadD (const double* line, const double* offsets, double* out, uint32_t n)
{
    auto curve = [] (auto x, auto a, auto b, auto c, auto d, auto e, auto g)
    {
        using V = decltype (x);
        const V c1 = V (16.0) * (d - b) + V (2.0) * (a - e);
        const V c2 = V (16.0) * (d + b) - a - V (30.0) * c - e;
        const V c3 = V (66.0) * d - V (70.0) * c - V (33.0) * e + V (39.0) * b + V (7.0) * g - V (9.0) * a;
        const V c4 =
            V (126.0) * c - V (124.0) * d + V (61.0) * e - V (64.0) * b - V (12.0) * g + V (13.0) * a;
        const V c5 = V (50.0) * (d - c) + V (25.0) * (b - e) + V (5.0) * (g - a);
        // The constant stands as tuned: ten decimals, a hair under 1/24.
        return c + x * V (0.04166666666) * (c1 + x * (c2 + x * (c3 + x * (c4 + x * c5))));
    };

    constexpr uint32_t lanes = B<double>::size;
    uint32_t i = 0;
    for (; i + lanes <= n; i += lanes)
    {
        const B<double> v = B<double>::load_unaligned (offsets + i);
        const B<double> whole = floorOf (v);
        alignas (64) double index[lanes];
        whole.store_aligned (index);
        int32_t taps[lanes];
        for (uint32_t j = 0; j < lanes; ++j)
            taps[j] = static_cast<int32_t> (index[j]) + static_cast<int32_t> (i + j);
        B<double> t[6];
        transposedTaps (line, taps, t);
        curve (v - whole, t[0], t[1], t[2], t[3], t[4], t[5]).store_unaligned (out + i);
    }
    for (; i < n; ++i)
    {
        const double whole = floorOf (offsets[i]);
        const double* t = line + static_cast<int64_t> (whole) + i;
        out[i] = curve (offsets[i] - whole, t[-2], t[-1], t[0], t[1], t[2], t[3]);
    }
}

// x = scale*in + offset; not (x >= 0) gives table[0], which catches NaN, and
// x >= length-1 gives the last entry.
template<typename T>
void vTableLookup (const T* in, T scale, T offset, const T* table, uint32_t tableLength, T* out, uint32_t n)
{
    if (tableLength < 2)
    {
        for (uint32_t i = 0; i < n; ++i)
            out[i] = tableLength == 1 ? table[0] : T (0);
        return;
    }
    auto blend = [] (auto f, auto lower, auto upper)
    {
        using V = decltype (f);
        return madd (f, upper, (V (T (1)) - f) * lower);
    };
    const T last = T (tableLength - 1);

    constexpr uint32_t lanes = B<T>::size;
    uint32_t i = 0;
    if (!partialOverlap (out, in, n))
        for (; i + lanes <= n; i += lanes)
        {
            B<T> x = madd (B<T> (scale), B<T>::load_unaligned (in + i), B<T> (offset));
            x = xsimd::select (x >= B<T> (T (0)), x, B<T> (T (0)));
            x = xsimd::min (x, B<T> (last));
            // At the last entry k stops one short and f becomes 1, so that
            // table[k + 1] stays inside the table.
            const B<T> k = xsimd::min (truncate (x), B<T> (last - T (1)));
            alignas (64) T index[lanes];
            k.store_aligned (index);
            int32_t offsets[lanes];
            for (uint32_t j = 0; j < lanes; ++j)
                offsets[j] = static_cast<int32_t> (index[j]);
            const B<T> lower = gatherLanes (table, offsets, 0, Lanes<T>{});
            const B<T> upper = gatherLanes (table, offsets, 1, Lanes<T>{});
            blend (x - k, lower, upper).store_unaligned (out + i);
        }
    for (; i < n; ++i)
    {
        const T x = madd (scale, in[i], offset);
        if (!(x >= T (0)))
            out[i] = table[0];
        else if (x >= last)
            out[i] = table[tableLength - 1];
        else
        {
            const T k = truncate (x);
            const T* p = table + static_cast<uint32_t> (k);
            out[i] = blend (x - k, p[0], p[1]);
        }
    }
}

// Ascending powers, not Horner: acc starts at the constant term and each
// further coefficient is added as p*c with p running through x, x^2, ...
template<typename T>
void vPoly (const T* in, const T* coefficients, uint32_t count, T* out, uint32_t n)
{
    if (count == 0)
    {
        for (uint32_t i = 0; i < n; ++i)
            out[i] = T (0);
        return;
    }
    B<T> broadcast[64];
    for (uint32_t j = 0; j < count; ++j)
        broadcast[j] = B<T> (coefficients[j]);

    auto evaluate = [&] (auto x)
    {
        using V = decltype (x);
        auto coefficient = [&] (uint32_t j) -> V
        {
            if constexpr (isScalar<V>)
                return coefficients[j];
            else
                return broadcast[j];
        };
        V acc = coefficient (count - 1);
        V p = x;
        for (uint32_t j = count - 1; j-- > 0;)
        {
            acc = madd (p, coefficient (j), acc);
            p = p * x;
        }
        return acc;
    };
    map (n, evaluate, out, in);
}

template<typename T>
void vScaleInt (const int32_t* ints, const T* scale, int32_t* outInts, uint32_t n)
{
    uint32_t i = 0;
    if constexpr (sizeof (T) == 4)
    {
        using I = xsimd::batch<int32_t, Arch>;
        if (!partialOverlap (outInts, ints, n))
            for (; i + I::size <= n; i += I::size)
            {
                const B<T> x =
                    xsimd::to_float (I::load_unaligned (ints + i)) * B<T>::load_unaligned (scale + i);
                xsimd::to_int (x).store_unaligned (outInts + i);
            }
    }
    for (; i < n; ++i)
        outInts[i] = toInt32 (T (ints[i]) * scale[i]);
}

// Wrapping 32-bit arithmetic; the AVX members without AVX2 work on 128-bit halves.
template<typename Op>
inline void mapInt (const int32_t* in, int32_t s, int32_t* out, uint32_t n, Op op)
{
    using I = xsimd::batch<int32_t, IntArch>;
    uint32_t i = 0;
    if (!partialOverlap (out, in, n))
    {
        const I sv (s);
        for (; i + I::size <= n; i += I::size)
            op (I::load_unaligned (in + i), sv).store_unaligned (out + i);
    }
    for (; i < n; ++i)
        out[i] = static_cast<int32_t> (op (static_cast<uint32_t> (in[i]), static_cast<uint32_t> (s)));
}

inline void vScalarAddInt (const int32_t* in, int32_t s, int32_t* out, uint32_t n)
{
    mapInt (in, s, out, n, [] (auto x, auto y) { return x + y; });
}

inline void vScalarMulInt (const int32_t* in, int32_t s, int32_t* out, uint32_t n)
{
    mapInt (in, s, out, n, [] (auto x, auto y) { return x * y; });
}

template<typename T>
void vSortIndices (const T* values, uint32_t* indices, uint32_t n, bool descending)
{
    HVNSortIndices::sort (values, indices, n, descending);
}
} // namespace HVN_ISA_NAMESPACE
