#include "tests/toolkit/HVNSIMDTestSupport.h"
#include "toolkit/HVNFPGuard.h"

#include <gtest/gtest.h>

#include <xmmintrin.h>

namespace
{
using namespace hvn_test;

template<typename T>
class HVNSIMDEdges : public ::testing::Test
{
};
using ElementTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE (HVNSIMDEdges, ElementTypes);

constexpr uint32_t span = 19; // two vectors of the widest float member and a tail

TYPED_TEST (HVNSIMDEdges, MeanOfNothingIsNaN)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
    {
        T in = T (1), out = T (0);
        m.simd->vMean (&in, &out, 0);
        EXPECT_TRUE (std::isnan (out)) << m.name;
    }
}

TYPED_TEST (HVNSIMDEdges, TableLookupEndsAndNaNInTheLoopAndTheTail)
{
    using T = TypeParam;
    const T table[5] = {T (10), T (11), T (12), T (13), T (14)};
    for (const auto& m : runnableMembers())
    {
        std::vector<T> in (span), out (span);
        for (uint32_t i = 0; i < span; ++i)
            in[i] = i % 3 == 0 ? T (4) : (i % 3 == 1 ? std::numeric_limits<T>::quiet_NaN() : T (-1));
        m.simd->vTableLookup (in.data(), T (1), T (0), table, 5, out.data(), span);
        for (uint32_t i = 0; i < span; ++i)
            EXPECT_EQ (out[i], i % 3 == 0 ? T (14) : T (10)) << m.name << " element " << i;
    }
}

TYPED_TEST (HVNSIMDEdges, QuadInterpBelowTwoInterpolatesAroundTheSecondEntry)
{
    using T = TypeParam;
    const T table[4] = {T (1), T (2), T (5), T (7)};
    // d = -0.5: a = 0.25, weights 0.375, 0.75 and -0.125.
    const T want = T (0.375) * table[0] + T (0.75) * table[1] - T (0.125) * table[2];
    for (const auto& m : runnableMembers())
    {
        std::vector<T> positions (span, T (0.5)), out (span);
        m.simd->vQuadInterp (table, positions.data(), out.data(), span);
        for (uint32_t i = 0; i < span; ++i)
            EXPECT_NEAR (out[i], want, 1e-6) << m.name << " element " << i;
    }
}

TYPED_TEST (HVNSIMDEdges, LimitGivesValueForNaNAndSplitsTheTie)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
    {
        const uint32_t lanes = sizeof (T) == 4 ? m.simd->floatLanes() : m.simd->doubleLanes();
        std::vector<T> nan (span, std::numeric_limits<T>::quiet_NaN()), tie (span, T (1)), out (span);
        m.simd->vLimit (nan.data(), T (1), T (2), out.data(), span);
        for (uint32_t i = 0; i < span; ++i)
            EXPECT_EQ (out[i], T (2)) << m.name;
        // At the threshold itself the vector loop says -value and the tail value.
        m.simd->vLimit (tie.data(), T (1), T (2), out.data(), span);
        const uint32_t vectorEnd = span - span % lanes;
        for (uint32_t i = 0; i < span; ++i)
            EXPECT_EQ (out[i], i < vectorEnd ? T (-2) : T (2)) << m.name << " element " << i;
    }
}

TYPED_TEST (HVNSIMDEdges, SignSplitWithAndWithoutMagnitude)
{
    using T = TypeParam;
    const T in[5] = {T (-3), T (2), T (0), T (-0.5), T (7)};
    for (const auto& m : runnableMembers())
    {
        T positive[5], negative[5], magnitude[5];
        m.simd->vSignSplit (in, positive, negative, 5, false);
        m.simd->vSignSplit (in, positive, magnitude, 5, true);
        const T wantPositive[5] = {0, 2, 0, 0, 7}, wantNegative[5] = {-3, 0, 0, -0.5, 0};
        for (int i = 0; i < 5; ++i)
        {
            EXPECT_EQ (positive[i], wantPositive[i]);
            EXPECT_EQ (negative[i], wantNegative[i]);
            EXPECT_EQ (magnitude[i], -wantNegative[i]);
        }
    }
}

TYPED_TEST (HVNSIMDEdges, NaNFollowsThePackedMaxAndMinOrder)
{
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    for (const auto& m : runnableMembers())
    {
        std::vector<T> a (span, nan), b (span, T (1)), out (span);
        m.simd->vMax (a.data(), b.data(), out.data(), span);
        for (T x : out)
            EXPECT_EQ (x, T (1)) << m.name; // NaN first: the second operand wins
        m.simd->vThreshold (a.data(), T (0.25), out.data(), span);
        for (T x : out)
            EXPECT_EQ (x, T (0.25)) << m.name;
        m.simd->vClip (a.data(), T (-1), T (3), out.data(), span);
        for (T x : out)
            EXPECT_EQ (x, T (-1)) << m.name;
        m.simd->vAbs (a.data(), out.data(), span);
        for (T x : out)
            EXPECT_TRUE (std::isnan (x)) << m.name;
    }
}

TYPED_TEST (HVNSIMDEdges, PolyAddsAscendingPowersNotHorner)
{
    using T = TypeParam;
    // Find inputs where the two orders round differently, then require the
    // ascending order from every member that does not fuse.
    const T c[4] = {T (0.3), T (-1.7), T (2.9), T (1.1)};
    std::vector<T> in;
    std::mt19937 random (3);
    std::uniform_real_distribution<T> d (T (-3), T (3));
    while (in.size() < span)
    {
        const T x = d (random);
        const T horner = ((c[0] * x + c[1]) * x + c[2]) * x + c[3];
        const T ascending = c[3] + x * c[2] + (x * x) * c[1] + (x * x * x) * c[0];
        if (horner != ascending)
            in.push_back (x);
    }
    for (const auto& m : runnableMembers())
    {
        if (m.fused)
            continue;
        std::vector<T> out (span);
        m.simd->vPoly (in.data(), c, 4, out.data(), span);
        for (uint32_t i = 0; i < span; ++i)
        {
            const T x = in[i];
            T acc = c[3];
            acc += x * c[2];
            acc += (x * x) * c[1];
            acc += (x * x * x) * c[0];
            EXPECT_EQ (out[i], acc) << m.name << " x=" << x;
        }
    }
}

TYPED_TEST (HVNSIMDEdges, PartiallyOverlappingOutputGivesTheSequentialResult)
{
    using T = TypeParam;
    for (const auto& m : runnableMembers())
        for (uint32_t shift : {1u, 3u})
        {
            std::vector<T> buffer (64), expected (64);
            for (uint32_t i = 0; i < 64; ++i)
                buffer[i] = expected[i] = T (i % 7) - T (2.5);
            const uint32_t n = 48;
            for (uint32_t i = 0; i < n; ++i)
                expected[i + shift] = expected[i] * T (2);
            m.simd->vScalarMul (buffer.data(), T (2), buffer.data() + shift, n);
            EXPECT_EQ (buffer, expected) << m.name << " shift " << shift;
        }
}

TEST (HVNSIMDProcessorControl, FlushDenormalsSetsAndClearsBothBits)
{
    for (const auto& m : runnableMembers())
    {
        const uint32_t original = m.simd->getFPControl();
        m.simd->setFlushDenormals (true);
        EXPECT_EQ (m.simd->getFPControl() & 0x8040u, 0x8040u);
        EXPECT_EQ (m.simd->getFPControl() & ~0x8040u, original & ~0x8040u);
        m.simd->setFlushDenormals (false);
        EXPECT_EQ (m.simd->getFPControl() & 0x8040u, 0u);
        m.simd->setFPControl (original);
        EXPECT_EQ (m.simd->getFPControl(), original);
    }
}

TEST (HVNFPGuard, FlushesDenormalsInsideTheScopeAndRestoresAfter)
{
    const uint32_t original = _mm_getcsr();
    _mm_setcsr (original & ~0x8040u);
    volatile float tiny = 1e-38f;
    {
        HVNFPGuard guard;
        EXPECT_EQ (_mm_getcsr() & 0x8040u, 0x8040u);
        volatile float result = tiny * 1e-3f;
        EXPECT_EQ (result, 0.0f);
    }
    EXPECT_EQ (_mm_getcsr(), original & ~0x8040u);
    volatile float denormal = tiny * 1e-3f;
    EXPECT_NE (denormal, 0.0f);

    // Already flushing: the guard leaves the register alone.
    _mm_setcsr (original | 0x8040u);
    {
        HVNFPGuard guard;
        EXPECT_EQ (_mm_getcsr(), original | 0x8040u);
    }
    EXPECT_EQ (_mm_getcsr(), original | 0x8040u);
    _mm_setcsr (original);
}
} // namespace
