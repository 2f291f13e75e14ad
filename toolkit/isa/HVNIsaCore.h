#pragma once

// Shared machinery of the per-instruction-set kernels. Included only by the five
// member translation units, each of which defines:
//   HVN_ISA_NAMESPACE  a namespace of its own, so that no inline function
//                      compiled for one instruction set can be chosen by the
//                      linker for another;
//   HVN_ISA_ARCH       the xsimd architecture tag;
//   HVN_ISA_FUSED      1 where a product feeding a sum is one fused operation;
//   HVN_ISA_INT_ARCH   the architecture of the 32-bit integer entries.
// Every file is also compiled with -Dxsimd=xsimd_<member> for the same reason.
// Scalar helpers use compiler built-ins rather than std:: templates, since an
// out-of-line copy of those would be shared between the members.

#if !defined(HVN_ISA_NAMESPACE) || !defined(HVN_ISA_ARCH) || !defined(HVN_ISA_FUSED) ||                      \
    !defined(HVN_ISA_INT_ARCH)
#error "A member translation unit must define its namespace, architecture and integer architecture"
#endif

#include <xsimd/xsimd.hpp>

#include <cstdint>
#include <type_traits>
#include <utility>

namespace HVN_ISA_NAMESPACE
{
using Arch = HVN_ISA_ARCH;
using IntArch = HVN_ISA_INT_ARCH;
static_assert (Arch::supported(), "this member is compiled without the instruction-set flags it needs");
static_assert (IntArch::supported(), "this member is compiled without the instruction-set flags it needs");

template<typename T>
using B = xsimd::batch<T, Arch>;

constexpr bool fused = HVN_ISA_FUSED != 0;
constexpr bool hasRounding = !std::is_same<Arch, xsimd::sse3>::value;
constexpr uintptr_t alignMask = Arch::alignment() - 1;

template<typename V>
constexpr bool isScalar = std::is_arithmetic<V>::value;

inline bool aligned (const void* p)
{
    return (reinterpret_cast<uintptr_t> (p) & alignMask) == 0;
}

// True when the ranges differ but intersect: such calls take the element loop,
// which reads and writes in the order of the formula.
template<typename T, typename U>
inline bool partialOverlap (const T* out, const U* in, uint32_t n)
{
    const uintptr_t o = reinterpret_cast<uintptr_t> (out), i = reinterpret_cast<uintptr_t> (in);
    if (o == i)
        return false;
    const uintptr_t bytesOut = uintptr_t (n) * sizeof (T), bytesIn = uintptr_t (n) * sizeof (U);
    return o < i + bytesIn && i < o + bytesOut;
}

template<bool Aligned, typename T>
inline B<T> load (const T* p)
{
    if constexpr (Aligned)
        return B<T>::load_aligned (p);
    else
        return B<T>::load_unaligned (p);
}

template<bool Aligned, typename T>
inline void store (T* p, const B<T>& v)
{
    if constexpr (Aligned)
        v.store_aligned (p);
    else
        v.store_unaligned (p);
}

// a*b + c and a*b - c, fused in the members that have FMA.
inline float madd (float a, float b, float c)
{
    return fused ? __builtin_fmaf (a, b, c) : a * b + c;
}
inline double madd (double a, double b, double c)
{
    return fused ? __builtin_fma (a, b, c) : a * b + c;
}
inline float msub (float a, float b, float c)
{
    return fused ? __builtin_fmaf (a, b, -c) : a * b - c;
}
inline double msub (double a, double b, double c)
{
    return fused ? __builtin_fma (a, b, -c) : a * b - c;
}

template<typename T>
inline B<T> madd (const B<T>& a, const B<T>& b, const B<T>& c)
{
    if constexpr (fused)
        return xsimd::fma (a, b, c);
    else
        return a * b + c;
}

template<typename T>
inline B<T> msub (const B<T>& a, const B<T>& b, const B<T>& c)
{
    if constexpr (fused)
        return xsimd::fms (a, b, c);
    else
        return a * b - c;
}

// Comparisons in the order of the packed max and min instructions: the
// second operand wins when either is NaN, in the vector loop and the tail alike.
inline float vmax (float a, float b)
{
    return a > b ? a : b;
}
inline double vmax (double a, double b)
{
    return a > b ? a : b;
}
inline float vmin (float a, float b)
{
    return a < b ? a : b;
}
inline double vmin (double a, double b)
{
    return a < b ? a : b;
}
template<typename T>
inline B<T> vmax (const B<T>& a, const B<T>& b)
{
    return xsimd::max (a, b);
}
template<typename T>
inline B<T> vmin (const B<T>& a, const B<T>& b)
{
    return xsimd::min (a, b);
}

inline float vabs (float x)
{
    return __builtin_fabsf (x);
}
inline double vabs (double x)
{
    return __builtin_fabs (x);
}
template<typename T>
inline B<T> vabs (const B<T>& x)
{
    return xsimd::abs (x);
}

inline float vcopysign (float x, float y)
{
    return __builtin_copysignf (x, y);
}
inline double vcopysign (double x, double y)
{
    return __builtin_copysign (x, y);
}
template<typename T>
inline B<T> vcopysign (const B<T>& x, const B<T>& y)
{
    return xsimd::copysign (x, y);
}

// Rounding. Without SSE4.1 the vector forms add and subtract 2^23 (2^52),
// which rounds to nearest-even in the default mode, then correct the result.
template<typename T>
constexpr T roundingMagic = sizeof (T) == 4 ? T (8388608.0) : T (4503599627370496.0);

template<typename T>
inline B<T> roundEven (const B<T>& x)
{
    if constexpr (hasRounding)
        return xsimd::nearbyint (x);
    else
    {
        const B<T> ax = xsimd::abs (x), magic (roundingMagic<T>);
        const B<T> r = (ax + magic) - magic;
        return xsimd::select (ax < magic, xsimd::copysign (r, x), x);
    }
}

template<typename T>
inline B<T> truncate (const B<T>& x)
{
    if constexpr (hasRounding)
        return xsimd::trunc (x);
    else
    {
        const B<T> ax = xsimd::abs (x), magic (roundingMagic<T>);
        B<T> r = (ax + magic) - magic;
        r = xsimd::select (r > ax, r - B<T> (T (1)), r);
        return xsimd::select (ax < magic, xsimd::copysign (r, x), x);
    }
}

template<typename T>
inline B<T> floorOf (const B<T>& x)
{
    if constexpr (hasRounding)
        return xsimd::floor (x);
    else
    {
        const B<T> t = truncate (x);
        return xsimd::select (t > x, t - B<T> (T (1)), t);
    }
}

inline float truncate (float x)
{
    return __builtin_truncf (x);
}
inline double truncate (double x)
{
    return __builtin_trunc (x);
}
inline float floorOf (float x)
{
    return __builtin_floorf (x);
}
inline double floorOf (double x)
{
    return __builtin_floor (x);
}
inline float roundAway (float x)
{
    return __builtin_roundf (x);
}
inline double roundAway (double x)
{
    return __builtin_round (x);
}

// Truncating conversion with the packed instruction's answer for values out of
// range and NaN.
template<typename T>
inline int32_t toInt32 (T x)
{
    if (x >= T (-2147483648.0) && x < T (2147483648.0))
        return static_cast<int32_t> (x);
    return INT32_MIN;
}

// Element-wise loops. The operation is a generic lambda that is called with
// batches in the vector loop and with scalars in the tail, so both compute the
// same formula; scalars it captures are widened with V(s).
template<bool Aligned, typename T, typename Op, typename... In>
inline uint32_t mapBody (uint32_t n, Op& op, T* out, const In*... in)
{
    constexpr uint32_t lanes = B<T>::size;
    uint32_t i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes)
    {
        const B<T> r0 = op (load<Aligned> (in + i)...);
        const B<T> r1 = op (load<Aligned> (in + i + lanes)...);
        const B<T> r2 = op (load<Aligned> (in + i + 2 * lanes)...);
        const B<T> r3 = op (load<Aligned> (in + i + 3 * lanes)...);
        store<Aligned> (out + i, r0);
        store<Aligned> (out + i + lanes, r1);
        store<Aligned> (out + i + 2 * lanes, r2);
        store<Aligned> (out + i + 3 * lanes, r3);
    }
    for (; i + lanes <= n; i += lanes)
        store<Aligned> (out + i, op (load<Aligned> (in + i)...));
    return i;
}

template<typename T, typename Op, typename... In>
inline void map (uint32_t n, Op op, T* out, const In*... in)
{
    uint32_t i = 0;
    if (!(false || ... || partialOverlap (out, in, n)))
        i = (aligned (out) && (true && ... && aligned (in))) ? mapBody<true> (n, op, out, in...)
                                                             : mapBody<false> (n, op, out, in...);
    for (; i < n; ++i)
        out[i] = op (in[i]...);
}

// K outputs at once: the operation returns Outs<V, K>.
template<typename V, int K>
struct Outs
{
    V v[K];
};

template<bool Aligned, int K, typename T, int... Ks>
inline void storeAll (T* const (&out)[K], uint32_t i, const Outs<B<T>, K>& r,
                      std::integer_sequence<int, Ks...>)
{
    (store<Aligned> (out[Ks] + i, r.v[Ks]), ...);
}

template<bool Aligned, int K, typename T, typename Op, typename... In>
inline uint32_t mapManyBody (uint32_t n, Op& op, T* const (&out)[K], const In*... in)
{
    constexpr uint32_t lanes = B<T>::size;
    uint32_t i = 0;
    for (; i + lanes <= n; i += lanes)
        storeAll<Aligned> (out, i, op (load<Aligned> (in + i)...), std::make_integer_sequence<int, K>{});
    return i;
}

template<int K, typename T, typename Op, typename... In>
inline void mapMany (uint32_t n, Op op, T* const (&out)[K], const In*... in)
{
    bool overlap = false, allAligned = (true && ... && aligned (in));
    for (int k = 0; k < K; ++k)
    {
        overlap = overlap || (false || ... || partialOverlap (out[k], in, n));
        for (int j = 0; j < k; ++j)
            overlap = overlap || partialOverlap (out[k], out[j], n);
        allAligned = allAligned && aligned (out[k]);
    }
    uint32_t i = 0;
    if (!overlap)
        i = allAligned ? mapManyBody<true> (n, op, out, in...) : mapManyBody<false> (n, op, out, in...);
    for (; i < n; ++i)
    {
        const Outs<T, K> r = op (in[i]...);
        for (int k = 0; k < K; ++k)
            out[k][i] = r.v[k];
    }
}

// Sum of the lanes.
template<typename T>
inline T lanesSum (const B<T>& v)
{
    return xsimd::hadd (v);
}
} // namespace HVN_ISA_NAMESPACE
