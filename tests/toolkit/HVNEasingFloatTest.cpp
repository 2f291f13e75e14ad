#include "toolkit/HVNEasingFloat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace
{
constexpr double rate = 48000.0;

// Runs the easing in blocks until it settles; returns every sample.
template<typename T>
std::vector<T> runToEnd (HVNEasingFloat<T>& e, uint32_t block, uint32_t limit = 100000)
{
    std::vector<T> out;
    while (out.size() < limit)
    {
        const bool wasEasing = e.isEasing();
        e.process (block);
        out.insert (out.end(), e.getBuffer(), e.getBuffer() + block);
        if (!wasEasing)
            break;
    }
    return out;
}

// Number of the sample (from 1) at which the ramp reaches its target for good.
template<typename T>
size_t rampSamples (const std::vector<T>& v, T target)
{
    size_t last = 0;
    for (size_t i = 0; i < v.size(); ++i)
        if (v[i] != target)
            last = i + 1;
    return last + 1;
}
} // namespace

TEST (HVNEasingFloat, SameValueWhileIdleStartsNothing)
{
    HVNEasingFloat<double> e (64, &rate);
    e.setInstant (0.5);
    e.clearDirty();
    e.setTarget (0.5);
    EXPECT_FALSE (e.isDirty());
    EXPECT_FALSE (e.isActive());
}

TEST (HVNEasingFloat, FullSwingTakesRangeOverRateAndATinyChangeAQuarter)
{
    // Default rate: 10 ranges per second, so one range takes 0.1 s.
    HVNEasingFloat<double> e (256, &rate);
    e.setInstant (0.0);
    e.setTarget (1.0);
    EXPECT_EQ (e.getRampLength(), 4800u);
    auto samples = runToEnd (e, 256);
    EXPECT_EQ (rampSamples (samples, 1.0), 4800u);

    e.setTarget (1.001);
    EXPECT_EQ (e.getRampLength(), 1200u);
    samples = runToEnd (e, 256);
    EXPECT_EQ (rampSamples (samples, 1.001), 1200u);
}

TEST (HVNEasingFloat, RampIsMonotonicAndEndsFlat)
{
    HVNEasingFloat<float> e (128, &rate);
    e.setInstant (-1.0f);
    e.setTarget (1.0f);
    auto samples = runToEnd (e, 128);
    for (size_t i = 1; i < samples.size(); ++i)
        ASSERT_GE (samples[i], samples[i - 1]);
    const size_t n = rampSamples (samples, 1.0f);
    ASSERT_GT (n, 3u);
    // The last steps are much smaller than the middle ones.
    EXPECT_LT (samples[n - 1] - samples[n - 2], 0.01f * (samples[n / 2] - samples[n / 2 - 1]));
}

TEST (HVNEasingFloat, ReversalNeverPassesEitherTarget)
{
    for (double from : {0.0, 1.0})
    {
        const double to = 1.0 - from, back = from;
        HVNEasingFloat<double> e (64, &rate);
        e.setInstant (from);
        e.setTarget (to);
        for (int i = 0; i < 40; ++i) // well into the ramp, at speed
            e.process (64);
        e.setTarget (back);
        const auto samples = runToEnd (e, 64);
        for (double v : samples)
        {
            ASSERT_GE (v, 0.0);
            ASSERT_LE (v, 1.0);
        }
        EXPECT_EQ (samples.back(), back);
    }
}

TEST (HVNEasingFloat, ReversalKeepsTheSlope)
{
    HVNEasingFloat<double> e (1, &rate);
    e.setInstant (0.0);
    e.setTarget (1.0);
    double previous = 0.0, current = 0.0;
    for (int i = 0; i < 2000; ++i)
    {
        e.process (1);
        previous = current;
        current = e.getBuffer()[0];
    }
    const double slope = current - previous;
    e.setTarget (0.0);
    e.process (1);
    // No corner: the first step after the reversal continues the old slope.
    EXPECT_NEAR (e.getBuffer()[0] - current, slope, std::abs (slope) * 0.01);
}

TEST (HVNEasingFloat, BlockSizeDoesNotChangeTheRamp)
{
    HVNEasingFloat<double> a (512, &rate), b (1, &rate);
    for (auto* e : {&a, &b})
    {
        e->setInstant (0.25);
        e->setTarget (-3.0);
    }
    const auto big = runToEnd (a, 512);
    const auto single = runToEnd (b, 1);
    for (size_t i = 0; i < single.size() && i < big.size(); ++i)
        ASSERT_DOUBLE_EQ (big[i], single[i]) << i;
}

TEST (HVNEasingFloat, InfiniteRateIsAPlainValue)
{
    HVNEasingFloat<float> e (16, &rate);
    e.setRatePerSample (std::numeric_limits<float>::infinity());
    e.setTarget (3.0f);
    EXPECT_FALSE (e.isEasing());
    EXPECT_EQ (e.getValue(), 3.0f);
    e.process (16);
    EXPECT_EQ (e.getBuffer()[15], 3.0f);
}

TEST (HVNEasingFloat, FirstTargetAfterResetLandsAtOnce)
{
    HVNResetCallbacks owner;
    HVNEasingFloat<double> e (32, &rate, &owner);
    ASSERT_EQ (owner.size(), 1u);

    e.setTarget (0.7); // a new object ramps from its construction value
    EXPECT_TRUE (e.isEasing());
    e.process (32);

    for (auto& callback : owner)
        callback();
    e.setTarget (0.2);
    EXPECT_FALSE (e.isEasing());
    EXPECT_EQ (e.getValue(), 0.2);
    e.process (32);
    EXPECT_EQ (e.getBuffer()[0], 0.2);

    e.setTarget (0.4); // the jump was a one-off
    EXPECT_TRUE (e.isEasing());
}

TEST (HVNEasingFloat, ConversionsAndLinksApplyToTheValue)
{
    HVNEasingFloat<double> gain (8, &rate), level (8, &rate);
    gain.addConversion (HVNEasingConversion::decibelsToLinear);
    gain.setInstant (-20.0);
    gain.process (8);
    EXPECT_NEAR (gain.getValue(), 0.1, 1e-12);

    level.link (HVNEasingLink::multiply, gain);
    gain.link (HVNEasingLink::multiply, level); // refused: would be a cycle
    level.setInstant (3.0);
    level.process (8);
    EXPECT_NEAR (level.getValue(), 0.3, 1e-12);

    gain.setTarget (0.0);
    EXPECT_TRUE (level.isActive());
    gain.process (8);
    level.process (8);
    EXPECT_NEAR (level.getBuffer()[7], 3.0 * gain.getBuffer()[7], 1e-12);
}

TEST (HVNEasingFloat, SettledValuesTakeTheScalarPaths)
{
    HVNEasingFloat<float> g (4, &rate);
    float a[4] = {1, 2, 3, 4}, b[4] = {10, 20, 30, 40}, out[4];
    float* channels[1] = {a};

    g.setInstant (1.0f);
    g.process (4);
    g.multiply (channels, 1, 4);
    EXPECT_EQ (a[3], 4.0f);

    g.setInstant (0.0f);
    g.process (4);
    g.crossfade (a, b, out, 4);
    EXPECT_EQ (out[2], 30.0f);

    g.setInstant (0.25f);
    g.process (4);
    g.crossfade (a, b, out, 4);
    EXPECT_FLOAT_EQ (out[0], 0.25f * 1.0f + 0.75f * 10.0f);
    float scratch[4];
    g.crossfadeEqualPower (scratch, a, b, out, 4);
    EXPECT_NEAR (out[0], std::sin (0.125 * M_PI) * 1.0 + std::cos (0.125 * M_PI) * 10.0, 1e-5);

    g.setInstant (2.0f);
    g.process (4);
    g.divide (channels, 1, 4);
    EXPECT_EQ (a[1], 1.0f);
}

TEST (HVNEasingFloat, HardBoundsHold)
{
    HVNEasingFloat<double> e (64, &rate);
    e.setMaximum (0.5);
    e.setInstant (0.0);
    e.setTarget (1.0);
    for (double v : runToEnd (e, 64))
        ASSERT_LE (v, 0.5);
}
