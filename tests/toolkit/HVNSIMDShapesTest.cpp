#include "tests/toolkit/HVNSIMDTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

// Entries whose inputs and outputs differ in shape from element-wise ones:
// reductions, filters, interleaved and integer arrays, tables and sorting.

namespace
{
using namespace hvn_test;

template<typename T>
std::vector<T> randomValues (size_t n, T low, T high, unsigned seed)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<T> d (low, high);
    std::vector<T> v (n);
    for (T& x : v)
        x = d (random);
    return v;
}

template<typename T>
Guarded<T> guardedCopy (const std::vector<T>& values, uint32_t misalign)
{
    Guarded<T> g (uint32_t (values.size()), misalign);
    std::copy (values.begin(), values.end(), g.data());
    return g;
}

// Sums of n products of values below 2: the error of any summation order stays
// within a few ulp of the sum of magnitudes.
template<typename T>
void expectSum (T got, T want, T magnitude, uint32_t n)
{
    const T tolerance = std::numeric_limits<T>::epsilon() * T (4) * T (n + 4) * (T (1) + magnitude);
    EXPECT_NEAR (got, want, tolerance);
}

template<typename T>
class HVNSIMDShapes : public ::testing::Test
{
};
using ElementTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE (HVNSIMDShapes, ElementTypes);

TYPED_TEST (HVNSIMDShapes, LanesMatchTheMemberWidth)
{
    for (const auto& m : runnableMembers())
    {
        const bool wide = m.name.rfind ("avx", 0) == 0;
        EXPECT_EQ (m.simd->doubleLanes(), wide ? 4u : 2u) << m.name;
        EXPECT_EQ (m.simd->floatLanes(), wide ? 8u : 4u) << m.name;
    }
}

TYPED_TEST (HVNSIMDShapes, ReductionsMatchTheSequentialSum)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
        for (uint32_t n : testCounts())
            for (uint32_t misalign : {0u, 1u})
            {
                SCOPED_TRACE (m.name + " n=" + std::to_string (n));
                const auto a = guardedCopy (randomValues<T> (n, T (-2), T (2), 1), misalign);
                const auto a2 = guardedCopy (randomValues<T> (n, T (-2), T (2), 2), misalign);
                const auto b = guardedCopy (randomValues<T> (n, T (-2), T (2), 3), 0);
                T dot = 0, dot2 = 0, sum = 0, magnitude = 0, magnitude2 = 0, sumMagnitude = 0;
                for (uint32_t i = 0; i < n; ++i)
                {
                    dot += a.data()[i] * b.data()[i];
                    dot2 += a2.data()[i] * b.data()[i];
                    sum += a.data()[i];
                    magnitude += std::abs (a.data()[i] * b.data()[i]);
                    magnitude2 += std::abs (a2.data()[i] * b.data()[i]);
                    sumMagnitude += std::abs (a.data()[i]);
                }
                T out[3] = {T (7), T (7), T (7)};
                m.simd->vDot (a.data(), b.data(), &out[0], n);
                expectSum (out[0], dot, magnitude, n);
                m.simd->vDotTwin (a.data(), a2.data(), b.data(), &out[1], &out[2], n);
                expectSum (out[1], dot, magnitude, n);
                expectSum (out[2], dot2, magnitude2, n);
                if (n > 0)
                {
                    m.simd->vMean (a.data(), &out[0], n);
                    expectSum (out[0], sum / T (n), sumMagnitude / T (n), n);
                }
                if (::testing::Test::HasFailure())
                    return;
            }
}

TYPED_TEST (HVNSIMDShapes, ConvolutionAndCorrelationMatchTheDirectForm)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
        for (uint32_t taps : {1u, 3u, 8u, 17u, 64u})
            for (uint32_t n : testCounts())
                for (int filterStride : {1, -1})
                {
                    SCOPED_TRACE (m.name + " taps=" + std::to_string (taps) + " n=" + std::to_string (n) +
                                  " stride=" + std::to_string (filterStride));
                    const auto in = randomValues<T> (n + taps, T (-1), T (1), 5);
                    const auto filter = randomValues<T> (taps, T (-1), T (1), 6);
                    Guarded<T> out (n, 1);
                    const T* filterStart = filterStride == 1 ? filter.data() : filter.data() + taps - 1;
                    m.simd->vConv (in.data(), 1, filterStart, filterStride, out.data(), 1, n, taps);
                    ASSERT_TRUE (out.guardsIntact());
                    for (uint32_t i = 0; i < n; ++i)
                    {
                        T want = 0, magnitude = 0;
                        for (uint32_t t = 0; t < taps; ++t)
                        {
                            const T h = filterStride == 1 ? filter[t] : filter[taps - 1 - t];
                            want += in[i + t] * h;
                            magnitude += std::abs (in[i + t] * h);
                        }
                        expectSum (out[i], want, magnitude, taps);
                    }
                    if (::testing::Test::HasFailure())
                        return;
                }
}

TYPED_TEST (HVNSIMDShapes, ConvolutionWithStridesUsesEveryStride)
{
    using T = TypeParam;
    const uint32_t n = 21, taps = 5;
    const auto in = randomValues<T> (2 * (n + taps), T (-1), T (1), 7);
    const auto filter = randomValues<T> (taps, T (-1), T (1), 8);
    for (const auto& m : runnableMembers())
    {
        std::vector<T> out (3 * n, T (99));
        m.simd->vConv (in.data(), 2, filter.data(), 1, out.data(), 3, n, taps);
        for (uint32_t i = 0; i < 3 * n; ++i)
        {
            if (i % 3 != 0)
            {
                EXPECT_EQ (out[i], T (99)) << "a stride gap was written";
                continue;
            }
            T want = 0;
            for (uint32_t t = 0; t < taps; ++t)
                want += in[2 * (i / 3 + t)] * filter[t];
            expectSum (out[i], want, T (taps), taps);
        }
    }
}

TYPED_TEST (HVNSIMDShapes, DecimationMatchesTheDirectFormOnBothChannels)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
        for (uint32_t factor : {1u, 2u, 3u})
            for (uint32_t taps : {1u, 7u, 16u, 33u})
                for (uint32_t n : {0u, 1u, 3u, 4u, 5u, 9u, 31u, 64u})
                {
                    SCOPED_TRACE (m.name + " factor=" + std::to_string (factor) +
                                  " taps=" + std::to_string (taps) + " n=" + std::to_string (n));
                    const auto a = randomValues<T> (n * factor + taps, T (-1), T (1), 9);
                    const auto b = randomValues<T> (n * factor + taps, T (-1), T (1), 10);
                    const auto filter = randomValues<T> (taps, T (-1), T (1), 11);
                    Guarded<T> single (n, 1), outA (n, 0), outB (n, 1);
                    m.simd->vDecimate (a.data(), factor, filter.data(), taps, single.data(), n);
                    m.simd->vDecimateTwin (a.data(), b.data(), factor, filter.data(), taps, outA.data(),
                                           outB.data(), n);
                    ASSERT_TRUE (single.guardsIntact() && outA.guardsIntact() && outB.guardsIntact());
                    for (uint32_t i = 0; i < n; ++i)
                    {
                        T wantA = 0, wantB = 0;
                        for (uint32_t t = 0; t < taps; ++t)
                        {
                            wantA += a[i * factor + t] * filter[t];
                            wantB += b[i * factor + t] * filter[t];
                        }
                        expectSum (single[i], wantA, T (taps), taps);
                        expectSum (outA[i], wantA, T (taps), taps);
                        expectSum (outB[i], wantB, T (taps), taps);
                        EXPECT_EQ (single[i], outA[i]) << "the twin form must compute each channel alike";
                    }
                    if (::testing::Test::HasFailure())
                        return;
                }
}

TYPED_TEST (HVNSIMDShapes, DeinterleaveAndInterleavedComplexForms)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
        for (uint32_t n : testCounts())
        {
            SCOPED_TRACE (m.name + " n=" + std::to_string (n));
            const auto in = randomValues<T> (2 * n, T (-2), T (2), 12);
            const auto b = randomValues<T> (2 * n, T (-2), T (2), 13);
            Guarded<T> even (n, 1), odd (n, 0);
            m.simd->vDeinterleave (in.data(), even.data(), odd.data(), n);
            ASSERT_TRUE (even.guardsIntact() && odd.guardsIntact());
            Guarded<T> product (2 * n, 1), accumulated (2 * n, 0);
            std::copy (b.begin(), b.end(), accumulated.data());
            m.simd->cMul (in.data(), b.data(), product.data(), n);
            m.simd->cMulAcc (in.data(), b.data(), accumulated.data(), n);
            ASSERT_TRUE (product.guardsIntact() && accumulated.guardsIntact());
            const T tolerance = std::numeric_limits<T>::epsilon() * 32;
            for (uint32_t i = 0; i < n; ++i)
            {
                EXPECT_EQ (even[i], in[2 * i]);
                EXPECT_EQ (odd[i], in[2 * i + 1]);
                const T re = in[2 * i] * b[2 * i] - in[2 * i + 1] * b[2 * i + 1];
                const T im = in[2 * i] * b[2 * i + 1] + in[2 * i + 1] * b[2 * i];
                EXPECT_NEAR (product[2 * i], re, tolerance);
                EXPECT_NEAR (product[2 * i + 1], im, tolerance);
                EXPECT_NEAR (accumulated[2 * i], b[2 * i] + re, tolerance);
                EXPECT_NEAR (accumulated[2 * i + 1], b[2 * i + 1] + im, tolerance);
            }
            if (::testing::Test::HasFailure())
                return;
        }
}

TYPED_TEST (HVNSIMDShapes, TablesInterpolateLikeTheFormula)
{
    using T = TypeParam;
    const uint32_t length = 40;
    const auto table = randomValues<T> (length, T (-1), T (1), 14);
    for (const auto& m : runnableMembers())
        for (uint32_t n : testCounts())
        {
            SCOPED_TRACE (m.name + " n=" + std::to_string (n));
            // Positions from below the table's start to the last usable point.
            const auto positions = randomValues<T> (n, T (0), T (length - 2), 15);
            Guarded<T> quad (n, 1);
            m.simd->vQuadInterp (table.data(), positions.data(), quad.data(), n);
            ASSERT_TRUE (quad.guardsIntact());

            // scale*in + offset is exact for these inputs, so the clamping is
            // exact in every member; only the blend may fuse.
            std::vector<T> in (n);
            for (uint32_t i = 0; i < n; ++i)
                in[i] = T (int (i * 37 % 97) - 20) / T (2);
            Guarded<T> lookup (n, 0);
            m.simd->vTableLookup (in.data(), T (0.5), T (4), table.data(), length, lookup.data(), n);
            ASSERT_TRUE (lookup.guardsIntact());

            const T tolerance = m.fused ? std::numeric_limits<T>::epsilon() * 16 : T (0);
            for (uint32_t i = 0; i < n; ++i)
            {
                const T x = positions[i];
                T k = std::trunc (x);
                if (k < 2)
                    k = 1;
                const T d = x - k, a = d * d;
                const size_t ki = size_t (k);
                const T want =
                    ((a - d) * table[ki - 1] + (a + d) * table[ki + 1]) * T (0.5) + (T (1) - a) * table[ki];
                EXPECT_NEAR (quad[i], want, tolerance) << "position " << x;

                const T p = T (0.5) * in[i] + T (4);
                T expected;
                if (!(p >= 0))
                    expected = table[0];
                else if (p >= T (length - 1))
                    expected = table[length - 1];
                else
                {
                    const size_t j = size_t (p);
                    const T f = p - T (j);
                    expected = (T (1) - f) * table[j] + f * table[j + 1];
                }
                EXPECT_NEAR (lookup[i], expected, tolerance) << "input " << in[i];
            }
            if (::testing::Test::HasFailure())
                return;
        }
}

TYPED_TEST (HVNSIMDShapes, ScaleIntTruncatesTheScaledValue)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
        for (uint32_t n : testCounts())
        {
            std::vector<int32_t> ints (n);
            for (uint32_t i = 0; i < n; ++i)
                ints[i] = int32_t (i * 7919) % 20001 - 10000;
            const auto scale = randomValues<T> (n, T (-3), T (3), 16);
            std::vector<int32_t> out (n + 1, 77);
            m.simd->vScaleInt (ints.data(), scale.data(), out.data(), n);
            for (uint32_t i = 0; i < n; ++i)
                ASSERT_EQ (out[i], int32_t (std::trunc (T (ints[i]) * scale[i])))
                    << m.name << " element " << i;
            ASSERT_EQ (out[n], 77) << m.name << " wrote past the end";
        }
}

TEST (HVNSIMDIntegers, ScalarAddAndMultiplyWrapAround)
{
    for (const auto& m : runnableMembers())
        for (uint32_t n : testCounts())
            for (int32_t s : {3, -7, INT32_MAX})
            {
                std::vector<int32_t> in (n + 1), sum (n + 1, 5), product (n + 1, 5);
                for (uint32_t i = 0; i < n; ++i)
                    in[i] = int32_t (uint32_t (i) * 2654435761u);
                m.simd->vScalarAddInt (in.data(), s, sum.data(), n);
                m.simd->vScalarMulInt (in.data(), s, product.data(), n);
                for (uint32_t i = 0; i < n; ++i)
                {
                    ASSERT_EQ (sum[i], int32_t (uint32_t (in[i]) + uint32_t (s))) << m.name << " " << i;
                    ASSERT_EQ (product[i], int32_t (uint32_t (in[i]) * uint32_t (s))) << m.name << " " << i;
                }
                ASSERT_EQ (sum[n], 5);
                ASSERT_EQ (product[n], 5);
            }
}

TYPED_TEST (HVNSIMDShapes, SortIndicesOrdersAPermutation)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
        for (uint32_t n : {0u, 1u, 2u, 17u, 1001u})
            for (bool descending : {false, true})
            {
                auto values = randomValues<T> (n, T (-5), T (5), 17);
                if (n > 4)
                    values[3] = values[1]; // a tie
                std::vector<uint32_t> indices (n + 1, 12345u);
                m.simd->vSortIndices (values.data(), indices.data(), n, descending);
                EXPECT_EQ (indices[n], 12345u);
                std::vector<uint32_t> sorted (indices.begin(), indices.begin() + n);
                std::sort (sorted.begin(), sorted.end());
                for (uint32_t i = 0; i < n; ++i)
                    ASSERT_EQ (sorted[i], i) << "not a permutation";
                for (uint32_t i = 1; i < n; ++i)
                {
                    const T previous = values[indices[i - 1]], current = values[indices[i]];
                    ASSERT_TRUE (descending ? previous >= current : previous <= current) << m.name;
                }
            }
}
} // namespace
