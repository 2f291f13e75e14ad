#include "toolkit/HVNFastExp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

TEST (HVNFastExp, TableHoldsThePowersOfTwoToTheLastBit)
{
    for (int j = 0; j < 64; ++j)
        EXPECT_EQ (HVNFastExp::table[j], std::exp2 (j / 64.0)) << j;
}

// The bound the header states: relative error below 2.3e-16 (|x| + 2), swept
// densely where the compressor's exponents lie and sparsely out to the clamps.
TEST (HVNFastExp, StaysWithinItsErrorBoundOverTheWholeRange)
{
    std::mt19937_64 random (3);
    // The fused form is checked too: fma is exact wherever it runs.
    auto check = [] (double x)
    {
        const double expected = std::exp (x);
        for (double result : {HVNFastExp::exp (x), HVNFastExp::exp<true> (x)})
            ASSERT_LE (std::abs (result - expected) / expected, 2.3e-16 * (std::abs (x) + 2.0)) << x;
    };
    std::uniform_real_distribution<double> near (-40.0, 10.0), far (-708.0, 709.0);
    for (int i = 0; i < 200000; ++i)
        check (near (random));
    for (int i = 0; i < 20000; ++i)
        check (far (random));
    for (double x : {0.0, -0.0, 1.0, -1.0, 1e-300, -1e-300, 0.0078125, -708.0, 709.0})
        check (x);
    EXPECT_EQ (HVNFastExp::exp (0.0), 1.0);
}

TEST (HVNFastExp, ClampsToNormalNumbersAndNeverFails)
{
    const double tiny = HVNFastExp::exp (-1e6), huge = HVNFastExp::exp (1e6);
    EXPECT_TRUE (std::isnormal (tiny));
    EXPECT_LT (tiny, 1e-307);
    EXPECT_TRUE (std::isfinite (huge));
    EXPECT_GT (huge, 1e307);
    EXPECT_EQ (HVNFastExp::exp (-std::numeric_limits<double>::infinity()), tiny);
    EXPECT_TRUE (std::isfinite (HVNFastExp::exp (std::numeric_limits<double>::quiet_NaN())));
}
