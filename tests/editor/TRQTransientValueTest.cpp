#include "editor/TRQTransientValue.h"

#include <gtest/gtest.h>

namespace
{
constexpr double in = TRQTransientValue::fadeInMs;
constexpr double hold = TRQTransientValue::holdMs;
constexpr double out = TRQTransientValue::fadeOutMs;

// Advances in 16 ms ticks up to and including the time given.
void runUntil (TRQTransientValue& value, double& now, double until)
{
    while (now + 16.0 <= until)
    {
        now += 16.0;
        value.advance (now);
    }
}
} // namespace

TEST (TRQTransientValue, ComesInHoldsAndGoes)
{
    TRQTransientValue value;
    EXPECT_FALSE (value.isActive());
    EXPECT_EQ (value.alpha (0.0), 0.0f);

    double now = 1000.0;
    value.show (now);
    EXPECT_TRUE (value.isActive());
    EXPECT_EQ (value.alpha (now), 0.0f);
    EXPECT_GT (value.alpha (now + in * 0.5), 0.5f);
    EXPECT_EQ (value.alpha (now + in), 1.0f);

    runUntil (value, now, 1000.0 + in + hold - 20.0);
    EXPECT_EQ (value.alpha (now), 1.0f) << "still holding";
    runUntil (value, now, 1000.0 + in + hold + out * 0.5);
    EXPECT_LT (value.alpha (now), 1.0f);
    EXPECT_TRUE (value.isActive());
    runUntil (value, now, 1000.0 + in + hold + out + 40.0);
    EXPECT_FALSE (value.isActive());
    EXPECT_EQ (value.alpha (now), 0.0f);
}

TEST (TRQTransientValue, EveryChangeRestartsTheHold)
{
    TRQTransientValue value;
    double now = 0.0;
    value.show (now);
    // Changes every 400 ms for five seconds: never fades.
    for (int i = 0; i < 12; ++i)
    {
        runUntil (value, now, now + 400.0);
        value.show (now);
        EXPECT_EQ (value.alpha (now), 1.0f);
    }
    runUntil (value, now, now + in + hold + out + 40.0);
    EXPECT_FALSE (value.isActive());
}

TEST (TRQTransientValue, AChangeDuringTheFadeComesBackFromWhereItIs)
{
    TRQTransientValue value;
    double now = 0.0;
    value.show (now);
    runUntil (value, now, in + hold + out * 0.5);
    const float halfway = value.alpha (now);
    ASSERT_GT (halfway, 0.0f);
    ASSERT_LT (halfway, 1.0f);
    value.show (now);
    EXPECT_FLOAT_EQ (value.alpha (now), halfway) << "no jump";
    EXPECT_EQ (value.alpha (now + in), 1.0f);

    value.end();
    EXPECT_FALSE (value.isActive());
    EXPECT_EQ (value.alpha (now + in), 0.0f);
    // Shown again after an end, it comes in from nothing.
    value.show (now);
    EXPECT_EQ (value.alpha (now), 0.0f);
}
