#include "state/ParameterRange.h"
#include "state/ParameterBounds.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <limits>

#include <cmath>
#include <cstdio>
#include <string>

TEST (ParameterRange, EndsOfEveryRangeMapToZeroAndOne)
{
    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        const ParameterBounds& b = ParameterBounds::of (id);
        SCOPED_TRACE ("id " + std::to_string (id));
        EXPECT_NEAR (toNormalised (id, b.min), 0.0f, 1e-6f);
        EXPECT_NEAR (toNormalised (id, b.max), 1.0f, 1e-6f);
        EXPECT_EQ (fromNormalised (id, 0.0f), b.min);
        EXPECT_EQ (fromNormalised (id, 1.0f), b.max);
        EXPECT_EQ (fromNormalised (id, -0.5f), b.min);
        EXPECT_EQ (fromNormalised (id, 1.5f), b.max);
    }
}

TEST (ParameterRange, EveryStepSurvivesARoundTrip)
{
    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        const ParameterBounds& b = ParameterBounds::of (id);
        const int steps = static_cast<int> (std::lround ((b.max - b.min) / b.step));
        for (int k = 0; k <= steps; ++k)
        {
            const float real = snapToStep (id, b.min + static_cast<float> (k) * b.step);
            const float back = fromNormalised (id, toNormalised (id, real));
            ASSERT_NEAR (back, real, b.step * 1e-3f) << "id " << id << " step " << k;
            ASSERT_EQ (snapAndClamp (id, back), back) << "id " << id << " step " << k;
        }
    }
}

TEST (ParameterRange, SnappedTenthsAreTheFloatsOfTheirDecimals)
{
    // Presets write values as decimals; read back, they must snap to themselves.
    for (int k = -240; k <= 120; ++k)
    {
        char text[16];
        std::snprintf (text, sizeof (text), "%.1f", k / 10.0);
        const float decimal = std::stof (text);
        EXPECT_EQ (snapToStep (1, decimal), decimal) << text;
        EXPECT_EQ (snapToStep (1, decimal + 0.02f), decimal) << text;
    }
}

TEST (ParameterRange, TimeConstantsAreLogarithmic)
{
    EXPECT_EQ (fromNormalised (7, 0.0f), 0.1f);
    EXPECT_EQ (fromNormalised (7, 1.0f), 8.0f);
    // The geometric middle of 0.1 and 8 is 0.894.
    EXPECT_EQ (fromNormalised (7, 0.5f), 0.9f);
    EXPECT_NEAR (toNormalised (8, std::sqrt (0.8f)), 0.5f, 1e-6f);
    // Equal ratios take equal travel.
    EXPECT_NEAR (toNormalised (7, 2.0f) - toNormalised (7, 1.0f),
                 toNormalised (7, 4.0f) - toNormalised (7, 2.0f), 1e-6f);
}

TEST (ParameterRange, SnappingRoundsHalvesAwayFromZero)
{
    EXPECT_EQ (snapToStep (2, 2.5f), 3.0f);
    EXPECT_EQ (snapToStep (20, -2.5f), -3.0f);
    EXPECT_EQ (fromNormalised (0, 0.5f), 1.0f);
    EXPECT_EQ (fromNormalised (11, 0.25f), 1.0f);
    EXPECT_EQ (snapToStep (1, 0.26f), 0.3f);

    EXPECT_EQ (fromNormalised (1, 2.0f / 3.0f), 0.0f);
    const float negativeZero = snapAndClamp (1, -0.04f);
    EXPECT_EQ (negativeZero, 0.0f);
    EXPECT_TRUE (std::signbit (negativeZero)) << "the sign survives; only the text hides it";
}

TEST (ParameterRange, NotANumberGoesToTheBottomOfTheRange)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ (snapAndClamp (2, nan), 0.0f);
    EXPECT_EQ (fromNormalised (13, nan), -96.0f);
    EXPECT_EQ (fromNormalised (7, toNormalised (7, -100.0f)), 0.1f) << "the logarithm of a negative time";
}

TEST (ParameterRange, InvalidIdsGiveZero)
{
    for (ParameterId id : {kNumParameters, kNumParameters + 1, 1000u})
    {
        EXPECT_EQ (toNormalised (id, 5.0f), 0.0f);
        EXPECT_EQ (fromNormalised (id, 0.5f), 0.0f);
        EXPECT_EQ (snapToStep (id, 5.0f), 0.0f);
        EXPECT_EQ (snapAndClamp (id, 5.0f), 0.0f);
    }
}

TEST (ParameterRange, AcceptedRanges)
{
    EXPECT_TRUE (isWithinAcceptedRange (17, -36.0f));
    EXPECT_TRUE (isWithinAcceptedRange (17, 0.0f));
    EXPECT_FALSE (isWithinAcceptedRange (17, 0.1f));
    EXPECT_FALSE (isWithinAcceptedRange (13, -96.1f));
    EXPECT_TRUE (isWithinAcceptedRange (12, 360.0f));
    EXPECT_FALSE (isWithinAcceptedRange (12, 361.0f));
    EXPECT_FALSE (isWithinAcceptedRange (7, 0.05f));
    EXPECT_FALSE (isWithinAcceptedRange (2, -1.0f));
    EXPECT_FALSE (isWithinAcceptedRange (1, NAN));
    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        EXPECT_TRUE (isWithinAcceptedRange (id, ParameterBounds::of (id).min)) << id;
        EXPECT_TRUE (isWithinAcceptedRange (id, ParameterBounds::of (id).max)) << id;
    }
}

TEST (ParameterRange, ConversionNeverAllocates)
{
    float sink = 0.0f;
    AllocationCounter counter;
    for (ParameterId id = 0; id <= kNumParameters; ++id)
    {
        sink += fromNormalised (id, 0.37f);
        sink += toNormalised (id, ParameterBounds::of (id).defaultValue);
        sink += snapAndClamp (id, 1234.5f);
    }
    EXPECT_EQ (counter.allocations(), 0u);
    EXPECT_TRUE (std::isfinite (sink));
}
